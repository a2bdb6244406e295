// What a load of the book found damaged, in the log.
#pragma once

#include <span>

#include "records/TradeImpl.h"
#include "support/Log.h"

namespace Dravel {

// `frames`: all that are damaged; the report has the first ones only.
void LogDamage(ILog& log, const KRV::VELT::TradeLoadReport& report, std::span<const DamagedFrame> frames);

}  // namespace Dravel

// What the dealer is told of a book that was damaged or changed outside Dravel.
#pragma once

#include <string>

#include "host/User.h"
#include "records/TradeImpl.h"
#include "tradebook/TradeBook.h"
#include "tradebook/base/UiThread.h"

namespace Dravel {

// The box's text; empty when a load met no damage. `book` is the one that was loaded.
std::string BookDamageText(const KRV::VELT::TradeLoadReport& report, const TradeBook& book);

// Shows that text in a box as soon as the opening is through. `user` outlives what is posted.
void TellOfDamage(IUser& user, IUiThread& ui, const KRV::VELT::TradeLoadReport& report,
                  const TradeBook& book);

}  // namespace Dravel

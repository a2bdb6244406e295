// Tells the terminal of a trade.
#pragma once

#include "host/Host.h"
#include "records/TradeRecord.h"

namespace Dravel {

// Which frames a report consists of.
struct ReportKind {
    bool trade = true;    // 30028; off in analysis-only mode
    bool second = false;  // 30034
};

// Sends the wanted frames, 30028 first. Nothing is built when the terminal does not listen.
void ReportTrade(IHost& host, const TradeRecord& record, ReportKind kind);

}  // namespace Dravel

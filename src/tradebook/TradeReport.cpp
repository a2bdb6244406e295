#include "tradebook/TradeReport.h"

#include "message/TagMessageWriter.h"
#include "message/Tags.h"
#include "records/TradeFrame.h"

namespace Dravel {

static void SendAs(IHost& host, msg::Code code, const TradeRecord& record) {
    CTagMessageWriter frame(code);
    WriteTradeFields(record, frame);
    host.Send(frame);
}

void ReportTrade(IHost& host, const TradeRecord& record, ReportKind kind) {
    if (!host.Listens()) return;
    if (kind.trade) SendAs(host, msg::TradeReport, record);
    if (kind.second) SendAs(host, msg::SecondTradeReport, record);
}

}  // namespace Dravel

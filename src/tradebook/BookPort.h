// The book as the import sees it: a place that knows which trades it holds and takes new ones.
#pragma once

#include <cstdint>

#include "host/HostTypes.h"
#include "records/ChangeRecorder.h"
#include "records/TradeRecord.h"

namespace Dravel {

// Called on the user-interface thread.
class ITradeSink {
 public:
    virtual ~ITradeSink() = default;
    // VELTTradeID of a trade that has the record's duplicate key (Symbol, ExchangeTradeID, ExchangeOrderNo
    // and ExchangeTradeTime, as they stand in the record); 0: none has.
    virtual std::uint32_t HolderOf(const TradeRecord& record) const = 0;
    // Takes the record as a new trade unless one has its key, whose VELTTradeID is then returned; 0: taken.
    // It gives it VELTTradeID and VELTOrderID, and OrderID when that is 0, stores and shows it, reports it to
    // the terminal and sets the changed flag. `source` is for the journal.
    virtual std::uint32_t AddUnlessHeld(TradeRecord& record, const ChangeSource& source) = 0;
    // The terminal's entry of the record's exchange and SecurityID; nullptr: it knows none.
    virtual const SecurityMasterEntry* ContractOf(const TradeRecord&) { return nullptr; }
    // Between the two the trades that come in are shown together, at the end, which is much cheaper. They
    // nest.
    virtual void BeginBatch() {}
    virtual void EndBatch() {}
};

}  // namespace Dravel

// The contracts that an import meets, each asked of the terminal once.
#pragma once

#include <memory>

#include "formatset/TextHash.h"
#include "host/Host.h"
#include "records/TradeRecord.h"

namespace Dravel {

// Lives for one run, on the user-interface thread.
class ContractCache {
 public:
    explicit ContractCache(IHost& host) : host_(host) {}

    // Looks the record's contract up by exchange, security type, symbol and expiry, and for a type that
    // contains "OPT" by option type and strike, too. Found: it becomes the record's contract. Not found: the
    // record stays as it is.
    bool Resolve(TradeRecord& record);

 private:
    std::unique_ptr<TradeRecord> Ask(const TradeRecord& record, bool option);

    IHost& host_;
    // Holds the contract as records take it; nullptr: the terminal does not know it.
    TextMap<std::unique_ptr<TradeRecord>> known_;
};

}  // namespace Dravel

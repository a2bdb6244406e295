// The contracts that an import meets, each asked of the terminal once.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "formatset/TextHash.h"
#include "host/Host.h"
#include "records/TradeRecord.h"
#include "tradebook/BookPort.h"

namespace Dravel {

enum class ContractFound : std::uint8_t {
    No,
    ByNames,
    ByIdentifier,  // the terminal knows no contract of these names, but one of this SecurityID
};

// Lives for one run, on the user-interface thread.
class ContractCache {
 public:
    // Both outlive it.
    ContractCache(IHost& host, ITradeSink& book) : host_(host), book_(book) {}

    // Looks the record's contract up by exchange, security type, symbol and expiry, and for a type that
    // contains "OPT" by option type and strike, too; without success by exchange and SecurityID. Found: it
    // becomes the record's contract, with all its names. Not found: the record stays as it is.
    ContractFound Resolve(TradeRecord& record);

 private:
    bool ResolveNames(TradeRecord& record);
    bool ResolveIdentifier(TradeRecord& record);
    std::unique_ptr<TradeRecord> Ask(const TradeRecord& record, bool option);

    IHost& host_;
    ITradeSink& book_;
    // Holds the contract as records take it; nullptr: the terminal does not know it.
    TextMap<std::unique_ptr<TradeRecord>> known_;
    std::unordered_map<const SecurityMasterEntry*, TradeRecord> identified_;  // as records take them
};

}  // namespace Dravel

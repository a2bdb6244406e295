// The contracts and clients that generated trades are made of. Always the same, whatever the seed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/HostTypes.h"

namespace Dravel::Sample {

struct Contract {
    SecurityMasterEntry entry;
    std::uint32_t lot;   // quantities are multiples of it
    std::uint32_t tick;  // hundredths; prices are multiples of it
    std::int64_t price;  // usual price, hundredths
    bool traded;         // an index is quoted, not traded
};

// A few thousand contracts of five exchanges: shares, futures and options on them, indexes, futures and
// options on those.
const std::vector<Contract>& Contracts();
// The clients that the terminal knows.
const std::vector<std::string>& Clients();

// The files that go with the trades, with CR LF: contracts under
// "exchange,securityid,securitytype,symbol,expiry,optiontype,strike,divisorkey", clients under "clientid".
std::string SecurityMasterCsv();
std::string ClientsCsv();

}  // namespace Dravel::Sample

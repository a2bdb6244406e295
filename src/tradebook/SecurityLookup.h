// The terminal's entry of the security that a trade names.
#pragma once

#include <string>
#include <unordered_map>

#include "host/Host.h"
#include "records/TradeFrame.h"

namespace Dravel {

// Asks the terminal once for a pair of exchange and security identifier and remembers the answer, also that
// there is none: a million trades are of a few thousand contracts. User-interface thread.
class SecurityLookup final : public ISecurityMaster {
 public:
    explicit SecurityLookup(IHost& host) : host_(host) {}
    const SecurityMasterEntry* Find(const TradeRecord& record) override;

 private:
    IHost& host_;
    std::unordered_map<std::string, const SecurityMasterEntry*> known_;
    std::string key_;  // kept for its memory
};

}  // namespace Dravel

// The terminal's entry of the security that a trade names.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/Host.h"
#include "records/TradeFrame.h"

namespace Dravel {

// Asks the terminal once for a pair of exchange and security identifier and remembers the answer, also that
// there is none: a million trades are of a few thousand contracts. The terminal may hand over trades while it
// is asked, whose look-ups then come in between. User-interface thread.
class SecurityLookup final : public ISecurityMaster {
 public:
    explicit SecurityLookup(IHost& host) : host_(host) {}
    const SecurityMasterEntry* Find(const TradeRecord& record) override;

 private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
    };

    IHost& host_;
    // By exchange, NUL, identifier, NUL.
    std::unordered_map<std::string, const SecurityMasterEntry*, Hash, std::equal_to<>> known_;
};

}  // namespace Dravel

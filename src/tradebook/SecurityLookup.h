// The terminal's entry of the security that a trade names.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/Host.h"
#include "platform/Clock.h"
#include "records/TradeFrame.h"

namespace Dravel {

// Asks the terminal for a pair of exchange and security identifier and remembers the answer: a million trades
// are of a few thousand contracts. What had no answer is asked again, since the terminal may still have been
// reading its master: at once after AskAgain, else not more often than once a second. The terminal may hand
// over trades while it is asked, whose look-ups then come in between. User-interface thread.
class SecurityLookup final : public ISecurityMaster {
 public:
    SecurityLookup(IHost& host, const IClock& clock) : host_(host), clock_(clock) {}
    const SecurityMasterEntry* Find(const TradeRecord& record) override;
    // Every pair without an answer is asked for again when it is next looked up.
    void AskAgain() { ++round_; }

 private:
    struct Answer {
        const SecurityMasterEntry* entry = nullptr;
        std::uint64_t askedAt = 0;  // IClock::Ticks
        std::uint32_t round = 0;
    };
    bool Stands(const Answer& answer) const;

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
    };

    IHost& host_;
    const IClock& clock_;
    std::uint32_t round_ = 0;
    // By exchange, NUL, identifier, NUL.
    std::unordered_map<std::string, Answer, Hash, std::equal_to<>> known_;
};

}  // namespace Dravel

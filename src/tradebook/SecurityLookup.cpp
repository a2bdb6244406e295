#include "tradebook/SecurityLookup.h"

#include <algorithm>
#include <iterator>

#include "records/RecordText.h"

namespace Dravel {

static constexpr std::uint64_t kPause = 1000;  // milliseconds until no answer is asked for again

bool SecurityLookup::Stands(const Answer& answer) const {
    if (answer.entry != nullptr) return true;
    return answer.round == round_ && clock_.Ticks() - answer.askedAt < kPause;
}

const SecurityMasterEntry* SecurityLookup::Find(const TradeRecord& record) {
    if (!host_.HasSecurityMaster()) return nullptr;
    const std::string_view exchange = TextOf(record.exchange), identifier = TextOf(record.securityID);
    if (exchange.empty() || identifier.empty()) return nullptr;
    // Both texts zero-terminated, as the request wants them. On the stack: the terminal reads them even after
    // a look-up in between.
    char texts[sizeof record.exchange + sizeof record.securityID + 2];
    char* const second = std::copy(exchange.begin(), exchange.end(), texts) + 1;
    char* const end = std::copy(identifier.begin(), identifier.end(), second) + 1;
    second[-1] = end[-1] = '\0';
    const std::string_view key(texts, static_cast<std::size_t>(end - texts));
    if (const auto found = known_.find(key); found != known_.end() && Stands(found->second))
        return found->second.entry;
    const SecurityMasterEntry* const entry = host_.Ask(master::ContractByID, {texts, second}).entry;
    // Counted from the answer: the terminal may take its time.
    known_.insert_or_assign(std::string(key), Answer{entry, clock_.Ticks(), round_});
    return entry;
}

}  // namespace Dravel

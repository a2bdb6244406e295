#include "tradebook/SecurityLookup.h"

#include <algorithm>
#include <iterator>

#include "records/RecordText.h"

namespace Dravel {

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
    if (const auto found = known_.find(key); found != known_.end()) return found->second;
    const SecurityMasterEntry* const entry = host_.Ask(master::ContractByID, {texts, second}).entry;
    known_.emplace(key, entry);
    return entry;
}

}  // namespace Dravel

#include "tradebook/SecurityLookup.h"

#include "records/RecordText.h"

namespace Dravel {

const SecurityMasterEntry* SecurityLookup::Find(const TradeRecord& record) {
    if (!host_.HasSecurityMaster()) return nullptr;
    const std::string_view exchange = TextOf(record.exchange), identifier = TextOf(record.securityID);
    if (exchange.empty() || identifier.empty()) return nullptr;
    key_.assign(exchange).append(1, '\0').append(identifier);
    if (const auto found = known_.find(key_); found != known_.end()) return found->second;
    // Both texts stand in the key, zero-terminated, as the request wants them.
    const char* const texts = key_.c_str();
    const SecurityMasterEntry* const entry =
        host_.Ask(master::ContractByID, {texts, texts + exchange.size() + 1}).entry;
    known_.emplace(key_, entry);
    return entry;
}

}  // namespace Dravel

// Remembers the terminal's answers by the texts they were asked with.
#include "entry/ContractCache.h"

#include <cstring>

#include "formatset/NumberText.h"
#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

// The texts of a question, each with a closing zero, so that no two questions have the same bytes.
class Key {
 public:
    void Add(std::string_view text) {
        std::memcpy(bytes_ + length_, text.data(), text.size());
        length_ += text.size();
        bytes_[length_++] = '\0';
    }
    std::string_view View() const { return {bytes_, length_}; }

 private:
    using R = TradeRecord;
    char bytes_[sizeof(R::exchange) + sizeof(R::securityType) + sizeof(R::symbol) + sizeof(R::expiryDate) +
                sizeof(R::optionType) + sizeof(R::strikePrice) + 6];
    std::size_t length_ = 0;
};

std::string_view BytesOf(const double& value) {
    return {reinterpret_cast<const char*>(&value), sizeof(value)};
}

}  // namespace

ContractFound ContractCache::Resolve(TradeRecord& record) {
    if (!host_.HasSecurityMaster()) return ContractFound::No;
    if (ResolveNames(record)) return ContractFound::ByNames;
    return ResolveIdentifier(record) ? ContractFound::ByIdentifier : ContractFound::No;
}

// The names go with the identifier: those of no contract beside it would be reported.
bool ContractCache::ResolveIdentifier(TradeRecord& record) {
    const SecurityMasterEntry* const entry = book_.ContractOf(record);
    if (entry == nullptr) return false;
    const auto [found, fresh] = identified_.try_emplace(entry);
    if (fresh) TakeContract(found->second, *entry);
    CopyContract(record, found->second);
    return true;
}

bool ContractCache::ResolveNames(TradeRecord& record) {
    const bool option = TextOf(record.securityType).find("OPT") != std::string_view::npos;
    Key key;
    key.Add(TextOf(record.exchange));
    key.Add(TextOf(record.securityType));
    key.Add(TextOf(record.symbol));
    key.Add(TextOf(record.expiryDate));
    if (option) {
        const double strike = record.strikePrice;
        key.Add(TextOf(record.optionType));
        key.Add(BytesOf(strike));
    }
    auto found = known_.find(key.View());
    if (found == known_.end()) found = known_.emplace(key.View(), Ask(record, option)).first;
    if (found->second == nullptr) return false;
    CopyContract(record, *found->second);
    return true;
}

std::unique_ptr<TradeRecord> ContractCache::Ask(const TradeRecord& record, bool option) {
    // A text that fills its capacity has no closing zero in the record.
    const std::string exchange(TextOf(record.exchange)), type(TextOf(record.securityType)),
        symbol(TextOf(record.symbol)), expiry(TextOf(record.expiryDate)),
        optionType(TextOf(record.optionType));
    std::string strike;
    AppendShortest(strike, record.strikePrice);
    const MasterAnswer answer =
        option
            ? host_.Ask(master::OptionContract, {exchange.c_str(), type.c_str(), symbol.c_str(),
                                                 expiry.c_str(), optionType.c_str(), strike.c_str()})
            : host_.Ask(master::Contract, {exchange.c_str(), type.c_str(), symbol.c_str(), expiry.c_str()});
    if (answer.entry == nullptr) return nullptr;
    auto contract = std::make_unique<TradeRecord>();
    TakeContract(*contract, *answer.entry);
    return contract;
}

}  // namespace Dravel

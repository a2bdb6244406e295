// Reads the master's files and answers the requests of the kinds in HostTypes.h.
#include "MasterData.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <span>

#include "Text.h"

namespace Dravel::DevHost {
namespace {

constexpr char kSeparator = '\x1F';

std::vector<std::string_view> Cells(std::string_view line) {
    std::vector<std::string_view> cells;
    while (true) {
        const auto comma = line.find(',');
        cells.push_back(Trim(line.substr(0, comma)));
        if (comma == line.npos) return cells;
        line.remove_prefix(comma + 1);
    }
}

template <std::size_t N>
void Put(char (&into)[N], std::string_view text) {
    const std::size_t size = std::min(text.size(), N);
    std::memset(into, 0, N);
    std::copy_n(text.begin(), size, into);  // an empty view may have no bytes at all
}

template <std::size_t N>
std::string_view Get(const char (&from)[N]) {
    return {from, static_cast<std::size_t>(std::find(from, from + N, '\0') - from)};
}

SecurityMasterEntry EntryOf(std::span<const std::string_view> cells) {
    SecurityMasterEntry entry{};
    auto cell = [&](std::size_t i) { return i < cells.size() ? cells[i] : std::string_view(); };
    Put(entry.exchange, cell(0));
    Put(entry.securityID, cell(1));
    Put(entry.securityType, cell(2));
    Put(entry.symbol, cell(3));
    Put(entry.expiryText, cell(4));
    Put(entry.optionType, cell(5));
    Put(entry.divisorKey, cell(7));
    ParseNumber(cell(6), entry.strikePrice);
    return entry;
}

// Strikes are the same when they are the same number, whatever way they are written.
std::string StrikeKey(std::string_view text) {
    double strike = 0;
    return ParseNumber(text, strike) ? NumberText(strike) : std::string(text);
}

std::string Key(std::uint32_t kind, std::span<const std::string_view> texts) {
    std::string key = NumberText(kind);
    for (std::string_view text : texts)
        (key += kSeparator) += Upper(text);
    return key;
}

}  // namespace

bool MasterData::LoadContracts(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    for (std::string line; std::getline(in, line);) {
        const auto cells = Cells(line);
        if (cells.size() < 4 || Upper(cells[0]) == "EXCHANGE") continue;
        Add(EntryOf(cells));
    }
    IndexContracts();
    return true;
}

bool MasterData::LoadClients(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    for (std::string line; std::getline(in, line);) {
        const std::string_view client = Trim(line);
        if (!client.empty() && Upper(client) != "CLIENTID") clients_.emplace_back(client);
    }
    return true;
}

void MasterData::MakeContracts(std::uint32_t count) {
    constexpr std::uint32_t kStrikes = 100, kExpiries = 4;
    constexpr std::string_view kExpiryTexts[kExpiries] = {"26Dec2030", "30Jan2031", "27Feb2031", "27Mar2031"};
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string id = NumberText(900000 + i), strike = NumberText(100 + 50 * (i / 2 % kStrikes));
        const std::string symbol = "MADE" + NumberText(i / (2 * kStrikes * kExpiries));
        const std::string_view cells[] = {
            "NSEFO", id, "OPTSTK", symbol, kExpiryTexts[i / (2 * kStrikes) % kExpiries], i % 2 ? "PE" : "CE",
            strike};
        Add(EntryOf(cells));
    }
    IndexContracts();
}

void MasterData::Add(const SecurityMasterEntry& entry) {
    contracts_.push_back(entry);
}

void MasterData::IndexContracts() {
    lists_.clear();
    entries_.clear();
    entries_.reserve(contracts_.size() * 2);
    for (std::size_t i = 0; i < contracts_.size(); ++i)
        IndexContract(i);
    entered_.clear();
}

void MasterData::Enter(std::uint32_t kind, std::string_view path, std::string value) {
    std::string key = NumberText(kind);
    if (!path.empty()) (key += kSeparator) += path;
    if (value.empty() || !entered_.insert(key + kSeparator + value).second) return;
    lists_[std::move(key)].push_back(std::move(value));
}

void MasterData::IndexContract(std::size_t index) {
    const SecurityMasterEntry& entry = contracts_[index];
    const std::string strike = NumberText(entry.strikePrice);
    const std::string_view texts[] = {Get(entry.exchange),   Get(entry.securityType), Get(entry.symbol),
                                      Get(entry.expiryText), Get(entry.optionType),   strike};
    constexpr std::uint32_t kKinds[] = {master::Exchanges, master::SecurityTypes, master::Symbols,
                                        master::Expiries,  master::OptionTypes,   master::Strikes};
    const bool option = !texts[4].empty() && Upper(texts[1]).find("OPT") != std::string::npos;
    std::string path;
    for (std::size_t i = 0; i < (option ? 6u : 4u); ++i) {
        Enter(kKinds[i], path, std::string(texts[i]));
        if (i) path += kSeparator;
        path += Upper(texts[i]);
    }
    entries_.try_emplace(option ? Key(master::OptionContract, texts) : Key(master::Contract, {texts, 4}),
                         index);
    const std::string_view identity[] = {texts[0], Get(entry.securityID)};
    entries_.try_emplace(Key(master::ContractByID, identity), index);
}

void MasterData::SpoilScratch() {
    for (char& c : scratchTexts_)
        if (c) c = '?';
    spoiltTexts_.swap(scratchTexts_);
    scratchTexts_.clear();
    scratchList_.clear();
}

MasterAnswer MasterData::ListAnswer(const List& list) {
    std::vector<std::size_t> starts;
    for (const std::string& text : list) {
        starts.push_back(scratchTexts_.size());
        scratchTexts_.append(text).push_back('\0');
    }
    for (std::size_t start : starts)
        scratchList_.push_back(scratchTexts_.data() + start);
    return {static_cast<std::uint32_t>(list.size()), scratchList_.data(), nullptr};
}

MasterAnswer MasterData::Answer(const MasterRequest& request) {
    SpoilScratch();
    std::vector<std::string> held;
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(request.textCount, 6); ++i)
        held.emplace_back(request.texts[i] ? request.texts[i] : "");
    if (request.kind == master::OptionContract && held.size() == 6) held[5] = StrikeKey(held[5]);
    if (request.kind == master::Clients) return ListAnswer(clients_);
    if (request.kind == master::CtclEntries)
        return ListAnswer(held.empty() ? List() : List{"CTCL-" + held[0], "CTCL-2"});
    const std::vector<std::string_view> texts(held.begin(), held.end());
    const std::string key = Key(request.kind, texts);
    if (auto found = entries_.find(key); found != entries_.end())
        return {1, nullptr, &contracts_[found->second]};
    if (auto found = lists_.find(key); found != lists_.end()) return ListAnswer(found->second);
    return {};
}

}  // namespace Dravel::DevHost

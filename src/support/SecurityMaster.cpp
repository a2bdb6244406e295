#include "support/SecurityMaster.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <span>

#include "formatset/CsvLine.h"
#include "formatset/LetterCase.h"
#include "formatset/NumberText.h"

namespace Dravel {

namespace {

constexpr char kSeparator = '\x1F';

// The columns by their names in the first line; those in front must be there.
enum Column : std::size_t {
    Exchange,
    SecurityID,
    SecurityType,
    Symbol,
    Expiry,
    OptionType,
    Strike,
    DivisorKey
};
constexpr std::string_view kColumnNames[] = {"exchange", "securityid", "securitytype", "symbol",
                                             "expiry",   "optiontype", "strike",       "divisorkey"};
constexpr std::size_t kColumns = std::size(kColumnNames), kNeeded = Symbol + 1, kNotThere = SIZE_MAX;
using Places = std::array<std::size_t, kColumns>;
using Cells = std::vector<std::string_view>;

// Which kind is answered at which depth: by the texts that may come next, or by the contract itself.
struct KindRule {
    std::uint32_t kind;
    std::size_t depth;
    bool contract;
};
constexpr KindRule kKinds[] = {
    {master::Exchanges, 0, false}, {master::SecurityTypes, 1, false}, {master::Symbols, 2, false},
    {master::Expiries, 3, false},  {master::OptionTypes, 4, false},   {master::Strikes, 5, false},
    {master::Contract, 4, true},   {master::OptionContract, 6, true},
};
constexpr std::size_t kFutureDepth = 4,
                      kStrikePlace = 5;  // a contract without option type ends at its expiry

std::string Folded(std::string_view text) {
    std::string folded(text);
    LowerCase(folded);
    return folded;
}

template <std::size_t N>
bool Put(char (&into)[N], std::string_view text) {
    if (text.size() > N || text.find('\0') != text.npos) return false;
    std::copy_n(text.begin(), text.size(), into);
    return true;
}

template <std::size_t N>
std::string_view Get(const char (&from)[N]) {
    return {from, static_cast<std::size_t>(std::find(from, from + N, '\0') - from)};
}

bool ReadStrike(std::string_view text, double& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

// Strikes are the same when they are the same number, whatever way they are written.
std::string StrikeKey(std::string_view text) {
    double strike = 0;
    NumberBuffer buffer;
    return std::string(ReadStrike(text, strike) ? ShortestText(strike, buffer) : text);
}

bool FindColumns(const Cells& names, Places& places) {
    places.fill(kNotThere);
    for (std::size_t at = 0; at < names.size(); ++at) {
        for (std::size_t column = 0; column < kColumns; ++column) {
            const bool same = SameLetters(Trimmed(names[at]), kColumnNames[column]);
            if (same && places[column] == kNotThere) places[column] = at;
        }
    }
    return std::all_of(places.begin(), places.begin() + kNeeded,
                       [](std::size_t place) { return place != kNotThere; });
}

bool ReadEntry(const Cells& cells, const Places& places, SecurityMasterEntry& entry) {
    entry = {};
    const auto cell = [&](Column column) {
        const std::size_t at = places[column];
        return at < cells.size() ? Trimmed(cells[at]) : std::string_view();
    };
    for (const Column column : {Exchange, SecurityID, SecurityType, Symbol}) {
        if (cell(column).empty()) return false;
    }
    return Put(entry.exchange, cell(Exchange)) && Put(entry.securityID, cell(SecurityID)) &&
           Put(entry.securityType, cell(SecurityType)) && Put(entry.symbol, cell(Symbol)) &&
           Put(entry.expiryText, cell(Expiry)) && Put(entry.optionType, cell(OptionType)) &&
           Put(entry.divisorKey, cell(DivisorKey)) &&
           (cell(Strike).empty() || ReadStrike(cell(Strike), entry.strikePrice));
}

std::string IdentityKey(std::string_view exchange, std::string_view securityID) {
    return (Folded(exchange) += kSeparator) += Folded(securityID);
}

std::string_view TextOf(const MasterRequest& request, std::size_t at) {
    return request.texts[at] ? request.texts[at] : std::string_view();
}

MasterAnswer ListAnswer(const std::vector<const char*>& list) {
    if (list.empty()) return {};
    return {static_cast<std::uint32_t>(list.size()), list.data(), nullptr};
}

MasterAnswer ContractAnswer(const SecurityMasterEntry* contract) {
    if (!contract) return {};
    return {1, nullptr, contract};
}

}  // namespace

SecurityMasterLoad SecurityMaster::Load(IFiles& files, const std::filesystem::path& path) {
    using Outcome = SecurityMasterLoad::Outcome;
    std::unique_ptr<IFile> file;
    if (!files.Open(path, FileMode::Read, FileShare::DenyNone, file)) return {};
    CsvLines lines(*file);
    Cells cells;
    Places places;
    std::string_view line;
    SecurityMasterLoad load;
    if (lines.Next(line)) SplitCells(line, cells);
    load.outcome = FindColumns(cells, places) ? Outcome::Loaded : Outcome::NoMaster;
    if (load.outcome == Outcome::NoMaster) return load;

    std::size_t used = 0;  // cells of a line that matter
    for (const std::size_t place : places)
        used = place == kNotThere ? used : std::max(used, place + 1);
    SecurityMasterEntry entry;
    while (lines.Next(line)) {
        SplitCells(line, cells, used);
        const bool taken = contracts_.size() < kMaxContracts && ReadEntry(cells, places, entry);
        if (taken) Add(entry);
        taken ? ++load.contracts : ++load.passedOver;
    }
    if (lines.Failed()) load.outcome = Outcome::CutShort;
    return load;
}

SecurityMaster::Node& SecurityMaster::Enter(Node& node, std::string_view text) {
    std::unique_ptr<Node>& child = node.children[Folded(text)];
    if (child) return *child;
    child = std::make_unique<Node>();
    if (!text.empty()) node.next.push_back(texts_.emplace_back(text).c_str());
    return *child;
}

void SecurityMaster::Add(const SecurityMasterEntry& added) {
    const SecurityMasterEntry& entry = contracts_.emplace_back(added);
    NumberBuffer buffer;
    const std::string_view texts[] = {Get(entry.exchange),   Get(entry.securityType),
                                      Get(entry.symbol),     Get(entry.expiryText),
                                      Get(entry.optionType), ShortestText(entry.strikePrice, buffer)};
    const bool option = !texts[4].empty() && Folded(texts[1]).find("opt") != std::string::npos;
    Node* node = &root_;
    for (std::size_t i = 0; i < (option ? std::size(texts) : kFutureDepth); ++i)
        node = &Enter(*node, texts[i]);
    // Of two contracts with the same texts the first one counts.
    if (!node->contract) node->contract = &entry;
    byID_.try_emplace(IdentityKey(texts[0], Get(entry.securityID)), &entry);
}

void SecurityMaster::AddClient(std::string_view client) {
    clients_.push_back(texts_.emplace_back(client).c_str());
}

const SecurityMaster::Node* SecurityMaster::Find(const MasterRequest& request, std::size_t depth) const {
    const Node* node = &root_;
    for (std::size_t i = 0; node && i < depth; ++i) {
        const std::string_view text = TextOf(request, i);
        const auto found = node->children.find(i == kStrikePlace ? StrikeKey(text) : Folded(text));
        node = found == node->children.end() ? nullptr : found->second.get();
    }
    return node;
}

MasterAnswer SecurityMaster::Answer(const MasterRequest& request) const {
    if (request.kind == master::Clients) return ListAnswer(clients_);
    if (request.kind == master::ContractByID) {
        if (request.textCount != 2) return {};
        const auto found = byID_.find(IdentityKey(TextOf(request, 0), TextOf(request, 1)));
        return ContractAnswer(found == byID_.end() ? nullptr : found->second);
    }
    const auto rule = std::ranges::find(kKinds, request.kind, &KindRule::kind);
    if (rule == std::end(kKinds) || request.textCount != rule->depth) return {};
    const Node* const node = Find(request, rule->depth);
    if (!node) return {};
    return rule->contract ? ContractAnswer(node->contract) : ListAnswer(node->next);
}

}  // namespace Dravel

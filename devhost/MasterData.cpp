#include "MasterData.h"

#include <algorithm>
#include <fstream>
#include <span>

#include "Text.h"

namespace Dravel::DevHost {
namespace {

template <std::size_t N>
void Put(char (&into)[N], std::string_view text) {
    std::copy_n(text.begin(), std::min(text.size(), N), into);
}

}  // namespace

bool MasterData::LoadContracts(const std::filesystem::path& file) {
    return master_.Load(SystemFiles(), file).outcome == SecurityMasterLoad::Outcome::Loaded;
}

bool MasterData::LoadClients(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    for (std::string line; std::getline(in, line);) {
        const std::string_view client = Trim(line);
        if (!client.empty() && Upper(client) != "CLIENTID") master_.AddClient(client);
    }
    return true;
}

void MasterData::MakeContracts(std::uint32_t count) {
    constexpr std::uint32_t kStrikes = 100, kExpiries = 4;
    constexpr std::string_view kExpiryTexts[kExpiries] = {"26Dec2030", "30Jan2031", "27Feb2031", "27Mar2031"};
    for (std::uint32_t i = 0; i < count; ++i) {
        SecurityMasterEntry entry{};
        Put(entry.exchange, "NSEFO");
        Put(entry.securityID, NumberText(900000 + i));
        Put(entry.securityType, "OPTSTK");
        Put(entry.symbol, "MADE" + NumberText(i / (2 * kStrikes * kExpiries)));
        Put(entry.expiryText, kExpiryTexts[i / (2 * kStrikes) % kExpiries]);
        Put(entry.optionType, i % 2 ? "PE" : "CE");
        entry.strikePrice = 100 + 50 * (i / 2 % kStrikes);
        master_.Add(entry);
    }
}

void MasterData::SpoilScratch() {
    for (char& c : scratchTexts_)
        if (c) c = '?';
    spoiltTexts_.swap(scratchTexts_);
    scratchTexts_.clear();
    scratchList_.clear();
}

MasterAnswer MasterData::ScratchCopy(const MasterAnswer& answer) {
    std::vector<std::size_t> starts;
    for (const char* text : std::span(answer.list, answer.count)) {
        starts.push_back(scratchTexts_.size());
        scratchTexts_.append(text).push_back('\0');
    }
    for (std::size_t start : starts)
        scratchList_.push_back(scratchTexts_.data() + start);
    return {answer.count, scratchList_.data(), nullptr};
}

// The texts of a request may be those of the answer before: they are read before that one is spoilt.
MasterAnswer MasterData::Answer(const MasterRequest& request) {
    const char* const exchange = request.textCount > 0 && request.texts[0] ? request.texts[0] : nullptr;
    const std::string entry = "CTCL-" + std::string(exchange ? exchange : "");
    const char* const entries[] = {entry.c_str(), "CTCL-2"};
    MasterAnswer answer = master_.Answer(request);
    if (request.kind == master::CtclEntries && exchange) answer = {2, entries, nullptr};
    SpoilScratch();
    return answer.list ? ScratchCopy(answer) : answer;
}

}  // namespace Dravel::DevHost

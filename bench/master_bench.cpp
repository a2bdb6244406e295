// The security master file with 200,000 contracts: reading it, and the slowest request of each kind.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "support/SecurityMaster.h"

using namespace Dravel;

namespace {

constexpr int kContracts = 200000, kRequests = 2000;

using Clock = std::chrono::steady_clock;

double Microseconds(Clock::time_point begin) {
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

// Half of the contracts are shares with a symbol each, the other half options with 100 strikes an expiry.
std::string MasterText() {
    std::string text = "exchange,securityid,securitytype,symbol,expiry,optiontype,strike,divisorkey\n";
    for (int i = 0; i < kContracts; ++i) {
        const std::string id = std::to_string(i);
        text += i % 2 ? "NSE," + id + ",EQ,SHARE" + id + ",,,,\n"
                      : "NSEFO," + id + ",OPTSTK,SYM" + std::to_string(i / 800) + ",26Dec2030," +
                            (i % 4 ? "PE" : "CE") + ',' + std::to_string(100 + i / 4 % 100) + ",K\n";
    }
    return text;
}

// The limit of a request: one look-up in a hash map of as many entries.
double LookUpMicroseconds() {
    std::unordered_map<std::string, int> map;
    for (int i = 0; i < kContracts; ++i)
        map.emplace("NSEFO\x1F" + std::to_string(i), i);
    long found = 0;
    const auto begin = Clock::now();
    for (int i = 0; i < kRequests; ++i)
        found += map.find("NSEFO\x1F" + std::to_string(i * 97 % kContracts))->second;
    const double time = Microseconds(begin) / kRequests;
    return found > 0 ? time : 0;
}

}  // namespace

int main() {
    const auto path = std::filesystem::temp_directory_path() / "dravel-master-bench.csv";
    const std::string text = MasterText();
    std::ofstream(path, std::ios::binary) << text;

    auto begin = Clock::now();
    std::string read(text.size(), '\0');
    std::ifstream(path, std::ios::binary).read(read.data(), static_cast<std::streamsize>(read.size()));
    const double limit = Microseconds(begin);
    SecurityMaster master;
    begin = Clock::now();
    const auto load = master.Load(SystemFiles(), path);
    const double ours = Microseconds(begin);
    std::filesystem::remove(path);
    std::printf("reading %llu contracts: ours %.0f ms, limit %.1f ms, ratio %.0f (at most 400)\n",
                static_cast<unsigned long long>(load.contracts), ours / 1000, limit / 1000, ours / limit);

    const double lookUp = LookUpMicroseconds();
    const struct {
        std::uint32_t kind;
        std::vector<const char*> texts;
    } kRequestsOf[] = {
        {master::Exchanges, {}},
        {master::SecurityTypes, {"NSEFO"}},
        {master::Symbols, {"NSE", "EQ"}},
        {master::Expiries, {"NSEFO", "OPTSTK", "SYM100"}},
        {master::OptionTypes, {"NSEFO", "OPTSTK", "SYM100", "26Dec2030"}},
        {master::Strikes, {"NSEFO", "OPTSTK", "SYM100", "26Dec2030", "CE"}},
        {master::Contract, {"NSE", "EQ", "SHARE100001", ""}},
        {master::OptionContract, {"NSEFO", "OPTSTK", "SYM100", "26Dec2030", "CE", "150"}},
        {master::Clients, {}},
        {master::ContractByID, {"NSE", "199999"}},
    };
    for (const auto& [kind, texts] : kRequestsOf) {
        MasterRequest request{kind, static_cast<std::uint32_t>(texts.size()), {}};
        std::copy(texts.begin(), texts.end(), request.texts);
        double sum = 0, worst = 0;
        std::uint32_t count = 0;
        for (int i = 0; i < kRequests; ++i) {
            begin = Clock::now();
            count = master.Answer(request).count;
            const double time = Microseconds(begin);
            sum += time;
            worst = std::max(worst, time);
        }
        std::printf(
            "request %2u: %6u answers, %.2f us, slowest %.1f us (at most 1000), limit %.2f us, ratio %.1f "
            "(at most 20.0)\n",
            kind, count, sum / kRequests, worst, lookUp, sum / kRequests / lookUp);
    }
}

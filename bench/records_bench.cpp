// Frames and the record file against what the machine can do at best. One thread, 100,000 trades; each figure
// is the best of several rounds.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include "generator/TradeGenerator.h"
#include "message/FieldBytes.h"
#include "records/BookFile.h"

using namespace Dravel;

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kTrades = 100000;
constexpr int kRounds = 9;
// Work without the disk is timed by slices, each as its best round: short enough not to be interrupted every
// time.
constexpr std::size_t kSlice = 2500;

// Works on the trades [begin, end).
using Work = std::function<void(std::size_t begin, std::size_t end)>;

double Nanoseconds(const Work& work, std::size_t begin, std::size_t end) {
    const auto start = std::chrono::steady_clock::now();
    work(begin, end);
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

// Turn and turn about, so that what else the machine does hits both alike.
void Compare(const char* name, double atMost, std::size_t slice, const Work& ours, const Work& limit) {
    std::vector<double> best(kTrades / slice, 1e18), bestLimit = best;
    for (int round = 0; round < kRounds; ++round) {
        for (const auto& [work, times] : {std::pair(&limit, &bestLimit), std::pair(&ours, &best)}) {
            for (std::size_t i = 0; i < times->size(); ++i) {
                (*times)[i] = std::min((*times)[i], Nanoseconds(*work, i * slice, (i + 1) * slice));
            }
        }
    }
    const double mine = std::accumulate(best.begin(), best.end(), 0.0);
    const double least = std::accumulate(bestLimit.begin(), bestLimit.end(), 0.0);
    std::printf("%s: ours %.0f ns, limit %.0f ns, ratio %.2f (at most %.1f)\n", name, mine / kTrades,
                least / kTrades, mine / least, atMost);
}

struct NoLog final : ILog {
    void Line(LogLevel, std::string_view, std::string_view) override {}
};

struct Offsets {
    std::vector<std::uint8_t> bytes;
    std::vector<std::size_t> ends;
};

Offsets FramesOf(const std::vector<TradeRecord>& trades) {
    Offsets frames;
    frames.bytes.resize(trades.size() * kMaxTradeFrame);
    std::size_t end = 0;
    for (const TradeRecord& trade : trades) {
        end += BuildStoredTrade(trade, false, frames.bytes.data() + end);
        frames.ends.push_back(end);
    }
    frames.bytes.resize(end);
    return frames;
}

void CopyText(char* into, std::size_t capacity, const std::uint8_t*& at) {
    const auto length = wire::Get<std::uint16_t>(at);
    const std::size_t count = std::min<std::size_t>(length, capacity);
    std::memcpy(into, at + 2, count);
    if (count < capacity) into[count] = 0;
    at += 2 + length;
}
template <class T>
void CopyNumber(void* into, const std::uint8_t*& at) {
    std::memcpy(into, at, sizeof(T));
    at += sizeof(T);
}

// The limit of reading: a switch over the tags of a frame that is taken on trust, nothing checked, nothing
// hunted for.
void BareSwitch(const std::uint8_t* at, const std::uint8_t* end, TradeRecord& r) {
    at += 15;
    while (at < end) {
        const auto tag = wire::Get<std::uint16_t>(at + 1);
        at += 3;
        switch (tag) {
#define TEXT(tag_, member)                       \
    case tag_:                                   \
        CopyText(r.member, sizeof r.member, at); \
        break
#define NUMBER(tag_, member)                           \
    case tag_:                                         \
        CopyNumber<decltype(r.member)>(&r.member, at); \
        break
            TEXT(tag::ManagerID, managerID);
            TEXT(tag::ExchangeTradeTime, exchangeTradeTime);
            NUMBER(tag::OrderID, orderID);
            TEXT(tag::OrderTime, orderTime);
            TEXT(tag::ExchangeOrderTime, exchangeOrderTime);
            TEXT(tag::Exchange, exchange);
            TEXT(tag::SecurityID, securityID);
            TEXT(tag::SecurityType, securityType);
            TEXT(tag::Symbol, symbol);
            TEXT(tag::ExpiryDate, expiryDate);
            TEXT(tag::OptionType, optionType);
            NUMBER(tag::StrikePrice, strikePrice);
            TEXT(tag::Text55107, text55107);
            NUMBER(tag::Side, side);
            NUMBER(tag::OrderType, orderType);
            NUMBER(tag::Quantity, quantity);
            NUMBER(tag::PendingQuantity, pendingQuantity);
            NUMBER(tag::Value20036, value20036);
            NUMBER(tag::Price, price);
            NUMBER(tag::ProductType, productType);
            NUMBER(tag::OpenClose, openClose);
            TEXT(tag::ClientID, clientID);
            TEXT(tag::MemberID, memberID);
            TEXT(tag::CTCLID, ctclID);
            TEXT(tag::ReferenceText, referenceText);
            NUMBER(tag::Value20083, value20083);
            NUMBER(tag::Value20068, value20068);
            NUMBER(tag::Value20081, value20081);
            NUMBER(tag::Value20082, value20082);
            TEXT(tag::Text55151, text55151);
            NUMBER(tag::Value40008, value40008);
            NUMBER(tag::Value20101, value20101);
            TEXT(tag::TerminalInfo, terminalInfo);
            TEXT(tag::Pan, pan);
            TEXT(tag::Text55328, text55328);
            NUMBER(tag::Value11115, value11115);
            TEXT(tag::Text55329, text55329);
            TEXT(tag::UserID, userID);
            NUMBER(tag::VELTTradeID, veltTradeID);
            NUMBER(tag::VELTOrderID, veltOrderID);
            TEXT(tag::ExchangeTradeID, exchangeTradeID);
            TEXT(tag::ExchangeOrderNo, exchangeOrderNo);
            default:
                ++at;
#undef TEXT
#undef NUMBER
        }
    }
}

void BenchFrames(const std::vector<TradeRecord>& trades) {
    const Offsets frames = FramesOf(trades);
    const auto begins = [&](std::size_t i) { return i == 0 ? std::size_t{0} : frames.ends[i - 1]; };
    std::vector<std::uint8_t> into(frames.bytes.size() + kMaxTradeFrame);
    Compare(
        "build frames / copy their bytes", 3.5, kSlice,
        [&](std::size_t begin, std::size_t end) {
            std::size_t at = begins(begin);
            for (std::size_t i = begin; i < end; ++i) {
                at += BuildStoredTrade(trades[i], false, into.data() + at);
            }
        },
        [&](std::size_t begin, std::size_t end) {
            std::memcpy(into.data() + begins(begin), frames.bytes.data() + begins(begin),
                        begins(end) - begins(begin));
        });
    std::vector<TradeRecord> records(kTrades);
    Compare(
        "read frames, checked / bare switch over their tags", 1.6, kSlice,
        [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                CTagMessageReader reader(frames.bytes.data() + begins(i),
                                         static_cast<std::uint16_t>(frames.ends[i] - begins(i)));
                reader.Open();
                ReadStoredTrade(reader, records[i]);
            }
        },
        [&](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                BareSwitch(frames.bytes.data() + begins(i), frames.bytes.data() + frames.ends[i], records[i]);
            }
        });
}

void BenchDisk(const std::vector<TradeRecord>& trades) {
    const fs::path folder = fs::temp_directory_path() / "dravel-records-bench";
    fs::remove_all(folder);
    fs::create_directories(folder);
    NoLog log;
    BookFile file(SystemFiles(), SystemClock(), log, {folder, folder / "Backup", "Book"});
    if (!file.Acquire()) return;
    // As a dealer saves: again and again, into the memory of the save before.
    const auto memory = std::make_shared<ImageMemory>();
    const auto image = [&] {
        BookImage made(memory);
        for (const TradeRecord& trade : trades) {
            made.Append(trade);
        }
        return made;
    };
    const Offsets frames = FramesOf(trades);
    const auto write = [&](const void* bytes, std::size_t count) {
        std::unique_ptr<IFile> plain;
        SystemFiles().Open(folder / "plain", FileMode::Create, FileShare::DenyNone, plain);
        plain->Write(bytes, count);
        plain->Flush();
    };
    Compare(
        "save with flush / write ready bytes with flush", 1.4, kTrades,
        [&](std::size_t, std::size_t) { file.Save(image()); },
        [&](std::size_t, std::size_t) { write(frames.bytes.data(), frames.bytes.size()); });

    write(trades.data(), trades.size() * sizeof(TradeRecord));
    // Both into memory that nobody has touched before, as a terminal that starts must.
    const auto fresh = [&] { return std::make_unique_for_overwrite<TradeRecord[]>(trades.size()); };
    Compare(
        "load a book / fread as many record images", 1.2, kTrades,
        [&](std::size_t, std::size_t) {
            const auto loaded = fresh();
            std::size_t i = 0;
            file.LoadBook([&](const TradeRecord& trade, bool) { loaded[i++] = trade; });
            if (i != trades.size()) std::abort();
        },
        [&](std::size_t, std::size_t) {
            const auto loaded = fresh();
            std::FILE* plain = std::fopen((folder / "plain").string().c_str(), "rb");
            for (std::size_t i = 0; i < trades.size(); ++i) {
                if (std::fread(&loaded[i], sizeof(TradeRecord), 1, plain) != 1) std::abort();
            }
            std::fclose(plain);
        });
    file.Release();
    fs::remove_all(folder);
}

}  // namespace

int main() {
    std::vector<TradeRecord> trades(kTrades);
    TradeGenerator generator(1);
    for (TradeRecord& trade : trades) {
        generator.Fill(trade);
        trade.veltTradeID = static_cast<std::uint32_t>(&trade - trades.data()) + 1;
    }
    BenchFrames(trades);
    BenchDisk(trades);
    return 0;
}

// The record file: loading whole, cut and damaged files, and the dated backup.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "SourceFolder.h"
#include "message/FieldBytes.h"
#include "records/TradeFrame.h"
#include "support/BookRig.h"
#include "support/Frames.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

// A record file as the base describes it: stops at damage.
class PlainFile : public KRV::VELT::CKRVTradeImpl {
 public:
    using CKRVTradeImpl::CKRVTradeImpl;
};

struct Rig {
    FakeClock clock;
    FakeLog log;
    FaultFiles disk{clock};
    PlainFile file{disk, clock, log, {"Data", "Old", "Base"}};
    KRV::VELT::TradeLoadReport report;

    Trades Load(const FileBytes& bytes) {
        Trades trades;
        file.Close();
        disk.Put("Data/Base.ada", bytes);
        EXPECT_TRUE(file.Open(false));
        report = file.LoadInto([&](const TradeRecord& trade, bool) { trades.push_back(trade); });
        return trades;
    }
};

FileBytes Strays(std::size_t count, std::uint8_t byte = '#') {
    return FileBytes(count, byte);
}

}  // namespace

TEST(RecordFile, LoadsWhatItIsGiven) {
    Rig rig;
    EXPECT_TRUE(rig.Load({}).empty());
    EXPECT_TRUE(rig.report.Clean());
    const Trades trades = SomeTrades(3000);  // more than two blocks
    const FileBytes bytes = FramesOf(trades);
    EXPECT_TRUE(Same(rig.Load(bytes), trades));
    EXPECT_EQ(rig.file.LoadedBytes(), bytes.size());
    EXPECT_TRUE(rig.report.Clean());

    EXPECT_TRUE(
        Same(rig.Load(FramesOf(SomeTrades(5)) + Strays(100) + FramesOf(SomeTrades(5, 6))), SomeTrades(10)));
    EXPECT_EQ(rig.file.LoadedBytes(), FramesOf(SomeTrades(10)).size())
        << "strays are stepped over and not counted";
    EXPECT_EQ(rig.report.bytesPassedOver, 100u);

    CTagMessageWriter deflated(msg::StoredTrade, BodyEncoding::Deflated);
    WriteTradeFields(trades[0], deflated);
    EXPECT_TRUE(Same(rig.Load(Finished(deflated)), {trades[0]})) << "a deflated frame";
    EXPECT_EQ(rig.file.LoadedBytes(), 5 + FramesOf({trades[0]}).size() - 15 - 4) << "counts inflated";
}

TEST(RecordFile, StopsAtDamageButPassesOverFramesThatThrow) {
    Rig rig;
    const FileBytes head = FramesOf(SomeTrades(5)), tail = FramesOf(SomeTrades(5, 6));
    EXPECT_EQ(rig.Load(head + RawFrame({}, 7) + tail).size(), 5u) << "an unknown encoding";
    EXPECT_EQ(rig.report.bytesPassedOver, 10 + tail.size());
    EXPECT_EQ(rig.Load(head + Strays(70000) + tail).size(), 5u) << "more strays than one hunt covers";

    Trades taken;
    rig.file.Close();
    rig.disk.Put("Data/Base.ada", head + RawFrame(msg::TradeReport, {}));
    rig.file.Open(false);
    const auto report = rig.file.LoadInto([&](const TradeRecord& trade, bool) {
        if (trade.veltTradeID == 3) throw 3;
        taken.push_back(trade);
    });
    EXPECT_EQ(taken.size(), 4u);
    EXPECT_EQ(report.failedFrames, 1u);
    EXPECT_EQ(report.otherFrames, 1u) << "only stored trades become records";
    EXPECT_FALSE(report.Clean());
}

TEST(RecordFile, CutAnywhereItLosesTheCutFrameOnly) {
    const Trades trades = SomeTrades(12);
    const FileBytes bytes = FramesOf(trades);
    for (std::size_t length = 0, whole = 0, end = 0; length <= bytes.size(); ++length) {
        if (end == 0) end = FramesOf({trades[0]}).size();
        while (whole < trades.size() && length >= end) {
            if (++whole < trades.size()) end += FramesOf({trades[whole]}).size();
        }
        Rig rig;
        const FileBytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
        const Trades expected(trades.begin(), trades.begin() + static_cast<std::ptrdiff_t>(whole));
        ASSERT_TRUE(Same(rig.Load(cut), expected)) << length;
        ASSERT_TRUE(Same(TradesIn(cut), expected)) << length;
    }
}

// What a load makes of a book in which one trade is damaged: all others come back as they were, in their
// order, and when the damaged one does not come back the load says so.
struct DamagedBook {
    Trades trades;
    KRV::VELT::TradeLoadReport report = {};
    Trades loaded = {};

    std::size_t Begin(std::size_t trade) const {
        return FramesOf({trades.begin(), trades.begin() + static_cast<std::ptrdiff_t>(trade)}).size();
    }
    bool CostsAtMost(std::size_t hit, const FileBytes& damaged) {
        loaded = TradesIn(damaged, &report);
        std::size_t found = 0, from = 0;
        for (std::size_t i = 0; i < trades.size(); ++i) {
            std::size_t j = from;
            while (j < loaded.size() && !Same(loaded[j], trades[i]))
                ++j;
            if (j == loaded.size()) continue;
            from = j + 1;
            found += i != hit;
        }
        const bool lost = loaded.size() + report.deleted < trades.size();
        return found == trades.size() - 1 && loaded.size() <= trades.size() && !(lost && report.Clean());
    }
};

TEST(BookFile, EveryByteFlippedCostsOneTradeAtMost) {
    for (DamagedBook book : {DamagedBook{SomeTrades(4)}, DamagedBook{TradesOfOneLength(4)}}) {
        const FileBytes bytes = FramesOf(book.trades);
        std::size_t lost = 0;
        for (std::size_t at = 0, hit = 0; at < bytes.size(); ++at) {
            hit += at == book.Begin(hit + 1);
            for (const int mask : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xFF}) {
                FileBytes damaged = bytes;
                damaged[at] = static_cast<std::uint8_t>(damaged[at] ^ mask);
                ASSERT_TRUE(book.CostsAtMost(hit, damaged)) << "byte " << at << " by " << mask;
                lost += book.loaded.size() < book.trades.size();
            }
        }
        EXPECT_GT(lost, 0u) << "some flips must cost the trade they hit";
    }
}

TEST(BookFile, EveryWrongLengthCostsOneTradeAtMost) {
    for (DamagedBook book : {DamagedBook{SomeTrades(4)}, DamagedBook{TradesOfOneLength(4)}}) {
        FileBytes bytes = FramesOf(book.trades);
        const auto right = wire::Get<std::uint16_t>(&bytes[wire::kLengthOffset]);
        for (std::uint16_t length = 0; length <= bytes.size(); ++length) {
            if (length == right) continue;
            wire::Put(&bytes[wire::kLengthOffset], length);
            ASSERT_TRUE(book.CostsAtMost(0, bytes)) << length;
            ASSERT_FALSE(book.report.Clean()) << length;
            if (length < right || length + 10u > bytes.size()) continue;
            ASSERT_TRUE(Same(book.loaded, book.trades)) << length << ": what it swallowed is given back";
        }
    }
}

TEST(BookFile, AFrameCutShortCostsNoOtherTradeAndShowsNoHalfOne) {
    for (DamagedBook book : {DamagedBook{SomeTrades(4)}, DamagedBook{TradesOfOneLength(4)}}) {
        const FileBytes bytes = FramesOf(book.trades);
        const std::size_t begin = book.Begin(1), end = book.Begin(2);
        for (std::size_t cut = begin + 1; cut < end; ++cut) {
            FileBytes damaged(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut));
            damaged.insert(damaged.end(), bytes.begin() + static_cast<std::ptrdiff_t>(end), bytes.end());
            ASSERT_TRUE(book.CostsAtMost(1, damaged)) << cut - begin;
            ASSERT_FALSE(book.report.Clean()) << cut - begin;
            const bool kept = book.loaded.size() == book.trades.size();
            ASSERT_EQ(book.report.bytesPassedOver, kept || book.report.otherFrames ? 0 : cut - begin);
            ASSERT_TRUE(!kept || book.loaded[1].veltTradeID == 2) << cut - begin;
        }
    }
}

// The mark is this program's own: a frame may end without it, and in any byte.
TEST(BookFile, AWholeFrameOfAnotherWriterIsRead) {
    const FileBytes frame =
        RawFrame(msg::StoredTrade, {{7, {1}}, {tag::Quantity, Little(291u)}, {tag::ClientID, Text("C#")}});
    KRV::VELT::TradeLoadReport report;
    const Trades trades = TradesIn(frame + FramesOf(SomeTrades(1)), &report);
    ASSERT_EQ(trades.size(), 2u);
    EXPECT_TRUE(report.Clean());
    EXPECT_EQ(TextOf(trades[0].clientID), "C#");
    EXPECT_EQ(+trades[0].quantity, 291u);
}

TEST(BookFile, SalvagesBehindDamageOfAnyKind) {
    const FileBytes head = FramesOf(SomeTrades(5)), tail = FramesOf(SomeTrades(2000, 6));
    struct Case {
        const char* what;
        FileBytes damage;
        std::uint64_t passedOver;
    };
    FileBytes cutFrame = FramesOf(SomeTrades(1, 5000));
    cutFrame.resize(300);
    FileBytes cutOther = cutFrame;
    wire::Put(&cutOther[13], msg::TradeReport);
    FileBytes longFrame = RawFrame({});
    longFrame[8] = longFrame[9] = 0xFF;
    FileBytes headers;
    for (int i = 0; i < 20000; ++i)
        headers = std::move(headers) + RawFrame({}, 9);
    FileBytes openHeaders;
    for (int i = 0; i < 20000; ++i)
        openHeaders = std::move(openHeaders) + RawFrame(msg::StoredTrade, {});
    for (std::size_t at = wire::kLengthOffset; at < openHeaders.size(); at += 15)
        wire::Put(&openHeaders[at], std::uint16_t{65500});
    for (const Case& c : {
             Case{"unknown encoding", RawFrame({}, 7), 10},
             Case{"more strays than a block", Strays(1200000), 1200000},
             Case{"more strays than one hunt covers", Strays(70000, 0), 70000},
             Case{"a header that announces more than a frame can be", longFrame, 10},
             Case{"a flood of bad headers", headers, 200000},
             Case{"a flood of frames that swallow one another", openHeaders, 300000},
             Case{"a frame cut short", cutFrame, 300},
             Case{"a frame of another code cut short", cutOther, 0},
         }) {
        KRV::VELT::TradeLoadReport report;
        EXPECT_TRUE(Same(TradesIn(head + c.damage + tail, &report), SomeTrades(2005))) << c.what;
        EXPECT_EQ(report.bytesPassedOver, c.passedOver) << c.what;
    }
}

TEST(RecordFile, BackupRenamesAndGoesOnInAFreshFile) {
    Rig rig;
    rig.Load(FramesOf(SomeTrades(2)));
    EXPECT_EQ(rig.file.BackupStamp(true), "20210303_0905");
    EXPECT_EQ(rig.file.BackupStamp(false), "20210303");
    EXPECT_TRUE(rig.file.Backup()) << "the backup folder is made when it is missing";
    EXPECT_EQ(rig.disk.Content("Old/Base_20210303_0905.ada"), FramesOf(SomeTrades(2)));
    EXPECT_TRUE(rig.disk.Content("Data/Base.ada").empty());
    EXPECT_TRUE(rig.file.Append(SomeTrades(1)[0], false)) << "records go on into the fresh file";

    EXPECT_FALSE(rig.file.Backup()) << "the name of this minute is taken";
    EXPECT_TRUE(rig.log.Has("KRV::Base::CKRVFileImpl::Backup: Rename failed: "));
    EXPECT_EQ(rig.disk.Content("Data/Base.ada"), FramesOf(SomeTrades(1)));
    EXPECT_TRUE(rig.file.IsOpen());
}

TEST(RecordFile, OpensAnewOnlyWhatIsNotThere) {
    Rig rig;
    EXPECT_FALSE(rig.file.Open(false));
    EXPECT_FALSE(rig.file.Open(true)) << "the folder is missing";
    rig.disk.Put("Data/Base.ada", FramesOf(SomeTrades(2)));
    for (std::uint64_t operation = 1; operation <= 2; ++operation) {
        rig.disk.CountAnew();
        rig.disk.plan.failAt = operation;
        EXPECT_FALSE(rig.file.Open(true) && operation == 2);
        rig.disk.ClearPlan();
        EXPECT_FALSE(rig.disk.Content("Data/Base.ada").empty())
            << "a file that cannot be asked about is not emptied";
    }
}

// The dump in the format's description is a record file.
TEST(RecordFile, TheDescribedFileIsRead) {
    std::ifstream page(std::string(DRAVEL_SOURCE_DIR) + "/docs/formats.md");
    const std::string text{std::istreambuf_iterator<char>(page), {}};
    std::size_t at = text.find("```hex", text.find("### A file of one trade"));
    ASSERT_NE(at, std::string::npos);
    std::istringstream lines(text.substr(at, text.find("\n```\n", at) - at));
    FileBytes bytes;
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        EXPECT_EQ(std::stoul(line, nullptr, 16), bytes.size()) << line;
        std::istringstream digits(line.substr(line.find(':') + 1, line.find(';') - line.find(':') - 1));
        for (unsigned byte; digits >> std::hex >> byte;)
            bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    const Trades trades = TradesIn(bytes);
    ASSERT_EQ(trades.size(), 1u);
    EXPECT_EQ(TextOf(trades[0].symbol), "INFY");
    EXPECT_EQ(TextOf(trades[0].exchangeTradeID), "T-1");
    EXPECT_EQ(+trades[0].price, 1500.5);
    EXPECT_EQ(+trades[0].quantity, 10u);
    EXPECT_EQ(+trades[0].veltTradeID, 7u);
    EXPECT_EQ(FramesOf(trades), bytes);
}

// A book whose bytes are known: whatever becomes of its file outside, no untouched trade is missing and the
// dealer is told.
#include <gtest/gtest.h>

#include "message/FieldBytes.h"
#include "support/BookRig.h"
#include "support/FakeHost.h"
#include "support/Frames.h"
#include "tradebook/BookDamageText.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

constexpr std::string_view kBegins = "The book was changed or damaged outside Dravel";

// As a dealer types them.
Trades FiveTrades() {
    Trades trades(5);
    for (std::uint32_t i = 0; i < 5; ++i) {
        TradeRecord& trade = trades[i];
        trade.veltTradeID = trade.veltOrderID = 5 - i;
        SetText(trade.exchange, "NSE");
        SetText(trade.securityType, "EQ");
        SetText(trade.symbol, i % 2 ? "INFY" : "RELIANCE");
        SetText(trade.clientID, "C" + std::to_string(i));
        SetText(trade.exchangeTradeID, i == 3 ? "#" : "T-" + std::to_string(i));
        trade.side = 1;
        trade.quantity = 10 + i;
        trade.price = 1500.5 + i;
        trade.productType = 1;
    }
    return trades;
}

// A load of damaged bytes through file and book, as the bar does it.
struct Opening {
    BookRig rig;
    FakeHost host;
    TradeBook book{host};
    std::string said;

    Opening(const FileBytes& bytes, const FileBytes* sums) {
        if (sums) rig.disk.Put(kBookSums, *sums);
        rig.disk.Put(kBook, bytes);
        EXPECT_TRUE(rig.Start());
        book.BeginLoad();
        rig.report =
            rig.file->LoadBook([this](const TradeRecord& trade, bool deleted) { book.Load(trade, deleted); });
        book.EndLoad();
        if (const auto count = book.RenumberedTrades().size()) rig.file->TradesRenumbered(count);
        said = BookDamageText(rig.report, book);
    }
    // The row of a trade, which may have had to take another identifier; -1: it is missing.
    int RowOf(TradeRecord trade) const {
        for (std::uint32_t row = 0; row < book.RowCount(); ++row) {
            const std::uint32_t identifier = book.Row(row).veltTradeID;
            const bool renumbered = std::ranges::any_of(book.RenumberedTrades(), [&](const Renumbered& r) {
                return r.was == trade.veltTradeID && book.Record(r.item).veltTradeID == identifier;
            });
            TradeRecord as = trade;
            if (renumbered) as.veltTradeID = identifier;
            if (Same(book.Row(row), as)) return static_cast<int>(row);
        }
        return -1;
    }
};

struct Sound {
    Trades trades = FiveTrades();
    FileBytes bytes = FramesOf(trades), sums;
    std::vector<std::size_t> ends;

    Sound() {
        BookRig rig;
        EXPECT_TRUE(rig.Start() && rig.Save(trades) && rig.Start());
        sums = rig.disk.Content(kBookSums);
        for (std::size_t i = 1; i <= trades.size(); ++i)
            ends.push_back(
                FramesOf({trades.begin(), trades.begin() + static_cast<std::ptrdiff_t>(i)}).size());
    }
    std::size_t Begin(std::size_t trade) const { return trade == 0 ? 0 : ends[trade - 1]; }
};

// Of the bytes [from, to) something was done to: all trades beside them are there, in their order, and the
// user is told. Without sums he is told when a trade is missing, but for a cut between two of them.
void Expect(const Sound& sound, const FileBytes& damaged, std::size_t from, std::size_t to) {
    for (const FileBytes* sums : {&sound.sums, static_cast<const FileBytes*>(nullptr)}) {
        const Opening opening(damaged, sums);
        int above = -1;
        std::size_t there = 0;
        for (std::size_t i = 0; i < sound.trades.size(); ++i) {
            const int row = opening.RowOf(sound.trades[i]);
            const bool touched = from < sound.ends[i] && to > sound.Begin(i);
            there += row >= 0;
            if (touched) continue;
            ASSERT_GT(row, above) << "trade in line " << i + 1 << (sums ? " with" : " without") << " sums";
            above = row;
        }
        ASSERT_LE(opening.book.RowCount(), sound.trades.size());
        const bool cutBetween = std::ranges::count(sound.ends, damaged.size()) > 0 || damaged.empty();
        if (!sums && (opening.book.RowCount() == sound.trades.size() || cutBetween)) continue;
        ASSERT_TRUE(opening.said.starts_with(kBegins));
        if (!sums) continue;
        ASSERT_LE(opening.rig.report.savedFound, there);
        // What is shown and was never saved stands in the list.
        ASSERT_LE(opening.book.RowCount() - there, opening.rig.report.listed.size());
    }
}

}  // namespace

TEST(BookDamage, EveryBitFlippedIsToldAndCostsNoOtherTrade) {
    const Sound sound;
    for (std::size_t bit = 0; bit < 8 * sound.bytes.size(); ++bit) {
        SCOPED_TRACE(bit);
        FileBytes damaged = sound.bytes;
        damaged[bit / 8] = static_cast<std::uint8_t>(damaged[bit / 8] ^ (1u << bit % 8));
        ASSERT_NO_FATAL_FAILURE(Expect(sound, damaged, bit / 8, bit / 8 + 1));
    }
}

TEST(BookDamage, EveryByteRemovedOrPutInAndEveryCutIsToldAndCostsNoOtherTrade) {
    const Sound sound;
    for (std::size_t at = 0; at < sound.bytes.size(); ++at) {
        SCOPED_TRACE(at);
        const auto here = static_cast<std::ptrdiff_t>(at);
        FileBytes damaged(sound.bytes.begin(), sound.bytes.begin() + here);
        ASSERT_NO_FATAL_FAILURE(Expect(sound, damaged, at, sound.bytes.size())) << "cut";
        damaged = sound.bytes;
        damaged.erase(damaged.begin() + here);
        ASSERT_NO_FATAL_FAILURE(Expect(sound, damaged, at, at + 1)) << "removed";
        for (const std::uint8_t byte : {0x00, 0x23, 0xFF}) {
            damaged = sound.bytes;
            damaged.insert(damaged.begin() + here, byte);
            ASSERT_NO_FATAL_FAILURE(Expect(sound, damaged, at, at)) << "put in " << int(byte);
        }
    }
}

namespace {

// A frame as this program writes it, put together field by field, so that one can be left out or changed.
FileBytes FrameWith(const TradeRecord& trade, tag::Tag changed, const std::function<FileBytes(Field)>& to) {
    const FileBytes frame = FramesOf({trade});
    CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
    EXPECT_TRUE(reader.Open().opened);
    FileBytes body = RawField(tag::MessageCode, Little(msg::StoredTrade));
    for (const Field& field : Walk(reader).fields) {
        body = body + (field.tag == changed ? to(field) : RawField(field.tag, field.value));
    }
    return RawFrame(body);
}
FileBytes Left(const Field&) {
    return {};
}

}  // namespace

// What tells damage where no sums do, and what does not.
TEST(BookDamage, KindsOfDamage) {
    const Sound sound;
    const TradeRecord& trade = sound.trades[2];
    const auto zerosFrom = [&](tag::Tag first, std::size_t end) {
        FileBytes frame = FramesOf({trade});
        const FileBytes mark = FileBytes{'#'} + Little(first);
        const auto at = std::search(frame.begin(), frame.end(), mark.begin(), mark.end());
        std::fill(at, end == 0 ? frame.end() : at + static_cast<std::ptrdiff_t>(end), std::uint8_t{0});
        return frame;
    };
    FileBytes shortFrame = FramesOf({trade}), flagged = shortFrame;
    wire::Put(&shortFrame[wire::kLengthOffset], std::uint16_t{13});
    flagged.back() = 2;
    using namespace damage;
    const struct {
        const char* what;
        FileBytes frame;
        Kinds kinds;
        bool shown;
    } cases[] = {
        {"no identifier", FrameWith(trade, tag::VELTTradeID, Left), NoIdentifier, true},
        {"identifier 0",
         FrameWith(trade, tag::VELTTradeID, [](Field f) { return RawField(f.tag, Little(0u)); }),
         NoIdentifier, true},
        {"identifier out of range",
         FrameWith(trade, tag::VELTTradeID, [](Field f) { return RawField(f.tag, Little(0x80000000u)); }),
         NoIdentifier, true},
        {"no mark", FrameWith(trade, tag::DeletedMark, Left), NoDeletedMark, true},
        {"deleted", FrameWith(trade, tag::DeletedMark, [](Field f) { return RawField(f.tag, {1}); }),
         MarkedDeleted, false},
        {"a mark that is none", flagged, Torn, true},
        {"the end zeroed from the price on", zerosFrom(tag::Price, 0), Torn | NotShown, false},
        {"the price zeroed", zerosFrom(tag::Price, 11), Torn, true},
        {"a length of 13", shortFrame, Torn | NotShown, false},
        {"a text longer than it can be",
         FrameWith(trade, tag::ClientID, [](Field f) { return RawField(f.tag, FileBytes(21, 'x')); }), Torn,
         true},
        {"bytes behind the last text",
         FrameWith(trade, tag::ExchangeOrderNo,
                   [](Field f) {
                       return RawField(f.tag, {}) + FileBytes{'A', 'B'};
                   }),
         Torn, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const FileBytes above = FramesOf({sound.trades[0], sound.trades[1]}),
                        below = FramesOf({sound.trades[3], sound.trades[4]});
        Opening opening(above + c.frame + below, nullptr);
        EXPECT_EQ(opening.book.RowCount(), c.shown ? 5u : 4u);
        ASSERT_EQ(opening.rig.report.damagedFrames, 1u);
        const DamagedFrame& found = opening.rig.report.listed[0];
        EXPECT_EQ(found.line, 3u);
        EXPECT_EQ(int(found.kinds), int(c.kinds));
        EXPECT_EQ(found.identifier, c.kinds & (NoIdentifier | NotShown) ? 0u : +trade.veltTradeID);
        EXPECT_TRUE(opening.rig.log.Has("Damaged frames, line/trade: 3/"));
        ASSERT_TRUE(opening.rig.Save(sound.trades));
        EXPECT_EQ(opening.rig.Backups().size(), 1u);
    }
}

TEST(BookDamage, AnotherProgramsFramesAreNoDamage) {
    const FileBytes other = RawFrame(
        msg::StoredTrade, {{tag::Quantity, Little(10u)}, {tag::ClientID, FileBytes(30, 0)}, {7, {1}}});
    for (const FileBytes& bytes :
         {other + other, FramesOf(FiveTrades()) + other, other + FramesOf(FiveTrades())}) {
        Opening opening(bytes, nullptr);
        EXPECT_TRUE(opening.rig.report.Clean());
        EXPECT_EQ(opening.said, "");
        EXPECT_EQ(opening.book.RowCount(), bytes.size() == 2 * other.size() ? 2u : 6u);
    }
    // Filled up with zeros it is shown, and told.
    FileBytes filled = other + FileBytes(9, 0);
    wire::Put(&filled[wire::kLengthOffset], static_cast<std::uint16_t>(filled.size() - wire::kHeaderSize));
    Opening opening(filled, nullptr);
    EXPECT_EQ(opening.book.RowCount(), 1u);
    EXPECT_TRUE(opening.said.starts_with(kBegins));
}

TEST(BookDamage, WhatTheUserReads) {
    const Sound sound;
    Trades trades = sound.trades;
    trades[1].quantity = 99;
    trades[3].veltTradeID = 1;
    FileBytes bytes = FramesOf({trades[0], trades[1]}) + FileBytes(3, '?') + FramesOf({trades[3], trades[4]});
    EXPECT_EQ(
        Opening(bytes, &sound.sums).said,
        "The book was changed or damaged outside Dravel. Every trade that could be read is shown; please "
        "check the book.\n"
        "\nLine 2, trade 4: not as it was saved\n"
        "Line 3, trade 1: not as it was saved\n"
        "\nTwo trades had the identifier 1; the upper one now has 6.\n"
        "\nOf 5 saved trades the file holds 2 as saved.\n"
        "3 bytes of the file could not be read as trades.\n"
        "\nBefore the next save the file is kept as it is now, in Dravel's folder as\n"
        "Data\\Backup\\DravelBook_Dravel_<date>_<time>.ada");
    const Opening many(FramesOf(SomeTrades(102, 10)), &sound.sums);
    EXPECT_NE(many.said.find("Line 100, trade 109: "), std::string::npos);
    EXPECT_NE(many.said.find("\n... and 2 more lines, all in the log\n"), std::string::npos);
    EXPECT_EQ(many.said.find("Line 101"), std::string::npos);
    EXPECT_TRUE(many.rig.log.Has(" 102/111 not as saved;"));
    EXPECT_EQ(Opening(sound.bytes, &sound.sums).said, "");
}

// Sums that do not check themselves accuse nobody and are made anew by the next save.
TEST(BookSums, DamagedOrMissingOnesAreNotBelieved) {
    const Sound sound;
    Trades other = sound.trades;
    other[1].quantity = 99;
    const FileBytes changed = FramesOf(other);
    for (std::size_t at = 0; at < sound.sums.size(); ++at) {
        FileBytes flipped = sound.sums;
        flipped[at] ^= 0x10;
        const FileBytes cut(sound.sums.begin(), sound.sums.begin() + static_cast<std::ptrdiff_t>(at));
        for (const FileBytes& sums : {flipped, cut}) {
            Opening opening(changed, &sums);
            ASSERT_TRUE(opening.rig.report.Clean()) << at;
            ASSERT_TRUE(opening.rig.log.Has("The sums are damaged and not believed"));
            ASSERT_TRUE(opening.rig.Save(sound.trades) && opening.rig.Start());
            ASSERT_EQ(opening.rig.disk.Content(kBookSums), sound.sums);
        }
    }
    EXPECT_FALSE(Opening(changed, nullptr).rig.log.Has("sums"));
}

// Another program holds the sums for as long as it likes: the book is saved, known, and never accused.
TEST(BookSums, HeldByAnotherProgramTheyCostNothing) {
    BookRig rig;
    ASSERT_TRUE(rig.Start() && rig.Save(SomeTrades(1)) && rig.Start());
    rig.disk.HoldOpen(kBookSums, true);
    for (const std::size_t count : {2u, 3u, 4u, 5u}) {
        ASSERT_TRUE(rig.Save(SomeTrades(count)));
        if (count % 2) {
            EXPECT_TRUE(Same(rig.Reopen(), SomeTrades(count)));
            EXPECT_TRUE(rig.report.Clean());
        }
        FileBytes bytes = FramesOf(SomeTrades(count));
        bytes.back() = 1;
        BookRig later;
        later.disk.TakeFrom(rig.disk);
        later.disk.Put(kBook, bytes);
        later.Reopen();
        EXPECT_FALSE(later.report.asSaved);
        EXPECT_EQ(later.report.savedFound, count - 1);
    }
    rig.disk.HoldOpen(kBookSums, false);
    rig.Reopen();
    EXPECT_TRUE(rig.report.Clean());
    EXPECT_EQ(rig.disk.Names(), rig.NamesOfAnOpenBook());
}

// As a second terminal shows the book of the first, which goes on saving.
TEST(BookSums, WhoOnlyLooksOnAccusesNobodyAndLeavesThemAlone) {
    BookRig rig;
    ASSERT_TRUE(rig.Start() && rig.Save(SomeTrades(3)));
    const auto second = rig.Make();
    ASSERT_TRUE(second->Open(false, FileMode::Read, FileMode::Create, FileShare::DenyNone));
    const auto names = rig.disk.Names();
    EXPECT_TRUE(second->LoadBook([](const TradeRecord&, bool) {}).Clean());
    EXPECT_EQ(rig.disk.Names(), names);
}

TEST(BookSums, ThatFindNoRoomDoNotFailTheSaveAndLeaveNoneThatMislead) {
    for (std::size_t room = 0; room < SumsBytes(SomeTrades(2)); ++room) {
        BookRig rig;
        ASSERT_TRUE(rig.Start() && rig.Save(SomeTrades(1)) && rig.Start());
        rig.disk.plan.bytesLeft = FramesOf(SomeTrades(2)).size() + room;
        ASSERT_TRUE(rig.Save(SomeTrades(2)));
        rig.disk.ClearPlan();
        EXPECT_FALSE(rig.disk.Has(kBookSums));
        EXPECT_TRUE(rig.log.Has("the book is saved without: the disk is full."));
        ASSERT_TRUE(Same(rig.Reopen(), SomeTrades(2)));
        ASSERT_TRUE(rig.report.Clean());
    }
}

// Another program writes the file of a running book.
TEST(BookChangedOutside, IsKeptAndToldOnce) {
    const FileBytes theirs = FramesOf(SomeTrades(4, 50)), mine = FramesOf(SomeTrades(3));
    const struct {
        const char* what;
        FileBytes bytes;
        std::int64_t later;
    } cases[] = {{"another length", theirs, 0}, {"another time", mine, 60}, {"emptied", {}, 5}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        BookRig rig;
        ASSERT_TRUE(rig.Start() && rig.Save(SomeTrades(3)));
        rig.Reopen();
        EXPECT_FALSE(rig.file->Save(ImageOf(SomeTrades(3))).foundChanged) << "nobody did anything";
        rig.clock.now += c.later;
        rig.disk.Put(kBook, c.bytes);
        rig.disk.HoldOpen(kBook, true);
        ASSERT_FALSE(rig.Save(SomeTrades(5)));
        rig.disk.HoldOpen(kBook, false);
        const SaveResult result = rig.file->Save(ImageOf(SomeTrades(5)));
        ASSERT_TRUE(result.ok && result.foundChanged);
        if (c.bytes.empty()) {
            EXPECT_TRUE(result.backup.empty() && rig.Backups().empty());
        } else {
            ASSERT_EQ(rig.Backups(), std::vector{result.backup});
            EXPECT_EQ(rig.disk.Content("Data/Backup/" + result.backup), c.bytes);
        }
        EXPECT_FALSE(rig.file->Save(ImageOf(SomeTrades(6))).foundChanged);
    }
}

TEST(BookChangedOutside, WhileASaveWaitsForTheOtherProgram) {
    BookRig rig;
    ASSERT_TRUE(rig.Start() && rig.Save(SomeTrades(3)));
    rig.disk.HoldOpen(kBook, true);
    const FileBytes theirs = FramesOf(SomeTrades(4, 50));
    rig.clock.sleeping = [&] { rig.disk.Put(kBook, theirs); };
    const SaveResult result = rig.file->Save(ImageOf(SomeTrades(5)));
    EXPECT_TRUE(result.ok && result.foundChanged);
    EXPECT_EQ(rig.disk.Content("Data/Backup/" + result.backup), theirs);
}

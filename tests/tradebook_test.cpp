// The book keeps its map, rows, keys, counter and flag in step, and tells the terminal of each trade once.
#include "tradebook/TradeBook.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "message/TagMessageReader.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"
#include "records/CodeTables.h"
#include "records/RecordText.h"
#include "support/FakeClock.h"
#include "support/FakeHost.h"
#include "support/PlainKey.h"
#include "tradebook/GridProperties.h"
#include "tradebook/base/RememberedAnswers.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {

namespace fake = Test;

namespace {

TradeRecord Trade(std::string_view symbol, std::string_view exchangeTradeID, std::uint32_t id = 0) {
    TradeRecord record{};
    SetText(record.symbol, symbol);
    SetText(record.exchangeTradeID, exchangeTradeID);
    record.veltTradeID = id;
    record.side = side::Buy;
    record.quantity = 10;
    return record;
}

class BookTest : public testing::Test, protected IBookObserver {
 protected:
    BookTest() { book.SetObserver(this); }
    void RowAddedOnTop() override { ++added; }
    void RowsReset() override { ++resets; }
    void RowEdited(TradeItem item) override { events += "edited " + std::to_string(item) + " "; }
    void RowsRemoved(std::span<const std::uint32_t> rows, std::span<const TradeItem> items) override {
        events += "removed ";
        for (std::size_t i = 0; i < rows.size(); ++i)
            events += std::to_string(rows[i]) + ":" + std::to_string(items[i]) + " ";
    }
    void RowMoved(std::uint32_t from, std::uint32_t to) override {
        events += "moved " + std::to_string(from) + " " + std::to_string(to) + " ";
    }
    void ChangedFlagSet(bool changed) override { flags += changed ? '+' : '-'; }
    void BatchBegins() override {}
    void BatchEnds() override {}

    void Load(std::initializer_list<std::pair<TradeRecord, bool>> frames) {
        book.BeginLoad();
        for (const auto& [record, deleted] : frames)
            book.Load(record, deleted);
        book.EndLoad();
    }
    std::string Symbols() const {
        std::string all;
        for (std::uint32_t row = 0; row < book.RowCount(); ++row)
            all += std::string(TextOf(book.Row(row).symbol)) + " ";
        return all;
    }

    std::vector<msg::Code> Codes() const {
        std::vector<msg::Code> codes;
        for (const fake::Frame& frame : host.sent)
            codes.push_back(frame.code);
        return codes;
    }

    fake::FakeHost host;
    fake::FakeClock clock;
    TradeBook book{host, clock};
    int added = 0, resets = 0;
    std::string flags, events;
};

TEST_F(BookTest, ANewTradeTakesTheNextIdentifierStandsOnTopAndIsReportedOnce) {
    TradeRecord first = Trade("A", "1"), second = Trade("B", "2");
    second.orderID = 77;
    EXPECT_EQ(book.Add(first), 1);
    EXPECT_EQ(book.Add(second), 2);
    EXPECT_EQ(Symbols(), "B A ");
    EXPECT_EQ(+book.Row(1).orderID, 0u) << "nobody gave it one";
    EXPECT_EQ(+book.Row(0).orderID, 77u);
    EXPECT_EQ(+book.Row(0).veltOrderID, 2u);
    EXPECT_EQ(Codes(), (std::vector<msg::Code>{msg::TradeReport, msg::TradeReport}));
    EXPECT_EQ(added, 2);
    EXPECT_EQ(flags, "+");
    EXPECT_EQ(book.Totals().bought, 20u);
}

TEST_F(BookTest, AnalysisOnlyKeepsTheTradeAndReportsNothing) {
    book.SetAnalysisOnly(true);
    TradeRecord record = Trade("A", "1");
    book.Add(record);
    EXPECT_EQ(book.RowCount(), 1u);
    EXPECT_TRUE(Codes().empty());
}

TEST_F(BookTest, ATradeFromTheHostKeepsItsIdentifierAndIsReportedTwice) {
    TradeRecord own = Trade("A", "1", 40), nameless = Trade("B", "2");
    book.AddFromHost(own);
    book.AddFromHost(nameless);
    EXPECT_EQ(+book.Row(1).veltTradeID, 40u);
    EXPECT_EQ(+book.Row(0).veltTradeID, 41u);
    EXPECT_EQ(+book.Row(0).veltOrderID, 41u);
    EXPECT_EQ(Codes(), (std::vector<msg::Code>{msg::TradeReport, msg::SecondTradeReport, msg::TradeReport,
                                               msg::SecondTradeReport}));
    TradeRecord again = Trade("C", "3", 40);
    book.AddFromHost(again);
    EXPECT_EQ(book.RowCount(), 3u) << "a trade whose identifier is taken is a trade all the same";
    EXPECT_EQ(+book.Row(0).veltTradeID, 42u);
}

TEST_F(BookTest, LoadingKeepsTheOrderAndReportsNothing) {
    Load({{Trade("C", "3", 9), false}, {Trade("B", "2", 4), false}, {Trade("A", "1", 2), false}});
    EXPECT_EQ(Symbols(), "C B A ");
    EXPECT_EQ(book.Counter(), 9u);
    EXPECT_TRUE(Codes().empty());
    EXPECT_FALSE(book.Changed());
    EXPECT_EQ(resets, 1);
    TradeRecord next = Trade("D", "4");
    EXPECT_EQ(book.Add(next), 10);
    EXPECT_EQ(Symbols(), "D C B A ");
}

TEST_F(BookTest, DifferentFramesWithOneIdentifierAreTwoTradesAndEqualOnesAreOne) {
    Load({{Trade("A", "1", 5), false},
          {Trade("B", "2", 6), false},
          {Trade("A2", "7", 5), false},
          {Trade("B", "2", 6), true},
          {Trade("A2", "7", 5), false},
          {Trade("Far", "8", 2000000), false},
          {Trade("Far2", "9", 2000000), false}});
    EXPECT_EQ(Symbols(), "A A2 Far Far2 ");
    EXPECT_EQ(+book.Row(1).veltTradeID, 5u) << "the later one keeps it";
    EXPECT_EQ(+book.Row(3).veltTradeID, 2000000u);
    EXPECT_EQ(+book.Row(2).veltTradeID, 2000001u);
    EXPECT_EQ(+book.Row(0).veltTradeID, 2000002u);
    for (std::uint32_t row = 0; row < book.RowCount(); ++row) {
        EXPECT_EQ(&book.Find(static_cast<std::int32_t>(book.Row(row).veltTradeID))->record, &book.Row(row));
    }
    EXPECT_TRUE(book.HolderOf(Trade("A", "1")) && book.HolderOf(Trade("A2", "7")));
    EXPECT_FALSE(book.HolderOf(Trade("B", "2"))) << "the later mark counts";
    ASSERT_EQ(book.RenumberedTrades().size(), 2u);
    EXPECT_EQ(book.RenumberedTrades()[0].was, 5u);
    EXPECT_EQ(+book.Record(book.RenumberedTrades()[0].item).veltTradeID, 2000002u);
}

TEST_F(BookTest, NamelessStoredTradesGetIdentifiersThatNobodyHolds) {
    Load({{Trade("A", "1"), false}, {Trade("B", "2", 0x80000000u), false}, {Trade("C", "3", 1), false}});
    EXPECT_EQ(+book.Row(2).veltTradeID, 1u);
    EXPECT_EQ(+book.Row(1).veltTradeID, 2u);
    EXPECT_EQ(+book.Row(0).veltTradeID, 3u) << "the newest keeps the largest";
}

TEST_F(BookTest, TheLargestIdentifierDoesNotEndTheBook) {
    Load({{Trade("A", "1", 0x7FFFFFFFu), false}, {Trade("B", "2", 1), false}});
    TradeRecord next = Trade("C", "3");
    EXPECT_EQ(book.Add(next), 2);
    EXPECT_EQ(+book.Find(2)->record.veltTradeID, 2u);
    TradeRecord third = Trade("D", "4", 3), fourth = Trade("E", "5");
    book.AddFromHost(third);
    EXPECT_EQ(book.Add(fourth), 4) << "the search goes on where it ended";
}

TEST_F(BookTest, AKeyIsMadeOfTheTextsAsTheRecordHoldsThem) {
    TradeRecord record = Trade(std::string(40, 'S'), "1");
    book.Add(record);
    EXPECT_TRUE(book.HolderOf(Trade(std::string(32, 'S'), "1")));
    EXPECT_FALSE(book.HolderOf(Trade(std::string(31, 'S'), "1")));
    EXPECT_FALSE(book.HolderOf(Trade(std::string(32, 'S') + "|1", "")));
    TradeRecord joined = Trade("X", "9|8"), apart = Trade("X|9", "8");
    book.Add(joined);
    EXPECT_TRUE(book.HolderOf(apart)) << "what is joined alike is one key";
}

// Trades that name their contract by exchange and SecurityID alone.
class ContractTest : public BookTest {
 protected:
    static TradeRecord Bare(const char* identifier, const char* trade) {
        TradeRecord record = Trade("", trade);
        SetText(record.exchange, "NSE");
        SetText(record.securityID, identifier);
        return record;
    }
    SecurityMasterEntry& Contract() {
        SecurityMasterEntry& entry = host.Identify("NSE", "7");
        SetText(entry.securityType, "OPTIDX"), SetText(entry.symbol, "IND50");
        SetText(entry.expiryText, "26Feb2026"), SetText(entry.optionType, "CE");
        entry.strikePrice = 24000.5;
        return entry;
    }
    // The texts that the record has of its own, as frames carry them.
    static std::string Own(const TradeRecord& record) {
        std::string text;
        for (const std::string_view part :
             {TextOf(record.exchange), TextOf(record.securityID), TextOf(record.securityType),
              TextOf(record.symbol), TextOf(record.expiryDate), TextOf(record.optionType)})
            text.append(part) += '|';
        return text + std::to_string(record.strikePrice);
    }
    int Asked() { return host.asked[master::ContractByID]; }
    static constexpr const char* kWhole = "NSE|7|OPTIDX|IND50|26Feb2026|CE|24000.500000";
};

TEST_F(ContractTest, EmptyTextsAreFilledWhenATradeEnters) {
    Contract();
    TradeRecord fromHost = Bare("7", "1"), imported = Bare("7", "2"), added = Bare("7", "3");
    book.AddFromHost(fromHost);
    book.AddUnlessHeld(imported, {});
    book.Add(added);
    for (std::uint32_t row = 0; row < 3; ++row)
        EXPECT_EQ(Own(book.Row(row)), kWhole);
    EXPECT_TRUE(book.HolderOf(Trade("IND50", "1"))) << "its key is that of its contract";
    std::string symbol;
    for (const fake::Field& field : host.sent.at(0).fields) {
        if (field.tag == tag::Symbol) symbol.assign(field.value.begin(), field.value.end());
    }
    EXPECT_EQ(symbol, "IND50");
    // What names another contract is left as it is: no contract is made of two.
    TradeRecord other = Bare("7", "4");
    SetText(other.symbol, "BNK12");
    book.AddFromHost(other);
    EXPECT_EQ(Own(book.Row(0)), "NSE|7||BNK12|||0.000000");
}

TEST_F(ContractTest, StoredTradesAreFilledBeforeASaveWithoutFlagOrReport) {
    const SecurityMasterEntry& entry = Contract();
    TradeRecord stored = Bare("7", "1");
    stored.security = &entry;
    Load({{stored, false}, {Trade("A", "2", 9), false}, {stored, true}});
    book.FillFromContracts();
    EXPECT_EQ(Own(book.Row(0)), kWhole);
    EXPECT_TRUE(book.HolderOf(Trade("IND50", "1")));
    EXPECT_FALSE(book.HolderOf(Trade("", "1")));
    EXPECT_EQ(events, "edited 0 ");
    EXPECT_FALSE(book.Changed());
    EXPECT_TRUE(host.sent.empty());
    EXPECT_EQ(book.Totals().bought, 20u);
    book.FillFromContracts();
    EXPECT_EQ(events, "edited 0 ") << "nothing is left to fill";
}

TEST_F(ContractTest, WhatHadNoAnswerIsAskedForAgain) {
    const TradeRecord bare = Bare("7", "1");
    const auto found = [&] { return book.Securities().Find(bare) != nullptr; };
    TradeRecord trade = bare;
    EXPECT_FALSE(found());
    book.Add(trade);
    EXPECT_EQ(Asked(), 1) << "within the same second";
    clock.ticks += 999;
    EXPECT_FALSE(found());
    EXPECT_EQ(Asked(), 1);
    clock.ticks += 1;
    EXPECT_FALSE(found());
    EXPECT_EQ(Asked(), 2);
    book.Securities().AskAgain();
    EXPECT_FALSE(found());
    EXPECT_EQ(Asked(), 3);
    // The terminal has read its master: the trades that are there get their contract, too.
    const SecurityMasterEntry& entry = Contract();
    events.clear(), flags.clear(), host.sent.clear();
    book.FindContracts();
    EXPECT_EQ(+book.Row(0).security, &entry);
    EXPECT_EQ(Own(book.Row(0)), kWhole);
    EXPECT_EQ(events + flags, "edited 0 ");
    EXPECT_TRUE(host.sent.empty());
    EXPECT_EQ(Asked(), 4);
    clock.ticks += 100000;
    book.FindContracts();
    EXPECT_TRUE(found());
    EXPECT_EQ(Asked(), 4) << "an answer is remembered";
}

// Whatever comes while the terminal is asked.
TEST_F(ContractTest, TradesComeAndGoWhileContractsAreFound) {
    for (const char* trade : {"1", "2", "3"}) {
        TradeRecord record = Bare(trade, trade);
        book.Add(record);
    }
    int asked = 0;
    host.onAsk = [&] {
        if (++asked != 1) return;
        TradeRecord inner = Trade("A", "9");
        book.AddFromHost(inner);
        const TradeItem items[] = {0, 1};
        book.Delete(items);
    };
    for (const char* identifier : {"1", "2", "3"})
        SetText(host.Identify("NSE", identifier).symbol, identifier);
    book.FindContracts();
    EXPECT_EQ(Symbols(), "A 3 ");
    EXPECT_EQ(+book.Find(1)->record.security, nullptr) << "it was deleted meanwhile";
}

// The terminal hands over a trade while it is asked for the contract of another one.
class AskedInBetweenTest : public BookTest {
 protected:
    AskedInBetweenTest() {
        host.onAsk = [this] {
            host.onAsk = nullptr;
            book.AddFromHost(inner);
        };
    }
    static TradeRecord Of(const char* identifier, const char* trade, std::uint32_t id = 0) {
        TradeRecord record = Trade("A", trade, id);
        SetText(record.exchange, "NSE");
        SetText(record.securityID, identifier);
        return record;
    }
    TradeRecord inner = Of("A-longer-identifier", "2"), outer = Of("1", "1");
};

TEST_F(AskedInBetweenTest, EachTradeGetsItsOwnContract) {
    const SecurityMasterEntry &own = host.Identify("NSE", "1"),
                              &other = host.Identify("NSE", "A-longer-identifier");
    book.Add(outer);
    ASSERT_EQ(book.RowCount(), 2u);
    EXPECT_EQ(+book.Row(0).security, &own);
    EXPECT_EQ(+book.Row(1).security, &other);
}

TEST_F(AskedInBetweenTest, NoTwoTradesShareAnIdentifier) {
    inner.veltTradeID = 1;
    book.Add(outer);
    ASSERT_EQ(book.RowCount(), 2u);
    EXPECT_NE(+book.Row(0).veltTradeID, +book.Row(1).veltTradeID);
}

TEST_F(AskedInBetweenTest, AKeyThatCameMeanwhileIsHeld) {
    inner = Of("A-longer-identifier", "1", 7);
    EXPECT_EQ(book.AddUnlessHeld(outer, {}), 7u);
    EXPECT_EQ(book.RowCount(), 1u);
}

TEST_F(AskedInBetweenTest, ATradeThatWentMeanwhileIsNotChanged) {
    TradeRecord record = Trade("A", "1");
    book.Add(record);
    const TradeItem item = book.ItemAt(0);
    host.onAsk = [&] { book.Delete(std::span(&item, 1)); };
    EXPECT_FALSE(book.Edit(item, outer));
    EXPECT_EQ(book.RowCount(), 0u);
    EXPECT_EQ(book.Totals().bought, 0u);
}

TEST_F(BookTest, ReportAllGoesUpTheIdentifiers) {
    Load({{Trade("C", "3", 7), false}, {Trade("A", "1", 2), false}, {Trade("B", "2", 5), false}});
    book.ReportAll();
    std::string symbols;
    for (const fake::Frame& frame : host.sent) {
        for (const fake::Field& field : frame.fields) {
            if (field.tag == tag::Symbol) symbols.append(field.value.begin(), field.value.end());
        }
    }
    EXPECT_EQ(symbols, "ABC");
}

// A terminal that hands over a trade while it is being told of one.
TEST_F(BookTest, AReportMayBringATradeIn) {
    int depth = 0;
    host.onSend = [&] {
        if (depth++ > 0) return;
        TradeRecord inner = Trade("INNER", "2");
        book.AddFromHost(inner);
    };
    TradeRecord outer = Trade("OUTER", "1");
    EXPECT_EQ(book.Add(outer), 1);
    EXPECT_EQ(Symbols(), "INNER OUTER ");
    EXPECT_EQ(+book.Find(2)->record.veltTradeID, 2u);
}

// Five trades A to E with the identifiers 1 to 5, E on top.
class FilledBookTest : public BookTest {
 protected:
    FilledBookTest() {
        for (const char* symbol : {"A", "B", "C", "D", "E"}) {
            TradeRecord record = Trade(symbol, symbol);
            book.Add(record);
        }
        book.SetChanged(false);
        host.sent.clear();
        flags.clear();
    }
    // Rows and items find each other, and the keys are those of the rows.
    void Check() {
        for (std::uint32_t row = 0; row < book.RowCount(); ++row) {
            EXPECT_EQ(book.RowOf(book.ItemAt(row)), row);
            EXPECT_TRUE(book.HolderOf(book.Row(row)));
        }
    }
};

TEST_F(FilledBookTest, DeletedTradesLeaveRowsKeysAndTotalsAndKeepTheirMark) {
    const TradeItem b = book.ItemOf(2), d = book.ItemOf(4);
    EXPECT_EQ(book.Delete(std::vector<TradeItem>{b, d, b, 77}), 2u);
    Check();
    EXPECT_EQ(Symbols(), "E C A ");
    EXPECT_EQ(events, "removed 1:3 3:1 ");
    EXPECT_EQ(book.Totals().bought, 30u);
    EXPECT_FALSE(book.HolderOf(Trade("B", "B")));
    EXPECT_EQ(book.Find(2)->deleted, 1);
    EXPECT_EQ(book.RowOf(b), kNoBookRow);
    EXPECT_EQ(flags, "+");
    EXPECT_EQ(Codes(), (std::vector<msg::Code>{msg::TradeReport, msg::SecondTradeReport, msg::TradeReport,
                                               msg::SecondTradeReport}));
    EXPECT_EQ(book.Delete(std::vector<TradeItem>{b}), 0u) << "gone is gone";
    EXPECT_FALSE(book.Edit(b, Trade("B", "B")));
    TradeRecord next = Trade("F", "F");
    EXPECT_EQ(book.Add(next), 6) << "the identifiers of deleted trades stay taken";
    EXPECT_EQ(Symbols(), "F E C A ");
    Check();
}

TEST_F(FilledBookTest, AnEditedTradeKeepsItsIdentifierAndChangesItsKeyAndTotals) {
    TradeRecord changed = Trade("X", "9", 77);
    changed.side = side::Sell;
    changed.quantity = 7;
    EXPECT_TRUE(book.Edit(book.ItemOf(3), changed));
    Check();
    EXPECT_EQ(Symbols(), "E D X B A ");
    EXPECT_EQ(+book.Find(3)->record.veltTradeID, 3u);
    EXPECT_FALSE(book.HolderOf(Trade("C", "C")));
    EXPECT_EQ(book.Totals().bought, 40u);
    EXPECT_EQ(book.Totals().sold, 7u);
    EXPECT_EQ(events, "edited 2 ");
    EXPECT_EQ(flags, "+");
    EXPECT_EQ(Codes(), std::vector<msg::Code>{msg::TradeReport});
}

TEST_F(FilledBookTest, AMovedRowChangesTheOrderAndNothingElse) {
    book.MoveRow(0, 3);
    EXPECT_EQ(Symbols(), "D C B E A ");
    Check();
    book.MoveRow(4, 0);
    book.MoveRow(2, 1);
    EXPECT_EQ(Symbols(), "A C D B E ");
    Check();
    book.MoveRow(0, 5);
    book.MoveRow(9, 0);
    book.MoveRow(2, 2);
    EXPECT_EQ(events, "moved 0 3 moved 4 0 moved 2 1 ");
    EXPECT_EQ(flags, "") << "moving is no change that asks to be saved";
    EXPECT_TRUE(Codes().empty());
    TradeRecord next = Trade("F", "F");
    book.Add(next);
    EXPECT_EQ(Symbols(), "F A C D B E ");
    Check();
}

// What the book is, without any cleverness: rows from the top down.
struct PlainBook {
    std::vector<TradeRecord> rows;
    std::multiset<std::string> keys;
    std::map<std::uint32_t, bool> deleted;  // by identifier
    std::size_t reports = 0, secondReports = 0;

    void Enter(const TradeRecord& trade) { keys.insert(PlainKey(trade)); }
    void Leave(const TradeRecord& trade) { keys.erase(keys.find(PlainKey(trade))); }
    std::uint64_t Quantity(std::uint8_t code) const {
        std::uint64_t sum = 0;
        for (const TradeRecord& trade : rows)
            sum += trade.side == code ? +trade.quantity : 0u;
        return sum;
    }
};

TEST_F(BookTest, TenThousandRandomOperationsAgreeWithAPlainBook) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t n) { return static_cast<std::uint32_t>(random() % n); };
    const auto someTrade = [&] {
        TradeRecord trade = Trade("S" + std::to_string(below(5)), std::to_string(below(300)));
        trade.side = static_cast<std::uint8_t>(below(4));
        trade.quantity = below(1000);
        return trade;
    };
    PlainBook plain;
    Load({});
    for (int step = 0; step < 10000; ++step) {
        book.SetChanged(false);
        const bool any = !plain.rows.empty();
        const std::uint32_t row = any ? below(plain.rows.size()) : 0;
        switch (any ? below(6) : 0) {
            case 0:
            case 1:
            case 2: {
                TradeRecord trade = someTrade();
                const bool fromHost = below(4) == 0;
                fromHost ? book.AddFromHost(trade) : book.Add(trade);
                plain.rows.insert(plain.rows.begin(), trade);
                plain.deleted[+trade.veltTradeID] = false;
                plain.Enter(trade);
                ++plain.reports, plain.secondReports += fromHost;
                break;
            }
            case 3: {
                TradeRecord trade = someTrade();
                ASSERT_TRUE(book.Edit(book.ItemAt(row), trade));
                trade.veltTradeID = plain.rows[row].veltTradeID;
                plain.Leave(plain.rows[row]);
                plain.Enter(plain.rows[row] = trade);
                ++plain.reports;
                break;
            }
            case 4: {
                const TradeItem item = book.ItemAt(row);
                ASSERT_EQ(book.Delete(std::vector{item, item}), 1u);
                ASSERT_FALSE(book.Edit(item, someTrade()));
                plain.deleted[+plain.rows[row].veltTradeID] = true;
                plain.Leave(plain.rows[row]);
                plain.rows.erase(plain.rows.begin() + row);
                ++plain.reports, ++plain.secondReports;
                break;
            }
            default: {
                const std::uint32_t to = below(plain.rows.size());
                book.MoveRow(row, to);
                const TradeRecord moved = plain.rows[row];
                plain.rows.erase(plain.rows.begin() + row);
                plain.rows.insert(plain.rows.begin() + to, moved);
                ASSERT_FALSE(book.Changed());
                book.SetChanged(true);
            }
        }
        ASSERT_TRUE(book.Changed());
        ASSERT_EQ(book.RowCount(), plain.rows.size());
        const TradeRecord probe = someTrade();
        ASSERT_EQ(book.HolderOf(probe) != 0, plain.keys.contains(PlainKey(probe)));
        if (step % 20 != 0) continue;
        ASSERT_EQ(book.Totals().bought, plain.Quantity(side::Buy));
        ASSERT_EQ(book.Totals().sold, plain.Quantity(side::Sell));
        if (step % 100 != 0) continue;
        for (std::uint32_t i = 0; i < plain.rows.size(); ++i) {
            ASSERT_EQ(+book.Row(i).veltTradeID, +plain.rows[i].veltTradeID) << i;
            ASSERT_EQ(+book.Row(i).quantity, +plain.rows[i].quantity) << i;
            ASSERT_EQ(book.RowOf(book.ItemAt(i)), i);
        }
        for (const auto& [identifier, gone] : plain.deleted)
            ASSERT_EQ(book.Find(static_cast<std::int32_t>(identifier))->deleted != 0, gone) << identifier;
    }
    EXPECT_EQ(host.Sent(msg::TradeReport).size(), plain.reports);
    EXPECT_EQ(host.Sent(msg::SecondTradeReport).size(), plain.secondReports);
}

TEST(DuplicateKeysTest, AgreesWithAListOfHoldersForEachKey) {
    std::mt19937 random(7);
    TradeStore store;
    DuplicateKeys keys(store);
    std::map<std::string, std::vector<TradeStore::Slot>> holders;
    for (int step = 0; step < 20000; ++step) {
        const TradeRecord record =
            Trade(std::string(1, char('A' + random() % 5)), std::to_string(random() % 40));
        auto& of = holders[PlainKey(record)];
        const TradeStore::Slot found = keys.Find(DuplicateKey(record));
        if (of.empty()) {
            ASSERT_EQ(found, DuplicateKeys::kNone);
        } else {
            ASSERT_NE(std::find(of.begin(), of.end(), found), of.end());
        }
        if (of.empty() || random() % 9 < 4) {
            of.push_back(store.Add(record));
            keys.Enter(of.back(), DuplicateKey(record));
        } else {
            const auto goes = of.begin() + static_cast<std::ptrdiff_t>(random() % of.size());
            keys.Remove(*goes);
            keys.Remove(*goes);  // it is not there any more
            of.erase(goes);
        }
    }
}

TEST(GridPropertiesTest, MissingValuesKeepWhatIsThereAndNonsenseIsIgnored) {
    CVELTPXMLSettings settings;
    settings.CreateKey("TradeGrid");
    settings.WriteInteger("EnableBuy", 1);
    settings.WriteColour("BuyColor", 0x123456);
    settings.WriteInteger("ColumnFreeze", 11);
    GridProperties properties;
    properties.tradeForGreekAnalysisOnly = true;
    EXPECT_TRUE(properties.Load(settings, "TradeGrid"));
    EXPECT_EQ(properties.columnFreeze, 0);
    EXPECT_FALSE(properties.tradeForGreekAnalysisOnly) << "a missing value clears this one";

    TradeRecord record = Trade("A", "1");
    EXPECT_EQ(properties.StyleOf(record).background, 0x123456u);
    EXPECT_EQ(properties.StyleOf(record).text, kDefaultColour);
    record.side = 3;
    EXPECT_EQ(properties.StyleOf(record).background, kDefaultColour) << "the sell switch is off";
    properties.enableSell = true;
    EXPECT_EQ(properties.StyleOf(record).background, kSellColour)
        << "all that is no buy takes the sell colours";
}

TEST(RememberedAnswersTest, AnAnswerBelongsToItsCaptionAndText) {
    CVELTPXMLSettings settings;
    RememberedAnswers answers(settings);
    answers.Remember("Dravel Import ", "Go on?\nReally?", 6);
    EXPECT_EQ(answers.Find("Dravel Import ", "Go on?\nReally?"), 6u);
    EXPECT_FALSE(answers.Find("Dravel Import ", "Go on?").has_value());
    EXPECT_FALSE(answers.Find("Dravel", "Go on?\nReally?").has_value());
}

}  // namespace
}  // namespace Dravel

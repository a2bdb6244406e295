// Typing trades: a fixture that types cells and shows what became of the row.
#include "entry/TradeEntry.h"

#include <gtest/gtest.h>

#include "entry/Entry.h"
#include "message/Tags.h"
#include "support/FakeClock.h"
#include "support/FakeHost.h"
#include "support/FakeLog.h"
#include "support/FakeUser.h"
#include "support/FaultFiles.h"
#include "support/NoReports.h"
#include "support/OuterCall.h"

namespace Dravel {
namespace {

using Test::FakeClock;
using Test::FakeHost;
using Test::FakeLog;
using Test::FakeUser;
using Test::FaultFiles;
using Test::NoReports;
using Strings = std::vector<std::string>;

class Entering : public testing::Test, protected IUiThread, protected IDraftView {
 protected:
    Entering() {
        host.Offer(master::Exchanges, {}, {"XNSE", "XBSE"});
        host.Offer(master::SecurityTypes, {"XNSE"}, {"INDEX", "FUTIDX", "OPTIDX", "EQUITY"});
        host.Offer(master::Symbols, {"XNSE", "INDEX"}, {"IND50"});
        host.Offer(master::Symbols, {"XNSE", "FUTIDX"}, {"IND50", "BNK12"});
        host.Offer(master::Symbols, {"XNSE", "OPTIDX"}, {"IND50"});
        host.Offer(master::Expiries, {"XNSE", "FUTIDX", "IND50"}, {"26Feb2026", "26Mar2026"});
        host.Offer(master::Expiries, {"XNSE", "OPTIDX", "IND50"}, {"26Feb2026"});
        host.Offer(master::OptionTypes, {"XNSE", "OPTIDX", "IND50", "26Feb2026"}, {"CE", "PE"});
        host.Offer(master::Strikes, {"XNSE", "OPTIDX", "IND50", "26Feb2026", "CE"}, {"24000", "24000.5"});
        host.Offer(master::CtclEntries, {"XNSE"}, {"CTCL-1", "CTCL-2"});
        host.Know({"XNSE", "INDEX", "IND50", ""});
        host.Know({"XNSE", "FUTIDX", "IND50", "26Feb2026"});
        host.Know({"XNSE", "OPTIDX", "IND50", "26Feb2026", "CE", "24000.5"});
        book.BeginLoad();
        book.EndLoad();
    }

    // Types a text into a cell and ends its edit.
    EditEnd Type(int column, std::string_view text, EditEnding ending = EditEnding::Key) {
        said.clear();
        return entry.EndEdit(*draft, column, text, ending, *this);
    }
    // A trade of the book, and a draft over it.
    TradeItem Stored() {
        TradeRecord stored{};
        stored.side = 1, stored.quantity = 10, stored.price = 5;
        SetText(stored.exchange, "XNSE"), SetText(stored.securityType, "FUTIDX");
        SetText(stored.symbol, "IND50"), SetText(stored.expiryDate, "26Feb2026");
        const TradeItem item = book.ItemOf(book.Add(stored));
        draft = &sheet.LayOver(item);
        host.sent.clear();
        return item;
    }
    void TypeAll(std::initializer_list<std::pair<int, std::string_view>> cells) {
        for (const auto& [column, text] : cells)
            last = Type(column, text);
    }
    std::string Cell(int column) {
        std::string text;
        DraftCell(*draft, book, column, text);
        return text;
    }
    Strings Choices(int column, std::string_view typed = {}) {
        Strings choices;
        entry.Choices(*draft, column, typed, choices);
        return choices;
    }
    std::size_t Reports(std::uint16_t code) const { return host.Sent(code).size(); }
    void RunPosted() {
        for (const auto& work : std::exchange(posted, {}))
            work();
    }

    void Post(std::function<void()> work) override { posted.push_back(std::move(work)); }
    void ShowColumn(int column) override { shown.push_back(column); }
    void DraftChanged(const TradeDraft&) override {}
    void Say(std::string sentence) override { said = std::move(sentence); }
    void DraftEntered(TradeDraft& entered, TradeItem item) override {
        sheet.Remove(entered);
        draft = nullptr;
        became = item;
    }
    void GoTo(std::uint32_t draftID, int column) override {
        if (sheet.Find(draftID)) went.push_back(column);
    }
    bool Holds(std::uint32_t draftID) const override { return open && sheet.Find(draftID); }
    bool HasCurrentCell() const override { return open && (draft != nullptr || !selected.empty()); }
    std::vector<TradeItem> SelectedItems() const override { return selected; }
    bool RemoveCurrentDraft() override {
        sheet.Remove(*std::exchange(draft, nullptr));
        return true;
    }
    void TakeKeyboard() override {}

    bool open = true;  // the grid's window is there
    FakeHost host;
    FakeUser user;
    TradeBook book{host};
    TradeEntry entry{host, user, book, *this};
    DraftSheet sheet;
    TradeDraft* draft = &sheet.AddOnTop();
    TradeItem became = kNoItem;
    EditEnd last{};
    std::string said;
    std::vector<int> shown, went;
    std::vector<TradeItem> selected;
    std::vector<std::function<void()>> posted;
};

TEST_F(Entering, AFutureGoesCellByCellIntoTheBook) {
    EXPECT_EQ(Choices(column::Exchange), (Strings{"XNSE", "XBSE"}));
    Type(column::Exchange, "xnse");
    EXPECT_EQ(Cell(column::Exchange), "XNSE");
    EXPECT_EQ(Cell(column::CTCLID), "CTCL-1");
    EXPECT_EQ(Cell(column::ProductType) + Cell(column::OrderType) + Cell(column::OpenClose), "CCELimitNONE");
    EXPECT_EQ(entry.NextColumn(*draft, column::Exchange), column::SecurityType);
    const int asked = host.asked[master::SecurityTypes];
    EXPECT_EQ(Choices(column::SecurityType).size(), 4u);
    EXPECT_EQ(host.asked[master::SecurityTypes], asked) << "the end of the exchange asked already";
    TypeAll({{column::SecurityType, "fut"}, {column::Symbol, "IND50"}, {column::ExpiryDate, "26FEB2026"}});
    EXPECT_EQ(Cell(column::SecurityType), "FUTIDX");
    EXPECT_EQ(Cell(column::SecurityID), "ID2");
    EXPECT_EQ(shown,
              (std::vector<int>{column::SecurityType, column::Symbol, column::ExpiryDate, column::ClientID}));
    EXPECT_EQ(entry.NextColumn(*draft, column::ExpiryDate), column::ClientID);
    TypeAll({{column::ClientID, "C1"}, {column::Side, "b"}, {column::Quantity, "50"}});
    EXPECT_EQ(last, EditEnd::Kept);
    EXPECT_EQ(entry.Missing(*draft), "Still to be filled: Price");
    EXPECT_EQ(entry.NextColumn(*draft, column::Quantity), column::Price);
    EXPECT_EQ(Type(column::Price, "21.5"), EditEnd::Committed);
    ASSERT_EQ(book.RowCount(), 1u);
    const TradeRecord& trade = book.Row(0);
    EXPECT_EQ(+trade.veltTradeID, 1u);
    EXPECT_EQ(trade.side, 1);
    EXPECT_EQ(+trade.quantity, 50u);
    EXPECT_EQ(+trade.price, 21.5);
    EXPECT_EQ(+trade.productType, 0u) << "CCE is no product type";
    EXPECT_EQ(Reports(msg::TradeReport), 1u);
    EXPECT_EQ(Reports(msg::SecondTradeReport), 0u);
    EXPECT_TRUE(sheet.Empty());
    EXPECT_TRUE(book.Changed());
}

TEST_F(Entering, AnOptionIsFoundByItsStrikeAsANumber) {
    TypeAll({{column::Exchange, "XNSE"}, {column::SecurityType, "OPTIDX"}, {column::Symbol, "IND50"}});
    EXPECT_EQ(entry.NextColumn(*draft, column::Symbol), column::ExpiryDate);
    TypeAll({{column::ExpiryDate, "26Feb2026"}, {column::OptionType, "c"}});
    EXPECT_EQ(entry.NextColumn(*draft, column::OptionType), column::StrikePrice);
    EXPECT_EQ(Type(column::StrikePrice, "24000.50"), EditEnd::Kept);
    EXPECT_EQ(Cell(column::StrikePrice), "24000.5");
    EXPECT_EQ(Cell(column::SecurityID), "ID3");
    // Another symbol lets go of all that hung on the old one.
    Type(column::Symbol, "");
    for (const int column : {column::ExpiryDate, column::OptionType, column::StrikePrice, column::SecurityID})
        EXPECT_EQ(Cell(column), "") << column;
    EXPECT_EQ(Cell(column::SecurityType), "OPTIDX");
}

TEST_F(Entering, AnIndexHasNoExpiry) {
    TypeAll({{column::Exchange, "XNSE"}, {column::SecurityType, "index"}, {column::Symbol, "ind50"}});
    EXPECT_EQ(host.asked[master::Expiries], 0);
    EXPECT_EQ(Cell(column::SecurityID), "ID1");
    EXPECT_EQ(entry.NextColumn(*draft, column::Symbol), column::ClientID);
}

TEST_F(Entering, WhatTheTerminalDoesNotOfferIsRefusedAndFreeWhereItOffersNothing) {
    EXPECT_EQ(Type(column::Exchange, "X"), EditEnd::Refused) << "two begin so";
    EXPECT_EQ(Type(column::Exchange, "NOWHERE"), EditEnd::Refused);
    EXPECT_EQ(Cell(column::Exchange), "");
    EXPECT_EQ(Type(column::VELTTradeID, "7"), EditEnd::Refused) << "read-only";
    TypeAll({{column::Exchange, "XBSE"}, {column::SecurityType, "ANY"}, {column::Symbol, "THING"}});
    EXPECT_EQ(Cell(column::Symbol), "THING");
    EXPECT_EQ(entry.NextColumn(*draft, column::Symbol), column::ExpiryDate);
}

TEST_F(Entering, ListsOfSideAndProductGoWithATextThatTheCellDoesNotSay) {
    EXPECT_EQ(Choices(column::Side), (Strings{"Buy", "Sell"}));
    EXPECT_EQ(Choices(column::ProductType), (Strings{"CCE", "MME"}));
    EXPECT_TRUE(Choices(column::Side, "b").empty());
    Type(column::Side, "sell");
    EXPECT_EQ(Cell(column::Side), "Sell");
    EXPECT_EQ(Choices(column::Side, "s").size(), 2u);
    EXPECT_TRUE(Choices(column::Side, "se").empty()) << "upper-cased it is not in the cell";
    EXPECT_TRUE(Choices(column::Quantity).empty());
}

TEST_F(Entering, QuantityZeroSpeaksAndNothingElseDoes) {
    TypeAll({{column::Side, "Buy"}, {column::Quantity, "50"}});
    EXPECT_EQ(last, EditEnd::Kept);
    TypeAll({{column::Price, "1"}});
    EXPECT_EQ(last, EditEnd::Committed) << "a contract is not asked for";
    draft = &sheet.AddOnTop();
    TypeAll({{column::Side, "Buy"}, {column::Price, "1"}});
    for (const char* quantity : {"0", "none", "-5"}) {
        TypeAll({{column::Quantity, quantity}});
        EXPECT_EQ(last, EditEnd::Spoken) << quantity;
        EXPECT_TRUE(user.boxes.empty()) << "posted, not shown within the edit";
        RunPosted();
        EXPECT_EQ(user.boxes, Strings{"Error|Qty 0 is not allow"});
        EXPECT_EQ(went, std::vector<int>{column::Quantity});
        user.boxes.clear();
        went.clear();
    }
    Type(column::Quantity, "0");
    sheet.Remove(*draft);
    RunPosted();
    EXPECT_TRUE(went.empty()) << "the row is gone";
    EXPECT_EQ(book.RowCount(), 1u);
}

// What a cell would take only in part is asked about once, given back to who left, taken when asked again.
TEST_F(Entering, ATextThatWouldBeTakenInPartIsAskedTwice) {
    const std::string client = "ALD1007-0123456789-0123456789";
    const struct {
        int column;
        std::string text, readAs, cell;
    } cases[] = {
        {column::Quantity, "12,5", "12", "12"},
        {column::Quantity, "1.5k", "1", "1"},
        {column::Quantity, "99999999999", "0", "0"},
        {column::Price, "abc", "0", "0"},
        {column::Price, "2,45", "2", "2"},
        {column::OrderID, "A7", "0", "0"},
        {column::PendingQuantity, "7 lots", "7", "7"},
        {column::Side, "Purchase", "none", "Purchase"},
        {column::OrderType, "limit", "none", "limit"},
        {column::ProductType, "CNC", "none", "CNC"},
        {column::OpenClose, "OPEN", "none", "OPEN"},
        {column::ClientID, client, client.substr(0, 20), client.substr(0, 20)},
    };
    for (const auto& c : cases) {
        const std::string read = '"' + c.text + "\" would be read as " + c.readAs;
        EXPECT_EQ(Type(c.column, c.text), EditEnd::Asked) << c.text;
        EXPECT_EQ(said, read + ". Enter again to take it, Escape to go back.");
        EXPECT_EQ(Cell(c.column), "");
        EXPECT_EQ(Type(c.column, c.text, EditEnding::Left), EditEnd::GivenBack) << c.text;
        EXPECT_EQ(said, read + " and was not taken.");
        EXPECT_EQ(Cell(c.column), "");
        EXPECT_EQ(Type(c.column, c.text, EditEnding::KeyAgain), EditEnd::Kept) << c.text;
        EXPECT_EQ(Cell(c.column), c.cell);
        // What stands there already is no new text.
        EXPECT_EQ(Type(c.column, c.cell, EditEnding::Left), EditEnd::Kept) << c.text;
        draft = &sheet.AddOnTop();
    }
    for (const auto& [column, text] : {std::pair(column::ProductType, "cce"),
                                       {column::ProductType, "*"},
                                       {column::OpenClose, "NONE"},
                                       {column::OrderType, "MIT"},
                                       {column::Side, "s"},
                                       {column::Quantity, "none"}}) {
        EXPECT_EQ(Type(column, text), EditEnd::Kept) << text;
    }
}

TEST_F(Entering, GroupsOfDigitsAreTakenOut) {
    TypeAll({{column::Side, "Buy"}, {column::Quantity, "1,00,000"}, {column::Price, "2,450.50"}});
    EXPECT_EQ(last, EditEnd::Committed);
    EXPECT_EQ(+book.Row(0).quantity, 100000u);
    EXPECT_EQ(+book.Row(0).price, 2450.5);
    draft = &sheet.AddOnTop();
    TypeAll({{column::Exchange, "XNSE"}, {column::SecurityType, "OPTIDX"}, {column::Symbol, "IND50"}});
    TypeAll({{column::ExpiryDate, "26Feb2026"}, {column::OptionType, "CE"}});
    EXPECT_EQ(Type(column::StrikePrice, "24,000.50x"), EditEnd::Refused);
    EXPECT_EQ(Type(column::StrikePrice, "24000.50x"), EditEnd::Asked) << "its number is one of the choices";
    EXPECT_EQ(Type(column::StrikePrice, "24,000.50"), EditEnd::Kept);
    EXPECT_EQ(Cell(column::StrikePrice) + Cell(column::SecurityID), "24000.5ID3");
}

// Every column that may be changed, over a trade of the book, is in the book and reported at once.
TEST_F(Entering, EveryCellChangedOverATradeEntersAtOnce) {
    const TradeItem item = Stored();
    for (int column = 0; column < column::Count; ++column) {
        const auto& described = kTradeColumns[static_cast<std::size_t>(column)];
        const bool contract = column >= column::Exchange && column <= column::StrikePrice;
        if (!described.editable || contract || column == column::SecurityID) continue;
        const char* const text = column == column::Side          ? "Sell"
                                 : column == column::OrderType   ? "OCO"
                                 : column == column::OpenClose   ? "Close"
                                 : column == column::ProductType ? "INTRADAY"
                                                                 : "77";
        host.sent.clear();
        draft = &sheet.LayOver(item);
        EXPECT_EQ(Type(column, text), EditEnd::Committed) << described.header;
        std::string cell;
        CellText(book.Record(item), column, cell);
        EXPECT_EQ(cell, text) << described.header;
        EXPECT_EQ(Reports(msg::TradeReport), 1u) << described.header;
    }
}

TEST_F(Entering, ATypedSecurityIDBringsItsWholeContract) {
    SecurityMasterEntry& other = host.Identify("XNSE", "900");
    SetText(other.securityType, "OPTIDX"), SetText(other.symbol, "BNK12"),
        SetText(other.expiryText, "26Mar2026");
    SetText(other.optionType, "PE"), other.strikePrice = 51000.5;
    const TradeItem item = Stored();
    EXPECT_EQ(Type(column::SecurityID, "901"), EditEnd::Refused);
    EXPECT_EQ(said, "The terminal knows no security \"901\" of this exchange.");
    EXPECT_TRUE(host.sent.empty());
    EXPECT_EQ(Type(column::SecurityID, "900"), EditEnd::Committed);
    const TradeRecord& trade = book.Record(item);
    EXPECT_EQ(
        std::string(TextOf(trade.symbol)).append(TextOf(trade.expiryDate)).append(TextOf(trade.optionType)),
        "BNK1226Mar2026PE")
        << "the report carries the record's own texts";
    EXPECT_EQ(+trade.strikePrice, 51000.5);
    EXPECT_EQ(TextOf(trade.securityID), "900");
    // Nobody can name the contract: it enters with the names that stand, and that is said.
    host.hasMaster = false;
    draft = &sheet.LayOver(item);
    EXPECT_EQ(Type(column::SecurityID, "902"), EditEnd::Committed);
    EXPECT_EQ(said, "The terminal has no security master: the names of the contract stay as they are.");
    EXPECT_EQ(std::string(TextOf(trade.symbol)).append(TextOf(trade.securityID)), "BNK12902");
}

TEST_F(Entering, AnyOtherSideIsCodeZero) {
    EXPECT_EQ(Type(column::Side, "Both", EditEnding::KeyAgain), EditEnd::Kept);
    TypeAll({{column::Quantity, "1"}, {column::Price, "2"}});
    EXPECT_EQ(last, EditEnd::Committed);
    EXPECT_EQ(book.Row(0).side, 0);
}

TEST_F(Entering, AChangedTradeKeepsWhatHasNoColumnAndItsKeyMoves) {
    TradeRecord stored{};
    stored.side = 1, stored.quantity = 10, stored.price = 5, stored.value20036 = 77;
    SetText(stored.exchange, "XNSE"), SetText(stored.securityType, "FUTIDX"), SetText(stored.symbol, "IND50");
    SetText(stored.expiryDate, "26Feb2026"), SetText(stored.exchangeTradeID, "T1");
    book.Add(stored);
    book.SetChanged(false);
    host.sent.clear();
    const TradeItem item = book.ItemAt(0);
    draft = &sheet.LayOver(item);
    EXPECT_EQ(Type(column::Price, "5"), EditEnd::Kept) << "nothing changed";
    EXPECT_EQ(Reports(msg::TradeReport), 0u);
    EXPECT_EQ(Type(column::Price, "6.25"), EditEnd::Committed);
    draft = &sheet.LayOver(item);
    EXPECT_EQ(Type(column::ExchangeTradeID, "T2"), EditEnd::Committed);
    EXPECT_EQ(became, item);
    EXPECT_EQ(book.RowCount(), 1u);
    EXPECT_EQ(+book.Row(0).price, 6.25);
    EXPECT_EQ(+book.Row(0).value20036, 77u);
    EXPECT_EQ(+book.Row(0).veltTradeID, 1u);
    EXPECT_FALSE(book.HolderOf(stored));
    EXPECT_TRUE(book.HolderOf(book.Row(0)));
    EXPECT_TRUE(book.Changed());
    EXPECT_EQ(Reports(msg::TradeReport), 2u);
    EXPECT_EQ(Reports(msg::SecondTradeReport), 0u);
    // The contract's end is enough for a trade that is complete.
    draft = &sheet.LayOver(item);
    EXPECT_EQ(Type(column::ExpiryDate, "26Mar2026"), EditEnd::Kept) << "not found";
    EXPECT_EQ(Type(column::ExpiryDate, "26Feb2026"), EditEnd::Committed);
    EXPECT_EQ(TextOf(book.Row(0).securityID), "ID2");
}

TEST_F(Entering, AnalysisOnlyTradesAreKeptAndNotReported) {
    book.SetAnalysisOnly(true);
    TypeAll({{column::Side, "Buy"}, {column::Quantity, "1"}, {column::Price, "2"}});
    EXPECT_EQ(book.RowCount(), 1u);
    EXPECT_TRUE(host.sent.empty());
}

TEST_F(Entering, DeletingAsksAndReportsTwice) {
    for (const char* price : {"1", "2", "3"}) {
        draft = &sheet.AddOnTop();
        TypeAll({{column::Side, "Buy"}, {column::Quantity, "5"}, {column::Price, price}});
    }
    host.sent.clear();
    selected = {book.ItemAt(0), book.ItemAt(2)};
    user.answers = {kAnswerCancel};
    entry.Delete(*this);
    EXPECT_EQ(user.boxes, Strings{"Dravel|Are you sure want to delete Trade?"});
    EXPECT_EQ(book.RowCount(), 3u);
    entry.Delete(*this);
    EXPECT_EQ(book.RowCount(), 1u);
    EXPECT_EQ(book.Totals().bought, 5u);
    EXPECT_EQ(Reports(msg::TradeReport), 2u);
    EXPECT_EQ(Reports(msg::SecondTradeReport), 2u);
    // A row that never entered goes without a word to the terminal.
    host.sent.clear();
    selected.clear();
    draft = &sheet.AddOnTop();
    const std::uint32_t drafts = sheet.NewCount();
    entry.Delete(*this);
    EXPECT_EQ(sheet.NewCount(), drafts - 1);
    EXPECT_TRUE(host.sent.empty());
    const std::size_t asked = user.boxes.size();
    entry.Delete(*this);
    EXPECT_EQ(user.boxes.size(), asked) << "no current cell";
}

TEST_F(Entering, WithoutAMasterEveryTextIsTaken) {
    host.hasMaster = false;
    TypeAll({{column::Exchange, "X"}, {column::SecurityType, "fut"}, {column::Symbol, "IND50"}});
    EXPECT_EQ(Cell(column::Exchange) + Cell(column::SecurityType), "Xfut") << "nothing completes them";
    TypeAll({{column::Side, "Sell"}, {column::Quantity, "3"}, {column::Price, "4"}});
    EXPECT_EQ(last, EditEnd::Committed);
    EXPECT_EQ(TextOf(book.Row(0).securityID), "");
}

TEST_F(Entering, ATerminalThatCallsBackLosesNoRow) {
    TradeRecord fromHost{};
    host.onAsk = [&] {
        host.onAsk = {};
        book.AddFromHost(fromHost);
        sheet.AddOnTop();
    };
    Type(column::Exchange, "XBSE");
    EXPECT_EQ(Cell(column::Exchange), "XBSE");
    EXPECT_EQ(book.RowCount(), 1u);
    TypeAll({{column::Side, "Sell"}, {column::Quantity, "3"}, {column::Price, "4"}});
    EXPECT_EQ(last, EditEnd::Committed);
    EXPECT_EQ(+book.Row(0).quantity, 3u);
    EXPECT_EQ(sheet.NewCount(), 1u);
}

// While the terminal or the user is asked the bar may go, or the row be taken away.
TEST_F(Entering, WhatWentWhileItWasAskedForChangesNoBook) {
    TradeRecord stored{};
    stored.side = 1, stored.quantity = 10, stored.price = 5;
    SetText(stored.exchange, "XNSE"), SetText(stored.securityType, "FUTIDX"), SetText(stored.symbol, "IND50");
    book.Add(stored);
    host.sent.clear();
    const std::function<void()> goings[] = {[this] { open = false; }, [this] { sheet.Clear(); }};
    for (const auto& going : goings) {
        const OuterCall call;
        draft = &sheet.LayOver(book.ItemAt(0));
        host.onAsk = going;
        EXPECT_EQ(Type(column::ExpiryDate, "26Feb2026"), EditEnd::Kept);
        EXPECT_EQ(TextOf(book.Row(0).expiryDate), "");
        host.onAsk = {};
        open = true;
    }
    selected = {book.ItemAt(0)};
    user.whileShown = goings[0];
    entry.Delete(*this);
    EXPECT_EQ(book.RowCount(), 1u);
    EXPECT_TRUE(host.sent.empty());
}

TEST_F(Entering, TheBookMayBeClosedWhileItsEntryRuns) {
    FakeClock clock;
    FaultFiles files(clock);
    FakeLog log;
    ManualClients clients(files, host, "CSV");
    NoReports reports;
    Entry whole({host, user, files, clock, clients, nullptr, reports});
    const auto opened = [&] { whole.BookOpened({book, nullptr, *this, log, nullptr}); };
    host.onAsk = user.whileShown = [&] {
        open = false;
        whole.BookClosed();
    };
    const OuterCall call;
    opened();
    EXPECT_EQ(whole.EndEdit(*draft, column::Exchange, "XNSE", EditEnding::Key, *this), EditEnd::Kept);
    opened();
    Strings choices;
    whole.Choices(*draft, column::Exchange, {}, choices);
    opened();
    open = true;
    whole.Delete(*this);
    EXPECT_EQ(sheet.NewCount(), 1u);
}

TEST_F(Entering, OneHundredThousandLongChoicesAreOffered) {
    Strings many;
    for (int i = 0; i < 100000; ++i)
        many.push_back(std::to_string(i) + std::string(900, 'x'));
    host.Offer(master::Exchanges, {}, many);
    EXPECT_EQ(Choices(column::Exchange).size(), many.size());
    EXPECT_EQ(Type(column::Exchange, many[99999]), EditEnd::Asked) << "the record has no room for all of it";
    EXPECT_EQ(Type(column::Exchange, many[99999], EditEnding::KeyAgain), EditEnd::Kept);
}

}  // namespace
}  // namespace Dravel

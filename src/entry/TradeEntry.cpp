#include "entry/TradeEntry.h"

#include <algorithm>
#include <array>

#include "formatset/CsvLine.h"
#include "formatset/LetterCase.h"
#include "formatset/NumberText.h"
#include "records/RecordText.h"

namespace Dravel {

namespace {

std::string Upper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return upper;
}

// The cells of a contract, each chosen from what the ones before it leave: the request for its list, which
// carries the cells from Exchange up to it.
constexpr struct {
    int column;
    std::uint32_t request;
} kContractCells[] = {
    {column::Exchange, master::Exchanges},     {column::SecurityType, master::SecurityTypes},
    {column::Symbol, master::Symbols},         {column::ExpiryDate, master::Expiries},
    {column::OptionType, master::OptionTypes}, {column::StrikePrice, master::Strikes},
};
constexpr bool IsContractCell(int column) {
    return column >= column::Exchange && column <= column::StrikePrice;
}

// Lists that need no terminal. "CCE" and "MME" are no product types and are offered all the same: deliberate.
std::span<const std::string> FixedChoices(int column) {
    static const std::array<std::string, 2> sides{"Buy", "Sell"}, products{"CCE", "MME"};
    if (column == column::Side) return sides;
    if (column == column::ProductType) return products;
    return {};
}

// Columns whose change can make a new row ready.
constexpr bool CompletesNewRow(int column) {
    return (column >= column::ClientID && column <= column::Price) ||
           (column >= column::OrderType && column <= column::OpenClose && column != column::PendingQuantity);
}

constexpr int kRequired[] = {column::Side, column::Quantity, column::Price};

// Strikes are equal when their numbers are, all other texts letter case aside.
bool Equal(int column, std::string_view a, std::string_view b) {
    if (column == column::StrikePrice && !a.empty() && !b.empty()) return ReadDouble(a) == ReadDouble(b);
    return SameLetters(a, b);
}

}  // namespace

std::string TradeEntry::Cell(const TradeDraft& draft, int column) const {
    std::string text;
    DraftCell(draft, book_, column, text);
    return text;
}

bool TradeEntry::WithoutExpiry(const TradeDraft& draft) const {
    const std::string type = Upper(Cell(draft, column::SecurityType));
    return type.find("INDEX") != std::string::npos || type.find("AUCTION") != std::string::npos;
}

bool TradeEntry::IsOption(const TradeDraft& draft) const {
    return Cell(draft, column::SecurityType).find("OPT") != std::string::npos;
}

std::span<const std::string> TradeEntry::Ask(const TradeDraft& draft, std::uint32_t kind,
                                             std::vector<std::string> texts) {
    const std::uint32_t row = draft.id;
    if (kind == askedKind_ && row == askedRow_ && texts == askedTexts_ && !answer_.empty()) return answer_;
    std::array<const char*, 5> given{};
    for (std::size_t i = 0; i < texts.size(); ++i)
        given[i] = texts[i].c_str();
    const MasterAnswer answer = host_.Ask(kind, std::span(given).first(texts.size()));
    std::vector<std::string> list;
    for (std::uint32_t i = 0; answer.list != nullptr && i < answer.count; ++i) {
        if (answer.list[i] != nullptr) list.emplace_back(answer.list[i]);
    }
    askedKind_ = kind;
    askedRow_ = row;
    askedTexts_ = std::move(texts);
    answer_ = std::move(list);
    return answer_;
}

std::span<const std::string> TradeEntry::ChoicesOf(const TradeDraft& draft, int column) {
    if (!IsContractCell(column)) return FixedChoices(column);
    std::vector<std::string> texts;
    for (const auto& [cell, request] : kContractCells) {
        if (cell == column) return Ask(draft, request, std::move(texts));
        texts.push_back(Cell(draft, cell));
        if (texts.back().empty()) break;
    }
    return {};
}

void TradeEntry::Choices(const TradeDraft& draft, int column, std::string_view typed,
                         std::vector<std::string>& choices) {
    choices.clear();
    // A typed text that the cell does not say already takes the fixed lists away. Deliberate.
    if (!FixedChoices(column).empty() && !typed.empty() &&
        Cell(draft, column).find(Upper(typed)) == std::string::npos)
        return;
    const auto offered = ChoicesOf(draft, column);
    choices.assign(offered.begin(), offered.end());
}

// Puts the choice that is meant in the place of `text`. False: the cell has choices, and it is none of them.
bool TradeEntry::Complete(const TradeDraft& draft, int column, std::string& text) {
    if (text.empty()) return true;
    const auto choices = ChoicesOf(draft, column);
    if (choices.empty()) return true;
    const auto equal = std::find_if(choices.begin(), choices.end(),
                                    [&](const std::string& choice) { return Equal(column, choice, text); });
    if (equal != choices.end()) {
        text = *equal;
        return true;
    }
    const auto starts = [&](const std::string& choice) { return BeginsWithLetters(choice, text); };
    const auto first = std::find_if(choices.begin(), choices.end(), starts);
    if (first != choices.end() && std::none_of(first + 1, choices.end(), starts)) {
        text = *first;
        return true;
    }
    return !IsContractCell(column);
}

EditEnd TradeEntry::EndEdit(TradeDraft& draft, int column, std::string_view typed, EditEnding ending,
                            IDraftView& view) {
    if (!kTradeColumns[static_cast<std::size_t>(column)].editable) return EditEnd::Refused;
    std::string text(Trimmed(typed));
    if (text != Cell(draft, column)) {
        const EditEnd read = Understand(draft, column, text, ending, view);
        if (read != EditEnd::Kept) return read;
    } else if (!Complete(draft, column, text)) {
        return EditEnd::Refused;
    }
    const bool changed = text != Cell(draft, column);
    if (changed && !Change(draft, column, text, view)) return EditEnd::Refused;
    if (!view.Holds(draft.id)) return EditEnd::Kept;
    view.DraftChanged(draft);
    if (draft.set.none() || !Completes(draft, column, changed)) return EditEnd::Kept;
    return TryCommit(draft, view);
}

// A trade of the book lacks nothing, so that every cell of it counts at once; those of its contract when the
// contract is found, since half of one is no other contract.
bool TradeEntry::Completes(const TradeDraft& draft, int column, bool changed) const {
    if (draft.New()) return CompletesNewRow(column);
    if (!IsContractCell(column) && column != column::SecurityID) return true;
    return changed && Filled(draft, column::SecurityID);
}

// False: the cell does not take the text.
bool TradeEntry::Change(TradeDraft& draft, int column, std::string_view text, IDraftView& view) {
    if (column == column::SecurityID && !text.empty()) return TakeContractOf(draft, text, view);
    draft.Set(column, text);
    Cascade(draft, column, view);
    return true;
}

void TradeEntry::Cascade(TradeDraft& draft, int column, IDraftView& view) {
    if (!IsContractCell(column)) return;
    for (int later = column + 1; later <= column::StrikePrice; ++later)
        draft.Set(later, {});
    draft.Set(column::SecurityID, {});
    if (column == column::Exchange) ExchangeChosen(draft);
    if (!Filled(draft, column)) return;
    switch (column) {
        case column::Exchange:
        case column::SecurityType:
        case column::OptionType:
            OfferNext(draft, column + 1, view);
            break;
        case column::Symbol:
            // A contract without expiries goes on like one that has none by its kind.
            if (WithoutExpiry(draft) || !OfferNext(draft, column::ExpiryDate, view))
                FindContract(draft, view);
            break;
        case column::ExpiryDate:
            if (IsOption(draft)) {
                OfferNext(draft, column::OptionType, view);
            } else {
                FindContract(draft, view);
            }
            break;
        default:
            FindContract(draft, view);
    }
}

// Whatever stood there before: the exchange brings its own.
void TradeEntry::ExchangeChosen(TradeDraft& draft) {
    const std::string exchange = Cell(draft, column::Exchange);
    const MasterAnswer answer = host_.Ask(master::CtclEntries, {exchange.c_str()});
    const bool listed = answer.list != nullptr && answer.count > 0 && answer.list[0] != nullptr;
    draft.Set(column::CTCLID, listed ? answer.list[0] : "");
    draft.Set(column::ProductType, "CCE");
    draft.Set(column::OrderType, "Limit");
    draft.Set(column::OpenClose, "NONE");
}

// Asks for the choices of the next cell and shows its column. False: the terminal has none.
bool TradeEntry::OfferNext(TradeDraft& draft, int column, IDraftView& view) {
    const bool any = !ChoicesOf(draft, column).empty();
    if (any || column != column::ExpiryDate) view.ShowColumn(column);
    return any;
}

bool TradeEntry::FindContract(TradeDraft& draft, IDraftView& view) {
    std::array<std::string, 6> texts;
    std::array<const char*, 6> given{};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        texts[i] = Cell(draft, kContractCells[i].column);
        given[i] = texts[i].c_str();
    }
    const bool option = IsOption(draft) && !WithoutExpiry(draft);
    if (option && !texts.back().empty()) {
        NumberBuffer buffer;
        texts.back() = ShortestText(ReadDouble(texts.back()), buffer);
        given.back() = texts.back().c_str();
    }
    const MasterAnswer answer = option ? host_.Ask(master::OptionContract, std::span(given))
                                       : host_.Ask(master::Contract, std::span(given).first(4));
    if (answer.entry != nullptr) draft.Set(column::SecurityID, TextOf(answer.entry->securityID));
    view.ShowColumn(column::ClientID);
    return answer.entry != nullptr;
}

EditEnd TradeEntry::TryCommit(TradeDraft& draft, IDraftView& view) {
    for (const int column : kRequired) {
        if (!Filled(draft, column)) return EditEnd::Kept;
    }
    return Validate(draft, view) ? Commit(draft, view) : EditEnd::Spoken;
}

// The box comes later: an edit also ends because the keyboard goes elsewhere, and a box in the midst of that
// would take it back. The draft may be gone by then.
bool TradeEntry::Validate(const TradeDraft& draft, IDraftView& view) {
    if (ReadUnsigned(Cell(draft, column::Quantity)) != 0) return true;
    ui_.Post([this, id = draft.id, &view] {
        user_.Box("Qty 0 is not allow", "Error", Buttons::Ok, Icon::Warning);
        view.GoTo(id, column::Quantity);
    });
    return false;
}

EditEnd TradeEntry::Commit(TradeDraft& draft, IDraftView& view) {
    TradeRecord record{};
    if (!draft.New()) record = book_.Record(draft.item);
    for (std::size_t column = 0; column < column::Count; ++column) {
        if (draft.set.test(column)) kTradeColumns[column].put(record, draft.cells[column]);
    }
    TradeItem item = draft.item;
    if (draft.New()) {
        item = book_.ItemOf(book_.Add(record));
    } else {
        book_.Edit(item, record);
    }
    view.DraftEntered(draft, item);
    return EditEnd::Committed;
}

void TradeEntry::Delete(IDraftView& view) {
    if (!view.HasCurrentCell()) return;
    if (user_.Box("Are you sure want to delete Trade?", "Dravel", Buttons::OkCancel, Icon::Question) !=
        kAnswerOk)
        return;
    if (!view.HasCurrentCell()) return;
    const std::vector<TradeItem> trades = view.SelectedItems();
    if (trades.empty()) {
        view.RemoveCurrentDraft();
        return;
    }
    book_.Delete(trades);
    view.TakeKeyboard();
}

int TradeEntry::NextColumn(const TradeDraft& draft, int column) const {
    const bool expiry = !WithoutExpiry(draft), option = expiry && IsOption(draft);
    // A contract that is found lacks none of its cells.
    const bool found = Filled(draft, column::SecurityID);
    for (int next = std::max<int>(column + 1, column::Exchange); next <= column::Price; ++next) {
        if (next == column::ExpiryDate && (!expiry || found)) continue;
        if ((next == column::OptionType || next == column::StrikePrice) && (!option || found)) continue;
        if (!Filled(draft, next)) return next;
    }
    for (const int required : kRequired) {
        if (!Filled(draft, required)) return required;
    }
    return -1;
}

std::string TradeEntry::Missing(const TradeDraft& draft) const {
    std::string missing;
    for (const int column : kRequired) {
        if (Filled(draft, column)) continue;
        missing += missing.empty() ? "Still to be filled: " : ", ";
        missing += kTradeColumns[static_cast<std::size_t>(column)].header;
    }
    return missing;
}

}  // namespace Dravel

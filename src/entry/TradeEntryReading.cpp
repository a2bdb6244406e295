// What a typed text becomes: taken whole, asked about, or the name of a whole contract.
#include "entry/CellReading.h"
#include "entry/TradeEntry.h"
#include "formatset/NumberText.h"
#include "records/RecordText.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

// What names a contract, in the grid.
constexpr int kContract[] = {column::Exchange,   column::SecurityType, column::Symbol,    column::ExpiryDate,
                             column::OptionType, column::StrikePrice,  column::SecurityID};

// A quantity that is no number at all is 0, and has its box.
bool HasItsBox(int column, std::string_view text) {
    return column == column::Quantity && !(text[0] >= '0' && text[0] <= '9') && ReadUnsigned(text) == 0;
}

// For the status line: long texts without their middle.
std::string Shortened(std::string_view text) {
    constexpr std::size_t kEnd = 24;
    if (text.size() <= 2 * kEnd) return std::string(text);
    return std::string(text.substr(0, kEnd)) + "..." + std::string(text.substr(text.size() - kEnd));
}

}  // namespace

// Makes of `text` what the cell is to hold. A text that its reader would take only in part, or as a word that
// it does not know, is asked about, or given back when the user is gone from the cell.
EditEnd TradeEntry::Understand(const TradeDraft& draft, int column, std::string& text, EditEnding ending,
                               IDraftView& view) {
    const std::string typed = text;
    CellReading reading = ReadingOfCell(column, text);
    if (reading.how == TextReading::Grouped) text = reading.text;
    if (!Complete(draft, column, text)) return EditEnd::Refused;
    // The beginning of a word stands for all of it.
    if (HasCodes(column)) reading = ReadingOfCell(column, text);
    if (reading.how != TextReading::Part || HasItsBox(column, typed)) return EditEnd::Kept;
    const std::string question = '"' + Shortened(typed) + "\" would be read as " + Shortened(reading.text);
    if (ending == EditEnding::Left) {
        view.Say(question + " and was not taken.");
        return EditEnd::GivenBack;
    }
    if (ending == EditEnding::Key) {
        view.Say(question + ". Enter again to take it, Escape to go back.");
        return EditEnd::Asked;
    }
    if (!HasCodes(column) && text == typed) text = reading.text;
    return EditEnd::Kept;
}

// The whole contract that the terminal knows by that identifier: the names of another one beside it would be
// reported with it.
bool TradeEntry::TakeContractOf(TradeDraft& draft, std::string_view securityID, IDraftView& view) {
    if (!host_.HasSecurityMaster()) {
        draft.Set(column::SecurityID, securityID);
        view.Say("The terminal has no security master: the names of the contract stay as they are.");
        return true;
    }
    TradeRecord contract{};
    SetText(contract.exchange, Cell(draft, column::Exchange));
    SetText(contract.securityID, securityID);
    const SecurityMasterEntry* const entry = book_.Securities().Find(contract);
    if (entry == nullptr) {
        view.Say("The terminal knows no security \"" + Shortened(securityID) + "\" of this exchange.");
        return false;
    }
    TakeContract(contract, *entry);
    std::string text;
    for (const int column : kContract) {
        CellText(contract, column, text);
        draft.Set(column, text);
    }
    return true;
}

}  // namespace Dravel

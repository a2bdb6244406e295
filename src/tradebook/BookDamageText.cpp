#include "tradebook/BookDamageText.h"

#include <algorithm>
#include <span>

namespace Dravel {

namespace {

using KRV::VELT::TradeLoadReport;

// "1 trade", "2 trades".
std::string Count(std::uint64_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

// In the order in which they matter to whoever has to mend the trade.
std::string KindsText(damage::Kinds kinds) {
    static constexpr struct {
        damage::Kinds kind;
        const char* words;
    } kWords[] = {
        {damage::NotShown, "only half a trade is left, it is not shown"},
        {damage::MarkedDeleted, "marked as deleted, it is not shown"},
        {damage::NoIdentifier, "its identifier is gone, it has a new one"},
        {damage::NoDeletedMark, "its end is gone"},
        {damage::Torn, "torn, values may be missing"},
        {damage::NotAsSaved, "not as it was saved"},
    };
    // Half a trade lacks all the rest.
    if (kinds & damage::NotShown) kinds = damage::NotShown;
    std::string text;
    for (const auto& entry : kWords) {
        if (kinds & entry.kind) text += (text.empty() ? "" : "; ") + std::string(entry.words);
    }
    return text;
}

std::string FramesText(const TradeLoadReport& report) {
    std::string text;
    for (const DamagedFrame& frame : report.listed) {
        text += "Line " + std::to_string(frame.line) + ", ";
        text += frame.identifier ? "trade " + std::to_string(frame.identifier) : "no identifier";
        text += ": " + KindsText(frame.kinds) + "\n";
    }
    if (const std::uint64_t more = report.damagedFrames - report.listed.size(); more > 0)
        text += "... and " + Count(more, "more line", "more lines") + ", all in the log\n";
    return text;
}

std::string RenumberedText(const TradeBook& book) {
    std::string text;
    const auto all = book.RenumberedTrades();
    for (const Renumbered& trade : all.first(std::min(all.size(), TradeLoadReport::kMostListed))) {
        text += "Two trades had the identifier " + std::to_string(trade.was);
        if (const std::uint32_t now = book.Record(trade.item).veltTradeID; now != 0)
            text += "; the upper one now has " + std::to_string(now);
        text += ".\n";
    }
    if (all.size() > TradeLoadReport::kMostListed)
        text +=
            "... and " + Count(all.size() - TradeLoadReport::kMostListed, "more pair", "more pairs") + ".\n";
    return text;
}

std::string CountsText(const TradeLoadReport& report) {
    std::string text;
    if (!report.asSaved) {
        text += "Of " + Count(report.savedFrames, "saved trade", "saved trades") + " the file holds " +
                std::to_string(report.savedFound) + " as saved.\n";
    }
    if (report.bytesPassedOver > 0)
        text +=
            Count(report.bytesPassedOver, "byte", "bytes") + " of the file could not be read as trades.\n";
    if (report.otherFrames > 0)
        text += Count(report.otherFrames, "record", "records") + " of the file are no trades.\n";
    if (report.failedFrames > 0)
        text += Count(report.failedFrames, "trade", "trades") + " of the file could not be taken.\n";
    if (!report.complete) text += "The disk failed before the end of the file.\n";
    return text;
}

void AddPart(std::string& text, const std::string& part) {
    if (!part.empty()) text += "\n" + part;
}

}  // namespace

std::string BookDamageText(const TradeLoadReport& report, const TradeBook& book) {
    if (report.Clean() && book.RenumberedTrades().empty()) return {};
    std::string text =
        "The book was changed or damaged outside Dravel. Every trade that could be read is shown; please "
        "check the book.\n";
    AddPart(text, FramesText(report));
    AddPart(text, RenumberedText(book));
    AddPart(text, CountsText(report));
    return text +
           "\nBefore the next save the file is kept as it is now, in Dravel's folder as\n"
           "Data\\Backup\\DravelBook_Dravel_<date>_<time>.ada";
}

void TellOfDamage(IUser& user, IUiThread& ui, const TradeLoadReport& report, const TradeBook& book) {
    std::string text = BookDamageText(report, book);
    if (text.empty()) return;
    ui.Post([&user, text = std::move(text)] { user.Box(text, "Dravel", Buttons::Ok, Icon::Warning); });
}

}  // namespace Dravel

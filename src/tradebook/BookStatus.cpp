#include "tradebook/BookStatus.h"

#include "formatset/NumberText.h"

namespace Dravel {

namespace {

std::string Counted(std::uint64_t count) {
    return GroupedText(count) + (count == 1 ? " trade" : " trades");
}

}  // namespace

std::string RowsBeingTyped(std::uint64_t rows) {
    if (rows == 0) return {};
    return GroupedText(rows) + (rows == 1 ? " row is" : " rows are") + " still being typed";
}

std::array<std::string, statuspart::Count> StatusTexts(const BookStatus& status) {
    std::array<std::string, statuspart::Count> texts;
    texts[statuspart::Import] = status.import;
    texts[statuspart::Notice] = status.notice;
    texts[statuspart::Changed] = status.changed ? "Not saved" : "Saved";
    if (status.beingTyped != 0) texts[statuspart::Changed] += ", " + RowsBeingTyped(status.beingTyped);
    if (!status.state.empty()) texts[statuspart::Changed] = status.state;
    if (!status.known) return texts;
    texts[statuspart::Trades] = status.shown == status.all
                                    ? Counted(status.all)
                                    : GroupedText(status.shown) + " of " + Counted(status.all);
    texts[statuspart::Selected] = GroupedText(status.selected) + " selected";
    texts[statuspart::Bought] = "Bought " + GroupedText(status.bought);
    texts[statuspart::Sold] = "Sold " + GroupedText(status.sold);
    return texts;
}

}  // namespace Dravel

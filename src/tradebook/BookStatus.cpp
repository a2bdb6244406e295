#include "tradebook/BookStatus.h"

#include <charconv>

namespace Dravel {

namespace {

// With a comma at each thousand, in every locale.
std::string Grouped(std::uint64_t value) {
    char digits[24];
    const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    std::string text;
    for (const char* digit = digits; digit != end; ++digit) {
        if (digit != digits && (end - digit) % 3 == 0) text += ',';
        text += *digit;
    }
    return text;
}

std::string Counted(std::uint64_t count) {
    return Grouped(count) + (count == 1 ? " trade" : " trades");
}

}  // namespace

std::array<std::string, statuspart::Count> StatusTexts(const BookStatus& status) {
    std::array<std::string, statuspart::Count> texts;
    texts[statuspart::Trades] = status.shown == status.all
                                    ? Counted(status.all)
                                    : Grouped(status.shown) + " of " + Counted(status.all);
    texts[statuspart::Selected] = Grouped(status.selected) + " selected";
    texts[statuspart::Bought] = "Bought " + Grouped(status.bought);
    texts[statuspart::Sold] = "Sold " + Grouped(status.sold);
    texts[statuspart::Changed] = status.changed ? "Not saved" : "Saved";
    texts[statuspart::Notice] = status.notice;
    return texts;
}

}  // namespace Dravel

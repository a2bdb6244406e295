#include "formatset/FileNameFormat.h"

#include "formatset/DateFormat.h"
#include "formatset/NumberText.h"

namespace Dravel {
namespace {

std::string Digits(std::int32_t number, std::size_t width) {
    NumberBuffer buffer;
    std::string text(IntegerText(number, buffer));
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    return text;
}

void ReplaceFirst(std::string& text, std::string_view token, const std::string& value) {
    if (const auto at = text.find(token); at != std::string::npos) text.replace(at, token.size(), value);
}

}  // namespace

std::string ExpandFileName(std::string_view format, const IClock& clock) {
    std::string name(format);
    const auto open = format.find('{');
    const auto close = open == std::string_view::npos ? open : format.find('}', open);
    if (close != std::string_view::npos) {
        const std::string_view pattern = format.substr(open + 1, close - open - 1);
        return name.replace(open, close - open + 1, FormatDate(clock.Now(), pattern, clock));
    }
    const CivilTime now = clock.LocalNow();
    // "yyyy" goes before "yy", which then finds nothing left of it.
    ReplaceFirst(name, "dd", Digits(now.day, 2));
    ReplaceFirst(name, "mm", Digits(now.month, 2));
    ReplaceFirst(name, "yyyy", Digits(now.year, 4));
    if (now.year > 2000 && now.year < 2100) ReplaceFirst(name, "yy", Digits(now.year - 2000, 2));
    return name;
}

}  // namespace Dravel

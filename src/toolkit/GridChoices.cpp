#include "toolkit/GridChoices.h"

#include <algorithm>

#include "formatset/LetterCase.h"

namespace Dravel {
void GridChoices::Set(std::vector<std::string> choices) {
    choices_ = std::move(choices);
    for (std::string& choice : choices_)
        if (choice.size() > kMaxChoiceBytes) choice.resize(kMaxChoiceBytes);
    chosen_ = kNone;
    top_ = 0;
}

std::size_t GridChoices::Find(std::string_view typed) const {
    if (typed.empty()) return kNone;
    const auto found = std::find_if(choices_.begin(), choices_.end(), [&](const std::string& choice) {
        return BeginsWithLetters(choice, typed);
    });
    return found == choices_.end() ? kNone : static_cast<std::size_t>(found - choices_.begin());
}

void GridChoices::Choose(std::size_t index) {
    chosen_ = index < Count() ? index : kNone;
    if (chosen_ == kNone) return;
    if (chosen_ < top_) top_ = chosen_;
    if (chosen_ >= top_ + page_) top_ = chosen_ - page_ + 1;
}

void GridChoices::Key(GridChoiceKey key) {
    if (Empty()) return;
    const auto last = static_cast<std::int64_t>(Count()) - 1, page = static_cast<std::int64_t>(page_);
    if (chosen_ == kNone) return Choose(key == GridChoiceKey::Last ? Count() - 1 : top_);
    const auto at = static_cast<std::int64_t>(chosen_);
    const std::int64_t to[] = {at - 1, at + 1, at - page, at + page, 0, last};
    Choose(static_cast<std::size_t>(std::clamp<std::int64_t>(to[static_cast<std::size_t>(key)], 0, last)));
}

void GridChoices::SetPage(std::size_t rows) {
    page_ = std::max<std::size_t>(rows, 1);
    SetTop(static_cast<std::int64_t>(top_));
    Choose(chosen_);
}

void GridChoices::SetTop(std::int64_t top) {
    top_ = static_cast<std::size_t>(std::clamp<std::int64_t>(top, 0, static_cast<std::int64_t>(MaxTop())));
}

}  // namespace Dravel

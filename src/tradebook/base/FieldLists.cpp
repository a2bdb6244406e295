#include "tradebook/base/FieldLists.h"

#include <utility>

namespace Dravel {

static bool Has(const std::vector<int>& list, int index) {
    return index >= 0 && static_cast<std::size_t>(index) < list.size();
}

FieldLists::FieldLists(const GridColumns& columns) : before_(columns.OrderArray()) {
    for (int position = 0; position < columns.ShownCount(); ++position)
        shown_.push_back(columns.AtPosition(position));
    for (int column = 0; column < columns.Count(); ++column) {
        if (!columns[column].visible) hidden_.push_back(column);
    }
}

std::vector<std::int32_t> FieldLists::Order() const {
    std::vector<std::int32_t> order(before_.size(), -1);
    for (std::size_t i = 0; i < shown_.size(); ++i)
        order[static_cast<std::size_t>(shown_[i])] = static_cast<std::int32_t>(i);
    return order;
}

int FieldLists::Up(int index) {
    if (!Has(shown_, index) || index == 0) return -1;
    std::swap(shown_[static_cast<std::size_t>(index)], shown_[static_cast<std::size_t>(index) - 1]);
    return index - 1;
}

int FieldLists::Down(int index) {
    if (!Has(shown_, index) || !Has(shown_, index + 1)) return -1;
    std::swap(shown_[static_cast<std::size_t>(index)], shown_[static_cast<std::size_t>(index) + 1]);
    return index + 1;
}

int FieldLists::Hide(int index) {
    if (!Has(shown_, index)) return -1;
    const int column = shown_[static_cast<std::size_t>(index)];
    shown_.erase(shown_.begin() + index);
    hidden_.insert(hidden_.begin(), column);
    return column;
}

int FieldLists::Show(int index) {
    if (!Has(hidden_, index)) return -1;
    const int column = hidden_[static_cast<std::size_t>(index)];
    hidden_.erase(hidden_.begin() + index);
    shown_.push_back(column);
    return column;
}

}  // namespace Dravel

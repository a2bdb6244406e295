// Groups of the shown rows: their heads, and what opens and closes.
#include "formatset/NumberText.h"
#include "tradebook/TradeRows.h"

namespace Dravel {

std::uint32_t TradeRows::NewGroup(std::uint32_t parent, std::uint32_t level, TradeItem sample) {
    std::uint32_t number = static_cast<std::uint32_t>(groups_.size());
    if (freeGroups_.empty()) {
        groups_.emplace_back();
    } else {
        number = freeGroups_.back();
        freeGroups_.pop_back();
    }
    groups_[number] = {.parent = parent, .level = level, .sample = sample};
    groups_[number].open = closed_.empty() || !closed_.contains(PathOf(number));
    SetInside(groups_[number]);
    return number;
}

void TradeRows::SetInside(Group& group) const {
    group.inside = group.open && (group.parent == kNoGroup || groups_[group.parent].inside);
}

bool TradeRows::Shows(Entry entry) const {
    if (!IsHead(entry)) return passes_[entry] != 0 && (!Grouped() || groups_[groupOf_[entry]].inside);
    const Group& group = groups_[GroupOf(entry)];
    return group.shown != 0 && (group.parent == kNoGroup || groups_[group.parent].inside);
}

// The cells that make the group, outermost first: by them a closed group is known when it comes back.
std::string TradeRows::PathOf(std::uint32_t number) const {
    const Group& group = groups_[number];
    const auto column = static_cast<std::size_t>(levels_[group.level].column);
    std::string text;
    if (texts_[column]) {
        text = texts_[column]->Text(group.sample);
    } else {
        AppendUnsigned(text, (*numbers_[column])[group.sample]);
    }
    return group.parent == kNoGroup ? text : PathOf(group.parent) + '\0' + text;
}

GridGroupHead TradeRows::Head(std::uint32_t row) const {
    if (!Grouped() || !IsHead(order_.At(row))) return {};
    const Group& group = groups_[GroupOf(order_.At(row))];
    return {static_cast<int>(group.level), group.open};
}

TradeRows::GroupFacts TradeRows::Facts(std::uint32_t row) const {
    if (!Grouped() || !IsHead(order_.At(row))) return {};
    const Group& group = groups_[GroupOf(order_.At(row))];
    return {levels_[group.level].column, group.sample, group.shown};
}

void TradeRows::Toggle(std::uint32_t row) {
    if (!Grouped() || row >= RowCount() || !IsHead(order_.At(row))) return;
    const Entry head = order_.At(row);
    Group& toggled = groups_[GroupOf(head)];
    toggled.open = !toggled.open;
    if (toggled.open) {
        closed_.erase(PathOf(GroupOf(head)));
    } else {
        closed_.insert(PathOf(GroupOf(head)));
    }
    SetInside(toggled);
    const std::uint32_t before = RowCount();
    GridOrder::Place place = order_.PlaceOf(head);
    ++place.index;
    order_.Sweep(place, [&](Entry entry) {
        if (IsHead(entry)) {
            Group& group = groups_[GroupOf(entry)];
            if (group.level <= toggled.level) return GridOrder::Sight::Stop;
            SetInside(group);
        }
        return Shows(entry) ? GridOrder::Sight::Show : GridOrder::Sight::Hide;
    });
    if (RowCount() > before) display_.Inserted(row + 1, RowCount() - before);
    if (RowCount() < before) display_.Removed(row + 1, before - RowCount());
    display_.Changed(row);
}

}  // namespace Dravel

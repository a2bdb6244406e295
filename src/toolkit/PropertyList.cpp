#include "toolkit/PropertyList.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace Dravel {

void PropertyList::Add(PropertyGroup group) {
    groups_.push_back(std::move(group));
    Rebuild();
}

void PropertyList::Rebuild() {
    rows_.clear();
    for (std::size_t i = 0; i < groups_.size(); ++i) {
        rows_.push_back({i, -1});
        for (int item = 0; groups_[i].open && item < static_cast<int>(groups_[i].items.size()); ++item)
            rows_.push_back({i, item});
    }
    SetCurrent(current_);
}

void PropertyList::SetCurrent(int row) {
    current_ = std::clamp(row, 0, std::max(RowCount() - 1, 0));
}

const PropertyItem* PropertyList::Item(int row) const {
    if (row < 0 || row >= RowCount()) return nullptr;
    const Row at = rows_[static_cast<std::size_t>(row)];
    return at.item < 0 ? nullptr : &groups_[at.group].items[static_cast<std::size_t>(at.item)];
}

const PropertyGroup& PropertyList::GroupOf(int row) const {
    return groups_[rows_[static_cast<std::size_t>(row)].group];
}

PropertyItem* PropertyList::Find(int id) {
    for (PropertyGroup& group : groups_) {
        for (PropertyItem& item : group.items) {
            if (item.id == id) return &item;
        }
    }
    return nullptr;
}

void PropertyList::Toggle(int row) {
    if (row < 0 || row >= RowCount()) return;
    const std::size_t group = rows_[static_cast<std::size_t>(row)].group;
    const bool inside = rows_[static_cast<std::size_t>(current_)].group == group;
    const Row current = rows_[static_cast<std::size_t>(current_)];
    groups_[group].open = !groups_[group].open;
    Rebuild();
    const auto same = [&](const Row& at) {
        return at.group == current.group && (inside ? at.item == -1 : at.item == current.item);
    };
    SetCurrent(static_cast<int>(std::find_if(rows_.begin(), rows_.end(), same) - rows_.begin()));
}

bool PropertyList::Move(PropertyKey key, int page) {
    if (rows_.empty()) return false;
    const int from = current_;
    const bool head = IsHead(from), open = GroupOf(from).open;
    switch (key) {
        case PropertyKey::Left:
        case PropertyKey::Right:
            if (head && open == (key == PropertyKey::Left)) {
                Toggle(from);
                return true;
            }
            if (key == PropertyKey::Right) {
                SetCurrent(head ? from + 1 : from);
            } else {
                while (!IsHead(current_))
                    --current_;
            }
            break;
        case PropertyKey::Home:
        case PropertyKey::End:
            SetCurrent(key == PropertyKey::Home ? 0 : RowCount() - 1);
            break;
        case PropertyKey::Up:
        case PropertyKey::Down:
            SetCurrent(from + (key == PropertyKey::Up ? -1 : 1));
            break;
        default:
            SetCurrent(from + (key == PropertyKey::PageUp ? -page : page));
            break;
    }
    return current_ != from;
}

std::wstring PropertyList::ValueText(const PropertyItem& item) {
    const auto number = [](std::uint32_t value) {
        char digits[12];
        const auto end = std::to_chars(digits, digits + sizeof digits, value);
        return std::wstring(digits, end.ptr);
    };
    switch (item.kind) {
        case PropertyKind::Font:
            return item.text;
        case PropertyKind::Colour:
            return number(item.value & 255) + L", " + number(item.value >> 8 & 255) + L", " +
                   number(item.value >> 16 & 255);
        case PropertyKind::Check:
            return item.value != 0 ? L"On" : L"Off";
        default:
            return number(item.value);
    }
}

std::wstring PropertyList::RowText(int row) const {
    if (row < 0 || row >= RowCount()) return {};
    const PropertyItem* item = Item(row);
    return item == nullptr ? GroupOf(row).name : item->name + L'\t' + ValueText(*item);
}

}  // namespace Dravel

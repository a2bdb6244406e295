// A list of properties without its window: groups that open and close, and the items under them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Dravel {

enum class PropertyKind : std::uint8_t { Font, Colour, Check, Number };

struct PropertyItem {
    int id = 0;
    PropertyKind kind = PropertyKind::Check;
    std::wstring name;
    std::wstring description;
    std::uint32_t value = 0;  // colour (red in the low byte), 0 or 1, number
    std::wstring text;        // what a font's item shows
};

struct PropertyGroup {
    std::wstring name;
    std::vector<PropertyItem> items;
    bool open = true;
};

enum class PropertyKey : std::uint8_t { Up, Down, Left, Right, Home, End, PageUp, PageDown };

// Rows are what is seen: each group's head, and below an open one its items. There is a current row as long
// as there are rows.
class PropertyList {
 public:
    void Add(PropertyGroup group);

    int RowCount() const { return static_cast<int>(rows_.size()); }
    int Current() const { return current_; }
    void SetCurrent(int row);  // brought into range
    // The item of a row; null: a group's head, or no such row.
    const PropertyItem* Item(int row) const;
    const PropertyGroup& GroupOf(int row) const;
    bool IsHead(int row) const { return Item(row) == nullptr; }
    PropertyItem* Find(int id);  // null: none
    // Opens or closes the group of a row; a current row inside a closed group moves to its head.
    void Toggle(int row);
    // Up and Down by one, PageUp and PageDown by `page`; Left goes to the head and closes it, Right opens it
    // and goes in. True when something changed.
    bool Move(PropertyKey key, int page);

    static std::wstring ValueText(const PropertyItem& item);
    // Name and value, parted by a tab, as a reader of the list wants them.
    std::wstring RowText(int row) const;

 private:
    struct Row {
        std::size_t group = 0;
        int item = -1;  // -1: the group's head
    };
    void Rebuild();

    std::vector<PropertyGroup> groups_;
    std::vector<Row> rows_;
    int current_ = 0;
};

}  // namespace Dravel

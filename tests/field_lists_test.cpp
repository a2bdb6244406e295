// The lists behind the field chooser and the property list.
#include <gtest/gtest.h>

#include "toolkit/PropertyList.h"
#include "tradebook/GridPropertyList.h"
#include "tradebook/base/FieldLists.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {
namespace {

// Columns 0 to 5; 1 and 4 are hidden, 5 stands first.
GridColumns SixColumns() {
    GridColumns columns;
    for (int i = 0; i < 6; ++i)
        columns.Add({.key = std::to_string(i), .header = "H", .visible = i != 1 && i != 4});
    columns.Move(5, 0);
    return columns;
}

using Numbers = std::vector<int>;

TEST(FieldLists, EntriesMoveWithinAndBetweenTheLists) {
    GridColumns columns = SixColumns();
    FieldLists lists(columns);
    EXPECT_EQ(lists.Shown(), (Numbers{5, 0, 2, 3}));
    EXPECT_EQ(lists.Hidden(), (Numbers{1, 4}));
    EXPECT_EQ(lists.Order(), lists.Before());
    EXPECT_EQ(lists.Up(2), 1);
    EXPECT_EQ(lists.Down(0), 1);
    EXPECT_EQ(lists.Shown(), (Numbers{2, 5, 0, 3}));
    EXPECT_EQ(lists.Hide(1), 5);  // on top of the hidden ones
    EXPECT_EQ(lists.Show(2), 4);  // at the end of the shown ones
    EXPECT_EQ(lists.Shown(), (Numbers{2, 0, 3, 4}));
    EXPECT_EQ(lists.Hidden(), (Numbers{5, 1}));
    EXPECT_EQ(lists.Order(), (std::vector<std::int32_t>{1, -1, 0, 2, 3, -1}));
    columns.SetOrderArray(lists.Order());
    EXPECT_EQ(FieldLists(columns).Shown(), lists.Shown());
    columns.SetOrderArray(lists.Before());
    EXPECT_EQ(FieldLists(columns).Shown(), (Numbers{5, 0, 2, 3}));
}

TEST(FieldLists, WhatCannotBeDoneChangesNothing) {
    FieldLists lists(SixColumns());
    for (const int index : {-1, 0, 4, 99})
        EXPECT_EQ(lists.Up(index), -1) << index;
    for (const int index : {-1, 3, 4, 99})
        EXPECT_EQ(lists.Down(index), -1) << index;
    EXPECT_EQ(lists.Hide(4), -1);
    EXPECT_EQ(lists.Show(2), -1);
    EXPECT_EQ(lists.Order(), lists.Before());
}

TEST(PropertyListRows, KeysMoveThroughTheRowsAndCloseGroups) {
    PropertyList list = MakePropertyList();
    EXPECT_EQ(list.RowCount(), 5 + 14);
    list.Move(PropertyKey::End, 5);
    EXPECT_EQ(list.RowText(list.Current()), L"Trade For Greek Analysis Only\tOff");
    EXPECT_FALSE(list.Move(PropertyKey::Down, 5));
    list.Move(PropertyKey::Left, 5);  // to the head, then closed
    EXPECT_EQ(list.RowText(list.Current()), L"Property");
    EXPECT_TRUE(list.Move(PropertyKey::Left, 5));
    EXPECT_EQ(list.RowCount(), 15);
    EXPECT_EQ(list.Current(), 14);
    list.Move(PropertyKey::Right, 5);
    list.Move(PropertyKey::Right, 5);
    EXPECT_EQ(list.RowText(list.Current()), L"Show Grid Row\tOff");
    list.Toggle(0);  // a group above it closes: the same item stays current
    EXPECT_EQ(list.RowText(list.Current()), L"Show Grid Row\tOff");
    list.Toggle(list.Current());  // its own one: the head takes over
    EXPECT_EQ(list.RowText(list.Current()), L"Property");
    list.Move(PropertyKey::PageUp, 100);
    EXPECT_EQ(list.Current(), 0);
    list.SetCurrent(-5);
    list.Toggle(99);
    EXPECT_EQ(list.RowText(-1) + list.RowText(99), L"");
    PropertyList empty;
    EXPECT_FALSE(empty.Move(PropertyKey::Down, 1));
}

TEST(GridPropertyList, ChangesAndTheirDefaults) {
    GridProperties properties;
    const auto change = [&](GridProperty property, std::optional<std::uint32_t> value) {
        return ChangeProperty(properties, property, value);
    };
    EXPECT_TRUE(change(GridProperty::BuyColor, 0xFF123456));
    EXPECT_EQ(properties.buyColor, 0x123456u);
    EXPECT_TRUE(change(GridProperty::BuyColor, {}));
    EXPECT_EQ(properties.buyColor, 0xFF875Fu);
    for (auto [property, colour] : {std::pair(GridProperty::SellColor, &GridProperties::sellColor),
                                    std::pair(GridProperty::FontBuyColor, &GridProperties::fontBuyColor),
                                    std::pair(GridProperty::FontSellColor, &GridProperties::fontSellColor)}) {
        change(property, 1);
        EXPECT_TRUE(change(property, {}));
        EXPECT_EQ(properties.*colour, 0x9B82FFu);
    }
    EXPECT_TRUE(change(GridProperty::ColumnFreeze, 10));
    EXPECT_FALSE(change(GridProperty::ColumnFreeze, 11));
    EXPECT_FALSE(change(GridProperty::ColumnFreeze, 4294967295u));
    EXPECT_FALSE(change(GridProperty::ColumnFreeze, {}));
    EXPECT_EQ(properties.columnFreeze, 10);
    EXPECT_FALSE(change(GridProperty::Font, 1));
    EXPECT_TRUE(change(GridProperty::EnableFontSell, 7));
    PropertyList list = MakePropertyList();
    ShowProperties(properties, list);
    std::wstring all;
    for (int row = 0; row < list.RowCount(); ++row)
        all += list.RowText(row) + L"\n";
    EXPECT_NE(all.find(L"Buy Color\t95, 135, 255\n"), all.npos);
    EXPECT_NE(all.find(L"Font Sell\tOn\nNo. of Frozen Columns\nNo. of Frozen Columns\t10\nProperty\n"),
              all.npos);
    EXPECT_NE(all.find(L"Remove Expire Trade\tOn\n"), all.npos);
}

TEST(GridPropertyList, EveryPropertySurvivesSavingAndLoading) {
    GridProperties properties;
    for (int id = 1; id <= 13; ++id)
        ChangeProperty(properties, static_cast<GridProperty>(id), id == 9 ? 3 : id == 12 ? 0 : 1);
    properties.font.assign(92, 0);
    properties.font[0] = 200;  // its height
    CVELTPXMLSettings settings, loaded;
    ASSERT_TRUE(properties.Save(settings, "TradeGrid"));
    ASSERT_TRUE(loaded.LoadTextForm(settings.TextForm()));
    GridProperties again;
    ASSERT_TRUE(again.Load(loaded, "TradeGrid"));
    EXPECT_TRUE(again.Save(loaded, "Again"));
    const std::string text = loaded.TextForm();
    const std::size_t first = text.find("<TradeGrid>") + 11, second = text.find("<Again>") + 7;
    EXPECT_EQ(text.substr(first, text.find("</TradeGrid>") - first),
              text.substr(second, text.find("</Again>") - second));
    EXPECT_NE(text.find("<CarryForwardTrade>\"1\"</CarryForwardTrade>\n<RemoveExpireTrade>\"0\""), text.npos);
    EXPECT_EQ(again.font, properties.font);
    // A font that nothing can be drawn with: too tall, turned, or not of the right length.
    for (const auto& [at, size] : {std::pair(0, 92), std::pair(3, 92), std::pair(8, 92), std::pair(50, 91)}) {
        std::vector<std::uint8_t> font(static_cast<std::size_t>(size));
        font[static_cast<std::size_t>(at)] = 201;
        settings.Open("TradeGrid");
        settings.WriteBinary("Font", font);
        EXPECT_TRUE(again.Load(settings, "TradeGrid"));
        EXPECT_EQ(again.font, properties.font) << at;
    }
    settings.SetReadOnly(true);
    EXPECT_FALSE(properties.Save(settings, "TradeGrid"));
}

}  // namespace
}  // namespace Dravel

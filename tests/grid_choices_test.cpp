// The list of a cell's editor without its window: type-ahead, keys, what is in view.
#include "toolkit/GridChoices.h"

#include <gtest/gtest.h>

using namespace Dravel;

namespace {

// Ten choices, four in view. "down pgdn last" and the like; then "chosen/top".
class Choices {
 public:
    Choices() {
        choices.Set({"Alpha", "alpine", "Beta", "Betamax", "Gamma", "", "Delta", "Eta", "Theta", "Iota"});
        choices.SetPage(4);
    }
    std::string After(std::initializer_list<GridChoiceKey> keys) {
        for (const GridChoiceKey key : keys)
            choices.Key(key);
        return std::to_string(static_cast<int>(choices.Chosen())) + "/" + std::to_string(choices.Top());
    }
    GridChoices choices;
};

}  // namespace

TEST(GridChoices, TypeAheadFindsTheFirstThatBeginsSo) {
    const struct {
        const char* typed;
        std::size_t found;
    } cases[] = {{"a", 0},
                 {"ALPI", 1},
                 {"beta", 2},
                 {"betam", 3},
                 {"betamaxx", GridChoices::kNone},
                 {"", GridChoices::kNone},
                 {"lpha", GridChoices::kNone}};
    Choices held;
    for (const auto& one : cases)
        EXPECT_EQ(held.choices.Find(one.typed), one.found) << one.typed;
}

TEST(GridChoices, KeysChooseAndKeepTheChosenInView) {
    using enum GridChoiceKey;
    EXPECT_EQ(Choices().After({Down}), "0/0");  // the first key makes one
    EXPECT_EQ(Choices().After({Last}), "9/6");
    EXPECT_EQ(Choices().After({Down, Down, Down, Down, Down}), "4/1");
    EXPECT_EQ(Choices().After({Down, Up}), "0/0");
    EXPECT_EQ(Choices().After({Down, PageDown, PageDown, PageDown}), "9/6");
    EXPECT_EQ(Choices().After({Last, PageUp}), "5/5");
    EXPECT_EQ(Choices().After({Last, First}), "0/0");
    Choices list;
    list.After({Last});
    list.choices.SetPage(100);  // a list that got room
    EXPECT_EQ(list.After({}), "9/0");
    list.choices.SetTop(-5);
    list.choices.Choose(77);
    EXPECT_EQ(list.After({}), "-1/0");
    list.choices.Set({});
    EXPECT_EQ(list.After({Down, Last}), "-1/0");
    list.choices.Set({std::string(2000, 'x')});
    EXPECT_EQ(list.choices[0].size(), kMaxChoiceBytes);
}

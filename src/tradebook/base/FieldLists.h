// The two lists of the field chooser without their dialog: the columns shown, in their order, and the hidden
// ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "toolkit/GridColumns.h"

namespace Dravel {

// Entries are column numbers. An index that does not exist changes nothing.
class FieldLists {
 public:
    explicit FieldLists(const GridColumns& columns);

    const std::vector<int>& Shown() const { return shown_; }
    const std::vector<int>& Hidden() const { return hidden_; }
    // The order of the columns as it was in the beginning, to be put back.
    const std::vector<std::int32_t>& Before() const { return before_; }
    // The order that the list of shown columns stands for.
    std::vector<std::int32_t> Order() const;

    // By one place. Returns where the entry then stands; -1: nothing happened.
    int Up(int index);
    int Down(int index);
    // Takes the entry into the other list: a hidden one on top, a shown one at the end. Returns the column;
    // -1: nothing happened.
    int Hide(int index);
    int Show(int index);

 private:
    std::vector<int> shown_, hidden_;
    std::vector<std::int32_t> before_;
};

}  // namespace Dravel

// How a column takes a text: as it stands, without its groups of digits, or only in part.
#pragma once

#include <string>
#include <string_view>

#include "formatset/NumberReading.h"

namespace Dravel {

struct CellReading {
    TextReading how = TextReading::Whole;
    // Grouped: the number without its groups. Part: what the record would get of the text, as the grid shows
    // it; "none" for a word that stands for no code.
    std::string text;
};

// For each of the 32 columns that can be typed. `text` has no blanks at its ends. A word is known when the
// column's code table has it, and so are the cells' own choices that have no code ("CCE", "MME") and what an
// empty field is shown as ("NONE", "*"). A text that is longer than its field is taken in part.
CellReading ReadingOfCell(int column, std::string_view text);

// A column whose words stand for codes.
bool HasCodes(int column);

}  // namespace Dravel

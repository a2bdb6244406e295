#include "tradebook/BookGate.h"

#include <algorithm>
#include <iterator>

#include "tradebook/GridCommands.h"

namespace Dravel {

BookNeed NeedOf(std::uint32_t command) {
    static constexpr struct {
        std::uint16_t command;
        BookNeed need;
    } kNeeds[] = {
        // A save that cannot be is told in a box by whoever saves.
        {command::Save, BookNeed::Through},           {command::ExportCsv, BookNeed::Through},
        {command::Properties, BookNeed::Through},     {command::CopyHtml, BookNeed::Nothing},
        {command::FilterBar, BookNeed::Nothing},      {command::FieldChooser, BookNeed::Nothing},
        {command::ClearSelection, BookNeed::Nothing}, {command::SaveLayout, BookNeed::Nothing},
        {command::MultipleSort, BookNeed::Nothing},   {command::Copy, BookNeed::Nothing},
        {command::ImportReport, BookNeed::Nothing},
    };
    if (command < command::First || command > command::Last) return BookNeed::Nothing;
    const auto* const found = std::find_if(std::begin(kNeeds), std::end(kNeeds),
                                           [&](const auto& line) { return line.command == command; });
    return found == std::end(kNeeds) ? BookNeed::Change : found->need;
}

}  // namespace Dravel

// Which cell of a line goes into which field of a trade: an import mapping, matched with one file.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "entry/ImportReport.h"
#include "formatset/ImportMapping.h"
#include "formatset/TextHash.h"
#include "platform/Clock.h"
#include "records/TradeRecord.h"

namespace Dravel {

// Lives for one run. Borrows the mapping, which must not change meanwhile.
class ImportPlan {
 public:
    ImportPlan(const ImportMapping& mapping, const IClock& clock);

    // The file has a header: its first line maps the columns, by the mapping's field names, or by the import
    // keys when the mapping names none. False: not a file for this mapping.
    bool UseHeader(std::string_view firstLine);
    // The file has none: the mapping's fields are column numbers (a text that is no number is 0).
    void UseNumbers();

    // Cells of a line that are looked at.
    std::size_t CellsNeeded() const { return cellsNeeded_; }
    // Cells of the header; 0: the file has none.
    std::size_t HeaderCells() const { return headerCells_.size(); }
    // Overwrites the whole record with the cells and defaults. Numbers that do not read as a whole, and an
    // expiry date that could not be converted and is taken as it stands, are doubts.
    Doubts Fill(const std::vector<std::string_view>& cells, TradeRecord& record);

    // Whether one client is forced on every line.
    bool ForcesClient() const;

 private:
    using Put = void (*)(TradeRecord& record, std::string_view text);
    using Reads = bool (*)(std::string_view text);
    struct Field {
        std::size_t cell;
        Put put;
        Reads reads;  // whether a text is sound; nullptr: every text is
        std::uint8_t column;
        bool doubtfulDefault;
    };

    void Prepare(const std::array<std::int32_t, kMappedColumns>& cells);
    bool PutText(const Field& field, TradeRecord& record, std::string_view text);
    bool PutExpiry(TradeRecord& record, std::string_view text);

    const ImportMapping& mapping_;
    const IClock& clock_;
    TradeRecord defaults_{};  // what a line without cells would give
    Doubts defaultDoubts_;    // of the defaults that no cell can replace
    std::vector<Field> fields_;
    std::size_t cellsNeeded_ = 0;
    std::vector<std::string_view> headerCells_;  // only its size outlives UseHeader
    TextMap<std::string> expiries_;              // converted ones; empty: cannot be converted
};

}  // namespace Dravel

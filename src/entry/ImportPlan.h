// Which cell of a line goes into which field of a trade: an import mapping, matched with one file.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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
    // Overwrites the whole record with the cells and defaults. False: the expiry date could not be converted
    // and is taken as it stands.
    bool Fill(const std::vector<std::string_view>& cells, TradeRecord& record);

    // Whether one client is forced on every line.
    bool ForcesClient() const;

 private:
    using Put = void (*)(TradeRecord& record, std::string_view text);
    struct Field {
        std::size_t cell;
        Put put;
        bool expiry;
    };

    void Prepare(const std::array<std::int32_t, kMappedColumns>& cells);
    bool PutExpiry(TradeRecord& record, std::string_view text);

    const ImportMapping& mapping_;
    const IClock& clock_;
    TradeRecord defaults_{};  // what a line without cells would give
    bool defaultsSound_ = true;
    std::vector<Field> fields_;
    std::size_t cellsNeeded_ = 0;
    std::vector<std::string_view> headerCells_;
    TextMap<std::string> expiries_;  // converted ones; empty: cannot be converted
};

}  // namespace Dravel

// Who is told of every change of the book, so that it can be carried out again after a crash.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "records/TradeRecord.h"

namespace Dravel {

// Whose change it was. The numbers are those of the journal.
enum class ChangeKind : std::uint8_t { User = 1, Import = 2, Terminal = 3, Undo = 4, Restoration = 5 };

struct ChangeSource {
    ChangeKind kind = ChangeKind::User;
    std::string name;          // the user's; an import's file; a file of waiting trades; else empty
    std::uint32_t number = 0;  // the line in the import's file, or the number in the file of waiting trades
};

inline constexpr std::size_t kDraftCells = 32;  // as many as the book has columns

// A row that is being typed.
struct DraftTexts {
    std::uint32_t id = 0;     // of its own as long as the book is open
    std::uint32_t trade = 0;  // identifier of the trade that it lies over; 0: a new row
    std::array<std::string, kDraftCells> cells;
    std::bitset<kDraftCells> set;  // cells that somebody set
};

// User-interface thread. Each is told after it happened. `above` is the identifier of the trade in the row
// above, 0 for the top row. Nothing here throws: what cannot be kept is said in the status line.
class IChangeRecorder {
 public:
    virtual ~IChangeRecorder() = default;
    virtual void Put(const TradeRecord& trade, std::uint32_t above, const ChangeSource& source) noexcept = 0;
    virtual void Deleted(std::span<const std::uint32_t> identifiers, const ChangeSource& source) noexcept = 0;
    virtual void Moved(std::uint32_t identifier, std::uint32_t above) noexcept = 0;
};

}  // namespace Dravel

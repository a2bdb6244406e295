// What may be done with the book while it is being opened, or cannot be opened or kept.
#pragma once

#include <cstdint>
#include <string>

namespace Dravel {

// User-interface thread.
class IBookGate {
 public:
    virtual ~IBookGate() = default;
    // The book is there: stored trades, properties with their reports, and the trades that waited are in. Not
    // before may anything read the book as a whole, enter it, ask about it or save it.
    virtual bool Through() const = 0;
    // The user may change the book, and what he changes can be kept.
    virtual bool MayChange() const = 0;
    // Why the user may not, as a sentence; empty: he may.
    virtual std::string Refusal() const = 0;
};

// What a command needs of the book.
enum class BookNeed : std::uint8_t {
    Nothing,  // it is about the look of the rows
    Through,  // it reads the whole book, or depends on the properties
    Change,
};

inline bool Meets(const IBookGate& gate, BookNeed need) {
    return need == BookNeed::Nothing || (need == BookNeed::Through ? gate.Through() : gate.MayChange());
}

// Of a command of the grid's window. One that has no line in the table needs what changes the book needs: a
// command that nobody thought of must not get at a book that is not there.
BookNeed NeedOf(std::uint32_t command);

}  // namespace Dravel

// Who knows which trades of a waiting file are safe in the book.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "records/TradeRecord.h"

namespace Dravel {

// Whence a trade comes that waited.
struct WaitingSource {
    // Pending: it came while there was no grid. HeldBack: it came while the book was being opened.
    enum class Kind : std::uint8_t { Pending, HeldBack };
    Kind kind = Kind::Pending;
    std::string file;          // empty: none could be written
    std::uint32_t number = 0;  // in the file
};

// User-interface thread. Lives as long as the open book.
class IWaitingLedger {
 public:
    virtual ~IWaitingLedger() = default;
    // Whether a trade of this number of the file has been in the book, whatever became of it.
    virtual bool HoldsWaiting(const std::string& file, std::uint32_t number) = 0;
    // Calls `done` once all that has entered so far outlives the process. Not called: the book goes before
    // that is sure.
    virtual void WhenKept(std::function<void()> done) = 0;
};

// The open book, as trades that waited enter it.
class IWaitingBook {
 public:
    virtual ~IWaitingBook() = default;
    // Asks the terminal for the trade's contract, which may hand over other trades meanwhile or end the bar.
    // False: the book is gone.
    virtual bool Prepare(TradeRecord& record) = 0;
    // Changes whenever a trade has entered.
    virtual std::uint64_t Revision() const = 0;
    // Puts the trade into the book, which tells its journal where it comes from. The book may be gone
    // afterwards.
    virtual void Enter(TradeRecord& record, const WaitingSource& source) = 0;
};

}  // namespace Dravel

// Trades that the terminal handed over while the book could not take them.
#pragma once

#include <deque>
#include <utility>

#include "records/TradeRecord.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

// User-interface thread. Two lists, because they are entered differently: those that came while there was no
// grid are the pending items, reported once (30028); those that came while the book of a grid was not there
// yet enter as they would have, reported a second time, too (30034).
class WaitingTrades {
 public:
    void KeepPending(const TradeRecord& trade) { pending_.push_back(trade); }
    void KeepForBook(const TradeRecord& trade) { forBook_.push_back(trade); }
    // The pending items alone.
    void DropPending() { pending_.clear(); }

    // Enters the oldest trade, the pending items first, into a book that is there. False: none is left. The
    // terminal may call back while it is told, hand over further trades, and end the book.
    bool EnterNext(TradeBook& book) {
        const bool pending = !pending_.empty();
        std::deque<TradeRecord>& list = pending ? pending_ : forBook_;
        if (list.empty()) return false;
        const TradeRecord trade = list.front();
        list.pop_front();
        const std::uint64_t before = book.Revision();
        try {
            TradeRecord entered = trade;
            if (pending) {
                book.Add(entered);
            } else {
                book.AddFromHost(entered);
            }
        } catch (...) {
            if (book.Revision() == before) list.push_front(trade);  // it did not get in
            throw;
        }
        return true;
    }

 private:
    std::deque<TradeRecord> pending_, forBook_;
};

}  // namespace Dravel

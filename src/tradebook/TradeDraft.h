// Trades that are being typed: what stands in their cells until they are ready to enter the book.
#pragma once

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "records/ChangeRecorder.h"
#include "support/OuterCall.h"
#include "tradebook/TradeBook.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {

// A new row, or cells laid over a trade of the book. Cells that nobody set say what the trade says; those of
// a new row are empty.
struct TradeDraft {
    std::uint32_t id = 0;      // of its own among all drafts of the sheet's life
    TradeItem item = kNoItem;  // the trade that it lies over; kNoItem: a new row
    std::array<std::string, column::Count> cells;
    std::bitset<column::Count> set;  // cells that the user or the cascade set

    bool New() const { return item == kNoItem; }
    void Set(int column, std::string_view text) {
        cells[static_cast<std::size_t>(column)] = text;
        set.set(static_cast<std::size_t>(column));
    }
};

// The text of a cell, into `text` (emptied first).
inline void DraftCell(const TradeDraft& draft, const TradeBook& book, int column, std::string& text) {
    text.clear();
    if (draft.set.test(static_cast<std::size_t>(column))) {
        text = draft.cells[static_cast<std::size_t>(column)];
    } else if (!draft.New()) {
        CellText(book.Record(draft.item), column, text);
    }
}

// The same row as the journal keeps it.
inline DraftTexts TextsOf(const TradeDraft& draft, const TradeBook& book) {
    static_assert(column::Count == kDraftCells);
    return {draft.id, draft.New() ? 0u : +book.Record(draft.item).veltTradeID, draft.cells, draft.set};
}

// All drafts of a grid. User-interface thread. A draft stays at its address until it is removed, and for the
// calls that are under way then: one of them may be working on it.
class DraftSheet {
 public:
    // The new rows, the youngest on top.
    std::uint32_t NewCount() const { return static_cast<std::uint32_t>(fresh_.size()); }
    TradeDraft& NewAt(std::uint32_t row) { return *fresh_[fresh_.size() - 1 - row]; }
    const TradeDraft& NewAt(std::uint32_t row) const { return *fresh_[fresh_.size() - 1 - row]; }
    std::uint32_t RowOf(const TradeDraft& draft) const {  // of a new row
        const auto found = std::find_if(fresh_.begin(), fresh_.end(),
                                        [&](const auto& kept) { return kept.get() == &draft; });
        return static_cast<std::uint32_t>(fresh_.end() - found - 1);
    }
    TradeDraft& AddOnTop() { return Add(fresh_); }
    // One of an earlier run, with its identifier; they come in the order of these. Of a trade that has gone:
    // nothing.
    void Restore(const DraftTexts& texts, const TradeBook& book);
    // Identifiers up to this one were given in an earlier run.
    void GoOnBehind(std::uint32_t lastID) { lastID_ = std::max(lastID_, lastID); }
    template <class Deal>
    void ForEach(const Deal& deal) const {
        for (const auto* const drafts : {&fresh_, &over_}) {
            for (const auto& draft : *drafts)
                deal(*draft);
        }
    }
    TradeDraft* Find(std::uint32_t id) const {
        for (const auto* const drafts : {&fresh_, &over_}) {
            for (const auto& draft : *drafts) {
                if (draft->id == id) return draft.get();
            }
        }
        return nullptr;
    }

    // The draft that lies over a trade; nullptr: none.
    TradeDraft* Over(TradeItem item) const {
        const auto found =
            std::find_if(over_.begin(), over_.end(), [&](const auto& kept) { return kept->item == item; });
        return found == over_.end() ? nullptr : found->get();
    }
    TradeDraft& LayOver(TradeItem item) {
        if (TradeDraft* const there = Over(item)) return *there;
        TradeDraft& draft = Add(over_);
        draft.item = item;
        return draft;
    }

    void Remove(const TradeDraft& draft) {
        Drafts& drafts = draft.New() ? fresh_ : over_;
        const auto found = std::find_if(drafts.begin(), drafts.end(),
                                        [&](const auto& kept) { return kept.get() == &draft; });
        if (found == drafts.end()) return;
        KeepForCalls(std::move(*found));
        drafts.erase(found);
    }
    void Clear() {
        for (Drafts* const drafts : {&fresh_, &over_}) {
            for (auto& draft : *drafts)
                KeepForCalls(std::move(draft));
            drafts->clear();
        }
    }
    bool Empty() const { return fresh_.empty() && over_.empty(); }
    std::uint32_t Count() const { return static_cast<std::uint32_t>(fresh_.size() + over_.size()); }

 private:
    using Drafts = std::vector<std::unique_ptr<TradeDraft>>;
    TradeDraft& Add(Drafts& drafts) {
        drafts.push_back(std::make_unique<TradeDraft>());
        drafts.back()->id = ++lastID_;
        return *drafts.back();
    }

    Drafts fresh_, over_;  // fresh_: the last is the top row
    std::uint32_t lastID_ = 0;
};

inline void DraftSheet::Restore(const DraftTexts& texts, const TradeBook& book) {
    const TradeItem item = texts.trade == 0 ? kNoItem : book.ItemOf(static_cast<std::int32_t>(texts.trade));
    if (texts.trade != 0 && book.RowOf(item) == kNoBookRow) return;
    TradeDraft& draft = item == kNoItem ? AddOnTop() : LayOver(item);
    draft.id = texts.id;
    draft.cells = texts.cells;
    draft.set = texts.set;
    GoOnBehind(texts.id);
}

// What trade entry asks of the grid that shows the drafts.
class IDraftView {
 public:
    virtual ~IDraftView() = default;
    virtual void ShowColumn(int column) = 0;  // one that was hidden comes to the right end
    virtual void DraftChanged(const TradeDraft& draft) = 0;
    // The draft became the trade `item` of the book, or one that it changed. The draft is removed.
    virtual void DraftEntered(TradeDraft& draft, TradeItem item) = 0;
    // Puts a sentence about the cell that is being ended into the status line.
    virtual void Say(std::string sentence) = 0;
    // Makes the cell the current one and takes the keyboard. Nothing when the draft is gone by now.
    virtual void GoTo(std::uint32_t draftID, int column) = 0;
    // False: the row, or the window that shows it, went while the terminal or the user was asked.
    virtual bool Holds(std::uint32_t draftID) const = 0;
    virtual bool HasCurrentCell() const = 0;                   // false too without a window
    virtual std::vector<TradeItem> SelectedItems() const = 0;  // trades of the selected rows
    // The current row, if it is one that is being typed. False: it is not.
    virtual bool RemoveCurrentDraft() = 0;
    virtual void TakeKeyboard() = 0;
};

}  // namespace Dravel

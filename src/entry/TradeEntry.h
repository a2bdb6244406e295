// Typing a trade, cell by cell: the choices of a cell, what the end of its edit brings about, and the moment
// when the row is ready to enter the book.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "host/Host.h"
#include "host/User.h"
#include "tradebook/TradeDraft.h"
#include "tradebook/base/UiThread.h"

namespace Dravel {

// How the end of an edit went.
enum class EditEnd : std::uint8_t {
    Kept,       // the text stands in the draft
    Refused,    // it is none of the terminal's choices: the cell says what it said before
    Committed,  // the row entered the book; the draft is gone
    Spoken,     // the text stands there, and the user was told what is wrong with the row
};

// User-interface thread. The terminal may call back while it is asked: drafts stay where they are meanwhile.
class TradeEntry {
 public:
    // All outlive it.
    TradeEntry(IHost& host, IUser& user, TradeBook& book, IUiThread& ui)
        : host_(host), user_(user), book_(book), ui_(ui) {}

    // The drop-down of a cell while `typed` stands in its editor; empty: the cell has no list now.
    void Choices(const TradeDraft& draft, int column, std::string_view typed,
                 std::vector<std::string>& choices);
    // The user ended the edit of a cell with this text.
    EditEnd EndEdit(TradeDraft& draft, int column, std::string_view text, IDraftView& view);

    // Where Enter goes from a cell: the next one that is to be filled; -1: the row lacks nothing.
    int NextColumn(const TradeDraft& draft, int column) const;
    // What a row still lacks, for the status line; empty: nothing.
    std::string Missing(const TradeDraft& draft) const;

 private:
    std::string Cell(const TradeDraft& draft, int column) const;
    bool Filled(const TradeDraft& draft, int column) const { return !Cell(draft, column).empty(); }
    bool WithoutExpiry(const TradeDraft& draft) const;
    bool IsOption(const TradeDraft& draft) const;

    bool ChoicesOf(const TradeDraft& draft, int column, std::vector<std::string>& choices);
    void Ask(std::uint32_t kind, std::vector<std::string> texts, std::vector<std::string>& choices);
    bool Complete(const TradeDraft& draft, int column, std::string& text);

    void Cascade(TradeDraft& draft, int column, IDraftView& view);
    void ExchangeChosen(TradeDraft& draft);
    bool OfferNext(TradeDraft& draft, int column, IDraftView& view);
    bool FindContract(TradeDraft& draft, IDraftView& view);
    EditEnd TryCommit(TradeDraft& draft, IDraftView& view);
    bool Validate(const TradeDraft& draft, IDraftView& view);
    EditEnd Commit(TradeDraft& draft, IDraftView& view);

    IHost& host_;
    IUser& user_;
    TradeBook& book_;
    IUiThread& ui_;
    // The last list asked for: the end of one cell asks for what the next cell then offers.
    std::uint32_t askedKind_ = 0;
    std::vector<std::string> askedTexts_;
    std::vector<std::string> answer_;
};

}  // namespace Dravel

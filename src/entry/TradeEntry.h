// Typing a trade, cell by cell: the choices of a cell, what the end of its edit brings about, and the moment
// when the row is ready to enter the book.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Host.h"
#include "host/User.h"
#include "tradebook/EntryPort.h"

namespace Dravel {

// User-interface thread. The terminal may call back while it is asked, and so may anything else while the
// user is: what was asked for by then is looked for anew, and a row, or a grid, that went brings nothing
// about.
class TradeEntry {
 public:
    // All outlive it.
    TradeEntry(IHost& host, IUser& user, TradeBook& book, IUiThread& ui)
        : host_(host), user_(user), book_(book), ui_(ui) {}

    // What IEntry says of them.
    void Choices(const TradeDraft& draft, int column, std::string_view typed,
                 std::vector<std::string>& choices);
    EditEnd EndEdit(TradeDraft& draft, int column, std::string_view text, EditEnding ending,
                    IDraftView& view);
    int NextColumn(const TradeDraft& draft, int column) const;
    std::string Missing(const TradeDraft& draft) const;
    void Delete(IDraftView& view);

 private:
    std::string Cell(const TradeDraft& draft, int column) const;
    bool Filled(const TradeDraft& draft, int column) const { return !Cell(draft, column).empty(); }
    bool WithoutExpiry(const TradeDraft& draft) const;
    bool IsOption(const TradeDraft& draft) const;

    // What the cell can be chosen from, valid until the next call; empty: the cell takes any text.
    std::span<const std::string> ChoicesOf(const TradeDraft& draft, int column);
    std::span<const std::string> Ask(const TradeDraft& draft, std::uint32_t kind,
                                     std::vector<std::string> texts);
    bool Complete(const TradeDraft& draft, int column, std::string& text);
    EditEnd Understand(const TradeDraft& draft, int column, std::string& text, EditEnding ending,
                       IDraftView& view);
    bool Completes(const TradeDraft& draft, int column, bool changed) const;
    bool Change(TradeDraft& draft, int column, std::string_view text, IDraftView& view);
    bool TakeContractOf(TradeDraft& draft, std::string_view securityID, IDraftView& view);

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
    // The last list asked for, and the row it was for: the end of one cell asks for what the next cell then
    // offers. Another row asks anew, and so does a cell that was offered nothing.
    std::uint32_t askedKind_ = 0;
    std::uint32_t askedRow_ = 0;
    std::vector<std::string> askedTexts_;
    std::vector<std::string> answer_;
};

}  // namespace Dravel

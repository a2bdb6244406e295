// The opening of the book: whose it is, what is loaded of it and when, and what may be done with it until
// then. A book that cannot be had is tried again for as long as its bar lives; it is never taken for an empty
// one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/User.h"
#include "platform/Files.h"
#include "records/BookFile.h"
#include "support/Log.h"
#include "tradebook/BookGate.h"
#include "tradebook/TradeBook.h"

namespace Dravel {

enum class BookState : std::uint8_t {
    Loading,    // on its way in; so it begins
    Trying,     // it could not be opened and is tried again
    ShownOnly,  // another terminal owns it: its last saved trades are shown
    ReadOnly,   // loaded and reported, but nothing can be written where it lies
    Open,
};

// What an opening leaves to others. Every step may end the bar: the opening is stopped then. One that throws
// is carried out again at a later try, the changes together with the load in front of them.
class IOpeningSteps {
 public:
    virtual ~IOpeningSteps() = default;
    // The stored trades are in the book: what the load met on the way is to be told once the opening is
    // through.
    virtual void TellDamage(const KRV::VELT::TradeLoadReport& report) = 0;
    // The book is ours: carries out again what was changed since it was saved. A failure of the disk begins
    // the opening anew.
    virtual Dravel::FileStatus RestoreChanges() = 0;
    // Trades of another terminal are about to be shown: their look, without a word to the terminal.
    virtual void ShowLook() = 0;
    // Loads the properties and reports the book as they ask. False: not yet, ask again at the next try.
    virtual bool ReportBook() = 0;
    // Enters and reports the trades that waited for the book, also those that come meanwhile.
    virtual void EnterWaiting() = 0;
    // State, refusal or reason is another one.
    virtual void OpeningChanged() = 0;
};

// User-interface thread. The terminal may call back while it is asked or told; a try under way then goes on.
class BookOpening final : public IBookGate {
 public:
    static constexpr std::uint32_t kTryEvery = 2000;  // milliseconds
    // Loads that the disk breaks off before what was read of the book counts as all that there is.
    static constexpr int kPatience = 5;

    // All outlive it.
    struct Parts {
        BookFile& file;
        TradeBook& book;
        IFiles& files;
        IUser& user;
        ILog& log;
        IOpeningSteps& steps;
    };
    explicit BookOpening(const Parts& parts) : parts_(parts) {}

    // Goes on with the opening as far as it gets. To be called at once and then every kTryEvery until
    // Through(). Lets no exception out.
    void Try() noexcept;
    // The bar goes: a try under way ends behind the step that runs, and no other begins.
    void Stop() { stopped_ = true; }

    BookState State() const { return state_; }
    bool Through() const override { return state_ >= BookState::ReadOnly; }
    bool MayChange() const override { return state_ == BookState::Open; }
    std::string Refusal() const override;
    // Whether the rows of the grid are those of the book.
    bool RowsKnown() const { return state_ >= BookState::ShownOnly; }
    // What the status line says in the place of "Saved" and "Not saved"; empty: just these.
    std::string_view Status() const;
    // What stands in the place of the rows; empty: the rows.
    std::string_view InsteadOfRows() const {
        return state_ == BookState::Trying ? std::string_view(reason_) : std::string_view();
    }

 private:
    // False: the opening goes no further for now.
    using Step = bool (BookOpening::*)();
    bool Claim();
    bool LoadStored();
    bool RestoreChanges();
    bool ReportBook();
    bool EnterWaiting();
    bool GetThrough();

    void GoOn();
    bool ShowLastSaved(const FileStatus& claimed);
    KRV::VELT::TradeLoadReport LoadFile();
    bool Fail(std::string_view what);
    bool Fail(const FileStatus& status);
    bool FailWith(const std::string& reason);
    void Abandon(std::string_view what) noexcept;
    void Become(BookState state, std::string reason = {});

    Parts parts_;
    BookState state_ = BookState::Loading;
    std::string reason_;      // why it is tried again
    std::uint32_t code_ = 0;  // the system's error why the book was not ours at the last try, for the log
    std::size_t step_ = 0;    // that is next
    bool readOnly_ = false;   // nothing can be written where the book lies
    bool running_ = false;    // a try is under way
    bool stopped_ = false;
    int brokenOff_ = 0;          // loads that the disk broke off
    FileInfo shown_;             // the file of another terminal's book as it was shown
    std::uint32_t noticed_ = 0;  // states that a notice told of, a bit each
};

}  // namespace Dravel

// Saves the book: builds the frames, hands them to the writer thread, and tells the user how it went.
#pragma once

#include <memory>
#include <string_view>

#include "host/User.h"
#include "records/ADAWriteAsync.h"
#include "records/BookFile.h"
#include "tradebook/EntryPort.h"

namespace Dravel {

// The box that every save ends in that failed, or could not begin.
void TellSaveFailed(IUser& user, std::string_view reason);

// User-interface thread. One save runs at a time; one that is asked for while another runs follows it, with
// the book as it is then: however often the user asks, at most one image of the book waits.
class TradeSaver {
 public:
    // `parts` outlive the saver.
    TradeSaver(const BookParts& parts, IUser& user) : parts_(parts), user_(user) {}
    // Ends the writer thread, after a save that still runs.
    ~TradeSaver();
    TradeSaver(const TradeSaver&) = delete;
    TradeSaver& operator=(const TradeSaver&) = delete;

    // Has the writer thread carry out what the journal is told.
    void StartJournal();
    // Clears the changed flag and begins. The result comes as the notice "Dravel Save Successfully", or as a
    // box that says why not, with the changed flag set again. Another box tells when the save replaced what
    // another program had written.
    void Save();
    // The same, and returns when the result is known. False: it failed.
    bool SaveAndWait();
    // Returns when no save runs or waits any more, and their results are known.
    void Wait();

 private:
    struct Run;  // a save on its way, shared with the writer thread

    KRV::Base::CKRVADAWriteAsync& Writer();
    void MarkJournal();
    void Begin();
    void Finish(Run& run);
    void TellOfOutsideChange(std::string_view backup);
    void TellOfDrafts();
    void Fail(std::string_view reason);

    BookParts parts_;
    IUser& user_;
    std::unique_ptr<KRV::Base::CKRVADAWriteAsync> writer_;  // from the first save or change on
    std::shared_ptr<Run> running_;
    std::shared_ptr<ImageMemory> imageMemory_ = std::make_shared<ImageMemory>();
    bool again_ = false;
    bool failed_ = false;  // the save that ended last
};

}  // namespace Dravel

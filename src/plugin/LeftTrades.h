// Files of waiting trades that an earlier run left behind.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/User.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "records/WaitingFile.h"
#include "records/WaitingLedger.h"
#include "support/Log.h"

namespace Dravel {

// User-interface thread. Lives as long as the library; to be used by the process that owns the book, once
// that is open.
class LeftTrades {
 public:
    LeftTrades(IFiles& files, const IClock& clock, ILog& log, std::filesystem::path folder)
        : files_(files), clock_(clock), log_(log), folder_(std::move(folder)) {}

    // Asks about each file that no process holds, if it has trades that were never in the book: Yes adds
    // them, No drops them, Cancel leaves them to the next opening, and so does a box that nobody answers.
    // Call it in posted work: it returns when all are answered, or the book is gone.
    void Ask(IUser& user, IWaitingLedger& ledger, IWaitingBook& book);
    // The ledger is no more: what was added and is not kept is asked about again.
    void BookGone() {
        added_.clear();
        gone_ = true;
    }

 private:
    struct Left {
        std::unique_ptr<WaitingFile> file;
        WaitingContents contents;
        std::int64_t time = 0;  // of the file
    };
    std::vector<Left> Find(IWaitingLedger& ledger);
    bool Add(Left& left, IWaitingBook& book);
    void Remove(Left& left);
    void Kept(const WaitingFile* file);

    IFiles& files_;
    const IClock& clock_;
    ILog& log_;
    std::filesystem::path folder_;
    std::vector<Left> added_;
    bool gone_ = false;  // the book, since Ask began
};

}  // namespace Dravel

// Which trades that waited for the book are safe, as its journal knows it.
#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "records/BookJournal.h"
#include "records/WaitingLedger.h"

namespace Dravel {

// Belongs to the open book; disk and journal outlive it. A put names the file of waiting trades that its
// trade came from, so that no trade enters twice whatever became of it in the book.
class JournalLedger final : public IWaitingLedger {
 public:
    // `folder` as the journal's.
    JournalLedger(IFiles& files, BookJournal& journal, std::filesystem::path folder)
        : files_(files), journal_(journal), folder_(std::move(folder)) {}

    // Reads the journals and the history for each file that is asked about.
    bool HoldsWaiting(const std::string& file, std::uint32_t number) override;
    void WhenKept(std::function<void()> done) override {
        waits_.emplace_back(journal_.Told(), std::move(done));
    }
    // Calls those whose changes are on the disk by now. To be called now and then.
    void Look();

 private:
    void ReadFolder(const std::filesystem::path& folder);
    void ReadFile(const std::filesystem::path& path);

    IFiles& files_;
    BookJournal& journal_;
    std::filesystem::path folder_;
    std::string asked_;                // the file that was asked about last
    std::set<std::uint32_t> numbers_;  // of its trades that have been in the book
    std::vector<std::pair<std::uint64_t, std::function<void()>>> waits_;
};

}  // namespace Dravel

// The journals of the past: one file a month, in which each journal stands as it was when its book was saved.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "platform/Clock.h"
#include "platform/Files.h"

namespace Dravel {

// One thread at a time. Disk and clock outlive it.
class JournalHistory {
 public:
    JournalHistory(IFiles& files, IClock& clock, std::filesystem::path folder)
        : files_(files), clock_(clock), folder_(std::move(folder)) {}

    // Appends the first `length` bytes of a journal, whole frames all, to the file of the current month (UTC)
    // and returns when they are on the disk. `mayHavePart`: an earlier run may have begun this; what stands
    // there already is told by the journal's identifier and the frames' numbers, and left out. A failure
    // leaves the history as it was. `between`, if any, is called between blocks.
    FileStatus Append(IFile& journal, std::uint64_t length, std::uint64_t id, bool mayHavePart,
                      const std::function<void()>& between);

 private:
    std::filesystem::path MonthPath() const;

    IFiles& files_;
    IClock& clock_;
    std::filesystem::path folder_;
};

}  // namespace Dravel

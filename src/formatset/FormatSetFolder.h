// The folder in which the import format sets lie, one file a set.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "formatset/FormatSet.h"
#include "platform/Files.h"

namespace Dravel {

// The longest file of a set; a longer one is none. Above what the set's dialog can make.
inline constexpr std::size_t kFormatSetLimit = 256 * 1024;
inline constexpr std::size_t kSetNameLimit = 100;

// Whether a set may be called so: a plain name for a file on every disk that a terminal may use, without
// separators, drive, device names, or a blank or dot at its end.
bool IsSetName(const std::filesystem::path& name);

// Names are the files' names without ".CSV"; they are one when they differ in the case of ASCII letters only.
// User-interface thread.
class FormatSetFolder {
 public:
    FormatSetFolder(IFiles& files, std::filesystem::path folder)
        : files_(files), folder_(std::move(folder)) {}

    // In the order of their letters. Empty without a folder.
    std::vector<std::filesystem::path> Names() const;
    // The set of that name as it is spelt in the folder; empty: there is none.
    std::filesystem::path Find(const std::filesystem::path& name) const;

    // `set` is touched only on success. A file that is too long or holds a zero byte is no set:
    // FileFault::Other, code 0.
    FileStatus Load(const std::filesystem::path& name, FormatSet& set) const;
    // Writes the file beside the old one and swaps; makes the folder. After a failure the old set stands.
    FileStatus Save(const std::filesystem::path& name, const FormatSet& set, ColumnTexts titles) const;
    // Exists: there is a set of the new name already.
    FileStatus Rename(const std::filesystem::path& from, const std::filesystem::path& to) const;
    FileStatus Remove(const std::filesystem::path& name) const;
    // A name of which there is no set yet: `wanted`, or `wanted` with a number behind it.
    std::filesystem::path FreeName(const std::filesystem::path& wanted) const;

 private:
    std::filesystem::path PathOf(const std::filesystem::path& name) const;

    IFiles& files_;
    std::filesystem::path folder_;
};

inline constexpr std::size_t kFirstLineLimit = std::size_t{16} * 1024 * 1024;

// The first line of a file, without line end and byte-order mark; of one that is longer than the limit the
// cells that end within it. Other programs may hold the file open.
FileStatus FirstLineOf(IFiles& files, const std::filesystem::path& path, std::string& line);

}  // namespace Dravel

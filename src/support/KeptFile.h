// A small text file that is never replaced before it is known what it holds.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "formatset/TextFile.h"
#include "platform/Files.h"

namespace Dravel {

// What the user keeps in it outlives a moment in which another program holds the file: as long as it is there
// and cannot be read, Write refuses. One thread at a time.
class KeptFile {
 public:
    enum class State : std::uint8_t {
        Untried,
        Read,
        Missing,     // there is none; writing makes it
        Unreadable,  // it is there, and the system does not hand it out: to be tried again
        Damaged,     // it was read, and is not what it should be: a copy is kept before it is written over
        LeftAlone,   // the user goes on without it: neither read nor written any more
    };
    // Takes over what the text holds, also a part of it; false: it is damaged.
    using Taker = std::function<bool(const std::string& text)>;

    // A file longer than `limit` bytes is a damaged one.
    KeptFile(IFiles& files, std::filesystem::path path, std::size_t limit = kTextFileLimit)
        : files_(files), path_(std::move(path)), limit_(limit) {}

    // Reads the file, whatever was known of it, and hands its text to `take`. One that is left alone stays
    // so.
    State Try(const Taker& take);
    State Now() const { return state_; }
    // Whether it is known what the file holds, or the user goes on without that.
    bool Known() const { return state_ != State::Untried && state_ != State::Unreadable; }
    // Why it is unreadable.
    const FileStatus& Fault() const { return fault_; }
    void LeaveAlone() { state_ = State::LeftAlone; }

    // Puts a copy of a damaged file beside it: ".damaged" behind its name, ".damaged2" and so on when there
    // are older ones. Once; a failure can be tried again.
    FileStatus KeepDamaged();
    // What the user is told then, `what` as in "The settings".
    std::string DamageText(std::string_view what) const;
    // As WriteTextFile. Fails before the file is known, when it is left alone, and as long as a damaged one
    // has no copy.
    FileStatus Write(std::string_view text, bool patient);

    const std::filesystem::path& Path() const { return path_; }

 private:
    FileStatus CopyTo(const std::filesystem::path& path);

    IFiles& files_;
    std::filesystem::path path_;
    std::size_t limit_;
    State state_ = State::Untried;
    FileStatus fault_;
    std::filesystem::path copy_;  // of the damaged file; empty: there is none yet
};

}  // namespace Dravel

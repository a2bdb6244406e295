// The day's log file: takes lines, survives a disk that does not.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace Dravel {

// One thread at a time. Disk borrowed.
class LogFile {
 public:
    LogFile(IFiles& files, std::filesystem::path folder) : files_(files), folder_(std::move(folder)) {}

    // Opens the file of `day` ("yyyyMMdd"), empty when it is new, and closes the one before.
    bool Begin(std::string_view day);
    // Writes `lines` at the end of the day's file. False: not all of it arrived; called again with the same
    // lines it goes on behind what did, so that no line is cut or stands there twice.
    bool Append(std::string_view day, std::string_view lines);
    // Lets go of the file until the next call.
    void Close();
    // Bytes in the open file.
    std::uint64_t Size() const { return size_; }

 private:
    std::size_t Arrived(std::string_view lines) const;

    IFiles& files_;
    std::filesystem::path folder_, path_;
    std::string day_;
    std::unique_ptr<IFile> file_;
    std::uint64_t size_ = 0;
    bool unfinished_ = false;  // the last Append failed
    std::uint64_t begin_ = 0;  // where it had begun
};

}  // namespace Dravel

#include "support/LogFile.h"

#include <algorithm>
#include <utility>

#include "support/LogArchive.h"

namespace Dravel {

bool LogFile::Begin(std::string_view day) {
    if (file_ && day_ == day) return true;
    Close();
    if (day_ != day) unfinished_ = false;
    day_ = day;
    path_ = folder_ / LogFileName(day);
    FileStatus status = files_.Open(path_, FileMode::Append, FileShare::DenyNone, file_);
    if (status.fault == FileFault::PathNotFound && files_.MakeFolders(folder_)) {
        status = files_.Open(path_, FileMode::Append, FileShare::DenyNone, file_);
    }
    if (status && !file_->Size(size_)) Close();
    return file_ != nullptr;
}

bool LogFile::Append(std::string_view day, std::string_view lines) {
    if (!Begin(day)) return false;
    std::size_t arrived = 0;
    if (std::exchange(unfinished_, true)) {
        arrived = Arrived(lines);
    } else {
        begin_ = size_;
    }
    lines.remove_prefix(arrived);
    if (!file_->Write(lines.data(), lines.size())) {
        Close();
        return false;
    }
    unfinished_ = false;
    size_ += lines.size();
    return true;
}

void LogFile::Close() {
    file_.reset();
}

// Bytes of `lines` that stand at the end of the file already. Another program may have written there, too:
// what is not ours byte for byte counts as nothing.
std::size_t LogFile::Arrived(std::string_view lines) const {
    const std::uint64_t count = size_ - std::min(begin_, size_);
    std::unique_ptr<IFile> file;
    if (count == 0 || count > lines.size() ||
        !files_.Open(path_, FileMode::Read, FileShare::DenyNone, file) || !file->Seek(begin_)) {
        return 0;
    }
    std::string there(static_cast<std::size_t>(count), '\0');
    std::size_t got = 0;
    return file->Read(there.data(), there.size(), got) && got == count && lines.starts_with(there) ? got : 0;
}

}  // namespace Dravel

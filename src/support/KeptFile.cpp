#include "support/KeptFile.h"

#include <memory>

#include "platform/FileTools.h"

namespace Dravel {

namespace {

constexpr int kMostCopies = 9999;

bool TooLong(const FileStatus& status) {
    return status.fault == FileFault::Other && status.code == 0;
}

}  // namespace

KeptFile::State KeptFile::Try(const Taker& take) {
    if (state_ == State::LeftAlone) return state_;
    std::string text;
    fault_ = ReadTextFile(files_, path_, text, limit_);
    if (fault_) {
        state_ = take(text) ? State::Read : State::Damaged;
    } else if (Missing(fault_)) {
        state_ = State::Missing;
    } else {
        state_ = TooLong(fault_) ? State::Damaged : State::Unreadable;
    }
    copy_.clear();
    return state_;
}

// A second name where the disk knows such a thing: the file itself stays where it is, because a part of it
// may still be good.
FileStatus KeptFile::KeepDamaged() {
    if (state_ != State::Damaged || !copy_.empty()) return {};
    FileStatus status{FileFault::Exists, 0};
    for (int n = 1; status.fault == FileFault::Exists && n <= kMostCopies; ++n) {
        std::filesystem::path beside = path_;
        beside += n == 1 ? std::string(".damaged") : ".damaged" + std::to_string(n);
        status = files_.Link(path_, beside);
        if (!status && status.fault != FileFault::Exists) status = CopyTo(beside);
        if (status) copy_ = beside;
    }
    return status;
}

FileStatus KeptFile::CopyTo(const std::filesystem::path& path) {
    FileInfo info;
    if (files_.Info(path, info)) return {FileFault::Exists, 0};
    std::unique_ptr<IFile> from;
    const FileStatus status = files_.Open(path_, FileMode::Read, FileShare::DenyNone, from);
    return status ? CopyWhole(files_, *from, path) : status;
}

FileStatus KeptFile::Write(std::string_view text, bool patient) {
    if (!Known() || state_ == State::LeftAlone) return fault_ ? FileStatus{FileFault::InUse, 0} : fault_;
    if (const FileStatus status = KeepDamaged(); !status) return status;
    const FileStatus status = WriteTextFile(files_, path_, text, patient);
    if (status) state_ = State::Read;
    return status;
}

std::string KeptFile::DamageText(std::string_view what) const {
    return std::string(what) + " were damaged: what could not be read has its default now. " +
           (copy_.empty() ? "The old file stays as it is."
                          : "The old file is kept as " + copy_.filename().string() + ".");
}

}  // namespace Dravel

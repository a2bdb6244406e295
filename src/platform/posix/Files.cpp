// The real disk through POSIX calls. Folder changes are synchronised at once, so that their order survives a
// power cut.
#include "platform/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace Dravel {

namespace {

namespace fs = std::filesystem;

FileFault FaultOf(int error) {
    switch (error) {
        case ENOENT:
            return FileFault::NotFound;
        case ENOTDIR:
            return FileFault::PathNotFound;
        case EEXIST:
        case ENOTEMPTY:
            return FileFault::Exists;
        case EWOULDBLOCK:
        case EBUSY:
        case ETXTBSY:
            return FileFault::InUse;
        case EACCES:
        case EPERM:
        case EROFS:
            return FileFault::Denied;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return FileFault::Full;
        default:
            return FileFault::Other;
    }
}

FileStatus Failed(int error) {
    return {FaultOf(error), static_cast<std::uint32_t>(error)};
}
FileStatus LastStatus() {
    return Failed(errno);
}

// The system has one error for a missing file and a missing folder; the callers need two.
FileStatus LastStatus(const fs::path& path) {
    const int error = errno;
    struct stat info;
    const fs::path folder = path.parent_path();
    if (error == ENOENT && !folder.empty() && ::stat(folder.c_str(), &info) != 0) {
        return {FileFault::PathNotFound, ENOENT};
    }
    return Failed(error);
}

template <class Call>
auto Retried(Call call) {
    decltype(call()) result;
    do {
        result = call();
    } while (result < 0 && errno == EINTR);
    return result;
}

FileStatus SyncFolder(const fs::path& folder) {
    const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return LastStatus();
    FileStatus status;
    if (::fsync(fd) != 0 && errno != EINVAL) status = LastStatus();
    ::close(fd);
    return status;
}

FileStatus SyncFolderOf(const fs::path& path) {
    return SyncFolder(path.parent_path());
}

class PosixFile final : public IFile {
 public:
    // `newName` is set when the handle may have made the file.
    explicit PosixFile(int fd, fs::path newName = {}) : fd_(fd), newName_(std::move(newName)) {}
    ~PosixFile() override { Close(); }

    FileStatus Read(void* into, std::size_t capacity, std::size_t& got) override {
        got = 0;
        while (got < capacity) {
            const ssize_t n =
                Retried([&] { return ::read(fd_, static_cast<char*>(into) + got, capacity - got); });
            if (n < 0) return LastStatus();
            if (n == 0) break;
            got += static_cast<std::size_t>(n);
        }
        return {};
    }

    // A short count is asked again: the next call gives the reason.
    FileStatus Write(const void* bytes, std::size_t count) override {
        std::size_t done = 0;
        while (done < count) {
            const ssize_t n =
                Retried([&] { return ::write(fd_, static_cast<const char*>(bytes) + done, count - done); });
            if (n < 0) return LastStatus();
            if (n == 0) return {FileFault::Full, 0};
            done += static_cast<std::size_t>(n);
        }
        return {};
    }

    FileStatus Flush() override {
        if (::fsync(fd_) != 0) return LastStatus();
        if (newName_.empty()) return {};
        const FileStatus status = SyncFolderOf(newName_);
        if (status) newName_.clear();
        return status;
    }

    FileStatus Seek(std::uint64_t position) override {
        return ::lseek(fd_, static_cast<off_t>(position), SEEK_SET) < 0 ? LastStatus() : FileStatus{};
    }

    FileStatus Size(std::uint64_t& bytes) override {
        struct stat info;
        if (::fstat(fd_, &info) != 0) return LastStatus();
        bytes = static_cast<std::uint64_t>(info.st_size);
        return {};
    }

    FileStatus Cut(std::uint64_t bytes) override {
        if (::ftruncate(fd_, static_cast<off_t>(bytes)) != 0) return LastStatus();
        return Seek(bytes);
    }

    void RemoveOnClose(const fs::path& path) { unlinkOnClose_ = path; }

    FileStatus Close() override {
        if (fd_ < 0) return {};
        if (!unlinkOnClose_.empty()) ::unlink(unlinkOnClose_.c_str());
        return ::close(std::exchange(fd_, -1)) != 0 && errno != EINTR ? LastStatus() : FileStatus{};
    }

 private:
    int fd_;
    fs::path newName_;  // until the name, too, is on the disk
    fs::path unlinkOnClose_;
};

int OpenFlags(FileMode mode) {
    switch (mode) {
        case FileMode::Read:
            return O_RDONLY;
        case FileMode::ReadWrite:
            return O_RDWR;
        case FileMode::Create:
            return O_RDWR | O_CREAT;  // emptied later, once the lock is held
        case FileMode::Append:
            return O_WRONLY | O_APPEND | O_CREAT;
    }
    return O_RDONLY;
}

// Lock that stands for the share mode; 0: none. Writers share among themselves and shut out who denies
// writing.
int LockFor(FileMode mode, FileShare share) {
    if (share == FileShare::DenyAll) return LOCK_EX;
    if (mode == FileMode::Read) return share == FileShare::DenyWrite ? LOCK_SH : 0;
    return share == FileShare::DenyWrite ? LOCK_EX : LOCK_SH;
}

bool SameFile(int fd, const fs::path& path) {
    struct stat open, named;
    return ::fstat(fd, &open) == 0 && ::stat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
           open.st_dev == named.st_dev;
}

class PosixFiles final : public IFiles {
 public:
    FileStatus Open(const fs::path& path, FileMode mode, FileShare share,
                    std::unique_ptr<IFile>& file) override {
        const int fd = Retried([&] { return ::open(path.c_str(), OpenFlags(mode) | O_CLOEXEC, 0666); });
        if (fd < 0) return LastStatus(path);
        const bool made = mode == FileMode::Create || mode == FileMode::Append;
        auto opened = std::make_unique<PosixFile>(fd, made ? path : fs::path());
        const int lock = LockFor(mode, share);
        if (lock && ::flock(fd, lock | LOCK_NB) != 0) return LastStatus();
        if (mode == FileMode::Create && ::ftruncate(fd, 0) != 0) return LastStatus();
        file = std::move(opened);
        return {};
    }

    // The file itself may be left behind by a killed process: only the lock on it counts, and that died with
    // it.
    FileStatus OpenLock(const fs::path& path, std::unique_ptr<IFile>& file) override {
        for (;;) {
            const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
            if (fd < 0) return LastStatus(path);
            auto opened = std::make_unique<PosixFile>(fd);
            if (::flock(fd, LOCK_EX | LOCK_NB) != 0) return LastStatus();
            // The owner before may have removed the name between our two calls.
            if (!SameFile(fd, path)) continue;
            opened->RemoveOnClose(path);
            file = std::move(opened);
            return {};
        }
    }

    // Two names for a moment instead of a plain rename, which would replace.
    FileStatus Rename(const fs::path& from, const fs::path& to) override {
        if (::link(from.c_str(), to.c_str()) == 0) {
            if (::unlink(from.c_str()) != 0) return LastStatus();
        } else if (errno == EPERM || errno == EOPNOTSUPP) {
            struct stat info;
            if (::lstat(to.c_str(), &info) == 0) return {FileFault::Exists, EEXIST};
            if (::rename(from.c_str(), to.c_str()) != 0) return LastStatus(to);
        } else {
            return LastStatus(to);
        }
        return SyncFolderOf(to);
    }

    FileStatus Replace(const fs::path& from, const fs::path& to) override {
        if (::rename(from.c_str(), to.c_str()) != 0) return LastStatus(to);
        return SyncFolderOf(to);
    }

    FileStatus Link(const fs::path& from, const fs::path& to) override {
        if (::link(from.c_str(), to.c_str()) != 0) return LastStatus(to);
        return SyncFolderOf(to);
    }

    FileStatus Remove(const fs::path& path) override {
        return ::unlink(path.c_str()) != 0 ? LastStatus(path) : SyncFolderOf(path);
    }

    FileStatus Info(const fs::path& path, FileInfo& info) override {
        struct stat found;
        if (::stat(path.c_str(), &found) != 0) return LastStatus(path);
        info = {static_cast<std::uint64_t>(found.st_size), found.st_mtime, S_ISDIR(found.st_mode)};
        return {};
    }

    FileStatus MakeFolders(const fs::path& folder) override {
        if (folder.empty() || ::mkdir(folder.c_str(), 0777) == 0) return SyncFolderOf(folder);
        if (errno == EEXIST) {
            struct stat info;
            const bool isFolder = ::stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
            return isFolder ? FileStatus{} : FileStatus{FileFault::Exists, EEXIST};
        }
        if (errno != ENOENT || folder.parent_path() == folder) return LastStatus();
        if (const FileStatus above = MakeFolders(folder.parent_path()); !above) return above;
        return ::mkdir(folder.c_str(), 0777) == 0 || errno == EEXIST ? SyncFolderOf(folder) : LastStatus();
    }

    FileStatus List(const fs::path& folder, std::vector<fs::path>& names) override {
        names.clear();
        const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.empty() ? "." : folder.c_str()),
                                                       ::closedir);
        if (!open) return errno == ENOENT ? FileStatus{} : LastStatus();
        while (const dirent* entry = ::readdir(open.get())) {
            struct stat info;
            const fs::path name = entry->d_name;
            if (::stat((folder / name).c_str(), &info) == 0 && S_ISREG(info.st_mode)) names.push_back(name);
        }
        return {};
    }
};

}  // namespace

IFiles& SystemFiles() {
    static PosixFiles files;
    return files;
}

}  // namespace Dravel

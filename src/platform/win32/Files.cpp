// The real disk through Win32 calls.
#include "platform/Files.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/LongPath.h"
#include "platform/win32/UniqueHandle.h"

namespace Dravel {

namespace {

namespace fs = std::filesystem;

FileFault FaultOf(DWORD error) {
    switch (error) {
        case ERROR_SUCCESS:
            return FileFault::None;
        case ERROR_FILE_NOT_FOUND:
            return FileFault::NotFound;
        case ERROR_PATH_NOT_FOUND:
            return FileFault::PathNotFound;
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return FileFault::Exists;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_USER_MAPPED_FILE:
            return FileFault::InUse;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return FileFault::Denied;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return FileFault::Full;
        default:
            return FileFault::Other;
    }
}

FileStatus LastStatus() {
    const DWORD error = GetLastError();
    return {FaultOf(error), error};
}
FileStatus StatusOf(bool done) {
    return done ? FileStatus{} : LastStatus();
}

// Largest piece handed to one system call.
constexpr std::size_t kPiece = std::size_t{1} << 30;
// Between the system's count of 100 ns since 1601 and 1970.
constexpr std::int64_t kEpoch = 116444736000000000;

class Win32File final : public IFile {
 public:
    explicit Win32File(unique_file handle) : handle_(std::move(handle)) {}

    FileStatus Read(void* into, std::size_t capacity, std::size_t& got) override {
        got = 0;
        while (got < capacity) {
            DWORD n = 0;
            const auto want = static_cast<DWORD>(std::min(capacity - got, kPiece));
            if (!ReadFile(handle_.get(), static_cast<char*>(into) + got, want, &n, nullptr))
                return LastStatus();
            if (n == 0) break;
            got += n;
        }
        return {};
    }

    // Some disks answer a full disk with success and a short count.
    FileStatus Write(const void* bytes, std::size_t count) override {
        for (std::size_t done = 0; done < count;) {
            DWORD n = 0;
            const auto want = static_cast<DWORD>(std::min(count - done, kPiece));
            if (!WriteFile(handle_.get(), static_cast<const char*>(bytes) + done, want, &n, nullptr)) {
                return LastStatus();
            }
            if (n != want) return {FileFault::Full, ERROR_DISK_FULL};
            done += n;
        }
        return {};
    }

    FileStatus Flush() override { return StatusOf(FlushFileBuffers(handle_.get())); }

    FileStatus Seek(std::uint64_t position) override {
        LARGE_INTEGER to;
        to.QuadPart = static_cast<LONGLONG>(position);
        return StatusOf(SetFilePointerEx(handle_.get(), to, nullptr, FILE_BEGIN));
    }

    FileStatus Size(std::uint64_t& bytes) override {
        LARGE_INTEGER size;
        if (!GetFileSizeEx(handle_.get(), &size)) return LastStatus();
        bytes = static_cast<std::uint64_t>(size.QuadPart);
        return {};
    }

    FileStatus Cut(std::uint64_t bytes) override {
        const FileStatus status = Seek(bytes);
        return status ? StatusOf(SetEndOfFile(handle_.get())) : status;
    }

    FileStatus Close() override { return StatusOf(handle_.reset()); }

 private:
    unique_file handle_;
};

DWORD ShareOf(FileShare share) {
    switch (share) {
        case FileShare::DenyNone:
            // Also beside a program that holds the file so that it may delete it.
            return FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        case FileShare::DenyWrite:
            return FILE_SHARE_READ;
        case FileShare::DenyAll:
            return 0;
    }
    return 0;
}

// A path as the system takes it at any length. Its plain calls end at 260 characters (248 for a folder),
// which a backup's name reaches in a terminal's folder of 190. Short paths are passed on as they stand.
class SystemPath {
 public:
    SystemPath(const fs::path& path) : path_(path.native()) {  // NOLINT: stands for the path in every call
        if (std::wstring full = Full(path_); full.size() >= kPlainLength) path_ = LongPathForm(full);
    }
    operator const wchar_t*() const { return path_.c_str(); }

 private:
    static constexpr std::size_t kPlainLength = 240;  // leaves room for what is put behind a folder

    // Absolute, with backslashes, without "." and ".."; empty when the system cannot tell.
    static std::wstring Full(const std::wstring& path) {
        std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
        if (!full.empty())
            full.resize(
                GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
        return full;
    }

    std::wstring path_;
};

FileStatus OpenHandle(const fs::path& path, DWORD access, DWORD share, DWORD creation, DWORD flags,
                      std::unique_ptr<IFile>& file) {
    unique_file handle(CreateFileW(SystemPath(path), access, share, nullptr, creation, flags, nullptr));
    if (!handle) return LastStatus();
    file = std::make_unique<Win32File>(std::move(handle));
    return {};
}

// A file that another handle holds open refuses to be moved or replaced with one of these two.
FileStatus MoveStatus(bool done) {
    FileStatus status = StatusOf(done);
    if (status.code == ERROR_ACCESS_DENIED) status.fault = FileFault::InUse;
    return status;
}

struct OpenWay {
    DWORD access, creation;
};
OpenWay WayOf(FileMode mode) {
    switch (mode) {
        case FileMode::Read:
            return {GENERIC_READ, OPEN_EXISTING};
        case FileMode::ReadWrite:
            return {GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING};
        case FileMode::Create:
            return {GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS};
        case FileMode::Append:
            return {FILE_APPEND_DATA | SYNCHRONIZE, OPEN_ALWAYS};
    }
    return {GENERIC_READ, OPEN_EXISTING};
}

class Win32Files final : public IFiles {
 public:
    FileStatus Open(const fs::path& path, FileMode mode, FileShare share,
                    std::unique_ptr<IFile>& file) override {
        const OpenWay way = WayOf(mode);
        return OpenHandle(path, way.access, ShareOf(share), way.creation, FILE_ATTRIBUTE_NORMAL, file);
    }

    FileStatus OpenLock(const fs::path& path, std::unique_ptr<IFile>& file) override {
        const auto open = [&] {
            return OpenHandle(path, GENERIC_READ | GENERIC_WRITE | DELETE, 0, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, file);
        };
        FileStatus status = open();
        if (status.fault != FileFault::Denied) return status;
        // Access is denied, too, while the file of an owner that just left is being deleted; then it can't
        // even be asked about. When it is gone meanwhile, the next try tells whether the folder refuses.
        FileInfo info;
        const FileStatus left = Info(path, info);
        if (left.fault == FileFault::NotFound) return open();
        if (!left) status.fault = FileFault::InUse;
        return status;
    }

    FileStatus Rename(const fs::path& from, const fs::path& to) override {
        return MoveStatus(MoveFileExW(SystemPath(from), SystemPath(to), MOVEFILE_WRITE_THROUGH));
    }

    FileStatus Replace(const fs::path& from, const fs::path& to) override {
        return MoveStatus(MoveFileExW(SystemPath(from), SystemPath(to),
                                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    }

    FileStatus Link(const fs::path& from, const fs::path& to) override {
        return StatusOf(CreateHardLinkW(SystemPath(to), SystemPath(from), nullptr));
    }

    FileStatus Remove(const fs::path& path) override { return MoveStatus(DeleteFileW(SystemPath(path))); }

    FileStatus Info(const fs::path& path, FileInfo& info) override {
        WIN32_FILE_ATTRIBUTE_DATA found;
        if (!GetFileAttributesExW(SystemPath(path), GetFileExInfoStandard, &found)) return LastStatus();
        const FILETIME& time = found.ftLastWriteTime;
        const auto ticks = static_cast<std::int64_t>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32 |
                                                     time.dwLowDateTime);
        info.size = static_cast<std::uint64_t>(found.nFileSizeHigh) << 32 | found.nFileSizeLow;
        info.modified = (ticks - kEpoch) / 10000000;
        info.folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return {};
    }

    FileStatus MakeFolders(const fs::path& folder) override {
        if (folder.empty() || CreateDirectoryW(SystemPath(folder), nullptr)) return {};
        const FileStatus status = LastStatus();
        if (status.fault == FileFault::Exists || IsFolder(folder)) {
            return IsFolder(folder) ? FileStatus{} : status;
        }
        if (status.fault != FileFault::PathNotFound || folder.parent_path() == folder) return status;
        if (const FileStatus above = MakeFolders(folder.parent_path()); !above) return above;
        return StatusOf(CreateDirectoryW(SystemPath(folder), nullptr) || IsFolder(folder));
    }

    FileStatus List(const fs::path& folder, std::vector<fs::path>& names) override {
        names.clear();
        WIN32_FIND_DATAW found;
        const unique_find search(FindFirstFileW(SystemPath(folder / L"*"), &found));
        if (!search) {
            const FileStatus status = LastStatus();
            const bool missing =
                status.fault == FileFault::NotFound || status.fault == FileFault::PathNotFound;
            return missing ? FileStatus{} : status;
        }
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.emplace_back(found.cFileName);
        } while (FindNextFileW(search.get(), &found));
        return GetLastError() == ERROR_NO_MORE_FILES ? FileStatus{} : LastStatus();
    }

 private:
    static bool IsFolder(const fs::path& path) {
        const DWORD attributes = GetFileAttributesW(SystemPath(path));
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
    }
};

}  // namespace

IFiles& SystemFiles() {
    static Win32Files files;
    return files;
}

}  // namespace Dravel

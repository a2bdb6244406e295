// The disk as the house sees it. Everything that touches a file goes through IFiles, so that tests can put a
// disk behind it that fails, fills up or forgets what was not flushed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace Dravel {

// Why an operation failed, as far as anybody above needs to tell the reasons apart.
enum class FileFault : std::uint8_t {
    None,
    NotFound,      // the file does not exist
    PathNotFound,  // a folder on the way does not exist (system error 3 on Windows)
    Exists,        // the target of a rename or link is there already
    InUse,         // another handle or program holds the file
    Denied,        // the system refuses it to this user, or the file or its disk is read-only
    Full,          // the disk is full, or the write came back short
    Other,
};

// Result of one operation. `code` is the system's own error number (GetLastError, errno), for the log only.
struct FileStatus {
    FileFault fault = FileFault::None;
    std::uint32_t code = 0;
    explicit operator bool() const { return fault == FileFault::None; }
};

enum class FileMode : std::uint8_t {
    Read,       // existing file, reading only
    ReadWrite,  // existing file, position 0 ("r+b")
    Create,     // empty file, replacing an existing one ("w+b")
    Append,     // writing at the end, created when missing
};

// What other handles may do while this one lives. POSIX has advisory locks only: there it binds those who
// open for writing, or with DenyAll, through IFiles.
enum class FileShare : std::uint8_t { DenyNone, DenyWrite, DenyAll };

// One open file. Owned by one thread at a time. The destructor closes without a report; who needs to know
// that the bytes arrived calls Flush and Close and looks at both.
class IFile {
 public:
    virtual ~IFile() = default;
    // Reads up to `capacity` bytes; `got` is less only at the end of the file (0: nothing is left).
    virtual FileStatus Read(void* into, std::size_t capacity, std::size_t& got) = 0;
    // Writes all `count` bytes or fails; a short write of the system is FileFault::Full.
    virtual FileStatus Write(const void* bytes, std::size_t count) = 0;
    // Returns once the bytes are on the disk itself, and the file's name with them.
    virtual FileStatus Flush() = 0;
    virtual FileStatus Seek(std::uint64_t position) = 0;
    virtual FileStatus Size(std::uint64_t& bytes) = 0;
    // Shortens the file to `bytes`, which it must have; the position is behind them then.
    virtual FileStatus Cut(std::uint64_t bytes) = 0;
    virtual FileStatus Close() = 0;
};

struct FileInfo {
    std::uint64_t size = 0;
    std::int64_t modified = 0;  // seconds since 1970-01-01 00:00:00 UTC
    bool folder = false;
};

// Changes of names reach the disk in the order in which they were made. Any thread may call. Paths may have
// any length that the disk takes: on Windows, too, where the system's own limit for plain ones is 260.
class IFiles {
 public:
    virtual ~IFiles() = default;
    virtual FileStatus Open(const std::filesystem::path& path, FileMode mode, FileShare share,
                            std::unique_ptr<IFile>& file) = 0;
    // A file that no other handle can open while it lives, and that is gone when it closes (also when the
    // process is killed, as far as the system offers it). InUse when somebody else holds it.
    virtual FileStatus OpenLock(const std::filesystem::path& path, std::unique_ptr<IFile>& file) = 0;
    // Fails with Exists when `to` is there.
    virtual FileStatus Rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    // One atomic step: `to` is the old file or the new one at every moment, also after a power cut.
    virtual FileStatus Replace(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    // A second name for the same bytes, Other where the disk knows no such thing. Fails with Exists when `to`
    // is there.
    virtual FileStatus Link(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    virtual FileStatus Remove(const std::filesystem::path& path) = 0;
    virtual FileStatus Info(const std::filesystem::path& path, FileInfo& info) = 0;
    // Makes every missing level; an existing folder is not an error.
    virtual FileStatus MakeFolders(const std::filesystem::path& folder) = 0;
    // Names (not paths) of the plain files of a folder, in no order; empty when the folder is missing.
    virtual FileStatus List(const std::filesystem::path& folder,
                            std::vector<std::filesystem::path>& names) = 0;
};

// The real disk of this system. Lives as long as the process.
IFiles& SystemFiles();

}  // namespace Dravel

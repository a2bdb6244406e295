// Whole text files in, whole text files out.
#include "formatset/TextFile.h"

#include <memory>
#include <utility>

#include "platform/Clock.h"

namespace Dravel {
namespace {

constexpr int kSwapTries = 10;
constexpr std::uint32_t kSwapPause = 50;  // milliseconds

std::string WithDiskLineEnds(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 16);
    for (const char c : text) {
        if (c == '\n') bytes += '\r';
        bytes += c;
    }
    return bytes;
}

void ToMemoryLineEnds(std::string& bytes) {
    std::size_t to = 0;
    for (std::size_t from = 0; from < bytes.size(); ++from) {
        if (bytes[from] == '\r' && from + 1 < bytes.size() && bytes[from + 1] == '\n') continue;
        bytes[to++] = bytes[from];
    }
    bytes.resize(to);
}

FileStatus WriteFlushed(IFiles& files, const std::filesystem::path& path, const std::string& bytes) {
    std::unique_ptr<IFile> file;
    FileStatus status = files.Open(path, FileMode::Create, FileShare::DenyWrite, file);
    if (status) status = file->Write(bytes.data(), bytes.size());
    if (status) status = file->Flush();
    if (status) status = file->Close();
    return status;
}

// Somebody may be reading the old file just now.
FileStatus Swap(IFiles& files, const std::filesystem::path& beside, const std::filesystem::path& path,
                bool patient) {
    for (int tries = 1;; ++tries) {
        const FileStatus status = files.Replace(beside, path);
        if (status.fault != FileFault::InUse || tries == kSwapTries || !patient) return status;
        SystemClock().Sleep(kSwapPause);
    }
}

}  // namespace

FileStatus ReadTextFile(IFiles& files, const std::filesystem::path& path, std::string& text,
                        std::size_t limit) {
    std::unique_ptr<IFile> file;
    if (const FileStatus status = files.Open(path, FileMode::Read, FileShare::DenyNone, file); !status)
        return status;
    std::uint64_t size = 0;
    if (const FileStatus status = file->Size(size); !status) return status;
    if (size > limit) return {FileFault::Other, 0};
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::size_t got = 0;
    if (const FileStatus status = file->Read(bytes.data(), bytes.size(), got); !status) return status;
    bytes.resize(got);
    ToMemoryLineEnds(bytes);
    text = std::move(bytes);
    return {};
}

FileStatus WriteTextFile(IFiles& files, const std::filesystem::path& path, std::string_view text,
                         bool patient) {
    if (path.has_parent_path())
        files.MakeFolders(path.parent_path());  // a failure shows when the file is made
    std::filesystem::path beside = path;
    beside += ".new";
    FileStatus status = WriteFlushed(files, beside, WithDiskLineEnds(text));
    if (status) status = Swap(files, beside, path, patient);
    if (!status) files.Remove(beside);
    return status;
}

}  // namespace Dravel

#include "platform/FileTools.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Dravel {

namespace {

constexpr std::size_t kBlock = 1048576;

FileStatus CopyBytes(IFile& from, IFile& to, const std::function<void()>& between) {
    const auto block = std::make_unique_for_overwrite<std::uint8_t[]>(kBlock);
    for (;;) {
        std::size_t got = 0;
        if (const FileStatus status = from.Read(block.get(), kBlock, got); !status) return status;
        if (got == 0) return to.Flush();
        if (const FileStatus status = to.Write(block.get(), got); !status) return status;
        if (between) between();
    }
}

}  // namespace

FileStatus CopyWhole(IFiles& files, IFile& from, const std::filesystem::path& to,
                     const std::function<void()>& between) {
    const std::filesystem::path partPath = WithEnding(to, ".new");
    std::unique_ptr<IFile> part;
    FileStatus status = files.Open(partPath, FileMode::Create, FileShare::DenyAll, part);
    if (!status) return status;
    status = CopyBytes(from, *part, between);
    const FileStatus closed = part->Close();
    part.reset();
    if (status) status = closed;
    if (status) status = files.Rename(partPath, to);
    if (!status) files.Remove(partPath);
    return status;
}

}  // namespace Dravel

// What several keepers of files do in the same way.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "platform/Files.h"

namespace Dravel {

// The file does not exist, or its folder does not.
inline bool Missing(const FileStatus& status) {
    return status.fault == FileFault::NotFound || status.fault == FileFault::PathNotFound;
}

inline std::filesystem::path WithEnding(std::filesystem::path path, const std::string& ending) {
    path += ending;
    return path;
}

// Copies what `from` has from its position on. The copy has another name (".new" behind it) until it is whole
// and on the disk; a failure leaves nothing of it. Fails with Exists when `to` is there. `between`, if any,
// is called between blocks of 1 MiB.
FileStatus CopyWhole(IFiles& files, IFile& from, const std::filesystem::path& to,
                     const std::function<void()>& between = {});

}  // namespace Dravel

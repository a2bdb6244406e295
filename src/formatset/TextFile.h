// Small text files of the plug-in, read and written whole. Lines end with CR LF on disk and with LF in
// memory.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace Dravel {

// A file longer than this is none of ours, unless its reader knows better.
inline constexpr std::size_t kTextFileLimit = std::size_t{16} * 1024 * 1024;

// `text` is touched only on success. FileFault::Other with code 0: longer than the limit.
FileStatus ReadTextFile(IFiles& files, const std::filesystem::path& path, std::string& text,
                        std::size_t limit = kTextFileLimit);

// Writes beside the file (".new" behind its name), flushes, then replaces it in one step: at every moment the
// old or the new text is there whole. A patient call waits up to half a second for a program that has the
// file open. Makes missing folders. After a failure nothing is left beside the file.
FileStatus WriteTextFile(IFiles& files, const std::filesystem::path& path, std::string_view text,
                         bool patient = true);

}  // namespace Dravel

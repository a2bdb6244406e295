// A log folder as a test sees it: what its files and archives hold.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "support/ZipFile.h"

namespace Dravel::Test {

inline std::size_t Count(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != text.npos; ++at)
        ++count;
    return count;
}

inline std::string ReadAll(IFile& file) {
    std::string text, piece(64 * 1024, '\0');
    for (std::size_t got = piece.size(); got == piece.size(); text.append(piece, 0, got)) {
        if (!file.Read(piece.data(), piece.size(), got)) return "(unreadable)";
    }
    return text;
}

// Entry name to text; "(damaged)" for what does not unpack to its checksum, the name "(no archive)" for a
// file that is none.
inline std::map<std::string, std::string> ReadZip(IFiles& files, const std::filesystem::path& path) {
    std::map<std::string, std::string> entries;
    std::unique_ptr<IFile> file;
    ZipDirectory directory;
    if (!files.Open(path, FileMode::Read, FileShare::DenyNone, file)) return entries;
    if (!ReadZipDirectory(*file, directory)) return {{"(no archive)", ""}};
    for (const ZipEntry& entry : directory.entries) {
        std::string text;
        const bool sound = ReadZipEntry(*file, entry, [&](std::string_view piece) {
            text += piece;
            return true;
        });
        entries[entry.name] = sound ? text : "(damaged)";
    }
    return entries;
}

// All that a log folder holds: the name of a log, in a file or in an archive, to its text. Other files stand
// there with an empty text.
inline std::map<std::string, std::string> ReadLogs(IFiles& files, const std::filesystem::path& folder) {
    std::map<std::string, std::string> logs;
    std::vector<std::filesystem::path> names;
    files.List(folder, names);
    for (const auto& path : names) {
        const std::string name = path.string();
        std::unique_ptr<IFile> file;
        if (name.ends_with(".zip")) logs.merge(ReadZip(files, folder / path));
        if (!name.ends_with(".log"))
            logs[name];
        else if (files.Open(folder / path, FileMode::Read, FileShare::DenyNone, file))
            logs[name] = ReadAll(*file);
    }
    return logs;
}

}  // namespace Dravel::Test

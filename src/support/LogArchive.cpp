#include "support/LogArchive.h"

#include <algorithm>
#include <map>

#include "formatset/NumberText.h"

namespace Dravel {

namespace {

constexpr std::string_view kPrefix = "Dravel_", kLog = ".log", kZip = ".zip";
constexpr std::size_t kDayLength = 8, kMonthLength = 6;  // of "yyyyMMdd"
constexpr int kMostAside = 1000;                         // archives moved aside in one month

// The day of a log's file name; empty for any other name.
std::string_view DayOf(std::string_view name) {
    const bool fits = name.size() == kPrefix.size() + kDayLength + kLog.size() && name.starts_with(kPrefix) &&
                      name.ends_with(kLog);
    const std::string_view day = fits ? name.substr(kPrefix.size(), kDayLength) : std::string_view();
    return std::ranges::all_of(day, [](char c) { return c >= '0' && c <= '9'; }) ? day : std::string_view();
}

// Midnight of the day, as the entry's time; a number that is no date stays what it is.
CivilTime TimeOf(std::string_view day) {
    return {ReadInteger(day.substr(0, 4)), ReadInteger(day.substr(4, 2)), ReadInteger(day.substr(6, 2))};
}

// Packs the day under its file's name. A day that is in the archive already was left behind when the program
// ended between the swap and the removal: it is not taken twice. One that went on after it was archived (the
// clock was set back) becomes a further entry, "Dravel_yyyyMMdd_2.log".
bool AddDay(ZipWriter& writer, std::string_view name, const ZipDirectory& directory, IFile& file,
            const ZipPulse& pulse) {
    const std::string_view day = DayOf(name);
    std::string entryName(name);
    for (int i = 2;; ++i) {
        const auto held = std::ranges::find(directory.entries, entryName, &ZipEntry::name);
        if (held == directory.entries.end()) break;
        std::uint64_t size = 0;
        std::uint32_t crc = 0;
        if (!file.Seek(0) || !ZipChecksum(file, crc, size, pulse)) return false;
        if (held->crc == crc && held->size == size) return true;
        entryName = std::string(kPrefix).append(day) + "_" + std::to_string(i) + std::string(kLog);
    }
    return file.Seek(0) && writer.Add(entryName, TimeOf(day), file);
}

bool AllSound(IFile& file, const ZipDirectory& directory, const ZipPulse& pulse) {
    return std::ranges::all_of(directory.entries, [&](const ZipEntry& entry) {
        return ReadZipEntry(file, entry, [&](std::string_view) { return pulse(); });
    });
}

}  // namespace

std::string LogFileName(std::string_view day) {
    return std::string(kPrefix).append(day).append(kLog);
}

bool LogArchive::Run(std::string_view today, const ZipPulse& pulse) {
    std::vector<std::filesystem::path> found;
    if (!files_.List(folder_, found)) return false;
    std::map<std::string, Names, std::less<>> months;
    for (const auto& path : found) {
        // Only a name of plain characters can be one of ours, and only it converts without loss.
        const auto wide = path.u8string();
        const std::string name(wide.begin(), wide.end());
        const std::string_view day = DayOf(name);
        if (!day.empty() && day < today) months[std::string(day.substr(0, kMonthLength))].push_back(name);
    }
    bool all = true;
    for (auto& [month, names] : months) {
        std::ranges::sort(names);
        all = ArchiveMonth(month, names, pulse) && all;
        if (!pulse()) return false;
    }
    return all;
}

bool LogArchive::ArchiveMonth(std::string_view month, const Names& names, const ZipPulse& pulse) {
    const auto archive = folder_ / std::string(kPrefix).append(month).append(kZip);
    auto fresh = archive;
    fresh += ".new";
    std::unique_ptr<IFile> old;
    ZipDirectory directory;
    Taken taken;
    const bool sound = OpenOld(archive, old, directory) &&
                       Write(fresh, old.get(), directory, names, taken, pulse) && Sound(fresh, pulse);
    // Its entries are copied as they are, so one of them can be what is wrong.
    const bool oldDamaged = !sound && old && !AllSound(*old, directory, pulse) && pulse();
    old.reset();
    if (!sound || taken.empty() || !files_.Replace(fresh, archive)) {
        files_.Remove(fresh);
        return oldDamaged && MoveAside(archive) && ArchiveMonth(month, names, pulse);
    }
    return RemovePacked(taken) && taken.size() == names.size();
}

// Another program may have written to a file since it was packed: what it wrote is nowhere else.
bool LogArchive::RemovePacked(const Taken& taken) {
    bool all = true;
    for (const Packed& packed : taken) {
        std::unique_ptr<IFile> file;
        std::uint64_t size = 0;
        const bool same = files_.Open(folder_ / packed.name, FileMode::Read, FileShare::DenyWrite, file) &&
                          file->Size(size) && size == packed.size;
        file.reset();
        all = same && files_.Remove(folder_ / packed.name) && all;
    }
    return all;
}

// True with a null `old`: there is none yet.
bool LogArchive::OpenOld(const std::filesystem::path& archive, std::unique_ptr<IFile>& old,
                         ZipDirectory& directory) {
    const FileStatus status = files_.Open(archive, FileMode::Read, FileShare::DenyWrite, old);
    if (!status) return status.fault == FileFault::NotFound;
    if (ReadZipDirectory(*old, directory)) return true;
    old.reset();
    directory = {};
    return MoveAside(archive);
}

bool LogArchive::MoveAside(const std::filesystem::path& archive) {
    for (int i = 1; i <= kMostAside; ++i) {
        auto aside = archive;
        aside += ".damaged" + std::to_string(i);
        const FileStatus status = files_.Rename(archive, aside);
        if (status.fault != FileFault::Exists) return static_cast<bool>(status);
    }
    return false;
}

bool LogArchive::Write(const std::filesystem::path& path, IFile* old, const ZipDirectory& directory,
                       const Names& names, Taken& taken, const ZipPulse& pulse) {
    std::unique_ptr<IFile> file;
    if (!files_.Open(path, FileMode::Create, FileShare::DenyAll, file)) return false;
    ZipWriter writer(*file, pulse);
    if (old && !writer.Copy(*old, directory)) return false;
    for (const std::string& name : names) {
        std::unique_ptr<IFile> day;
        const FileStatus opened = files_.Open(folder_ / name, FileMode::Read, FileShare::DenyWrite, day);
        if (!opened) continue;
        std::uint64_t size = 0;
        if (!day->Size(size) || !AddDay(writer, name, directory, *day, pulse)) return false;
        taken.push_back({name, size});
    }
    return writer.Finish() && file->Close();
}

bool LogArchive::Sound(const std::filesystem::path& path, const ZipPulse& pulse) {
    std::unique_ptr<IFile> file;
    ZipDirectory directory;
    if (!files_.Open(path, FileMode::Read, FileShare::DenyWrite, file)) return false;
    return ReadZipDirectory(*file, directory) && AllSound(*file, directory, pulse);
}

}  // namespace Dravel

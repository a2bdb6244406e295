// The log of earlier days: one ZIP a month, Log\Dravel_yyyyMM.zip.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "support/ZipFile.h"

namespace Dravel {

// "Dravel_yyyyMMdd.log" for a day "yyyyMMdd".
std::string LogFileName(std::string_view day);

// Puts every Dravel_yyyyMMdd.log of a day before `today` ("yyyyMMdd") into the archive of its month. The new
// archive is written beside the old one, read back whole, swapped in by one rename, and only then are the
// files removed: at any moment a line is in a file, in an archive, or in both. A file that another program
// still writes, and a month for which the disk has no room, wait for the next call. An archive that cannot be
// read, or not in each of its entries, is never written over: it is moved aside. A file that grew after it
// was packed stays; the next call takes it once more.
//
// Takes as long as it takes; `pulse` is called now and then and ends the work by answering false, from then
// on each time. True: nothing is left to archive. Disk borrowed.
class LogArchive {
 public:
    LogArchive(IFiles& files, std::filesystem::path folder) : files_(files), folder_(std::move(folder)) {}
    bool Run(std::string_view today, const ZipPulse& pulse);

 private:
    using Names = std::vector<std::string>;
    struct Packed {
        std::string name;
        std::uint64_t size = 0;  // of the file, before it was packed
    };
    using Taken = std::vector<Packed>;

    bool ArchiveMonth(std::string_view month, const Names& names, const ZipPulse& pulse);
    bool OpenOld(const std::filesystem::path& archive, std::unique_ptr<IFile>& old, ZipDirectory& directory);
    bool MoveAside(const std::filesystem::path& archive);
    bool Write(const std::filesystem::path& path, IFile* old, const ZipDirectory& directory,
               const Names& names, Taken& taken, const ZipPulse& pulse);
    bool Sound(const std::filesystem::path& path, const ZipPulse& pulse);
    bool RemovePacked(const Taken& taken);

    IFiles& files_;
    std::filesystem::path folder_;
};

}  // namespace Dravel

// ZIP archives, as far as the log needs them: deflated or stored entries, no encryption, less than 4 GiB.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Clock.h"
#include "platform/Files.h"

namespace Dravel {

// Called about every 64 KiB of work; false gives the work up, which then has failed.
using ZipPulse = std::function<bool()>;

struct ZipEntry {
    std::string name;
    std::uint16_t method = 0;
    std::uint32_t crc = 0, packed = 0, size = 0;
    std::uint32_t offset = 0;  // of the entry's own header in the archive
};

// What an archive holds, by the directory at its end.
struct ZipDirectory {
    std::vector<ZipEntry> entries;
    std::string bytes;        // the directory's records as they stand in the file
    std::uint32_t begin = 0;  // where it begins, the end of the entries
};

// False: the file cannot be read or is no whole archive of the kind above; `directory` is then not to be
// used. Every number in the file is checked before it is believed.
bool ReadZipDirectory(IFile& file, ZipDirectory& directory);

// Takes a piece of what an entry unpacks to; false gives the reading up, which then has failed.
using ZipSink = std::function<bool(std::string_view)>;

// Unpacks the entry, piece by piece. True: those were the bytes of which its checksum was taken.
bool ReadZipEntry(IFile& file, const ZipEntry& entry, const ZipSink& sink);

// The checksum that an archive keeps, and the length, of all that `file` holds from where it stands.
bool ZipChecksum(IFile& file, std::uint32_t& crc, std::uint64_t& size, const ZipPulse& pulse);

// Writes an archive into a new, empty file; everything is to be taken up with the old archive, if there is
// one, first. After a failure the file is worth nothing.
class ZipWriter {
 public:
    // Both borrowed. `pulse` may be empty.
    ZipWriter(IFile& file, const ZipPulse& pulse) : file_(file), pulse_(pulse) {}

    // The entries of another archive as they are.
    bool Copy(IFile& from, const ZipDirectory& directory);
    // Packs all of `from` as the entry `name` (at most 65,535 bytes, ASCII).
    bool Add(std::string_view name, const CivilTime& modified, IFile& from);
    // The directory, and the bytes to the disk itself.
    bool Finish();

 private:
    bool Write(std::string_view bytes);
    bool Pack(IFile& from, ZipEntry& entry);
    bool Pulse() const { return !pulse_ || pulse_(); }

    IFile& file_;
    const ZipPulse& pulse_;
    std::string directory_;
    std::uint64_t count_ = 0, written_ = 0;
};

}  // namespace Dravel

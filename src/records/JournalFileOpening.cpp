// Which journal an opening takes, and what becomes of the others.
#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/FileTools.h"
#include "records/JournalFile.h"

namespace Dravel {

namespace fs = std::filesystem;

FileStatus JournalFile::Open(const FileSum& book, const std::function<void(const JournalEntry&)>& deal,
                             JournalOpening& opening) {
    opening = {};
    book_ = book;
    file_.reset();
    exists_ = false;
    std::unique_ptr<IFile> file, beside;
    JournalScan scan, besideScan;
    if (const FileStatus status = Look(path_, book, file, scan); !status) return status;
    keptAside_ = std::max(keptAside_, scan.head.keptAside);
    if (!scan.from) {
        if (const FileStatus status = Look(newPath_, book, beside, besideScan); !status) return status;
    }
    beside.reset();
    if (besideScan.from) {
        if (const FileStatus status = TakeBeside(std::move(file), scan); !status) return status;
        if (const FileStatus status = Look(path_, book, file, scan); !status) return status;
    }
    files_.Remove(newPath_);
    return scan.from ? TakeOver(std::move(file), scan, deal, opening) : Clear(std::move(file), scan, opening);
}

// A file that may only be read is read all the same; without one `file` stays empty.
FileStatus JournalFile::Look(const fs::path& path, const FileSum& book, std::unique_ptr<IFile>& file,
                             JournalScan& scan) {
    FileStatus status = files_.Open(path, FileMode::ReadWrite, FileShare::DenyWrite, file);
    if (Missing(status)) return {};
    if (!status && status.fault != FileFault::InUse)
        status = files_.Open(path, FileMode::Read, FileShare::DenyWrite, file);
    return status ? ScanJournal(*file, book, scan) : status;
}

// The changes of the old one are in the book, which says so by the journal that lies beside.
FileStatus JournalFile::TakeBeside(std::unique_ptr<IFile> old, const JournalScan& scan) {
    if (old && scan.headed) history_.Append(*old, scan.end, scan.head.id, true, {});
    old.reset();
    return files_.Replace(newPath_, path_);
}

FileStatus JournalFile::TakeOver(std::unique_ptr<IFile> file, const JournalScan& scan,
                                 const std::function<void(const JournalEntry&)>& deal,
                                 JournalOpening& opening) {
    if (scan.soundBehind) {
        if (const FileStatus status = CopyAside(*file, opening.damaged); !status) return status;
    }
    if (const FileStatus status = ReadJournal(*file, *scan.from, scan.end, deal); !status) return status;
    file_ = std::move(file);
    exists_ = fromBefore_ = true;
    cutWanted_ = scan.end < scan.size;
    id_ = scan.head.id;
    length_ = scan.end;
    nextNumber_ = scan.lastNumber + 1;
    afterMark_ = scan.afterMark;
    return {};
}

// The journal at hand, if any, follows another book.
FileStatus JournalFile::Clear(std::unique_ptr<IFile> file, const JournalScan& scan, JournalOpening& opening) {
    if (!file) return {};
    file.reset();
    if (scan.frames == 0 && !scan.soundBehind) return files_.Remove(path_);
    const fs::path aside = NextAside();
    const FileStatus status = files_.Rename(path_, aside);
    if (status) opening.stranger = aside.filename().string();
    return status;
}

// The largest number ever given is kept in the heads, and those that lie there are looked at as well.
fs::path JournalFile::NextAside() {
    std::vector<fs::path> names;
    files_.List(folder_, names);
    const std::string start = path_.filename().string() + ".";
    for (const fs::path& path : names) {
        const std::string name = path.filename().string();
        std::uint32_t number = 0;
        if (name.starts_with(start))
            std::from_chars(name.data() + start.size(), name.data() + name.size(), number);
        keptAside_ = std::max(keptAside_, number);
    }
    return WithEnding(path_, "." + std::to_string(++keptAside_));
}

FileStatus JournalFile::CopyAside(IFile& file, std::optional<std::string>& name) {
    const fs::path aside = NextAside();
    FileStatus status = file.Seek(0);
    if (status) status = CopyWhole(files_, file, aside);
    if (status) name = aside.filename().string();
    return status;
}

}  // namespace Dravel

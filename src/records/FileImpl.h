// Base of the record files: a file that holds nothing but tagged frames, one after another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "message/TagMessageReader.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Lock.h"
#include "records/Checksum.h"
#include "support/Log.h"

namespace KRV::Base {

// Where a record file lies: folder / (name + ".ada"), its dated backups beside one another in `backups`.
struct RecordFilePlace {
    std::filesystem::path folder;
    std::filesystem::path backups;
    std::string name;
};

// Where the frame that is being read lies in the file. Borrows memory of the load.
struct FramePlace {
    std::uint64_t line = 0;               // 1 for the first frame; each that opens counts
    std::span<const std::uint8_t> bytes;  // the frame as it travels
    // What follows it, as far as it is in memory. A load that salvages sees the beginning of another frame
    // here, unless the file ends before.
    std::span<const std::uint8_t> behind;
};

// Any thread may call the public operations: each takes the file's lock, which guards stream and members.
// Disk, clock and log are borrowed.
class CKRVFileImpl {
 public:
    CKRVFileImpl(Dravel::IFiles& files, Dravel::IClock& clock, Dravel::ILog& log,
                 const RecordFilePlace& place);
    CKRVFileImpl(const CKRVFileImpl&) = delete;
    CKRVFileImpl& operator=(const CKRVFileImpl&) = delete;

    // Closes what is open; opens the live file with the mode for an existing file, or, when it does not exist
    // and `create` is set, with the mode for a new one. False without a word when the disk refuses.
    virtual bool Open(bool create, Dravel::FileMode existing = Dravel::FileMode::ReadWrite,
                      Dravel::FileMode fresh = Dravel::FileMode::Create,
                      Dravel::FileShare share = Dravel::FileShare::DenyWrite);
    // Reads the file from its start, in blocks of 1 MiB that are parsed in place, and hands each frame to
    // ReadFrame. A frame whose reading throws is passed over. Stops at bytes that open as no frame, unless
    // SalvagesDamage(). False: the stream is not open, the deriving class does not agree, or the disk failed
    // on the way.
    virtual bool Load();
    // The local time as "yyyyMMdd_HHmm" or "yyyyMMdd".
    virtual std::string BackupStamp(bool withTime) const;
    // Renames the live file to its dated name in the backup folder and goes on in a fresh one.
    virtual bool Backup();

 protected:
    // Fills the deriving class's record from an opened frame and deals with it. Returns how many bytes at the
    // end of a plain frame are not its own (0 as a rule): they are parsed again.
    virtual std::size_t ReadFrame(CTagMessageReader& frame) = 0;

 public:
    virtual ~CKRVFileImpl();

    void Close();
    bool IsOpen();
    // Bytes of the frames read by the last load (an inflated frame counts inflated); wraps beyond 4 GiB.
    std::uint32_t LoadedBytes();
    const std::filesystem::path& LivePath() const { return livePath_; }

 protected:
    // Whether Load is welcome.
    virtual bool AgreesToLoad() { return true; }
    // Whether Load goes on behind bytes that open as no frame: one byte on, hunt again.
    virtual bool SalvagesDamage() const { return false; }
    // Told of bytes that no frame was made of: strays between frames, and what a salvaging load stepped over.
    virtual void PassedOver(std::uint64_t bytes);
    // Told of a frame whose reading threw.
    virtual void FrameFailed() {}

    std::filesystem::path BackupPath(const std::string& stamp) const;
    void LogFault(const char* what, const Dravel::FileStatus& status, const char* operation) const;

    bool joinedBackupName_ = true;  // how the backup path is put together; both ways give the same text
    std::filesystem::path backupFolder_;
    std::string baseName_;
    std::string extension_ = ".ada";
    std::filesystem::path livePath_;
    std::string lastFault_;  // why the last operation on the disk failed, in words
    std::uint32_t loadedBytes_ = 0;
    Dravel::FileSum loadedSum_;      // of the bytes that the last load read
    Dravel::FileStatus openStatus_;  // of the last Open
    FramePlace place_;               // of the frame given to ReadFrame
    std::unique_ptr<Dravel::IFile> stream_;
    bool holdsUnread_ = false;  // the live file holds bytes that no load has made records of
    KRV::Thread::CKRVLock lock_;

    Dravel::IFiles& files_;
    Dravel::IClock& clock_;
    Dravel::ILog& log_;

 private:
    class Loader;
};

}  // namespace KRV::Base

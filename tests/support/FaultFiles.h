// A disk in memory that fails on demand, fills up, and forgets at a crash what was not flushed. Its
// operations are numbered from 1; it is as strict as the strictest system: what is held open is neither moved
// nor replaced.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/Files.h"

namespace Dravel::Test {

using FileBytes = std::vector<std::uint8_t>;

// What a crash leaves of the bytes of a file that were written and not flushed.
enum class Keep { Nothing, Everything, Half, Zeros };
inline constexpr Keep kEveryKeep[] = {Keep::Nothing, Keep::Everything, Keep::Half, Keep::Zeros};

class FaultFiles final : public IFiles {
 public:
    static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

    explicit FaultFiles(const IClock& clock) : clock_(clock) {}

    // The plan. Everything is off at first; ClearPlan puts it back so.
    struct Plan {
        std::uint64_t failAt = kNever;  // operation that fails with `fault`; sticky: every one from it on
        bool sticky = false;
        FileFault fault = FileFault::Other;
        std::uint64_t bytesLeft = kNever;    // room on the disk, in bytes yet to be written
        std::uint64_t crashAt = kNever;      // operation in front of which the machine dies
        std::uint64_t crashAtByte = kNever;  // written byte in front of which it dies
        std::uint64_t loseAtByte = kNever;   // written byte from which on all are taken and none is kept
        bool noFlush = false;                // flushing does nothing: the fault of a lying disk
        bool noLinks = false;                // a disk without hard links
    };
    Plan plan;
    void ClearPlan() { plan = {}; }
    std::uint64_t Operations() const { return operations_; }
    void CountAnew() { operations_ = 0; }

    // Files and folders (with what lies in them) in which nothing can be written.
    std::set<std::string> readOnly;

    // Called in front of every operation and behind every single byte written, with the disk as it then is.
    std::function<void()> watch;

    // What a crash at this moment could leave of the file, over every choice of what is kept and every step
    // up to which names had reached the disk; nullopt: it is not there.
    std::vector<std::optional<FileBytes>> AfterCrash(const std::string& path) const;
    // Changes whenever AfterCrash(path) may have changed: lets a watcher of single bytes pass on at once.
    std::uint64_t CrashState(const std::string& path) const;

    // The machine comes up again: all handles are dead, and what was not on the disk is gone.
    // `namesBack`: how many changes of names are lost with it, as far as they had not reached the disk.
    void Crash(Keep keep, std::size_t namesBack = 0);
    // The process was killed: its handles are gone, the disk keeps everything.
    void Kill() { Crash(Keep::Everything); }
    // An empty disk without a plan, as at first.
    void Format();

    // Past all faults.
    const FileBytes& Content(const std::string& path) const;
    void Put(const std::string& path, FileBytes bytes);
    // Copies every file of another disk, as its bytes are.
    void TakeFrom(const FaultFiles& other);
    bool Has(const std::string& path) const { return names_.contains(path); }
    std::vector<std::string> Names() const;
    std::size_t OpenHandles() const { return handles_.size(); }
    void HoldOpen(const std::string& path, bool held);

    FileStatus Open(const std::filesystem::path& path, FileMode mode, FileShare share,
                    std::unique_ptr<IFile>& file) override;
    FileStatus OpenLock(const std::filesystem::path& path, std::unique_ptr<IFile>& file) override;
    FileStatus Rename(const std::filesystem::path& from, const std::filesystem::path& to) override;
    FileStatus Replace(const std::filesystem::path& from, const std::filesystem::path& to) override;
    FileStatus Link(const std::filesystem::path& from, const std::filesystem::path& to) override;
    FileStatus Remove(const std::filesystem::path& path) override;
    FileStatus Info(const std::filesystem::path& path, FileInfo& info) override;
    FileStatus MakeFolders(const std::filesystem::path& folder) override;
    FileStatus List(const std::filesystem::path& folder, std::vector<std::filesystem::path>& names) override;

 private:
    struct Node {
        FileBytes bytes, flushed;
        bool dirty = false;
        int held = 0;  // by another program
        std::int64_t modified = 0;
        std::uint64_t version = 0;
    };
    using NameMap = std::map<std::string, std::shared_ptr<Node>>;
    class Handle;

    FileStatus Step();
    static FileStatus Failed(FileFault fault) { return {fault, 1000u + static_cast<std::uint32_t>(fault)}; }
    FileStatus MissingStatus(const std::string& path) const;
    bool Held(const Node& node) const;
    FileStatus OpenNode(const std::string& path, FileMode mode, FileShare share, bool removes,
                        std::unique_ptr<IFile>& file);
    bool Denied(const std::string& path) const;
    FileStatus NewName(const std::string& from, const std::string& to);
    bool WriteBlock(Node& node, std::size_t at, const std::uint8_t* bytes, std::size_t count);
    FileStatus WriteByte(Node& node, std::uint64_t at, std::uint8_t byte);
    void Changed(Node& node);
    void NamesWillChange() { older_.push_back(names_); }
    void Settle() { older_.clear(); }
    static FileBytes Kept(const Node& node, Keep keep);

    const IClock& clock_;
    NameMap names_;
    std::vector<NameMap> older_;  // what a crash may fall back to, oldest first
    std::set<std::string> folders_;
    std::vector<Handle*> handles_;
    std::uint64_t operations_ = 0, written_ = 0, versions_ = 0;
    bool dead_ = false;
};

}  // namespace Dravel::Test

#include "support/FaultFiles.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Dravel::Test {

namespace fs = std::filesystem;

class FaultFiles::Handle final : public IFile {
 public:
    Handle(FaultFiles& disk, std::shared_ptr<Node> node, FileMode mode, FileShare share, std::string removed)
        : disk_(&disk), node_(std::move(node)), mode_(mode), share_(share), removed_(std::move(removed)) {
        disk.handles_.push_back(this);
    }
    ~Handle() override { Detach(); }

    FileStatus Read(void* into, std::size_t capacity, std::size_t& got) override {
        got = 0;
        if (const FileStatus status = Step(); !status) return status;
        const std::size_t left = node_->bytes.size() - std::min<std::size_t>(at_, node_->bytes.size());
        got = std::min(capacity, left);
        std::copy_n(node_->bytes.begin() + static_cast<std::ptrdiff_t>(at_), got,
                    static_cast<std::uint8_t*>(into));
        at_ += got;
        return {};
    }
    FileStatus Write(const void* bytes, std::size_t count) override {
        if (const FileStatus status = Step(); !status) return status;
        if (mode_ == FileMode::Append) at_ = node_->bytes.size();
        if (disk_->WriteBlock(*node_, at_, static_cast<const std::uint8_t*>(bytes), count)) {
            at_ += count;
            return {};
        }
        for (std::size_t i = 0; i < count; ++i) {
            const FileStatus status =
                disk_->WriteByte(*node_, at_, static_cast<const std::uint8_t*>(bytes)[i]);
            if (!status) return status;
            ++at_;
        }
        return {};
    }
    FileStatus Flush() override {
        if (const FileStatus status = Step(); !status || disk_->plan.noFlush) return status;
        node_->flushed = node_->bytes;
        node_->dirty = false;
        disk_->Changed(*node_);
        disk_->Settle();
        return {};
    }
    FileStatus Seek(std::uint64_t position) override {
        const FileStatus status = Step();
        if (status) at_ = position;
        return status;
    }
    FileStatus Size(std::uint64_t& bytes) override {
        const FileStatus status = Step();
        if (status) bytes = node_->bytes.size();
        return status;
    }
    FileStatus Cut(std::uint64_t bytes) override {
        if (const FileStatus status = Step(); !status) return status;
        node_->bytes.resize(bytes);
        node_->dirty = true;
        disk_->Changed(*node_);
        at_ = bytes;
        return {};
    }
    FileStatus Close() override {
        const FileStatus status = Step();
        Detach();
        return status;
    }

    bool On(const Node& node) const { return node_.get() == &node; }
    bool Writes() const { return mode_ != FileMode::Read; }
    FileShare Share() const { return share_; }
    void Die() { disk_ = nullptr; }

 private:
    FileStatus Step() { return disk_ ? disk_->Step() : Failed(FileFault::Other); }
    void Detach() {
        if (!disk_) return;
        FaultFiles& disk = *std::exchange(disk_, nullptr);
        std::erase(disk.handles_, this);
        if (!removed_.empty() && !disk.dead_) disk.names_.erase(removed_);
    }

    FaultFiles* disk_;
    std::shared_ptr<Node> node_;
    FileMode mode_;
    FileShare share_;
    std::string removed_;
    std::size_t at_ = 0;
};

FileStatus FaultFiles::Step() {
    if (dead_) return Failed(FileFault::Other);
    if (watch) watch();
    ++operations_;
    if (operations_ >= plan.crashAt) dead_ = true;
    if (dead_) return Failed(FileFault::Other);
    const bool fails = plan.sticky ? operations_ >= plan.failAt : operations_ == plan.failAt;
    return fails ? Failed(plan.fault) : FileStatus{};
}

FileStatus FaultFiles::WriteByte(Node& node, std::uint64_t at, std::uint8_t byte) {
    if (dead_ || written_ + 1 >= plan.crashAtByte) {
        dead_ = true;
        return Failed(FileFault::Other);
    }
    if (plan.bytesLeft == 0) return Failed(FileFault::Full);
    if (plan.bytesLeft != kNever) --plan.bytesLeft;
    ++written_;
    if (written_ >= plan.loseAtByte) return {};
    if (at == node.bytes.size()) {
        node.bytes.push_back(byte);
    } else {
        node.bytes.at(at) = byte;
    }
    node.dirty = true;
    node.modified = clock_.Now();
    Changed(node);
    if (watch) watch();
    return {};
}

// All in one go, when no single byte matters to anybody.
bool FaultFiles::WriteBlock(Node& node, std::size_t at, const std::uint8_t* bytes, std::size_t count) {
    if (dead_ || watch || plan.crashAtByte != kNever || plan.bytesLeft != kNever || plan.loseAtByte != kNever)
        return false;
    written_ += count;
    if (node.bytes.size() < at + count) node.bytes.resize(at + count);
    std::copy_n(bytes, count, node.bytes.begin() + static_cast<std::ptrdiff_t>(at));
    node.dirty = true;
    node.modified = clock_.Now();
    Changed(node);
    return true;
}

void FaultFiles::Changed(Node& node) {
    node.version = ++versions_;
}

FileStatus FaultFiles::MissingStatus(const std::string& path) const {
    const std::string folder = fs::path(path).parent_path().generic_string();
    return Failed(folders_.contains(folder) ? FileFault::NotFound : FileFault::PathNotFound);
}

bool FaultFiles::Held(const Node& node) const {
    return node.held > 0 || std::ranges::any_of(handles_, [&](const Handle* h) { return h->On(node); });
}

FileStatus FaultFiles::OpenNode(const std::string& path, FileMode mode, FileShare share, bool removes,
                                std::unique_ptr<IFile>& file) {
    if (const FileStatus status = Step(); !status) return status;
    const bool makes = mode == FileMode::Create || mode == FileMode::Append;
    if (mode != FileMode::Read && Denied(path)) return Failed(FileFault::Denied);
    auto found = names_.find(path);
    if (found == names_.end()) {
        const FileStatus missing = MissingStatus(path);
        if (!makes || missing.fault == FileFault::PathNotFound) return missing;
        NamesWillChange();
        found = names_.emplace(path, std::make_shared<Node>()).first;
        found->second->modified = clock_.Now();
        Changed(*found->second);
    }
    Node& node = *found->second;
    for (const Handle* other : handles_) {
        if (!other->On(node)) continue;
        const bool denied = other->Share() == FileShare::DenyAll || share == FileShare::DenyAll ||
                            (mode != FileMode::Read && other->Share() == FileShare::DenyWrite) ||
                            (other->Writes() && share == FileShare::DenyWrite);
        if (denied) return Failed(FileFault::InUse);
    }
    if (mode == FileMode::Create && !node.bytes.empty()) {
        node.bytes.clear();
        node.dirty = true;
        Changed(node);
    }
    file = std::make_unique<Handle>(*this, found->second, mode, share, removes ? path : std::string());
    return {};
}

FileStatus FaultFiles::Open(const fs::path& path, FileMode mode, FileShare share,
                            std::unique_ptr<IFile>& file) {
    return OpenNode(path.generic_string(), mode, share, false, file);
}

FileStatus FaultFiles::OpenLock(const fs::path& path, std::unique_ptr<IFile>& file) {
    return OpenNode(path.generic_string(), FileMode::Append, FileShare::DenyAll, true, file);
}

bool FaultFiles::Denied(const std::string& path) const {
    return readOnly.contains(path) || readOnly.contains(fs::path(path).parent_path().generic_string());
}

FileStatus FaultFiles::NewName(const std::string& from, const std::string& to) {
    if (const FileStatus status = Step(); !status) return status;
    if (Denied(from) || Denied(to)) return Failed(FileFault::Denied);
    const auto found = names_.find(from);
    if (found == names_.end()) return MissingStatus(from);
    const FileStatus missing = MissingStatus(to);
    if (missing.fault == FileFault::PathNotFound) return missing;
    return {};
}

FileStatus FaultFiles::Rename(const fs::path& from, const fs::path& to) {
    const std::string a = from.generic_string(), b = to.generic_string();
    if (const FileStatus status = NewName(a, b); !status) return status;
    if (names_.contains(b)) return Failed(FileFault::Exists);
    if (Held(*names_[a])) return Failed(FileFault::InUse);
    NamesWillChange();
    names_[b] = names_[a];
    names_.erase(a);
    return {};
}

FileStatus FaultFiles::Replace(const fs::path& from, const fs::path& to) {
    const std::string a = from.generic_string(), b = to.generic_string();
    if (const FileStatus status = NewName(a, b); !status) return status;
    if (Held(*names_[a]) || (names_.contains(b) && Held(*names_[b]))) return Failed(FileFault::InUse);
    NamesWillChange();
    names_[b] = names_[a];
    names_.erase(a);
    if (watch) watch();
    Settle();
    return {};
}

FileStatus FaultFiles::Link(const fs::path& from, const fs::path& to) {
    const std::string a = from.generic_string(), b = to.generic_string();
    if (const FileStatus status = NewName(a, b); !status) return status;
    if (plan.noLinks) return Failed(FileFault::Other);
    if (names_.contains(b)) return Failed(FileFault::Exists);
    NamesWillChange();
    names_[b] = names_[a];
    return {};
}

FileStatus FaultFiles::Remove(const fs::path& path) {
    if (const FileStatus status = Step(); !status) return status;
    if (Denied(path.generic_string())) return Failed(FileFault::Denied);
    const auto found = names_.find(path.generic_string());
    if (found == names_.end()) return MissingStatus(path.generic_string());
    if (Held(*found->second)) return Failed(FileFault::InUse);
    NamesWillChange();
    names_.erase(found->first);
    return {};
}

FileStatus FaultFiles::Info(const fs::path& path, FileInfo& info) {
    if (const FileStatus status = Step(); !status) return status;
    const auto found = names_.find(path.generic_string());
    if (found == names_.end()) return MissingStatus(path.generic_string());
    info = {found->second->bytes.size(), found->second->modified};
    return {};
}

FileStatus FaultFiles::MakeFolders(const fs::path& folder) {
    if (const FileStatus status = Step(); !status) return status;
    for (fs::path at = folder; !at.empty() && at != at.parent_path(); at = at.parent_path()) {
        folders_.insert(at.generic_string());
    }
    return {};
}

FileStatus FaultFiles::List(const fs::path& folder, std::vector<fs::path>& names) {
    names.clear();
    if (const FileStatus status = Step(); !status) return status;
    for (const auto& [name, node] : names_) {
        if (fs::path(name).parent_path() == folder) names.push_back(fs::path(name).filename());
    }
    return {};
}

FileBytes FaultFiles::Kept(const Node& node, Keep keep) {
    if (!node.dirty || keep == Keep::Everything) return node.bytes;
    FileBytes kept = node.flushed;
    if (keep == Keep::Zeros) kept.resize(std::max(kept.size(), node.bytes.size()));
    if (keep == Keep::Half && node.bytes.size() > kept.size()) {
        const std::size_t size = (kept.size() + node.bytes.size()) / 2;
        kept.assign(node.bytes.begin(), node.bytes.begin() + static_cast<std::ptrdiff_t>(size));
    }
    return kept;
}

std::vector<std::optional<FileBytes>> FaultFiles::AfterCrash(const std::string& path) const {
    std::vector<std::optional<FileBytes>> left;
    const auto add = [&](const NameMap& names) {
        const auto found = names.find(path);
        if (found == names.end()) return left.emplace_back(), void();
        for (const Keep keep : kEveryKeep) {
            left.emplace_back(Kept(*found->second, keep));
        }
    };
    std::ranges::for_each(older_, add);
    add(names_);
    return left;
}

std::uint64_t FaultFiles::CrashState(const std::string& path) const {
    std::uint64_t state = older_.size();
    const auto add = [&](const NameMap& names) {
        const auto found = names.find(path);
        state = state * 1000003 + (found == names.end() ? 0 : found->second->version);
    };
    std::ranges::for_each(older_, add);
    add(names_);
    return state;
}

void FaultFiles::Format() {
    Crash(Keep::Nothing);
    ClearPlan();
    CountAnew();
    names_.clear();
    folders_.clear();
    written_ = 0;
}

void FaultFiles::Crash(Keep keep, std::size_t namesBack) {
    for (Handle* handle : handles_) {
        handle->Die();
    }
    handles_.clear();
    if (const std::size_t back = std::min(namesBack, older_.size()); back > 0)
        names_ = older_[older_.size() - back];
    older_.clear();
    for (const auto& [name, node] : names_) {
        node->bytes = node->flushed = Kept(*node, keep);
        node->dirty = false;
        Changed(*node);
    }
    dead_ = false;
}

const FileBytes& FaultFiles::Content(const std::string& path) const {
    const auto found = names_.find(path);
    if (found == names_.end()) throw std::runtime_error("no such file: " + path);
    return found->second->bytes;
}

void FaultFiles::Put(const std::string& path, FileBytes bytes) {
    const auto node = std::make_shared<Node>();
    node->bytes = node->flushed = std::move(bytes);
    node->modified = clock_.Now();
    Changed(*node);
    names_[path] = node;
    for (fs::path at = fs::path(path).parent_path(); !at.empty(); at = at.parent_path()) {
        folders_.insert(at.generic_string());
    }
}

void FaultFiles::TakeFrom(const FaultFiles& other) {
    for (const auto& [name, node] : other.names_) {
        Put(name, node->bytes);
    }
}

std::vector<std::string> FaultFiles::Names() const {
    std::vector<std::string> names;
    for (const auto& [name, node] : names_) {
        names.push_back(name);
    }
    return names;
}

void FaultFiles::HoldOpen(const std::string& path, bool held) {
    names_.at(path)->held += held ? 1 : -1;
}

}  // namespace Dravel::Test

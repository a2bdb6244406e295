// Keeps entries in an arena of large blocks: ten thousand frames of an import cost a copy each and no
// allocation.
#include "FrameLog.h"

#include <windows.h>

#include <cstring>

namespace Dravel::DevHost {
namespace {

constexpr std::size_t kBlockSize = 1 << 20;

}  // namespace

std::string_view FrameLog::Keep(std::string_view bytes) {
    if (bytes.size() > left_) {
        const std::size_t size = bytes.size() > kBlockSize ? bytes.size() : kBlockSize;
        blocks_.push_back(std::make_unique<char[]>(size));
        next_ = blocks_.back().get();
        left_ = size;
    }
    if (!bytes.empty()) std::memcpy(next_, bytes.data(), bytes.size());
    const std::string_view kept(next_, bytes.size());
    next_ += bytes.size();
    left_ -= bytes.size();
    return kept;
}

void FrameLog::Add(EntryKind kind, std::uint16_t code, std::string_view bytes) {
    static const std::uint64_t start = GetTickCount64();
    const std::lock_guard hold(lock_);
    entries_.push_back({GetTickCount64() - start, kind, code, Keep(bytes)});
}

std::size_t FrameLog::Size() const {
    const std::lock_guard hold(lock_);
    return entries_.size();
}

LogEntry FrameLog::At(std::size_t index) const {
    const std::lock_guard hold(lock_);
    return index < entries_.size() ? entries_[index] : LogEntry{};
}

std::size_t FrameLog::Count(EntryKind kind, std::uint16_t code, std::size_t from) const {
    const std::lock_guard hold(lock_);
    std::size_t count = 0;
    for (std::size_t i = from; i < entries_.size(); ++i)
        count += entries_[i].kind == kind && entries_[i].code == code;
    return count;
}

std::size_t FrameLog::CountTexts(std::string_view part, std::size_t from) const {
    const std::lock_guard hold(lock_);
    std::size_t count = 0;
    for (std::size_t i = from; i < entries_.size(); ++i) {
        const LogEntry& entry = entries_[i];
        const bool text = entry.kind == EntryKind::Callback || entry.kind == EntryKind::Note;
        count += text && entry.bytes.find(part) != std::string_view::npos;
    }
    return count;
}

void FrameLog::Clear() {
    const std::lock_guard hold(lock_);
    entries_.clear();
    blocks_.clear();
    left_ = 0;
}

const char* KindName(EntryKind kind) {
    constexpr const char* kNames[] = {"from plug-in", "to plug-in", "reply", "callback", "host"};
    return kNames[static_cast<int>(kind)];
}

}  // namespace Dravel::DevHost

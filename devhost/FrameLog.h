// What went over the boundary: each frame and each callback, in order, as raw bytes. Decoded only when looked
// at.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Dravel::DevHost {

enum class EntryKind : std::uint8_t {
    FromPlugin,  // a frame through PluginDataSend or GetDllInfo, bytes: the frame
    ToPlugin,    // a frame handed to the plug-in
    Reply,       // the plug-in's answer to a selected-contract query
    Callback,    // a call of a callback, bytes: a text
    Note,        // what the host itself has to say, bytes: a text
};

struct LogEntry {
    std::uint64_t time = 0;  // milliseconds since the host started
    EntryKind kind = EntryKind::Note;
    std::uint16_t code = 0;  // message code of a frame, kind of a master request
    std::string_view bytes;  // in the log's arena, as long as the log is not cleared
};

// Any thread may add and read. Entries are never moved within the arena.
class FrameLog {
 public:
    void Add(EntryKind kind, std::uint16_t code, std::string_view bytes);
    std::size_t Size() const;
    LogEntry At(std::size_t index) const;
    // Frames of this kind and code among the entries from `from` on.
    std::size_t Count(EntryKind kind, std::uint16_t code, std::size_t from = 0) const;
    // Entries from `from` on whose text contains `part`, callbacks and notes only.
    std::size_t CountTexts(std::string_view part, std::size_t from = 0) const;
    void Clear();

 private:
    std::string_view Keep(std::string_view bytes);

    mutable std::mutex lock_;
    std::vector<LogEntry> entries_;
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::size_t left_ = 0;  // bytes free at the end of the last block
    char* next_ = nullptr;
};

const char* KindName(EntryKind kind);

}  // namespace Dravel::DevHost

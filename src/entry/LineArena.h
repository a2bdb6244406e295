// Keeps many lines of text, one behind another, in blocks that never move.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace Dravel {

class LineArena {
 public:
    // Valid as long as the arena.
    std::string_view Keep(std::string_view line) {
        if (line.size() > room_) {
            const std::size_t room = std::max(kBlock, line.size());
            blocks_.push_back(std::make_unique_for_overwrite<char[]>(room));
            at_ = blocks_.back().get();
            room_ = room;
        }
        if (!line.empty()) std::memcpy(at_, line.data(), line.size());
        const std::string_view kept(at_, line.size());
        at_ += line.size();
        room_ -= line.size();
        bytes_ += line.size();
        return kept;
    }
    // Of all lines.
    std::size_t Bytes() const { return bytes_; }

 private:
    static constexpr std::size_t kBlock = std::size_t{1} << 20;
    std::vector<std::unique_ptr<char[]>> blocks_;
    char* at_ = nullptr;
    std::size_t room_ = 0, bytes_ = 0;
};

}  // namespace Dravel

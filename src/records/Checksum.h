// The checksum that the book's sums and its journal are closed by: XXH3, 64 bits, without a seed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Dravel {

std::uint64_t Checksum(const void* bytes, std::size_t count) noexcept;

// A file as its bytes make it known. An empty or missing file has the default values.
struct FileSum {
    std::uint64_t length = 0;
    std::uint64_t checksum = 0x2D06800538D394C2;  // of no bytes at all
    bool operator==(const FileSum&) const = default;
};

// The same checksum of bytes that come in pieces. The constructor may throw std::bad_alloc.
class RunningChecksum {
 public:
    RunningChecksum();
    ~RunningChecksum();

    void Add(const void* bytes, std::size_t count) noexcept;
    // Of all bytes so far; more may be added afterwards.
    FileSum Sum() const noexcept;

 private:
    struct State;
    std::unique_ptr<State> state_;
    std::uint64_t length_ = 0;
};

}  // namespace Dravel

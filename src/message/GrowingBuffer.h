// A malloc'ed buffer that zlib fills and that grows by equal steps: its owner hands it to whoever frees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace Dravel {

struct GrowingBuffer {
    std::uint8_t* bytes = nullptr;
    std::size_t size = 0, used = 0;
    std::size_t step = 0;

    // False when memory ran out; what is there stays.
    bool Enlarge() {
        void* larger = std::realloc(bytes, size + step);
        if (larger == nullptr) return false;
        bytes = static_cast<std::uint8_t*>(larger);
        size += step;
        return true;
    }
};

}  // namespace Dravel

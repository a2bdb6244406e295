// What the process holds of the system, to see whether a plug-in gives back what it took.
#pragma once

#include <cstdint>
#include <string>

namespace Dravel::DevHost {

struct ResourceCount {
    std::uint32_t handles = 0, threads = 0, windows = 0, user = 0, gdi = 0;
    std::uint64_t memory = 0;  // bytes taken from the heaps
};

// Windows are all of this process: top, child and message-only ones.
ResourceCount CountResources();
std::string ResourceText(const ResourceCount& count);

}  // namespace Dravel::DevHost

// Numbers that stand for cells when rows are put in order.
#pragma once

#include <cstdint>
#include <vector>

namespace Dravel {

// By item: keys[a] < keys[b] says that a's cell comes before b's. With `whole` equal keys mean equal cells,
// without it the cells themselves decide between equal keys.
struct OrderKeys {
    std::vector<std::uint64_t> keys;
    int bits = 64;  // none above them is set
    bool whole = true;
};

}  // namespace Dravel

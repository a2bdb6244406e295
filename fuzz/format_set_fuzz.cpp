#include "fuzz/format_set_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Dravel::Fuzz::FuzzFormatSet(data, size);
    return 0;
}

#include "fuzz/frame_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Dravel::Fuzz::FuzzFrame(data, size);
    return 0;
}

#include "fuzz/settings_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Dravel::Fuzz::FuzzSettings(data, size);
    return 0;
}

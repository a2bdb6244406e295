#include "fuzz/record_file_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Dravel::Fuzz::FuzzRecordFile(data, size);
    return 0;
}

#include "fuzz/csv_line_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Dravel::Fuzz::FuzzCsvLine(data, size);
    return 0;
}

#include "platform/ForeignCall.h"

#include "platform/FloatingPoint.h"

namespace Dravel::foreign {

ForeignEnd Run(Call call, const void* work) noexcept {
    const FloatingPointScope whateverItLeaves;
    try {
        call(work);
        return {};
    } catch (...) {
        return {false, 0};
    }
}

}  // namespace Dravel::foreign

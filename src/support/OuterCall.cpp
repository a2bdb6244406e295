#include "support/OuterCall.h"

#include <utility>
#include <vector>

#include "platform/ForeignCall.h"

namespace Dravel {

static std::vector<std::shared_ptr<void>> kept;

OuterCall::OuterCall() noexcept {
    ++callsFromOutside;
}

// Still counted meanwhile: what goes may call, be called, and leave more behind.
OuterCall::~OuterCall() {
    while (callsFromOutside == 1 && !kept.empty()) {
        auto going = std::exchange(kept, {});
        for (std::shared_ptr<void>& object : going)
            object.reset();
    }
    --callsFromOutside;
}

void KeepForCalls(std::shared_ptr<void> object) {
    if (callsFromOutside > 0) kept.push_back(std::move(object));
}

}  // namespace Dravel

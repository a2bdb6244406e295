#include "support/OuterCall.h"

#include <utility>
#include <vector>

namespace Dravel {

static int calls = 0;
static std::vector<std::shared_ptr<void>> kept;

OuterCall::OuterCall() noexcept {
    ++calls;
}

// Still counted meanwhile: what goes may call, be called, and leave more behind.
OuterCall::~OuterCall() {
    while (calls == 1 && !kept.empty()) {
        auto going = std::exchange(kept, {});
        for (std::shared_ptr<void>& object : going)
            object.reset();
    }
    --calls;
}

void KeepForCalls(std::shared_ptr<void> object) {
    if (calls > 0) kept.push_back(std::move(object));
}

}  // namespace Dravel

// Memory that is used up at a chosen moment.
#pragma once

namespace Dravel::Test {

// While it lives, the `at`th allocation of this thread throws std::bad_alloc, and only that one. One at a
// time.
class FailingMemory {
 public:
    explicit FailingMemory(int at);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    bool HasFailed() const;
};

}  // namespace Dravel::Test

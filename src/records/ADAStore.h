// Pending write items of the record files, and the list that keeps them until they are carried out.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/Lock.h"

namespace KRV::Base {

// Something to be written. Made with new by who posts it; whoever takes it carries it out at most once and
// then gives it back by Release, which destroys it.
class IADAItem {
 public:
    // May take its time. What it throws is caught; the item counts as carried out.
    virtual void Write() = 0;
    virtual void Release() = 0;

 protected:
    ~IADAItem() = default;
};

// Calls Write, then Release, and lets no exception out.
void CarryOut(IADAItem& item) noexcept;

// A singly linked list of items, each owned by the list until it is carried out. Any thread may call; each
// operation takes the lock.
class CKRVADAStore {
 public:
    CKRVADAStore() = default;
    ~CKRVADAStore();
    CKRVADAStore(const CKRVADAStore&) = delete;
    CKRVADAStore& operator=(const CKRVADAStore&) = delete;

    void Add(IADAItem* item);
    // Carries all out, in the order in which they came, under the lock; they must not add to this list.
    void Drain();
    // Releases all without writing them.
    void Clear();
    std::size_t Count();

 private:
    struct Node {
        Node* next = nullptr;
        IADAItem* item;
        std::uint32_t count = 256;  // what a node has always begun with
    };
    template <class Deal>
    void TakeAll(Deal deal);

    Thread::CKRVLock lock_;
    Node* first_ = nullptr;
    Node* last_ = nullptr;
};

}  // namespace KRV::Base

#include "records/ADAStore.h"

#include <memory>
#include <mutex>

namespace KRV::Base {

void CarryOut(IADAItem& item) noexcept {
    try {
        item.Write();
    } catch (...) {
        // An item reports its own failures; here nobody could.
    }
    item.Release();
}

CKRVADAStore::~CKRVADAStore() {
    Clear();
}

void CKRVADAStore::Add(IADAItem* item) {
    Node* node = new Node{nullptr, item};
    const std::lock_guard guard(lock_);
    (last_ ? last_->next : first_) = node;
    last_ = node;
}

template <class Deal>
void CKRVADAStore::TakeAll(Deal deal) {
    const std::lock_guard guard(lock_);
    while (first_) {
        const std::unique_ptr<Node> node(first_);
        first_ = node->next;
        if (!first_) last_ = nullptr;
        deal(*node->item);
    }
}

void CKRVADAStore::Drain() {
    TakeAll(CarryOut);
}

void CKRVADAStore::Clear() {
    TakeAll([](IADAItem& item) { item.Release(); });
}

std::size_t CKRVADAStore::Count() {
    const std::lock_guard guard(lock_);
    std::size_t count = 0;
    for (const Node* node = first_; node; node = node->next) {
        ++count;
    }
    return count;
}

}  // namespace KRV::Base

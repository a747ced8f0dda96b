#pragma once

#include <new>
#include <utility>

namespace tavora {

/// Frees a record's zones or lights from the head of their list; null is an
/// empty list.
template <class Entry>
void freeList(Entry* head) {
    while (head != nullptr)
        delete std::exchange(head, head->next);
}

/// Builds a list at its tail, in the order given; frees what nobody took.
template <class Entry>
class ListBuilder {
  public:
    ListBuilder() = default;
    ListBuilder(const ListBuilder&) = delete;
    ListBuilder& operator=(const ListBuilder&) = delete;
    ~ListBuilder() { freeList(head_); }

    /// Appends a copy of `entry`, links made anew. False when memory runs out;
    /// the list is then as it was.
    bool append(const Entry& entry) {
        auto* copy = new (std::nothrow) Entry(entry);
        if (copy == nullptr) return false;
        copy->next = nullptr;
        if constexpr (requires { copy->prev; }) copy->prev = tail_;
        (tail_ == nullptr ? head_ : tail_->next) = copy;
        tail_ = copy;
        return true;
    }

    /// The list, from now on the caller's to free with freeList().
    Entry* take() {
        tail_ = nullptr;
        return std::exchange(head_, nullptr);
    }

  private:
    Entry* head_ = nullptr;
    Entry* tail_ = nullptr;
};

}  // namespace tavora

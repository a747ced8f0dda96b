#include "plugin/record/zone.h"

#include <new>
#include <utility>

namespace tavora {

ZoneListBuilder::~ZoneListBuilder() {
    freeZones(head_);
}

bool ZoneListBuilder::append(const Zone& zone) {
    auto* copy = new (std::nothrow) Zone(zone);
    if (copy == nullptr) return false;
    copy->prev = tail_;
    copy->next = nullptr;
    (tail_ == nullptr ? head_ : tail_->next) = copy;
    tail_ = copy;
    return true;
}

Zone* ZoneListBuilder::take() {
    tail_ = nullptr;
    return std::exchange(head_, nullptr);
}

void freeZones(Zone* head) {
    while (head != nullptr)
        delete std::exchange(head, head->next);
}

}  // namespace tavora

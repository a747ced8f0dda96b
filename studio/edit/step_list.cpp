#include "studio/edit/step_list.h"

#include <utility>

namespace tavora::studio {
namespace {

std::size_t bytesOf(const std::optional<SurfaceShader>& shader) {
    if (!shader) return 0;
    std::size_t bytes = shader->block.size() * sizeof(StateItem);
    for (const StateItem& item : shader->block) {
        if (const auto* text = std::get_if<std::string>(&item)) bytes += text->size();
    }
    return bytes;
}

std::size_t bytesOf(const Step& step) {
    std::size_t bytes = sizeof(Step) + step.what.size();
    for (const SettingsChange& change : step.changes) {
        bytes += sizeof change + bytesOf(change.before) + bytesOf(change.after);
    }
    return bytes;
}

}  // namespace

bool StepList::joins(const Step& step) const {
    if (!open_ || step.gesture == 0 || step.changes.size() != 1) return false;
    const Step& last = steps_.back();
    return last.gesture == step.gesture && last.changes.size() == 1 &&
           last.changes.front().surface == step.changes.front().surface;
}

bool StepList::isLast(Gesture gesture) const {
    return gesture != 0 && done_ > 0 && !canRedo() && steps_.back().gesture == gesture;
}

Step StepList::drop() {
    Step last = std::move(steps_.back());
    bytes_ -= steps_.back().bytes;
    steps_.pop_back();
    --done_;
    open_ = false;
    return last;
}

void StepList::join(Step step) {
    Entry& last = steps_.back();
    SettingsChange& change = last.changes.front();
    change.after = std::move(step.changes.front().after);
    bytes_ -= std::exchange(last.bytes, bytesOf(last));
    bytes_ += last.bytes;
    if (change.before != change.after) return;
    bytes_ -= last.bytes;
    steps_.pop_back();
    --done_;
    open_ = false;  // what lies below was ended before this one began
}

void StepList::add(Step step) {
    std::erase_if(step.changes,
                  [](const SettingsChange& change) { return change.before == change.after; });
    if (step.changes.empty()) return;
    while (canRedo()) {
        bytes_ -= steps_.back().bytes;
        steps_.pop_back();
    }
    if (joins(step)) return join(std::move(step));
    const std::size_t bytes = bytesOf(step);
    steps_.push_back({std::move(step), bytes});
    bytes_ += bytes;
    ++done_;
    open_ = true;
    forgetOldest();
}

void StepList::forgetOldest() {
    while (steps_.size() > 1 && (steps_.size() > kMostSteps || bytes_ > kMostBytes)) {
        bytes_ -= steps_.front().bytes;
        steps_.pop_front();
        --done_;
    }
}

const Step& StepList::undo() {
    open_ = false;
    return steps_[--done_];
}

const Step& StepList::redo() {
    open_ = false;
    return steps_[done_++];
}

}  // namespace tavora::studio

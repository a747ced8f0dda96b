#include "studio/edit/undo_stack.h"

#include <algorithm>
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

std::size_t bytesOf(const UndoStep& step) {
    std::size_t bytes = sizeof(UndoStep) + step.what.size();
    for (const SettingsChange& change : step.changes) {
        bytes += sizeof change + bytesOf(change.before) + bytesOf(change.after);
    }
    return bytes;
}

/// The shaders before or after a step.
ShaderChanges side(const UndoStep& step, std::optional<SurfaceShader> SettingsChange::*which) {
    ShaderChanges settings;
    for (const SettingsChange& change : step.changes)
        settings.emplace_back(change.surface, change.*which);
    return settings;
}

}  // namespace

bool UndoStack::joins(const UndoStep& step) const {
    if (!canJoin_ || step.gesture == 0 || step.changes.size() != 1) return false;
    const UndoStep& last = steps_.back();
    return last.gesture == step.gesture && last.changes.size() == 1 &&
           last.changes.front().surface == step.changes.front().surface;
}

void UndoStack::join(UndoStep step) {
    Entry& last = steps_.back();
    SettingsChange& change = last.changes.front();
    change.after = std::move(step.changes.front().after);
    bytes_ -= std::exchange(last.bytes, bytesOf(last));
    bytes_ += last.bytes;
    if (change.before == change.after) dropLast();
}

void UndoStack::dropLast() {
    bytes_ -= steps_.back().bytes;
    steps_.pop_back();
    done_ = std::min(done_, steps_.size());
    canJoin_ = false;  // the step below ended when this one began
}

void UndoStack::add(UndoStep step) {
    while (canRedo())
        dropLast();
    if (joins(step)) return join(std::move(step));
    const std::size_t bytes = bytesOf(step);
    steps_.push_back({std::move(step), bytes});
    bytes_ += bytes;
    ++done_;
    canJoin_ = true;
    forgetOldest();
}

void UndoStack::forgetOldest() {
    while (steps_.size() > 1 && (steps_.size() > kMostSteps || bytes_ > kMostBytes)) {
        bytes_ -= steps_.front().bytes;
        steps_.pop_front();
        --done_;
    }
}

void UndoStack::push(UndoStep step) {
    std::erase_if(step.changes,
                  [](const SettingsChange& change) { return change.before == change.after; });
    if (step.changes.empty()) return;
    const ShaderChanges after = side(step, &SettingsChange::after);
    add(std::move(step));
    settings_.set(after);
}

std::string UndoStack::undoText() const {
    return canUndo() ? steps_[done_ - 1].what : std::string();
}

std::string UndoStack::redoText() const {
    return canRedo() ? steps_[done_].what : std::string();
}

void UndoStack::undo() {
    if (!canUndo()) return;
    canJoin_ = false;
    settings_.set(side(steps_[--done_], &SettingsChange::before));
}

void UndoStack::redo() {
    if (!canRedo()) return;
    settings_.set(side(steps_[done_++], &SettingsChange::after));
}

bool UndoStack::isLastStepOf(Gesture gesture) const {
    return gesture != 0 && canUndo() && !canRedo() && steps_.back().gesture == gesture;
}

void UndoStack::abandon(Gesture gesture) {
    if (!isLastStepOf(gesture)) return;
    const ShaderChanges before = side(steps_.back(), &SettingsChange::before);
    dropLast();
    settings_.set(before);
}

}  // namespace tavora::studio

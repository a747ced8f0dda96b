#include "studio/edit/session_recovery.h"

#include <fmt/format.h>

#include "studio/util/error.h"

namespace tavora::studio {

UnsavedWork SessionRecovery::takeLeft() {
    if (!hasLeft()) throw Error(Fault::Scene, "there is no unsaved work to recover");
    const std::string where = files_.leftFile().string();
    try {
        UnsavedWork work = readUnsavedWork(files_.readLeft(), where);
        taken_ = true;
        return work;
    } catch (const Error& error) {
        throw Error(Fault::Scene,
                    fmt::format("the unsaved work cannot be recovered: {}; it is kept as {}",
                                error.what(), files_.setLeftAside().string()));
    }
}

void SessionRecovery::write(const UnsavedWork& work) {
    if (written_ == work) return;
    files_.write(textOfUnsavedWork(work));
    written_ = work;
    if (taken_) files_.removeLeft();
}

void SessionRecovery::removeTaken() {
    files_.remove();
    written_.reset();
    if (taken_) files_.removeLeft();
}

void SessionRecovery::discard() {
    files_.remove();
    written_.reset();
    files_.removeLeft();
}

}  // namespace tavora::studio

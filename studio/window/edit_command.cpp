#include <stdexcept>

#include "studio/window/commands.h"

namespace tavora::studio {

void edit(const EditRequest& /*request*/, Report& /*report*/) {
    throw std::logic_error("no window yet");
}

}  // namespace tavora::studio

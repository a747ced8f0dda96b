#include <stdexcept>

#include "studio/window/commands.h"

namespace tavora::studio {

void drawPanel(const PanelRequest& /*request*/, Report& /*report*/) {
    throw std::logic_error("no panel yet");
}

}  // namespace tavora::studio

#include "studio/panels/control_classes.h"

#include <algorithm>
#include <iterator>

#include "studio/panels/area_control.h"
#include "studio/panels/button_controls.h"
#include "studio/panels/choice_controls.h"
#include "studio/panels/multi_list_control.h"
#include "studio/panels/number_controls.h"
#include "studio/panels/text_control.h"

namespace tavora::studio {
namespace {

template <class Control>
PanelControl* make(const ControlSeed& seed) {
    return new Control(seed);
}

constexpr ControlClass classes[] = {
    {"ButtonControl", "button", make<ButtonControl>},
    {"DragButtonControl", "drag", make<DragButtonControl>},
    {"AreaControl", "area", make<AreaControl>},
    {"PercentControl", "percent", makePercentControl},
    {"MiniRGBControl", "rgb", make<MiniRgbControl>},
    {"BoolControl", "check", make<BoolControl>},
    {"NumControl", "number", makeNumControl},
    {"TextControl", "text", make<TextControl>},
    {"PopupControl", "popup", make<PopupControl>},
    {"ChoiceControl", "choice", make<ChoiceControl>},
    {"TabChoiceControl", "tab", make<TabChoiceControl>},
    {"MultiListBoxControl", "list", make<MultiListControl>},
};

}  // namespace

const ControlClass* findControlClass(std::string_view name) {
    const auto* found = std::ranges::find(classes, name, &ControlClass::name);
    return found == std::end(classes) ? nullptr : found;
}

}  // namespace tavora::studio

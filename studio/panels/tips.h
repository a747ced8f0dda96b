#pragma once

#include <QString>

namespace tavora::studio {

/// The name and description of a control for users. Modules do not have such texts.
struct ControlTip {
    QString name;  ///< for assistive technology
    QString text;  ///< one line
};

/// The names of the controls that edit a gradient of zones; empty when a panel has none.
struct MarkerControls {
    const char* strip = "";
    const char* mode = "";
    const char* position = "";
};

MarkerControls markerControlsOf(const QString& panelTitle);

/// The tip for a control, by its panel's title and the object name of its widget. Its texts are
/// empty for an unknown control.
ControlTip tipFor(const QString& panelTitle, const QString& control);

}  // namespace tavora::studio

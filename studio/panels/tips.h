#pragma once

#include <QString>

namespace tavora::studio {

/// What a control is called and does, in words for those who use it. Modules
/// give no such texts.
struct ControlTip {
    QString name;  ///< for assistive technology
    QString text;  ///< one line
};

/// The controls that edit a gradient of zones, by name; empty: the panel has none.
struct MarkerControls {
    const char* strip = "";
    const char* mode = "";
    const char* position = "";
};

MarkerControls markerControlsOf(const QString& panelTitle);

/// By the title of its panel and the control's name on it (its widget's object
/// name). Empty texts for a control that nothing is known about.
ControlTip tipFor(const QString& panelTitle, const QString& control);

}  // namespace tavora::studio

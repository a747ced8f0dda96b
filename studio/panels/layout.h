#pragma once

#include <QRect>
#include <optional>
#include <vector>

namespace tavora::studio {

enum class LayoutKind {
    Plain,       ///< stands where its module put it
    Text,        ///< the same, but off the frame's border
    Button,      ///< as wide as its neighbours above and below
    Labelled,    ///< a label, and a field in line with others
    ColorPatch,  ///< a patch of kPatchSize with fields to its right
    Area         ///< transparent; over a colour patch it takes the patch's place
};

/// One control on its way to its place, in panel pixels.
struct LayoutItem {
    LayoutKind kind = LayoutKind::Plain;
    QPoint at;      ///< where the module put it
    int label = 0;  ///< width of the label in front of the field; 0: none
    QSize field;    ///< what the field needs
    bool visible = true;
    QRect labelRect;  ///< out
    QRect fieldRect;  ///< out
};

inline constexpr QSize kPatchSize{30, 17};
inline constexpr int kRowHeight = 20;
/// Between a label and its field.
inline constexpr int kLabelGap = 5;

/// Gives every item its rectangles. Modules place controls for the widths of a
/// font that we do not have, pixels off here and there: fields that begin near
/// one another share one column, labels ending there; visible controls whose
/// rows differ by no more than five pixels share one row. `frame`: the box that
/// the module draws around controls, if any.
void layOut(std::vector<LayoutItem>& items, const std::optional<QRect>& frame = {});

}  // namespace tavora::studio

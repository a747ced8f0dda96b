#pragma once

#include <QRect>
#include <optional>
#include <vector>

namespace tavora::studio {

enum class LayoutKind {
    Plain,       ///< at the position that the module set
    Text,        ///< the same, but with a distance to the frame's border
    Button,      ///< as wide as the other buttons in the column
    Labelled,    ///< a label, and a field that is aligned with others
    ColorPatch,  ///< a patch of kPatchSize with fields to its right
    Area         ///< transparent; over a colour patch it gets the patch's rectangle
};

/// A control for the layout, in panel pixels.
struct LayoutItem {
    LayoutKind kind = LayoutKind::Plain;
    QPoint position;  ///< that the module set
    int label = 0;    ///< width of the label in front of the field; 0: none
    QSize field;      ///< the size that the field needs
    bool visible = true;
    QRect labelRect;  ///< result
    QRect fieldRect;  ///< result
};

inline constexpr QSize kPatchSize{30, 17};
inline constexpr int kRowHeight = 20;
/// The distance between a label and its field.
inline constexpr int kLabelGap = 5;

/// Determines the rectangles of all items. Modules set positions for another font, and some are off
/// by a few pixels. So fields that begin near each other are aligned to a column, with their labels
/// in front of it, and visible controls whose vertical positions differ by at most five pixels are
/// aligned to a row. `frame` is the box that the module draws around controls, if there is one.
void layOut(std::vector<LayoutItem>& items, const std::optional<QRect>& frame = {});

}  // namespace tavora::studio

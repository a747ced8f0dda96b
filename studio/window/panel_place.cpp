#include "studio/window/panel_place.h"

#include <algorithm>
#include <limits>

namespace tavora::studio {
namespace {

constexpr int kGap = 8;             // pixels
constexpr qint64 kSideWeight = 16;  // a list under the panel is worse than some of the picture

qint64 areaOf(const QRect& rect) {
    return rect.isEmpty() ? 0 : qint64{rect.width()} * rect.height();
}

}  // namespace

QPoint within(const QRect& screen, QPoint wanted, QSize panel) {
    const int lastX = screen.left() + screen.width() - panel.width();
    const int lastY = screen.top() + screen.height() - panel.height();
    return {std::max(screen.left(), std::min(wanted.x(), lastX)),
            std::max(screen.top(), std::min(wanted.y(), lastY))};
}

QPoint panelPlace(const QRect& screen, const QRect& window, const QRect& side, QSize panel) {
    const int middle = window.top() + (window.height() - panel.height()) / 2;
    const int low = window.bottom() - panel.height() - kGap;
    const QPoint wanted[] = {
        {window.right() + 1 + kGap, middle},
        {window.left() - panel.width() - kGap, middle},
        {side.left() - panel.width() - kGap, low},
        {side.right() + 1 + kGap, low},
        {window.left() + kGap, low},
    };
    QPoint best;
    qint64 least = std::numeric_limits<qint64>::max();
    for (const QPoint& place : wanted) {
        const QRect shown(within(screen, place, panel), panel);
        const qint64 covered = kSideWeight * areaOf(shown & side) + areaOf(shown & window);
        if (covered >= least) continue;
        least = covered;
        best = shown.topLeft();
    }
    return best;
}

}  // namespace tavora::studio

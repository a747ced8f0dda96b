#include "studio/window/panel_position.h"

#include <algorithm>
#include <limits>

namespace tavora::studio {
namespace {

constexpr int kGap = 8;             // pixels
constexpr qint64 kSideWeight = 16;  // covering the lists is so much worse than the picture

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

QPoint panelPosition(const QRect& screen, const QRect& window, const QRect& side, QSize panel) {
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
    qint64 leastCovered = std::numeric_limits<qint64>::max();
    for (const QPoint& position : wanted) {
        const QRect shown(within(screen, position, panel), panel);
        const qint64 covered = kSideWeight * areaOf(shown & side) + areaOf(shown & window);
        if (covered >= leastCovered) continue;
        leastCovered = covered;
        best = shown.topLeft();
    }
    return best;
}

}  // namespace tavora::studio

#include "studio/panels/layout.h"

#include <algorithm>
#include <map>

namespace tavora::studio {
namespace {

constexpr int kInset = 5;            // of a control without a label
constexpr int kColumnDistance = 24;  // at most, between fields of a column
constexpr int kSnapDistance = 16;    // at most, between aligned columns and colour patches
constexpr int kRowDistance = 5;
constexpr int kBetween = 6;   // at least, between two controls of a row
constexpr int kOffFrame = 8;  // between the frame's border and a text
constexpr int kAreaDrop = 4;  // modules draw that far below an area's position

using Items = std::vector<LayoutItem>;
using Group = std::vector<LayoutItem*>;

void placeSingle(LayoutItem& item) {
    const QPoint at = item.position;
    const bool centred = item.kind != LayoutKind::Area && item.field.height() < kRowHeight;
    const int top = at.y() + (centred ? (kRowHeight - item.field.height()) / 2 : 0);
    int left = at.x();
    if (item.label > 0) {
        item.labelRect = QRect(left, at.y(), item.label, kRowHeight);
        left += item.label + kLabelGap;
    } else if (item.kind == LayoutKind::Labelled || item.kind == LayoutKind::ColorPatch) {
        left += kInset;
    }
    item.fieldRect = QRect(QPoint(left, top), item.field);
    if (item.kind == LayoutKind::Area) item.fieldRect.translate(0, kAreaDrop);
}

void moveField(LayoutItem& item, int left) {
    item.fieldRect.moveLeft(left);
    item.labelRect.moveRight(left - kLabelGap - 1);
}

/// Groups the items of a kind so that neighbours in a group, sorted by `key`, differ by at most
/// `maxDistance`.
template <class Key>
std::vector<Group> groupsOf(Items& items, LayoutKind kind, int maxDistance, Key key) {
    Group sorted;
    for (LayoutItem& item : items)
        if (item.kind == kind) sorted.push_back(&item);
    std::ranges::stable_sort(sorted, {}, key);
    std::vector<Group> groups;
    for (LayoutItem* item : sorted) {
        if (groups.empty() || key(item) - key(groups.back().back()) > maxDistance)
            groups.emplace_back();
        groups.back().push_back(item);
    }
    return groups;
}

int fieldLeft(const LayoutItem* item) {
    return item->fieldRect.left();
}

/// The left edge of a column's fields: after the widest label, from the leftmost position.
int columnLeft(const Group& column, const std::optional<QRect>& frame) {
    int left = column.front()->position.x();
    int label = 0;
    for (const LayoutItem* item : column) {
        left = std::min(left, item->position.x());
        label = std::max(label, item->label);
    }
    if (frame && left > frame->left()) left = std::max(left, frame->left() + kOffFrame);
    return left + label + kLabelGap;
}

/// The rightmost position that is near enough on the right to align with; else `left`.
int snapped(int left, const std::vector<int>& positions) {
    int best = left;
    for (const int position : positions)
        if (position > best && position - left <= kSnapDistance) best = position;
    return best;
}

/// Aligns fields to columns; then colour patches to a column a little to their right, and columns
/// to such patches.
void alignColumns(Items& items, const std::optional<QRect>& frame) {
    const auto columns = groupsOf(items, LayoutKind::Labelled, kColumnDistance, fieldLeft);
    std::vector<int> lefts;
    for (const Group& column : columns) {
        const bool alone = column.size() < 2;
        lefts.push_back(alone ? fieldLeft(column.front()) : columnLeft(column, frame));
    }
    std::vector<int> patches;
    for (LayoutItem& item : items) {
        if (item.kind != LayoutKind::ColorPatch) continue;
        moveField(item, snapped(fieldLeft(&item), lefts));
        patches.push_back(fieldLeft(&item));
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        for (LayoutItem* item : columns[i])
            if (item->label > 0) moveField(*item, snapped(lefts[i], patches));
    }
}

void equalizeButtons(Items& items) {
    const auto left = [](const LayoutItem* item) { return item->position.x(); };
    for (const Group& column : groupsOf(items, LayoutKind::Button, 0, left)) {
        int width = 0;
        for (const LayoutItem* item : column)
            width = std::max(width, item->fieldRect.width());
        for (LayoutItem* item : column)
            item->fieldRect.setWidth(width);
    }
}

/// The visible items by rows, from top to bottom, each from left to right.
std::map<int, Group> visibleRows(Items& items) {
    Group sorted;
    for (LayoutItem& item : items)
        if (item.visible && item.kind != LayoutKind::Area) sorted.push_back(&item);
    std::ranges::stable_sort(sorted, {}, [](const LayoutItem* item) { return item->position.y(); });
    std::map<int, Group> rows;
    for (LayoutItem* item : sorted) {
        const int top = item->position.y();
        const bool near = !rows.empty() && top - rows.rbegin()->first <= kRowDistance;
        rows[near ? rows.rbegin()->first : top].push_back(item);
    }
    for (auto& [top, row] : rows)
        std::ranges::stable_sort(row, {},
                                 [](const LayoutItem* item) { return item->position.x(); });
    return rows;
}

int leftOf(const LayoutItem& item) {
    return item.label > 0 ? item.labelRect.left() : item.fieldRect.left();
}

/// Moves controls to the left when the next one in the row would overlap them.
void resolveOverlaps(const Group& row) {
    for (std::size_t i = row.size(); i-- > 1;) {
        LayoutItem& item = *row[i - 1];
        const int overlap = item.fieldRect.right() + 1 + kBetween - leftOf(*row[i]);
        if (overlap <= 0) continue;
        item.fieldRect.translate(-overlap, 0);
        item.labelRect.translate(-overlap, 0);
    }
}

void alignRows(Items& items) {
    for (auto& [top, row] : visibleRows(items)) {
        for (LayoutItem* item : row) {
            const int lift = item->position.y() - top;
            item->fieldRect.translate(0, -lift);
            item->labelRect.translate(0, -lift);
        }
        resolveOverlaps(row);
    }
}

void coverPatches(Items& items) {
    for (LayoutItem& area : items) {
        if (area.kind != LayoutKind::Area || !area.visible) continue;
        for (const LayoutItem& color : items) {
            if (color.kind != LayoutKind::ColorPatch || !color.visible) continue;
            const QRect patch(color.fieldRect.topLeft(), QSize(kPatchSize.width(), kRowHeight));
            const QRect shared = patch & area.fieldRect;
            if (shared.width() * 2 > patch.width() && shared.height() * 2 > patch.height()) {
                area.fieldRect = patch;
            }
        }
    }
}

void avoidFrame(Items& items, const QRect& frame) {
    const int left = frame.left() + kOffFrame;
    for (LayoutItem& item : items) {
        const int from = item.fieldRect.left();
        if (item.kind == LayoutKind::Text && from > frame.left() && from < left) {
            item.fieldRect.moveLeft(left);
        }
    }
}

}  // namespace

void layOut(std::vector<LayoutItem>& items, const std::optional<QRect>& frame) {
    for (LayoutItem& item : items)
        placeSingle(item);
    alignColumns(items, frame);
    equalizeButtons(items);
    if (frame) avoidFrame(items, *frame);
    alignRows(items);
    coverPatches(items);
}

}  // namespace tavora::studio

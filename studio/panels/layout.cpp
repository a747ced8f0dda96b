#include "studio/panels/layout.h"

#include <algorithm>
#include <map>

namespace tavora::studio {
namespace {

constexpr int kInset = 5;         // of what stands without a label
constexpr int kColumnReach = 24;  // fields this near belong to one column
constexpr int kJoinReach = 16;    // of columns and colour patches
constexpr int kRowReach = 5;
constexpr int kBetween = 6;   // kept free between two controls of a row
constexpr int kOffFrame = 8;  // a text begins this far from the frame's border
constexpr int kAreaDrop = 4;  // modules draw that much below an area's place

using Items = std::vector<LayoutItem>;
using Group = std::vector<LayoutItem*>;

void placeAlone(LayoutItem& item) {
    const QPoint at = item.at;
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

/// The items of a kind in groups whose neighbours, by `key`, are `reach` apart
/// at most.
template <class Key>
std::vector<Group> groupsOf(Items& items, LayoutKind kind, int reach, Key key) {
    Group sorted;
    for (LayoutItem& item : items)
        if (item.kind == kind) sorted.push_back(&item);
    std::ranges::stable_sort(sorted, {}, key);
    std::vector<Group> groups;
    for (LayoutItem* item : sorted) {
        if (groups.empty() || key(item) - key(groups.back().back()) > reach) groups.emplace_back();
        groups.back().push_back(item);
    }
    return groups;
}

int fieldLeft(const LayoutItem* item) {
    return item->fieldRect.left();
}

/// The widest label decides, from where the leftmost begins.
int columnLeft(const Group& column, const std::optional<QRect>& frame) {
    int left = column.front()->at.x();
    int label = 0;
    for (const LayoutItem* item : column) {
        left = std::min(left, item->at.x());
        label = std::max(label, item->label);
    }
    if (frame && left > frame->left()) left = std::max(left, frame->left() + kOffFrame);
    return left + label + kLabelGap;
}

/// The furthest place to the right that is near enough to join; else `left`.
int joined(int left, const std::vector<int>& places) {
    int best = left;
    for (const int place : places)
        if (place > best && place - left <= kJoinReach) best = place;
    return best;
}

/// Fields in columns; colour patches join a column a little to their right,
/// then columns such patches.
void alignColumns(Items& items, const std::optional<QRect>& frame) {
    const auto columns = groupsOf(items, LayoutKind::Labelled, kColumnReach, fieldLeft);
    std::vector<int> lefts;
    for (const Group& column : columns) {
        const bool alone = column.size() < 2;
        lefts.push_back(alone ? fieldLeft(column.front()) : columnLeft(column, frame));
    }
    std::vector<int> patches;
    for (LayoutItem& item : items) {
        if (item.kind != LayoutKind::ColorPatch) continue;
        moveField(item, joined(fieldLeft(&item), lefts));
        patches.push_back(fieldLeft(&item));
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        for (LayoutItem* item : columns[i])
            if (item->label > 0) moveField(*item, joined(lefts[i], patches));
    }
}

void equalizeButtons(Items& items) {
    const auto left = [](const LayoutItem* item) { return item->at.x(); };
    for (const Group& column : groupsOf(items, LayoutKind::Button, 0, left)) {
        int width = 0;
        for (const LayoutItem* item : column)
            width = std::max(width, item->fieldRect.width());
        for (LayoutItem* item : column)
            item->fieldRect.setWidth(width);
    }
}

/// By rows, from the top; in each from the left.
std::map<int, Group> visibleRows(Items& items) {
    Group sorted;
    for (LayoutItem& item : items)
        if (item.visible && item.kind != LayoutKind::Area) sorted.push_back(&item);
    std::ranges::stable_sort(sorted, {}, [](const LayoutItem* item) { return item->at.y(); });
    std::map<int, Group> rows;
    for (LayoutItem* item : sorted) {
        const int top = item->at.y();
        const bool near = !rows.empty() && top - rows.rbegin()->first <= kRowReach;
        rows[near ? rows.rbegin()->first : top].push_back(item);
    }
    for (auto& [top, row] : rows)
        std::ranges::stable_sort(row, {}, [](const LayoutItem* item) { return item->at.x(); });
    return rows;
}

int leftOf(const LayoutItem& item) {
    return item.label > 0 ? item.labelRect.left() : item.fieldRect.left();
}

/// Pushes controls to the left where the next one of the row needs the room.
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
            const int lift = item->at.y() - top;
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

void keepOffFrame(Items& items, const QRect& frame) {
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
        placeAlone(item);
    alignColumns(items, frame);
    equalizeButtons(items);
    if (frame) keepOffFrame(items, *frame);
    alignRows(items);
    coverPatches(items);
}

}  // namespace tavora::studio

#include "studio/panels/layout.h"

#include <algorithm>
#include <map>

namespace tavora::studio {
namespace {

constexpr int kInset = 5;         // of what stands without a label
constexpr int kColumnReach = 24;  // fields this near belong to one column
constexpr int kRowReach = 2;
constexpr int kBetween = 8;    // kept free between two controls of a row
constexpr int kAreaDepth = 4;  // drawing into an area may begin that much lower

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
    if (item.kind == LayoutKind::Area) item.fieldRect.adjust(0, 0, 0, kAreaDepth);
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

/// The widest label decides, from where the leftmost begins.
void alignColumns(Items& items) {
    const auto fieldLeft = [](const LayoutItem* item) { return item->fieldRect.left(); };
    for (const Group& column : groupsOf(items, LayoutKind::Labelled, kColumnReach, fieldLeft)) {
        if (column.size() < 2) continue;
        int left = column.front()->at.x();
        int label = 0;
        for (const LayoutItem* item : column) {
            left = std::min(left, item->at.x());
            label = std::max(label, item->label);
        }
        for (LayoutItem* item : column)
            if (item->label > 0) moveField(*item, left + label + kLabelGap);
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

}  // namespace

void layOut(std::vector<LayoutItem>& items) {
    for (LayoutItem& item : items)
        placeAlone(item);
    alignColumns(items);
    equalizeButtons(items);
    alignRows(items);
    coverPatches(items);
}

}  // namespace tavora::studio

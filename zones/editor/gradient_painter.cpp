#include "zones/editor/gradient_painter.h"

#include "panel/controls/controls.h"
#include "panel/controls/whole_part.h"
#include "plugin/record/zone.h"
#include "zones/preview_grid.h"
#include "zones/zone_lookup.h"

// Settings and whole pixel values are mixed in single precision.

namespace tavora {
namespace {

constexpr int columns = 389;
constexpr float scale = 390.0f;
constexpr int stripLeft = 139;  // panel x of column 0
constexpr int stripTop = 9;
constexpr int stripRows = 20;
constexpr int markerTop = 33;
constexpr int wideGlyphLeft = 137;  // "^" and the blank sit two pixels further left
constexpr int markerColor = 255;

struct Pixel {
    int red;
    int green;
    int blue;
};

int whole(float value) {
    return wholePart(static_cast<double>(value));
}

/// The gradient's colour at a column, 0..255; leaves the three characteristics
/// of the lookup for overBackdrop().
Pixel colorAt(ShaderInstance* instance, int column) {
    const auto intensity = static_cast<double>(static_cast<float>(column) / scale);
    int value[3];
    for (int i = 0; i < 3; ++i) {
        value[i] = wholePart(255.0 * evalColor(instance, intensity, i, 0, nullptr));
    }
    return {value[0], value[1], value[2]};
}

/// The colour over one backdrop value, then saturation and brightness once more.
Pixel overBackdrop(const Pixel& color, int backdrop) {
    const float under = (1.0f - gradAlpha) * static_cast<float>(backdrop);
    const auto over = [under](int value) {
        return whole(static_cast<float>(value) * gradAlpha + under);
    };
    const int mixed[3] = {over(color.red), over(color.green), over(color.blue)};
    const float sum =
        static_cast<float>(mixed[0]) + static_cast<float>(mixed[1]) + static_cast<float>(mixed[2]);
    const float grey = sum / 3.0f;
    const auto finish = [grey](int value) {
        const float saturated = gradSat * static_cast<float>(value) + (1.0f - gradSat) * grey;
        return whole(gradBright * saturated);
    };
    return {finish(mixed[0]), finish(mixed[1]), finish(mixed[2])};
}

const char* glyphOf(const ShaderInstance* instance, const Zone* zone) {
    if (zone == instance->zoneList) return "|";
    if (zone->next == nullptr) return " ";
    return zone->blend != 0 ? "'" : "|";
}

void drawMark(const char* glyph, float position, int left) {
    const int x = whole(position * scale + static_cast<float>(left));
    drawfuncs->text(panelID, glyph, markerColor, x, markerTop);
}

void drawMarks(const ShaderInstance* instance, const Zone* zone) {
    const bool last = zone->next == nullptr && zone != instance->zoneList;
    drawMark(glyphOf(instance, zone), zone->position, last ? wideGlyphLeft : stripLeft);
    if (zone == instance->selectedZone) drawMark("^", zone->position, wideGlyphLeft);
}

}  // namespace

int drawGradient(ShaderInstance* instance) {
    for (int column = 1; column <= columns; ++column) {
        const Pixel color = colorAt(instance, column);
        for (int row = 0; row < stripRows; ++row) {
            const Pixel pixel = overBackdrop(color, grid[column][row]);
            drawfuncs->pixel(panelID, pixel.red, pixel.green, pixel.blue, column + stripLeft,
                             row + stripTop);
        }
    }
    return 1;
}

void drawGradCon(ShaderInstance* instance) {
    drawControl(slot::markerStrip, HOST_DRAW_NORMAL);
    Zone*& cursor = instance->zoneCursor;
    for (cursor = instance->zoneList; cursor != nullptr; cursor = cursor->next)
        drawMarks(instance, cursor);
    cursor = instance->zoneList;
}

void redraw(HostPanelId panel, void* userData) {
    auto* instance = static_cast<ShaderInstance*>(userData);
    drawfuncs->border(panel, 0, 135, 185, 400, 0);
    drawfuncs->border(panel, 0, 135, 267, 400, 0);
    drawfuncs->border(panel, 0, 135, 93, 400, 227);
    drawGradient(instance);
    drawGradCon(instance);
}

}  // namespace tavora

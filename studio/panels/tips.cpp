#include "studio/panels/tips.h"

#include <algorithm>
#include <iterator>

namespace tavora::studio {
namespace {

struct Entry {
    const char* control;
    const char* name;
    const char* tip;
};

/// How the titles of the settings panel begin, whatever its version.
constexpr const char* settingsTitle = "Tavora ";

constexpr Entry settings[] = {
    {"About.button", "About", "Shows the version and who made the shader"},
    {"Spread.button", "Spread", "Spaces the zones out evenly from dark to light"},
    {"Shift.drag", "Shift", "Drag sideways to move all inner zones together"},
    {"Scale.drag", "Scale", "Drag sideways to stretch or squeeze all inner zones"},
    {"area.6", "Gradient",
     "The zones from dark (left) to light (right); click a zone to choose its colour"},
    {"area.7", "Zone markers",
     "Click under the gradient to add, blend, select or delete a zone; drag a marker to move it. "
     "Keys: left and right move the selected zone, up and down select the next, Delete removes "
     "it, Space adds one after it"},
    {"choice", "What a click under the gradient does",
     "What a click under the gradient does: add a zone, add a blend, select or delete"},
    {"tab", "Pages", "The pages of settings"},
    {"Lights.list", "Lights", "The lights that shade this surface; click one to switch it"},
    {"All.button", "All lights", "Chooses every light of the scene"},
    {"None.button", "No lights", "Chooses no light"},
    {"Use All Lights.check", "Use all lights",
     "Every light and the ambient light count, also those added later"},
    {"Force Color.percent", "Force colour",
     "100 shows the cel colours as they are; 0 leaves them to the ordinary lighting"},
    {"Clear to Default.button", "Clear to default",
     "Replaces all settings of this surface by your stored defaults"},
    {"Set as Default.button", "Set as default",
     "Stores these settings as what new surfaces start with"},

    {"Zone Characteristics.text", "Zone characteristics",
     "How the selected zone colours the surface"},
    {"Position.percent", "Zone position",
     "Where the selected zone begins: 0 is darkest, 100 is brightest"},
    {"Opacity.percent", "Zone opacity",
     "How much the selected zone covers the surface's own colour"},
    {"Brightness.percent", "Zone brightness", "How bright the selected zone's colour is"},
    {"Saturation.percent", "Zone saturation",
     "How colourful the selected zone is; 0 turns it to grey"},
    {"Transparency.percent", "Zone transparency",
     "How much one sees through the surface in the selected zone"},
    {"Account for Light Colour in Zone.check", "Account for light colour",
     "Tints the selected zone by the colour of the light"},
    {"Light Colour Opacity.percent", "Light colour opacity",
     "How strongly the light's colour tints the selected zone"},
    {"Account for Luminosity in Zone.check", "Account for luminosity",
     "Counts the surface's own glow in the selected zone"},
    {"Colour Texture Use.popup", "Colour texture use",
     "What a colour texture does: nothing, shade only where it covers, or lie under the shading"},

    {"Cel-Look Specular highlights.text", "Specular highlights",
     "Flat discs of light with a hard border"},
    {"popup", "Highlights", "Highlights off, in the colour beside, or in the colour of the light"},
    {"Size.percent", "Highlight size", "How large the highlight is"},
    {"Opacity.percent.2", "Highlight opacity", "How much the highlight covers what lies under it"},
    {"rgb", "Highlight colour", "The highlight's colour: red, green and blue, 0 to 255"},
    {"area", "Choose highlight colour", "Click to choose the highlight's colour"},
    {"Highlight Outline.text", "Highlight outline", "A ring around the highlight"},
    {"check", "Enable highlight outline", "Draws a ring around the highlight"},
    {"Enable.text", "Enable", "Draws a ring around the highlight"},
    {"Size.percent.2", "Outline size", "How wide the ring is"},
    {"Opacity.percent.3", "Outline opacity", "How much the ring covers what lies under it"},
    {"rgb.2", "Outline colour", "The ring's colour: red, green and blue, 0 to 255"},
    {"area.2", "Choose outline colour", "Click to choose the ring's colour"},

    {"check.2", "Enable edges", "Paints the edges where the surface turns away from the viewer"},
    {"Enable.text.2", "Enable", "Paints the edges where the surface turns away from the viewer"},
    {"Coverage.percent", "Edge coverage", "How far the painted edge reaches into the surface"},
    {"Sharpness.percent", "Edge sharpness", "How hard the edge's border is; 100 is a sharp line"},
    {"rgb.3", "Edge colour", "The edge's colour: red, green and blue, 0 to 255"},
    {"area.3", "Choose edge colour", "Click to choose the edge's colour"},

    {"check.3", "Enable slope", "Tints the surface by how far it faces up or down"},
    {"Enable.text.3", "Enable", "Tints the surface by how far it faces up or down"},
    {"Top Opacity.percent", "Top opacity", "How strong the tint is where the surface faces up"},
    {"Bottom Opac.percent", "Bottom opacity",
     "How strong the tint is where the surface faces down"},
    {"rgb.4", "Top colour", "The tint of what faces up: red, green and blue, 0 to 255"},
    {"area.4", "Choose top colour", "Click to choose the tint of what faces up"},
    {"rgb.5", "Bottom colour", "The tint of what faces down: red, green and blue, 0 to 255"},
    {"area.5", "Choose bottom colour", "Click to choose the tint of what faces down"},
    {"Center.percent", "Slope centre", "Where the top tint and the bottom tint meet"},
    {"Style.choice", "Slope style", "Whether the two tints mix softly or meet in a hard step"},

    {"check.4", "Enable ink-over", "Repaints the places where ink shows behind the surface"},
    {"Enable.text.4", "Enable", "Repaints the places where ink shows behind the surface"},
    {"check.5", "Object only", "Looks for ink on this object only"},
    {"Object Only.text", "Object only", "Looks for ink on this object only"},
    {"Ink Colour.text", "Ink colour", "The colour behind the surface that counts as ink"},
    {"rgb.6", "Ink colour",
     "The colour behind the surface that counts as ink: red, green and blue, 0 to 255"},
    {"area.8", "Choose ink colour", "Click to choose the colour that counts as ink"},
    {"InkOver Colour.text", "Ink-over colour", "The colour that is painted where ink shows"},
    {"rgb.7", "Ink-over colour",
     "The colour that is painted where ink shows: red, green and blue, 0 to 255"},
    {"area.9", "Choose ink-over colour", "Click to choose the colour that is painted over ink"},
    {"Max Trace Depth.number", "Maximum trace depth",
     "How many surfaces one behind another are searched for ink"},

    {"Light Power.popup", "Light power",
     "How light turns into position on the gradient; Squared and Cubed brighten the dark end"},
};

}  // namespace

MarkerControls markerControlsOf(const QString& panelTitle) {
    if (!panelTitle.startsWith(QLatin1String(settingsTitle))) return {};
    return {"area.7", "choice", "Position.percent"};
}

ControlTip tipFor(const QString& panelTitle, const QString& control) {
    if (!panelTitle.startsWith(QLatin1String(settingsTitle))) return {};
    const auto* found =
        std::ranges::find_if(settings, [&](const Entry& e) { return control == e.control; });
    if (found == std::end(settings)) return {};
    return {QString::fromUtf8(found->name), QString::fromUtf8(found->tip)};
}

}  // namespace tavora::studio

#include "panel/about.h"

#include "panel/controls/controls.h"
#include "panel/credits.h"

namespace tavora {
namespace {

HostPanelId aboutpanelID = nullptr;

/// Slots 1 to 3 hold the texts.
HostControlId about[5] = {};

const char* version[] = {"Version 1.10.6       October 2001", TAVORA_OWNER_LINE, nullptr};
const char* programming[] = {"Programming / Implementation", "            " TAVORA_PROGRAMMER,
                             nullptr};
const char* design[] = {"Concept / Interface Design / Documentation",
                        "                    " TAVORA_DESIGNER, nullptr};

struct Text {
    int slot;
    const char** lines;
    int x;
    int y;
};

constexpr Text texts[] = {{1, version, 17, 13}, {2, programming, 31, 59}, {3, design, 8, 103}};

void add(const Text& text) {
    desc = {};
    desc.type = HOST_VALUE_TEXT;
    desc.of.text.lines = text.lines;
    about[text.slot] = panelserv->addControl(aboutpanelID, "TextControl", &desc, "");
}

void place(const Text& text) {
    if (about[text.slot] == nullptr) return;
    ival.of.integer = text.x;
    panelserv->setControl(about[text.slot], HOST_CONTROL_X, &ival);
    ival.of.integer = text.y;
    panelserv->setControl(about[text.slot], HOST_CONTROL_Y, &ival);
}

}  // namespace

void cb_about(HostControlId /*control*/, void* /*userData*/) {
    aboutpanelID = panelserv->create("About", nullptr);
    if (aboutpanelID == nullptr) return;
    for (const Text& text : texts)
        add(text);
    for (const Text& text : texts)
        place(text);
    panelserv->open(aboutpanelID, HOST_PANEL_BLOCKING);
    panelserv->destroy(aboutpanelID);
    aboutpanelID = nullptr;
}

}  // namespace tavora

/* Panels, their controls, and drawing into them. Everything here is
 * [interface]; positions and sizes are panel pixels at a desktop scale of 1,
 * from the panel's upper left corner. */
#ifndef HOST_SERVICES_PANELS_H
#define HOST_SERVICES_PANELS_H

#include "host/types.h"

#define HOST_PANELS_SERVICE "LWPanelServices"

/* Type codes of values and of control descriptions. */
enum {
    HOST_VALUE_INTEGER = 2,
    HOST_VALUE_FLOAT = 3,
    HOST_VALUE_INTEGER_VECTOR = 5,
    HOST_VALUE_BOOLEAN = 8,
    HOST_VALUE_CHOICE = 9,
    HOST_VALUE_TEXT = 12,
    HOST_VALUE_RANGE = 15,
    HOST_VALUE_AREA = 19,
    HOST_VALUE_MULTI_LIST = 22
};

/* Draw modes of a control. An erased control gets no input. */
enum {
    HOST_DRAW_ERASE = 0,
    HOST_DRAW_NORMAL = 1,
    HOST_DRAW_GHOST = 2, /* drawn disabled */
    HOST_DRAW_REFRESH = 3
};

/* What a control is asked for or told through a value record. */
enum HostControlAttribute {
    HOST_CONTROL_X,
    HOST_CONTROL_Y,
    HOST_CONTROL_VALUE,
    HOST_CONTROL_USER_DATA, /* pointer */
    HOST_CONTROL_EVENT,     /* HostControlEvent, in `event` */
    HOST_CONTROL_MOUSE_X,   /* of an area: pixels from its left edge */
    HOST_CONTROL_MOUSE_Y
};

enum HostPanelAttribute {
    HOST_PANEL_WIDTH,
    HOST_PANEL_HEIGHT,
    HOST_PANEL_X, /* on the display */
    HOST_PANEL_Y
};

/* How a panel opens. */
enum {
    HOST_PANEL_BLOCKING = 1 << 0, /* returns when the panel is closed */
    HOST_PANEL_CANCEL = 1 << 1    /* with OK and Cancel, instead of a close button */
};

typedef void HostControlEvent(HostControlId control, void* userData);
typedef void HostPanelDraw(HostPanelId panel, void* userData);

/* A value on its way to or from a control. `type` says which member counts. */
typedef struct HostValue {
    int type;
    union {
        int integer;   /* also booleans and choices */
        double number; /* percent controls: 0..100 */
        int vector[3]; /* colours: 0..255 each; drag buttons: coordinate, unused, counter */
        void* pointer;
        HostControlEvent* event;
    } of;
} HostValue;

/* Parameters of a control at its creation. All texts and functions must stay
 * valid as long as the control. */
typedef struct HostControlDescription {
    int type;
    union {
        struct {
            int width, height; /* -1 or 0: as the label needs */
        } area;
        struct {
            int minimum, maximum, width;
        } range;
        struct {
            const char** lines; /* ends with null */
        } text;
        struct {
            const char** items; /* ends with null */
            int width;          /* of a popup; 0 for horizontal choices */
        } choice;
        struct {
            int width, visibleRows;
            void* reserved;
            int (*rowCount)(void* userData);
            /* Row -1 asks for a header; null for no text. */
            const char* (*cellText)(void* userData, int row, int column);
            int (*columnWidth)(void* userData, int column); /* 0 ends the columns */
        } multiList;
    } of;
} HostControlDescription;

typedef struct HostDrawFunctions {
    void (*pixel)(HostPanelId panel, int red, int green, int blue, int x, int y);
    void (*border)(HostPanelId panel, int indent, int x, int y, int width, int height);
    /* Colour index 255 is the panel's text colour. */
    void (*text)(HostPanelId panel, const char* text, int colorIndex, int x, int y);
    void (*displaySize)(int* width, int* height);
} HostDrawFunctions;

typedef struct HostPanelServices {
    /* A panel owned by the caller, or null. `data` is the panel's first user data. */
    HostPanelId (*create)(const char* title, void* data);
    void (*destroy)(HostPanelId panel);
    /* HOST_PANEL_... bits; returns nonzero when closed by OK, 0 by Cancel. */
    int (*open)(HostPanelId panel, int mode);
    /* A control owned by the panel, or null for an unknown class. */
    HostControlId (*addControl)(HostPanelId panel, const char* controlClass,
                                const HostControlDescription* description, const char* label);
    void (*setControl)(HostControlId control, enum HostControlAttribute attribute,
                       const HostValue* value);
    void (*getControl)(HostControlId control, enum HostControlAttribute attribute,
                       HostValue* value);
    void (*drawControl)(HostControlId control, int drawMode);
    void (*setPanel)(HostPanelId panel, enum HostPanelAttribute attribute, int value);
    void (*setPanelDraw)(HostPanelId panel, HostPanelDraw* draw);
    void (*setPanelUserData)(HostPanelId panel, void* userData);
    const HostDrawFunctions* draw;
} HostPanelServices;

#endif

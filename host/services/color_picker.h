/* The platform's colour dialog. The service is a single function. */
#ifndef HOST_SERVICES_COLOR_PICKER_H
#define HOST_SERVICES_COLOR_PICKER_H

#include "host/types.h"

#define HOST_COLOR_PICKER_SERVICE "Color Picker"

enum { HOST_COLOR_PICKER_VERSION = 4 };

typedef struct HostColorPick {
    int result; /* out: positive when the user confirmed a colour */
    const char* title;
    float red, green, blue; /* in and out, 0..1, display-referred */
    void* data;             /* the caller's, handed to `liveUpdate` */
    /* Called with each colour tried while the dialog is open; may be null. [interface] */
    void (*liveUpdate)(void* data, float red, float green, float blue);
} HostColorPick;

/* Runs the dialog to its end. Returns 0, or nonzero when it cannot be shown
 * (the request is then unchanged). [interface] */
typedef int HostColorPicker(int version, HostColorPick* request);

#endif

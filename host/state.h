/* Records through which a plug-in writes its settings into a file of the host
 * and reads them back: a flat sequence of integers, floats and strings whose
 * encoding is the host's own business. */
#ifndef HOST_STATE_H
#define HOST_STATE_H

#include "host/types.h"

/* I/O modes: how the host encodes the items. */
enum {
    HOST_IO_OBJECT = 0, /* binary, as in object files and settings files */
    HOST_IO_SCENE = 1   /* text, as in scene files */
};

/* All writers: [interface]. `data` is the record's own; values are copied
 * before the call returns. A failed write is remembered by the host and
 * reported when the file is closed. */
typedef struct HostSaveState {
    int ioMode;
    void* data;
    void (*writeInt)(void* data, const int32_t* values, int count);
    void (*writeFloat)(void* data, const float* values, int count);
    void (*writeString)(void* data, const char* text); /* NUL-terminated */
} HostSaveState;

/* All readers: [interface], or the render thread that prepares its own
 * instance. Number readers return how many of the `count` values they read;
 * fewer means that the stream ended or held something else, and the values not
 * read are left alone. The string reader returns 1, or 0 at the end; it writes
 * at most `capacity` bytes with the closing NUL, cutting a longer text. */
typedef struct HostLoadState {
    int ioMode;
    void* data;
    int (*readInt)(void* data, int32_t* values, int count);
    int (*readFloat)(void* data, float* values, int count);
    int (*readString)(void* data, char* buffer, int capacity);
} HostLoadState;

#endif

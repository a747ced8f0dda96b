/* Messages to the user, of one or two lines of text. */
#ifndef HOST_SERVICES_MESSAGES_H
#define HOST_SERVICES_MESSAGES_H

#include "host/types.h"

#define HOST_MESSAGES_SERVICE "Info Messages 2"

/* The second line may be null. Texts are copied. [any] */
typedef struct HostMessages {
    void (*info)(const char* line1, const char* line2);
    void (*error)(const char* line1, const char* line2);
    void (*warning)(const char* line1, const char* line2);
} HostMessages;

#endif

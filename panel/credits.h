#pragma once

/// The lines of the About panel that the product's owner supplies; a build may
/// define its own.

#ifndef TAVORA_OWNER_LINE
#define TAVORA_OWNER_LINE "Tavora"
#endif
#ifndef TAVORA_PROGRAMMER
#define TAVORA_PROGRAMMER "The Tavora team"
#endif
#ifndef TAVORA_DESIGNER
#define TAVORA_DESIGNER "The Tavora team"
#endif

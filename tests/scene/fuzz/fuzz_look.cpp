// Any bytes as a look: read, or refused in one line; what is read can be laid
// over settings and stored.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "studio/scene/settings/look.h"
#include "studio/scene/settings/settings.h"
#include "studio/util/error.h"
#include "tests/scene/settings_samples.h"

using namespace tavora::studio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const Look look = parseLook({reinterpret_cast<const char*>(data), size}, "look.json");
        Settings settings = settingsOf(sampleBlock());
        applySettings(settings, look.settings, "look.json");
        settleLightList(settings, {});
        if (settingsOf(blockOf(settings)) != settings) std::abort();
    } catch (const Error& error) {
        if (std::string_view(error.what()).find('\n') != std::string_view::npos) std::abort();
    }
    return 0;
}

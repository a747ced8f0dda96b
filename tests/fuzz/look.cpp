// Any bytes as a look: read, or refused; what is read can be laid over settings
// and stored.
#include "studio/scene/settings/look.h"

#include "studio/scene/settings/settings.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/scene/settings_samples.h"

using namespace tavora::studio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    readOrRefuse([&] {
        const Look look = parseLook({reinterpret_cast<const char*>(data), size}, "look.json");
        const StateBlock block = withChanges(sampleBlock(), look.settings, "look.json", {});
        require(blockOf(settingsOf(block)) == block);
    });
    return 0;
}

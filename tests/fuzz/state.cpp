// Any sequence of items as a shader's saved settings. The module loads it or keeps
// what it has, and then saves what it loads again to the bit; what the host
// program makes of a complete block is what the module makes of it.
#include <cstring>

#include "studio/link/module_copy.h"
#include "studio/link/module_file.h"
#include "studio/link/shader.h"
#include "studio/scene/settings/settings.h"
#include "studio/scene/surface_shader.h"
#include "studio/services/messages.h"
#include "studio/services/registry.h"
#include "tests/fuzz/fuzz_input.h"

using namespace tavora::studio;

namespace {

/// Items one after another: a byte that tells the kind, then 4 bytes of a number,
/// or a byte with the length of a text and the text.
StateBlock blockFrom(std::span<const std::uint8_t> bytes) {
    StateBlock block;
    while (bytes.size() >= 5) {
        const unsigned kind = bytes[0] % 3U;
        if (kind == 2) {
            const std::size_t length = std::min<std::size_t>(bytes[1], bytes.size() - 2);
            std::string text(reinterpret_cast<const char*>(&bytes[2]), length);
            block.emplace_back(text.substr(0, text.find('\0')));
            bytes = bytes.subspan(2 + length);
            continue;
        }
        std::int32_t whole = 0;
        float fraction = 0;
        std::memcpy(&whole, &bytes[1], sizeof whole);
        std::memcpy(&fraction, &bytes[1], sizeof fraction);
        if (kind == 0) {
            block.emplace_back(whole);
        } else {
            block.emplace_back(fraction);
        }
        bytes = bytes.subspan(5);
    }
    return block;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setMessageSink([](MessageKind, const std::string&) {});
    static const ModuleCopy module(findModule(""), findService);
    const StateBlock block = blockFrom({data, size});
    Shader shader(module, nullptr);
    shader.load(block);
    const StateBlock loaded = shader.save();
    Shader second(module, nullptr);
    second.load(loaded);
    require(sameBits(second.save(), loaded));
    readOrRefuse([&] { require(sameBits(blockOf(settingsOf(block)), loaded)); });
    return 0;
}

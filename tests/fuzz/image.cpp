// Any bytes as a picture file: decoded to as many texels as it says, or refused.
#include "studio/scene/image/image_decoder.h"
#include "tests/fuzz/fuzz_input.h"

using namespace tavora::studio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    readOrRefuse([&] {
        MemoryBudget memory("scene", std::uint64_t{1} << 30);
        const Image image = decodeImage({data, size}, "texture", memory);
        require(memory.taken() == image.rgba.size());
        require(image.width > 0 && image.height > 0);
        require(image.rgba.size() == std::size_t{4} * static_cast<std::size_t>(image.width) *
                                         static_cast<std::size_t>(image.height));
    });
    return 0;
}

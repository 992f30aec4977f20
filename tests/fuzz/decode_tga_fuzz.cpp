// Any bytes as a TGA file: a picture or a reason, within small limits.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "imaging/codecs/decoders.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumo::imaging::codecs;
    const DecodeOptions options{.limits = {.maxPixels = 4'000'000, .maxMemory = 64U << 20}};
    const auto result = DecodeTga({data, size}, options);
    if (result ? result->image.IsEmpty() : result.Message().empty()) std::abort();
    return 0;
}

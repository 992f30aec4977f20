// Corpus: jpg jpg/invalid png png/invalid

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "imaging/codecs/stored_metadata.h"

// Markers hold no more than the file does, texts no more than was promised.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumo::imaging::codecs;
    std::size_t markerBytes = 0;
    for (const auto& [code, payload] : ReadJpegMarkers({data, size})) {
        if (code != kComment && (code < kApp0 || code > kApp15)) std::abort();
        markerBytes += payload.size() + 4;
    }
    if (markerBytes > size) std::abort();
    std::size_t textBytes = 0;
    for (const auto& [key, text] : ReadPngTexts({data, size}))
        textBytes += key.size() + text.size();
    if (textBytes > std::size_t{8} << 20) std::abort();
    return 0;
}

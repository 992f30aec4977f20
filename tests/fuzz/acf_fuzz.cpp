// Any bytes as a custom filter file: what is taken comes back byte for byte, and its filter runs.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "imaging/image.h"
#include "ops/filters/acf_file.h"
#include "ops/filters/convolution.h"
#include "script/numbers.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace filters = lumo::ops::filters;
    const auto cells = filters::ParseCustomFilter({data, size});
    if (cells.has_value() != (size == filters::kAcfBytes)) std::abort();
    if (!cells) return 0;
    const auto bytes = filters::EncodeCustomFilter(*cells);
    if (std::memcmp(bytes.data(), data, size) != 0) std::abort();

    filters::Convolution convolution;
    for (std::size_t i = 0; i < filters::kAcfWeights; ++i)
        convolution.weights[i] = lumo::script::ParseInteger((*cells)[i]);
    convolution.scale = lumo::script::ParseInteger((*cells)[25]);
    convolution.offset = lumo::script::ParseInteger((*cells)[26]);
    auto image = lumo::imaging::Image::TryCreate({5, 4});
    if (!image) std::abort();
    std::uint8_t level = 0;
    for (std::uint8_t& byte : image->View().Bytes()) byte = level += 37;
    if (filters::Convolve(image->View(), convolution)) std::abort();
    return 0;
}

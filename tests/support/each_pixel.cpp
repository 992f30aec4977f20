#include "support/each_pixel.h"

#include <cstdlib>

namespace lumo::test {

imaging::Image AllColoursImage() {
#ifdef LUMO_SANITIZED
    constexpr std::uint32_t kStep = 67;  // slow builds look at some of them
#else
    constexpr std::uint32_t kStep = 1;
#endif
    auto image = imaging::Image::TryCreate({4096, static_cast<int>(4096 / kStep)});
    if (!image) std::abort();
    std::uint8_t* p = image->View().Bytes().data();
    const std::uint8_t* const end = p + image->View().Bytes().size();
    for (std::uint32_t colour = 0; p != end; colour += kStep, p += 3) {
        p[0] = static_cast<std::uint8_t>(colour >> 16);
        p[1] = static_cast<std::uint8_t>(colour >> 8);
        p[2] = static_cast<std::uint8_t>(colour);
    }
    return std::move(*image);
}

}  // namespace lumo::test

#include "support/each_pixel.h"

#include <algorithm>
#include <cstdlib>

namespace lumo::test {

imaging::Image AllColoursImage(int step) {
#ifdef LUMO_SANITIZED
    step = std::max(step, 67);  // slow builds look at some of them
#endif
    auto image = imaging::Image::TryCreate({4096, 4096 / step});
    if (!image) std::abort();
    std::uint8_t* p = image->View().Bytes().data();
    const std::uint8_t* const end = p + image->View().Bytes().size();
    for (std::uint32_t colour = 0; p != end; colour += static_cast<std::uint32_t>(step), p += 3) {
        p[0] = static_cast<std::uint8_t>(colour >> 16);
        p[1] = static_cast<std::uint8_t>(colour >> 8);
        p[2] = static_cast<std::uint8_t>(colour);
    }
    return std::move(*image);
}

}  // namespace lumo::test

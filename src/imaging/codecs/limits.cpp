#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

std::string RefuseSize(std::int64_t width, std::int64_t height, std::int64_t bytesPerPixel,
                       const DecodeLimits& limits) {
    if (width < 1 || height < 1)
        return fmt::format("the file states a size of {} x {}", width, height);
    constexpr std::int64_t kMostInt = std::numeric_limits<int>::max();
    if (limits.stated != nullptr && limits.stated->IsEmpty())
        *limits.stated = {static_cast<int>(std::min(width, kMostInt)),
                          static_cast<int>(std::min(height, kMostInt))};
    const auto area = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    if (width > limits.maxSide || height > limits.maxSide || area > limits.maxPixels)
        return fmt::format("a picture of {} x {} is larger than allowed", width, height);
    if (bytesPerPixel > 0 && area > limits.maxMemory / static_cast<std::uint64_t>(bytesPerPixel))
        return fmt::format("a picture of {} x {} needs more memory than allowed", width, height);
    return {};
}

}  // namespace lumo::imaging::codecs

#include "imaging/image.h"

#include <cstring>
#include <limits>

#include "imaging/last_error.h"

namespace lumo::imaging {

std::optional<Image> Image::TryCreate(Size size) {
    if (size.IsEmpty()) {
        SetLastError("a picture needs a positive width and height");
        return std::nullopt;
    }
    // Two positive 32-bit sides and three channels stay below 2^64.
    PixelBuffer buffer = PixelBuffer::TryAllocate(size.Area() * kChannels);
    if (!buffer) return std::nullopt;
    return Image(std::move(buffer), size);
}

std::optional<Image> Image::TryCopy(ConstImageView source) {
    auto copy = TryCreate(source.Extent());
    if (copy)
        std::memcpy(copy->View().Bytes().data(), source.Bytes().data(), source.Bytes().size());
    return copy;
}

}  // namespace lumo::imaging

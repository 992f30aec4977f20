#include "imaging/codecs/metafile/render.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "imaging/codecs/metafile/single_bitmap.h"

namespace lumo::imaging::codecs::metafile {

Size WholePixels(Point size) {
    const auto whole = [](double v) {
        return static_cast<int>(std::clamp(std::round(v), 1.0, 1e9));
    };
    return {whole(size.x), whole(size.y)};
}

Result<Decoded> Render(Size size, const DecodeLimits& limits, Format format,
                       const std::function<bool(Canvas&)>& play) {
    constexpr int kBytesPerPixel = 4 + 4 + kChannels;  // canvas, layer, picture
    if (auto reason = RefuseSize(size.width, size.height, kBytesPerPixel, limits); !reason.empty())
        return platform::Error{std::move(reason)};
    if (std::max(size.width, size.height) > kCairoMaxSide)
        return platform::Error{fmt::format("a drawing of {} x {} is larger than {} pixels a side",
                                           size.width, size.height, kCairoMaxSide)};
    auto canvas = Canvas::Create(size);
    if (!canvas) return platform::Error{"not enough memory"};
    Decoded decoded{.format = format};
    if (!play(*canvas)) decoded.warning = "the metafile is cut short";
    if (canvas->IsExhausted())
        decoded.warning = "the metafile asks for too much drawing; the rest is left out";
    auto image = canvas->TakeImage();
    if (!image) return platform::Error{"not enough memory"};
    decoded.image = std::move(*image);
    return decoded;
}

Result<Decoded> CopyBitmap(const Bitmap& bitmap, Format format) {
    auto image = ToImage(bitmap);
    if (!image) return platform::Error{"not enough memory"};
    return Decoded{.image = std::move(*image), .format = format};
}

}  // namespace lumo::imaging::codecs::metafile

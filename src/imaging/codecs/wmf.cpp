#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/metafile/single_bitmap.h"
#include "imaging/codecs/metafile/wmf_player.h"

namespace lumo::imaging::codecs {
namespace {

using namespace metafile;

// The place of everything that a file without box and window draws, fitted into the hint.
struct Fit {
    Point size;
    Transform base;
};
std::optional<Fit> FitDrawing(const WmfFile& file, const DecodeOptions& options) {
    Canvas canvas = Canvas::ForMeasuring();
    PlayWmf(file, canvas, options.metafileHint, {}, options);
    const Box ink = canvas.Ink();
    if (ink.IsEmpty()) return std::nullopt;
    const double scale = std::min(options.metafileHint.width / ink.Width(),
                                  options.metafileHint.height / ink.Height());
    const Point size{ink.Width() * scale, ink.Height() * scale};
    return Fit{size, BoxToBox(ink, {0, 0, size.x, size.y})};
}

Size WholePixels(Point size) {
    const auto whole = [](double v) {
        return static_cast<int>(std::clamp(std::round(v), 1.0, 1e9));
    };
    return {whole(size.x), whole(size.y)};
}

}  // namespace

Result<Decoded> DecodeWmf(ByteView bytes, const DecodeOptions& options) {
    const auto file = OpenWmf(bytes);
    if (!file) return platform::Error{"not a Windows metafile"};
    Decoded decoded{.format = file->box ? Format::Apm : Format::Wmf};
    if (const auto bitmap = SingleBitmapOf(*file, options)) {
        auto image = ToImage(*bitmap);
        if (!image) return platform::Error{"not enough memory"};
        decoded.image = std::move(*image);
        return decoded;
    }
    Transform base;
    auto stated = file->StatedSize(options.metafileHint);
    if (!stated) {
        const auto fit = FitDrawing(*file, options);
        if (!fit) return platform::Error{"the metafile states no size and draws nothing"};
        stated = fit->size;
        base = fit->base;
    }
    const Size size = WholePixels(*stated);
    constexpr int kBytesPerPixel = 4 + 4 + kChannels;  // canvas, layer, picture
    if (auto reason = RefuseSize(size.width, size.height, kBytesPerPixel, options.limits);
        !reason.empty())
        return platform::Error{std::move(reason)};
    if (std::max(size.width, size.height) > kCairoMaxSide)
        return platform::Error{fmt::format("a drawing of {} x {} is larger than {} pixels a side",
                                           size.width, size.height, kCairoMaxSide)};
    auto canvas = Canvas::Create(size);
    if (!canvas) return platform::Error{"not enough memory"};
    if (!PlayWmf(*file, *canvas, size, base, options)) decoded.warning = "the metafile is cut short";
    if (canvas->IsExhausted())
        decoded.warning = "the metafile asks for too much drawing; the rest is left out";
    auto image = canvas->TakeImage();
    if (!image) return platform::Error{"not enough memory"};
    decoded.image = std::move(*image);
    return decoded;
}

}  // namespace lumo::imaging::codecs

#include <algorithm>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/metafile/render.h"
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

}  // namespace

Result<Decoded> DecodeWmf(ByteView bytes, const DecodeOptions& options) {
    const auto file = OpenWmf(bytes);
    if (!file) return platform::Error{"not a Windows metafile"};
    const Format format = file->box ? Format::Apm : Format::Wmf;
    if (const auto bitmap = SingleBitmapOf(*file, options)) return CopyBitmap(*bitmap, format);
    Transform base;
    auto stated = file->StatedSize(options.metafileHint);
    if (!stated) {
        const auto fit = FitDrawing(*file, options);
        if (!fit) return platform::Error{"the metafile states no size and draws nothing"};
        stated = fit->size;
        base = fit->base;
    }
    const Size size = WholePixels(*stated);
    return Render(size, options.limits, format,
                  [&](Canvas& canvas) { return PlayWmf(*file, canvas, size, base, options); });
}

}  // namespace lumo::imaging::codecs

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/metafile/emf_player.h"
#include "imaging/codecs/metafile/render.h"
#include "imaging/codecs/metafile/single_bitmap.h"

namespace lumo::imaging::codecs {

using namespace metafile;

Result<Decoded> DecodeEmf(ByteView bytes, const DecodeOptions& options) {
    const auto file = OpenEmf(bytes);
    if (!file) return platform::Error{"not an enhanced metafile"};
    if (const auto bitmap = SingleBitmapOf(*file, options)) return CopyBitmap(*bitmap, Format::Emf);
    const Point stated = file->StatedSize();
    if (!(stated.x > 0) || !(stated.y > 0)) return platform::Error{"the metafile states no size"};
    const Size size = WholePixels(stated);
    bool onlyPlus = false;
    auto decoded = Render(size, options.limits, Format::Emf, [&](Canvas& canvas) {
        const EmfOutcome outcome = PlayEmf(*file, canvas, file->Base(size), options);
        onlyPlus = outcome.hasPlusRecords && canvas.Ink().IsEmpty();
        return outcome.complete;
    });
    if (onlyPlus) return platform::Error{"the metafile holds EMF+ records only"};
    return decoded;
}

}  // namespace lumo::imaging::codecs

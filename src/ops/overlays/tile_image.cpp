#include "ops/overlays/tile_image.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/resample.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::Size;

enum Field { kWidth, kHeight };

constexpr std::array kFields{Integer("Width:", "640").Clamp(20, 20000),
                             Integer("Height:", "480").Clamp(20, 20000)};
constexpr std::array kPanel{Value(kWidth, "Width: "), Value(kHeight, "Height: ")};
constexpr DialogSpec kDialog{.title = "Tile image (repeats image to fill canvas)",
                             .windowState = "WS86",
                             .helpTopic = "Tileimage"};

Outcome RunTileImage(CLumoscriptView& view, const Fields& fields) {
    auto canvas = Image::TryCreate({fields.Integer(kWidth), fields.Integer(kHeight)});
    if (!canvas) {
        OnCommandFailure(view, "Tile: memory failure", LibraryError::Append);
        return Outcome::Failed;
    }
    const bool ok = TileImage(canvas->View(), std::as_const(view.working.main).View());
    if (!ok) OnCommandFailure(view, "Cmd_86 Tile image L13029: ", LibraryError::Append);
    ReplaceMainImage(view, std::move(*canvas));
    return ToOutcome(ok);
}

// The canvas is reduced until it fits into the place of the sample; the copies shrink with it.
Image PreviewTileImage(ConstImageView before, Size sample, const Fields& fields) {
    const Size canvas{fields.Integer(kWidth), fields.Integer(kHeight)};
    if (canvas.IsEmpty() || sample.IsEmpty()) return {};
    // Never more than the reduction of the sample: larger copies would need pixels that are gone.
    const double scale = std::min({static_cast<double>(before.Width()) / canvas.width,
                                   static_cast<double>(before.Height()) / canvas.height,
                                   static_cast<double>(before.Width()) / sample.width});
    const auto shrunk = [&](Size size) {
        return Size{std::max(1, static_cast<int>(size.width * scale)),
                    std::max(1, static_cast<int>(size.height * scale))};
    };
    auto small = Image::TryCreate(shrunk(sample));
    auto after = Image::TryCreate(shrunk(canvas));
    if (!small || !after ||
        !imaging::ResizeImage(before, small->View(), imaging::ResampleFilter::Bilinear) ||
        !TileImage(after->View(), std::as_const(*small).View()))
        return {};
    return std::move(*after);
}

}  // namespace

bool TileImage(ImageView canvas, ConstImageView picture) {
    if (canvas.IsEmpty() || picture.IsEmpty()) {
        imaging::SetLastError("there is no picture to repeat");
        return false;
    }
    const std::size_t bytes = canvas.Stride();
    const std::size_t own = std::min(picture.Stride(), bytes);
    imaging::ForRows(canvas.Height(), 2 * bytes, [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            std::uint8_t* const row = canvas.Row(y);
            if (y - first >= picture.Height()) {  // the row above is there, and warm
                std::memcpy(row, canvas.Row(y - picture.Height()), bytes);
                continue;
            }
            std::memcpy(row, picture.Row(y % picture.Height()), own);
            for (std::size_t done = own; done < bytes; done *= 2)
                std::memcpy(row + done, row, std::min(done, bytes - done));
        }
    });
    return true;
}

const Command kTileImageCommand{
    .spec = {.name = names::kTileImage, .fields = kFields, .panel = kPanel, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunTileImage,
    .preview = PreviewTileImage};

}  // namespace lumo::ops::overlays

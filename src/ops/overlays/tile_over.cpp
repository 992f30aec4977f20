#include "ops/overlays/tile_over.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

#include "imaging/parallel.h"
#include "io/input.h"
#include "io/second_picture.h"
#include "ops/colour_fields.h"
#include "ops/overlays/mix.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/overlays/second_fields.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ColourKey;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::kChannels;
using imaging::Size;

enum Field { kOpacity, kUseKey, kTolerance, kPath, kRed, kGreen, kBlue };

constexpr std::array kFields{
    Integer("Opacity", "50").Clamp(0, 100).Unit("%"),
    Flag("Use transparent color", "1"),
    Integer("Tolerance", "10").Clamp(0, 100).Unit("%"),
    SecondPicture("Tile image:", "<INSTALL_FOLDER>\\Overlays\\HalcyraWorks.bmp"),
    Red("Transparent color", "0"),
    Green("255"),
    Blue("255")};
constexpr DialogSpec kDialog{
    .title = "Tile over absolute", .windowState = "WS87", .helpTopic = "Tileoverabsolute"};

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    lines.Line("Opacity %: ", fields.Text(kOpacity));
    if (!fields.Is(kUseKey, "0"))
        lines.Line("Transparent color: ", JoinColour(fields, kRed, ": "))
            .Line("Tolerance %: ", fields.Text(kTolerance));
    return lines.Line("Tile image:").Line(PanelPath(fields.Text(kPath))).Text();
}

void LayTiles(ImageView image, ConstImageView tile, const Fields& fields) {
    const ColourKey key =
        imaging::KeyWithin(ColourOf(fields, kRed), std::clamp(fields.Integer(kTolerance), 0, 100));
    TileOver(image, tile, std::clamp(fields.Integer(kOpacity), 0, 100),
             fields.Is(kUseKey, "0") ? nullptr : &key);
}

Outcome RunTileOver(CLumoscriptView& view, const Fields& fields) {
    const std::string path = io::NativePath(view, fields.Text(kPath));
    const auto tile = io::OpenSecondPicture(view, path);
    if (!tile) {
        OnCommandFailure(view, "Cmd_87 Unable to find or open:" + path, LibraryError::Append);
        return Outcome::Failed;
    }
    view.sample.blendSource.Reset();
    LayTiles(view.working.main.View(), tile->View(), fields);
    return Outcome::Succeeded;
}

// The tile shrinks as the sample did.
Image PreviewTileOver(ConstImageView before, Size sample, ConstImageView second,
                      const Fields& fields) {
    const Size size{PreviewLength(second.Width(), before.Width(), sample.width, 1),
                    PreviewLength(second.Height(), before.Height(), sample.height, 1)};
    auto tile = Resized(second, size, imaging::ResampleFilter::Bilinear);
    return PreviewOn(before, [&](ImageView after) {
        if (tile) LayTiles(after, std::as_const(*tile).View(), fields);
    });
}

constexpr std::size_t kPart = 512;  // pixels that are mixed at once

// `count` pixels of a row that repeats, from `column` on; gives the column behind them.
int CopyRepeated(ConstImageView tile, int row, int column, std::size_t count, std::uint8_t* to) {
    const std::uint8_t* const from = tile.Row(row);
    while (count > 0) {
        const std::size_t run = std::min(count, static_cast<std::size_t>(tile.Width() - column));
        std::memcpy(to, from + static_cast<std::ptrdiff_t>(column) * kChannels, run * kChannels);
        to += run * kChannels;
        count -= run;
        column += static_cast<int>(run);
        if (column == tile.Width()) column = 0;
    }
    return column;
}

}  // namespace

void TileOver(ImageView image, ConstImageView tile, int opacity, const ColourKey* key) {
    imaging::ForRows(image.Height(), 2 * image.Stride(), [&](int first, int last) {
        std::array<std::uint8_t, kPart * kChannels> over, mixed, mask;
        for (int y = first; y < last; ++y) {
            std::uint8_t* pixels = image.Row(y);
            int column = 1 % tile.Width();
            for (auto left = static_cast<std::size_t>(image.Width()); left > 0;) {
                const std::size_t part = std::min(left, kPart), bytes = part * kChannels;
                column = CopyRepeated(tile, (y + 1) % tile.Height(), column, part, over.data());
                if (key == nullptr) {
                    MixDividedOnce(pixels, over.data(), bytes, 100 - opacity);
                } else {
                    std::memcpy(mixed.data(), pixels, bytes);
                    MixDividedOnce(mixed.data(), over.data(), bytes, 100 - opacity);
                    imaging::MaskKey(over.data(), part, *key, mask.data());
                    imaging::CopyUnmasked(mixed.data(), mask.data(), bytes, pixels);
                }
                pixels += bytes;
                left -= part;
            }
        }
    });
}

const Command kTileOverAbsoluteCommand{.spec = {.name = names::kTileOverAbsolute,
                                                .fields = kFields,
                                                .panelText = PanelOf,
                                                .dialog = &kDialog},
                                       .opening = openings::kStandard,
                                       .run = RunTileOver,
                                       .secondField = kPath,
                                       .overlayPreview = PreviewTileOver};

}  // namespace lumo::ops::overlays

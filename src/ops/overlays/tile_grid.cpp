#include "ops/overlays/tile_grid.h"

#include <algorithm>
#include <array>

#include "imaging/parallel.h"
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
using imaging::kChannels;
using imaging::Size;

enum Field { kWidth, kHeight, kEdge, kSpace, kUnit, kRelief, kIncrement };

constexpr std::string_view kUnitNames[] = {"Tile block in pixels:", "Tile blocks by number:"};
constexpr std::string_view kReliefNames[] = {"Tile blocks raised", "Tile blocks depressed"};
constexpr std::array kFields{Integer("Width:", "6").Clamp(1, 400),
                             Integer("Height:", "6").Clamp(1, 400),
                             Integer("Edge:", "1").Clamp(1, 100),
                             Integer("Space:", "0").Clamp(0, 100),
                             Choice("Measured", "1", kUnitNames),
                             Choice("Relief", "0", kReliefNames),
                             Integer("Edge luminance increment:", "50").Clamp(1, 255)};
constexpr DialogSpec kDialog{.title = "Tile grid ", .windowState = "WS85", .helpTopic = "Tilegrid"};

std::string PanelOf(const Fields& fields) {
    const bool byNumber = fields.Is(kUnit, "1");
    return PanelLines()
        .Line(kUnitNames[byNumber ? 1 : 0])
        .Line(byNumber ? "Across: " : "Width: ", fields.Text(kWidth))
        .Line(byNumber ? "Down: " : "Height: ", fields.Text(kHeight))
        .Line(byNumber ? "Edge(% width): " : "Edge: ", fields.Text(kEdge))
        .Line(byNumber ? "Space(%width): " : "Space: ", fields.Text(kSpace))
        .Line(kReliefNames[fields.Is(kRelief, "0") ? 0 : 1])
        .Line("Edge luminance increment: ", fields.Text(kIncrement))
        .Text();
}

constexpr int kWidestEdge = 1 << 24;  // more than any tile has room for

int Percent(int percent, int of) {
    const std::int64_t part = std::int64_t{percent} * of / 100;
    return static_cast<int>(std::clamp<std::int64_t>(part, -kWidestEdge, kWidestEdge));
}

// None where the number of tiles is no divisor.
std::optional<TileGridParams> ReadTileGrid(Size image, const Fields& fields) {
    TileGridParams params{fields.Integer(kWidth), fields.Integer(kHeight), fields.Integer(kEdge),
                          fields.Integer(kSpace)};
    if (fields.Is(kUnit, "1")) {
        if (params.width <= 0 || params.height <= 0) return std::nullopt;
        params.width = image.width / params.width;
        params.height = image.height / params.height;
        params.edge = Percent(params.edge, params.width);
        if (params.edge == 0) params.edge = 1;
        params.space = Percent(params.space, params.width);
    }
    // A step of 255 already reaches either end.
    const int increment = std::clamp(fields.Integer(kIncrement), -255, 255);
    params.increment = fields.Is(kRelief, "0") ? increment : -increment;
    return params;
}

Outcome RunTileGrid(CLumoscriptView& view, const Fields& fields) {
    const auto params = ReadTileGrid(view.working.main.Extent(), fields);
    if (!params || !FitsTile(*params)) return Outcome::Failed;
    DrawTileGrid(view.working.main.View(), *params);
    return Outcome::Succeeded;
}

Image PreviewTileGrid(ConstImageView before, Size sample, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) {
        auto params = ReadTileGrid(sample, fields);
        if (!params || !FitsTile(*params)) return;
        params->width = PreviewLength(params->width, before.Width(), sample.width, 3);
        params->height = PreviewLength(params->height, before.Height(), sample.height, 3);
        params->edge = PreviewLength(params->edge, before.Width(), sample.width, 1);
        params->space = PreviewLength(params->space, before.Width(), sample.width, 0);
        if (FitsTile(*params)) DrawTileGrid(after, *params);
    });
}

void AddTo(std::uint8_t* pixel, int amount) {
    for (int c = 0; c < kChannels; ++c)
        pixel[c] = static_cast<std::uint8_t>(std::clamp(pixel[c] + amount, 0, 255));
}

// One row of one tile, `left` its first column and `y` its own row.
void DrawTileRow(ImageView image, int imageY, int left, int y, const TileGridParams& params) {
    std::uint8_t* const row = image.Row(imageY) + static_cast<std::ptrdiff_t>(left) * kChannels;
    const int visible = std::min(params.width, image.Width() - left);
    const auto add = [&](int x, int amount) {
        if (x < visible) AddTo(row + static_cast<std::ptrdiff_t>(x) * kChannels, amount);
    };
    // Distance from the rings' outermost row, from the top and from the bottom.
    const int above = y - params.space;
    const int below = params.height - 1 - params.space - y;
    const int rings = std::min({params.edge, above + 1, below + 1});  // that reach this row
    for (int ring = 0; ring < rings; ++ring) {
        add(params.space + ring, params.increment);
        add(params.width - 1 - params.space - ring, -params.increment);
    }
    const auto bar = [&](int ring, int amount) {
        const int first = params.space + ring, last = params.width - 1 - params.space - ring;
        for (int x = first; x <= std::min(last, visible - 1); ++x)
            AddTo(row + static_cast<std::ptrdiff_t>(x) * kChannels, amount);
    };
    if (above >= 0 && above < params.edge) bar(above, params.increment);
    if (below >= 0 && below < params.edge) bar(below, -params.increment);
}

}  // namespace

bool FitsTile(const TileGridParams& params) {
    if (params.width <= 0 || params.height <= 0 || params.edge < 0 || params.space < 0)
        return false;
    const std::int64_t needed = std::int64_t{params.edge} * 2 + 1 + std::int64_t{params.space} * 2;
    return params.width >= needed && params.height >= needed;
}

void DrawTileGrid(ImageView image, const TileGridParams& params) {
    imaging::ForRows(image.Height(), image.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y)
            for (int left = 0; left < image.Width(); left += params.width) {
                DrawTileRow(image, y, left, y % params.height, params);
                if (params.width >= image.Width() - left) break;
            }
    });
}

const Command kTileGridCommand{
    .spec = {.name = names::kTileGrid, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunTileGrid,
    .preview = PreviewTileGrid};

}  // namespace lumo::ops::overlays

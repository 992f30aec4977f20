#include "ops/overlays/grid.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "imaging/compose.h"
#include "ops/colour_fields.h"
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

enum Field { kColumns, kRows, kThickness, kRed, kGreen, kBlue };

constexpr std::array kFields{Integer("Columns in grid:", "10").Clamp(0, 100),
                             Integer("Rows in grid:", "10").Clamp(0, 100),
                             Integer("Link thickness (pixels):", "1").Clamp(0, 4),
                             Red("Grid color:", "0"),
                             Green("0"),
                             Blue("0")};
constexpr DialogSpec kDialog{.title = "Grid overlay (lay grid over image)",
                             .windowState = "WS41",
                             .helpTopic = "Gridoverlay"};

constexpr int kSmallestCell = 3;
constexpr int kCellLeftByLine = 4;
constexpr int kThickestLine = 4;

std::string PanelOf(const Fields& fields) {
    return PanelLines()
        .Line("Columns in grid: ", fields.Text(kColumns))
        .Line("Rows in grid: ", fields.Text(kRows))
        .Line("Link thickness (pixels): ", fields.Text(kThickness))
        .Line("Grid color: ", JoinColour(fields, kRed, ": "))
        .Text();
}

GridParams ReadGrid(const Fields& fields) {
    return {fields.Integer(kColumns), fields.Integer(kRows), fields.Integer(kThickness),
            ColourOf(fields, kRed)};
}

Outcome RunGrid(CLumoscriptView& view, const Fields& fields) {
    const GridParams params = ReadGrid(fields);
    if (params.columns == 0 || params.rows == 0) return Outcome::Failed;
    // A picture too small for its grid succeeds as it is, its colour depth with it.
    if (DrawGrid(view.working.main.View(), params)) SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewGrid(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) {
        const GridParams params = ReadGrid(fields);
        if (params.columns != 0 && params.rows != 0) DrawGrid(after, params);
    });
}

}  // namespace

bool DrawGrid(ImageView image, const GridParams& params) {
    const int width = image.Width(), height = image.Height();
    const int cellWidth = width / params.columns, cellHeight = height / params.rows;
    if (cellWidth < kSmallestCell || cellHeight < kSmallestCell) return false;
    int thickness = params.thickness;
    if (thickness > cellWidth - kCellLeftByLine) thickness = 1;
    if (thickness > cellHeight - kCellLeftByLine) thickness = 1;
    thickness = std::clamp(thickness, 1, kThickestLine);
    // A cell has pixels, so there is a picture to fill.
    for (int column = 1; column < params.columns; ++column) {
        const int x = static_cast<int>(std::int64_t{column} * width / params.columns);
        std::ignore = imaging::FillSolidRect(image, {x, 0, x + thickness, height}, params.colour);
    }
    for (int row = 1; row < params.rows; ++row) {
        const int y = static_cast<int>(std::int64_t{row} * height / params.rows);
        std::ignore = imaging::FillSolidRect(image, {0, y, width, y + thickness}, params.colour);
    }
    return true;
}

const Command kGridCommand{
    .spec = {.name = names::kGrid, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kSkipAlways,
    .run = RunGrid,
    .preview = PreviewGrid};

}  // namespace lumo::ops::overlays

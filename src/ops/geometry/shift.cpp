#include "ops/geometry/shift.h"

#include <array>
#include <cstring>
#include <optional>
#include <utility>

#include "imaging/compose.h"
#include "ops/colour_fields.h"
#include "ops/geometry/geometry_commands.h"
#include "ops/geometry/preview.h"
#include "ops/geometry/target.h"
#include "ops/panel_lines.h"
#include "script/names.h"

namespace lumo::ops::geometry {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::Rect;
using imaging::Size;

enum Field { kDirection, kUnits, kAmount, kWrap, kRed, kGreen, kBlue };

constexpr std::string_view kDirectionNames[] = {"Up", "Down", "Right", "Left"};
constexpr std::string_view kUnitNames[] = {"Pixels", "Percent"};
constexpr std::string_view kDirectionLines[] = {"Shift up", "Shift down", "Shift right",
                                                "Shift left"};

// In the order of Direction.
constexpr std::string_view kFillFailures[] = {"Cmd_72 Shift L14938: ", "Cmd_72 Shift L14975: ",
                                              "Cmd_72 Shift L14902: ", "Cmd_72 Shift L14865: "};

constexpr std::array kFields{Choice("Direction", "0", kDirectionNames),
                             Choice("Units", "0", kUnitNames),
                             Integer("Amount", "0").Clamp(0, 10000).ClampWhen(kUnits, "1", 0, 100),
                             Flag("Wrap around (else fill with background color)", "1"),
                             Red("Background color", "255"),
                             Green("255"),
                             Blue("255")};
constexpr DialogSpec kDialog{
    .title = "Shift image", .windowState = "WS72", .helpTopic = "Shiftimage"};

std::optional<Direction> ReadDirection(const Fields& fields) {
    if (fields.Is(kDirection, "3")) return Direction::Left;
    if (fields.Is(kDirection, "2")) return Direction::Right;
    if (fields.Is(kDirection, "0")) return Direction::Up;
    if (fields.Is(kDirection, "1")) return Direction::Down;
    return std::nullopt;
}

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    if (const auto direction = ReadDirection(fields))
        lines.Line(kDirectionLines[static_cast<int>(*direction)]);
    lines.Line(fields.Is(kUnits, "1") ? "Percent: " : "Pixels: ", fields.Text(kAmount));
    if (fields.Is(kWrap, "1"))
        lines.Line("Wrap image");
    else
        lines.Line("No wrap, fill with:").Line("RGB: ", JoinColour(fields, kRed, ":"));
    return lines.Text();
}

int SideAlong(Size size, Direction direction) {
    const bool sideways = direction == Direction::Left || direction == Direction::Right;
    return sideways ? size.width : size.height;
}

// Pixels to move by; none for more than there are.
std::optional<int> DistanceOf(int amount, bool percent, int side) {
    auto pixels = static_cast<std::uint32_t>(amount);
    // 32-bit unsigned, truncating: part of the contract.
    if (percent) pixels = static_cast<std::uint32_t>(side) * pixels / 100;
    if (pixels > static_cast<std::uint32_t>(side)) return std::nullopt;
    return static_cast<int>(pixels);
}

Outcome RunShift(CLumoscriptView& view, const Fields& fields) {
    const auto direction = ReadDirection(fields);
    const int amount = fields.Integer(kAmount);
    if (!direction || amount < 0) return Outcome::Failed;
    const ConstImageView source = std::as_const(view.working.main).View();
    auto target =
        CreateTarget(view, source.Width(), source.Height(), "Cmd_72 Shift: memory failure");
    if (!target) return Outcome::Failed;
    const auto distance =
        DistanceOf(amount, fields.Is(kUnits, "1"), SideAlong(source.Extent(), *direction));
    if (!distance) return Outcome::Failed;
    const bool wrap = fields.Is(kWrap, "1");
    if (!wrap &&
        !imaging::FillSolidRect(target->View(), OpeningOf(source.Extent(), *direction, *distance),
                                ColourOf(fields, kRed)))
        OnCommandFailure(view, kFillFailures[static_cast<int>(*direction)], LibraryError::Append);
    ShiftImage(source, *direction, *distance, wrap, target->View());
    ReplaceMainImage(view, std::move(*target));
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewShift(ConstImageView before, Size sample, const Fields& fields) {
    const auto direction = ReadDirection(fields);
    int amount = fields.Integer(kAmount);
    if (!direction || amount < 0) return OrUnchanged(std::nullopt, before);
    const bool percent = fields.Is(kUnits, "1");
    const int side = SideAlong(before.Extent(), *direction);
    if (!percent) amount = ScaleLength(amount, side, SideAlong(sample, *direction));
    const auto distance = DistanceOf(amount, percent, side);
    if (!distance) return OrUnchanged(std::nullopt, before);
    auto after = TryCanvas(before.Width(), before.Height(), ColourOf(fields, kRed));
    if (after) ShiftImage(before, *direction, *distance, fields.Is(kWrap, "1"), after->View());
    return OrUnchanged(std::move(after), before);
}

// Copies `from` of the source to `to`, which has the same size, in the target.
void CopyRect(ConstImageView source, Rect from, Rect to, ImageView target) {
    if (from.Extent().IsEmpty()) return;
    const std::size_t bytes = imaging::StrideOf(from.Extent());
    for (int y = 0; y < from.Extent().height; ++y)
        std::memcpy(target.At(to.left, to.top + y), source.At(from.left, from.top + y), bytes);
}

}  // namespace

Rect OpeningOf(Size size, Direction direction, int distance) {
    switch (direction) {
        case Direction::Up:
            return {0, size.height - distance, size.width, size.height};
        case Direction::Down:
            return {0, 0, size.width, distance};
        case Direction::Right:
            return {0, 0, distance, size.height};
        case Direction::Left:
            return {size.width - distance, 0, size.width, size.height};
    }
    return {};
}

void ShiftImage(ConstImageView source, Direction direction, int distance, bool wrap,
                ImageView target) {
    const Size size = source.Extent();
    const int width = size.width, height = size.height;
    // What stays goes from the side that the picture leaves to the one that it moves to.
    Rect from{0, 0, width, height}, to = from;
    Rect leaving = from;
    switch (direction) {
        case Direction::Up:
            from.top = leaving.bottom = distance;
            to.bottom = height - distance;
            break;
        case Direction::Down:
            from.bottom = leaving.top = height - distance;
            to.top = distance;
            break;
        case Direction::Right:
            from.right = leaving.left = width - distance;
            to.left = distance;
            break;
        case Direction::Left:
            from.left = leaving.right = distance;
            to.right = width - distance;
            break;
    }
    CopyRect(source, from, to, target);
    if (wrap) CopyRect(source, leaving, OpeningOf(size, direction, distance), target);
}

const Command kShiftImageCommand{.spec = {.name = names::kShiftImage,
                                          .fields = kFields,
                                          .panelText = PanelOf,
                                          .dialog = &kDialog},
                                 .opening = openings::kStandard,
                                 .run = RunShift,
                                 .preview = PreviewShift};

}  // namespace lumo::ops::geometry

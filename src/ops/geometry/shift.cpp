#include "ops/geometry/shift.h"

#include <array>
#include <cstring>
#include <optional>
#include <utility>

#include "imaging/compose.h"
#include "imaging/parallel.h"
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

// Bytes that are copied from one place of a row, or of the whole picture, to another.
struct Span {
    std::size_t from = 0, to = 0, bytes = 0;
};

// Both parts of a row before the next one, so that a row is read and written once.
void MoveColumns(ConstImageView source, const Span& staying, const Span& leaving,
                 ImageView target) {
    imaging::ForRows(source.Height(), 2 * source.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y)
            for (const Span& span : {staying, leaving})
                std::memcpy(target.Row(y) + span.to, source.Row(y) + span.from, span.bytes);
    });
}

// Whole rows lie in one run.
void MoveRows(ConstImageView source, const Span& staying, const Span& leaving, ImageView target) {
    for (const Span& span : {staying, leaving})
        std::memcpy(target.Bytes().data() + span.to, source.Bytes().data() + span.from, span.bytes);
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
    const bool sideways = direction == Direction::Left || direction == Direction::Right;
    const std::size_t unit = sideways ? std::size_t{imaging::kChannels} : source.Stride();
    const std::size_t whole =
        static_cast<std::size_t>(SideAlong(source.Extent(), direction)) * unit;
    const std::size_t moved = static_cast<std::size_t>(distance) * unit;
    // What stays goes from the side that the picture leaves to the one that it moves to.
    const bool toFront = direction == Direction::Left || direction == Direction::Up;
    Span staying{moved, 0, whole - moved}, leaving{0, whole - moved, moved};
    if (!toFront) {
        staying = {0, moved, whole - moved};
        leaving = {whole - moved, 0, moved};
    }
    if (!wrap) leaving.bytes = 0;
    if (sideways)
        MoveColumns(source, staying, leaving, target);
    else
        MoveRows(source, staying, leaving, target);
}

const Command kShiftImageCommand{.spec = {.name = names::kShiftImage,
                                          .fields = kFields,
                                          .panelText = PanelOf,
                                          .dialog = &kDialog},
                                 .opening = openings::kStandard,
                                 .run = RunShift,
                                 .preview = PreviewShift};

}  // namespace lumo::ops::geometry

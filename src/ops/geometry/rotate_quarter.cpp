// "Rotate (90 - 180 - 270)".

#include <array>
#include <optional>
#include <utility>

#include "imaging/last_error.h"
#include "imaging/quick_rotate.h"
#include "ops/geometry/geometry_commands.h"
#include "ops/geometry/preview.h"
#include "ops/panel_lines.h"
#include "script/names.h"

namespace lumo::ops::geometry {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::QuarterTurn;
using imaging::Size;

enum Field { kAngle };

constexpr std::string_view kAngleNames[] = {"Rotate 90", "Rotate 180", "Rotate 270"};
constexpr std::string_view kAngles[] = {"90", "180", "270"};
constexpr std::array kFields{Choice("Angle", "90", kAngleNames, kAngles)};
constexpr DialogSpec kDialog{
    .title = "Rotate  (90 - 180 - 270)", .windowState = "WS67", .helpTopic = "Rotate90180270"};

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    lines.Line("Rotate: ", fields.Text(kAngle));
    if (fields.Is(kAngle, "90") || fields.Is(kAngle, "270"))
        lines.Line("width and height").Line("are swapped.");
    return lines.Text();
}

// Compared as text: "090" is no angle.
std::optional<QuarterTurn> ReadTurn(const Fields& fields) {
    if (fields.Is(kAngle, "90")) return QuarterTurn::By90;
    if (fields.Is(kAngle, "180")) return QuarterTurn::By180;
    if (fields.Is(kAngle, "270")) return QuarterTurn::By270;
    return std::nullopt;
}

Outcome RunRotateQuarter(CLumoscriptView& view, const Fields& fields) {
    const auto turn = ReadTurn(fields);
    if (!turn) {
        imaging::SetLastError("the angle is none of 90, 180 and 270");
        OnCommandFailure(view, "Cmd_67 Rotate 90 L18159: ", LibraryError::Append);
        return Outcome::Failed;
    }
    Image turned = std::move(view.working.main);
    const bool ok = imaging::QuickRotateImageInPlace(turned, *turn);
    if (!ok) OnCommandFailure(view, "Cmd_67 Rotate 90 L18159: ", LibraryError::Append);
    ReplaceMainImage(view, std::move(turned));
    return ToOutcome(ok);
}

Image PreviewRotateQuarter(ConstImageView before, Size /*sample*/, const Fields& fields) {
    Image after = OrUnchanged(std::nullopt, before);
    const auto turn = ReadTurn(fields);
    if (turn && !imaging::QuickRotateImageInPlace(after, *turn)) return Image();
    return after;
}

}  // namespace

const Command kRotateQuarterCommand{
    .spec = {.name = names::kRotate90, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunRotateQuarter,
    .preview = PreviewRotateQuarter};

}  // namespace lumo::ops::geometry

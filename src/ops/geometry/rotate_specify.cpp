// "Rotate (specify)": by any angle, on a canvas that grows with it.

#include <array>
#include <optional>
#include <utility>

#include "imaging/rotate.h"
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
using imaging::Size;

enum Field { kRed, kGreen, kBlue, kDegrees };

constexpr std::array kFields{Red("Canvas color", "255"), Green("255"), Blue("255"),
                             Integer("Rotate (degrees)", "20").Clamp(1, 359)};
// The line of blue shows the degrees; the canvas takes the blue field all the same.
constexpr std::array kPanel{Fixed("Color of canvas:"), Value(kRed, "R: "), Value(kGreen, "G: "),
                            Value(kDegrees, "B: "), Value(kDegrees, "Degrees to rotate:")};
constexpr DialogSpec kDialog{
    .title = "Rotate ( 1-359 )", .windowState = "WS68", .helpTopic = "Rotatespecify"};

// Pi has six figures here; "Skew" has more. Sizes of existing pictures hang on both.
double RadiansOf(const Fields& fields) {
    return fields.Integer(kDegrees) * 3.14159 / 180.0;
}

Outcome RunRotateSpecify(CLumoscriptView& view, const Fields& fields) {
    const ConstImageView source = std::as_const(view.working.main).View();
    const double radians = RadiansOf(fields);
    Size size;
    if (!imaging::GetRotatedPixelSize(radians, source.Extent(), size))
        OnCommandFailure(view, "Cmd_68RotFree L14335: ", LibraryError::Append);
    auto target = CreateTarget(view, size.width, size.height, "Cmd_68 Rot Free: memory failure");
    if (!target) return Outcome::Failed;
    FillTarget(view, target->View(), ColourOf(fields, kRed), "Cmd_68 RotFreeFill L14352: ");
    if (!imaging::RotateImage(source, target->View(), radians)) {
        OnCommandFailure(view, "Cmd_68 Rotate fail L14360: ", LibraryError::Append);
        return Outcome::Failed;
    }
    ReplaceMainImage(view, std::move(*target));
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewRotateSpecify(ConstImageView before, Size /*sample*/, const Fields& fields) {
    const double radians = RadiansOf(fields);
    Size size;
    std::optional<Image> after;
    if (imaging::GetRotatedPixelSize(radians, before.Extent(), size))
        after = TryCanvas(size.width, size.height, ColourOf(fields, kRed));
    if (after && !imaging::RotateImage(before, after->View(), radians)) after.reset();
    return OrUnchanged(std::move(after), before);
}

}  // namespace

const Command kRotateSpecifyCommand{
    .spec = {.name = names::kRotateSpecify, .fields = kFields, .panel = kPanel, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunRotateSpecify,
    .preview = PreviewRotateSpecify};

}  // namespace lumo::ops::geometry

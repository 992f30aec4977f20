// "Border (find and crop)": keeps the picture inside of a uniform border.

#include <array>
#include <utility>

#include "imaging/border.h"
#include "imaging/crop.h"
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
using imaging::Rect;
using imaging::Size;

enum Field { kTolerance, kRed, kGreen, kBlue, kAutoDetect };

constexpr std::string_view kAutoDetectWords = "Auto detect border color";
constexpr std::array kFields{Integer("Tolerance %", "10").Clamp(0, 100), Red("Border color", "0"),
                             Green("0"), Blue("0"),
                             // The detection is on at "0".
                             Flag(kAutoDetectWords, "0").Stored("1", "0")};
constexpr DialogSpec kDialog{
    .title = "Border (find and crop)", .windowState = "WS12", .helpTopic = "Borderfindandcrop"};

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    lines.Line("Tolerance%: ", fields.Text(kTolerance));
    if (fields.Is(kAutoDetect, "0"))
        lines.Line(kAutoDetectWords);
    else
        lines.Line("Border color:", JoinColour(fields, kRed, ":"));
    return lines.Text();
}

// The picture inside of the border, right and bottom exclusive; none without a border.
std::optional<Rect> RectInside(ConstImageView source, const Fields& fields) {
    // Of 3 * 255 * 255, the largest sum of squared differences; unsigned and truncating.
    const std::uint32_t tolerance =
        static_cast<std::uint32_t>(fields.Integer(kTolerance)) * 3 * 255 * 255 / 100;
    std::optional<imaging::Rgb> colour;
    if (!fields.Is(kAutoDetect, "0")) colour = ColourOf(fields, kRed);
    const auto found = imaging::GetBorder(source, tolerance, colour);
    if (!found) return std::nullopt;
    return Rect{found->left, found->top, found->right + 1, found->bottom + 1};
}

Outcome RunBorderFind(CLumoscriptView& view, const Fields& fields) {
    const ConstImageView source = std::as_const(view.working.main).View();
    const auto rect = RectInside(source, fields);
    if (!rect) return Outcome::Succeeded;
    auto target =
        CreateTarget(view, rect->Extent().width, rect->Extent().height, "AutoCrop: memory failure");
    if (!target) return Outcome::Failed;
    if (!imaging::CropImage(source, *rect, target->View())) {
        OnCommandFailure(view, "Cmd_12 Border remove 'crop'  fail!: ", LibraryError::Append);
        return Outcome::Failed;
    }
    ReplaceMainImage(view, std::move(*target));
    return Outcome::Succeeded;
}

Image PreviewBorderFind(ConstImageView before, Size /*sample*/, const Fields& fields) {
    std::optional<Image> after;
    if (const auto rect = RectInside(before, fields)) {
        after = Image::TryCreate(rect->Extent());
        if (after && !imaging::CropImage(before, *rect, after->View())) after.reset();
    }
    return OrUnchanged(std::move(after), before);
}

}  // namespace

const Command kBorderFindAndCropCommand{.spec = {.name = names::kBorderFindAndCrop,
                                                 .fields = kFields,
                                                 .panelText = PanelOf,
                                                 .dialog = &kDialog},
                                        .opening = openings::kStandard,
                                        .run = RunBorderFind,
                                        .preview = PreviewBorderFind};

}  // namespace lumo::ops::geometry

#include "ops/geometry/perspective.h"

#include <array>
#include <utility>

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

enum Field { kRed, kGreen, kBlue, kPercent };

constexpr std::array kFields{Red("Canvas color", "255"), Green("255"), Blue("255"),
                             Integer("-100 %  perspective 100%", "0").Clamp(-100, 100)};
constexpr DialogSpec kHorizontalDialog{
    .title = "Horizontal perspective", .windowState = "WS45", .helpTopic = "Horizontalperspective"};
constexpr DialogSpec kVerticalDialog{
    .title = "Vertical perspective", .windowState = "WS89", .helpTopic = "Verticalperspective"};

std::string PanelOf(const Fields& fields) {
    return PanelLines()
        .Line("Perspective %: ", fields.Text(kPercent))
        .Line("Canvas(RGB):", JoinColour(fields, kRed, ": "))
        .Text();
}

struct FailureTexts {
    std::string_view memory, fill;
};

// False if the memory could not be had; `filled` tells whether the canvas took its colour.
bool SqueezeMainImage(CLumoscriptView& view, const Fields& fields, Squeeze squeeze,
                      const FailureTexts& failures, bool& filled) {
    const ConstImageView source = std::as_const(view.working.main).View();
    auto target = CreateTarget(view, source.Width(), source.Height(), failures.memory);
    if (!target) return false;
    filled = FillTarget(view, target->View(), ColourOf(fields, kRed), failures.fill);
    SqueezeImage(source, squeeze, fields.Integer(kPercent), target->View());
    ReplaceMainImage(view, std::move(*target));
    SetFullColour(view);
    return true;
}

// The two differ in their results: this one tells of a canvas that was not filled.
Outcome RunHorizontal(CLumoscriptView& view, const Fields& fields) {
    constexpr FailureTexts kFailures{"Cmd_45 Horizontal: memory failure",
                                     "Cmd_45 Horizontal L6323: "};
    bool filled = false;
    return ToOutcome(SqueezeMainImage(view, fields, Squeeze::Columns, kFailures, filled) && filled);
}

Outcome RunVertical(CLumoscriptView& view, const Fields& fields) {
    constexpr FailureTexts kFailures{"Cmd_89 Vertical: memory failure", "Cmd_89 Vertical L5756: "};
    bool filled = false;
    return ToOutcome(SqueezeMainImage(view, fields, Squeeze::Rows, kFailures, filled));
}

Image PreviewOf(ConstImageView before, const Fields& fields, Squeeze squeeze) {
    auto after = TryCanvas(before.Width(), before.Height(), ColourOf(fields, kRed));
    if (after) SqueezeImage(before, squeeze, fields.Integer(kPercent), after->View());
    return OrUnchanged(std::move(after), before);
}
Image PreviewHorizontal(ConstImageView before, Size /*sample*/, const Fields& fields) {
    return PreviewOf(before, fields, Squeeze::Columns);
}
Image PreviewVertical(ConstImageView before, Size /*sample*/, const Fields& fields) {
    return PreviewOf(before, fields, Squeeze::Rows);
}

}  // namespace

const Command kHorizontalPerspectiveCommand{.spec = {.name = names::kHorizontalPerspective,
                                                     .fields = kFields,
                                                     .panelText = PanelOf,
                                                     .dialog = &kHorizontalDialog},
                                            .opening = openings::kStandard,
                                            .run = RunHorizontal,
                                            .preview = PreviewHorizontal};
const Command kVerticalPerspectiveCommand{.spec = {.name = names::kVerticalPerspective,
                                                   .fields = kFields,
                                                   .panelText = PanelOf,
                                                   .dialog = &kVerticalDialog},
                                          .opening = openings::kStandard,
                                          .run = RunVertical,
                                          .preview = PreviewVertical};

}  // namespace lumo::ops::geometry

#include "ops/geometry/skew.h"

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

enum Field { kHorizontal, kVertical, kRed, kGreen, kBlue };

constexpr std::array kFields{Integer("Horizontal", "0").Clamp(-45, 45).Unit("degrees"),
                             Integer("Vertical", "0").Clamp(-45, 45).Unit("degrees"),
                             Red("Canvas color", "255"), Green("255"), Blue("255")};
constexpr DialogSpec kDialog{.title = "Skew", .windowState = "WS74", .helpTopic = "Skew"};

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    if (!fields.Is(kHorizontal, "0"))
        lines.Line("Horizontal degrees: ", fields.Text(kHorizontal));
    else
        lines.Line("Vertical degrees: ", fields.Text(kVertical));
    return lines.Line("Canvas color(RGB):", JoinColour(fields, kRed, ": ")).Text();
}

SkewParams ReadSkew(Size source, const Fields& fields) {
    return SkewOf(source, fields.Integer(kHorizontal), fields.Integer(kVertical));
}

std::int64_t WidthOf(Size source, const SkewParams& params) {
    return source.width + (params.vertical ? 0 : params.most);
}
std::int64_t HeightOf(Size source, const SkewParams& params) {
    return source.height + (params.vertical ? params.most : 0);
}

Outcome RunSkew(CLumoscriptView& view, const Fields& fields) {
    const ConstImageView source = std::as_const(view.working.main).View();
    const SkewParams params = ReadSkew(source.Extent(), fields);
    auto target =
        CreateTarget(view, WidthOf(source.Extent(), params), HeightOf(source.Extent(), params),
                     params.vertical ? "Skew: memory failure" : "Cmd_74 Skew: memory failure");
    if (!target) return Outcome::Failed;
    FillTarget(view, target->View(), ColourOf(fields, kRed),
               params.vertical ? "Cmd_74 Skew L5372: " : "Cmd_74 Skew L5429: ");
    SkewImage(source, params, target->View());
    ReplaceMainImage(view, std::move(*target));
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewSkew(ConstImageView before, Size /*sample*/, const Fields& fields) {
    const SkewParams params = ReadSkew(before.Extent(), fields);
    auto after = TryCanvas(WidthOf(before.Extent(), params), HeightOf(before.Extent(), params),
                           ColourOf(fields, kRed));
    if (after) SkewImage(before, params, after->View());
    return OrUnchanged(std::move(after), before);
}

}  // namespace

const Command kSkewCommand{
    .spec = {.name = names::kSkew, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunSkew,
    .preview = PreviewSkew};

}  // namespace lumo::ops::geometry

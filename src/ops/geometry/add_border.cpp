#include "ops/geometry/add_border.h"

#include <algorithm>
#include <array>
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
using imaging::Size;

enum Field { kTop, kBottom, kLeft, kRight, kRed, kGreen, kBlue, kUnits };

constexpr std::string_view kUnitNames[] = {"Pixels", "Percent"};

constexpr FieldSpec Band(std::string_view label) {
    return Integer(label, "10").Clamp(0, 400);
}
constexpr std::array kFields{Band("Top"),
                             Band("Bottom"),
                             Band("Left"),
                             Band("Right"),
                             Red("Border color", "0"),
                             Green("0"),
                             Blue("0"),
                             Choice("Units", "0", kUnitNames)};
constexpr DialogSpec kDialog{
    .title = "Add border ", .windowState = "WS01", .helpTopic = "AddBorder"};

std::string PanelOf(const Fields& fields) {
    return PanelLines()
        .Line(fields.Is(kUnits, "0") ? "values in pixels:" : "values as percentage:")
        .Line("Top = ", fields.Text(kTop))
        .Line("Bottom = ", fields.Text(kBottom))
        .Line("Left = ", fields.Text(kLeft))
        .Line("Right= ", fields.Text(kRight))
        .Line("Color(RGB) = ", JoinColour(fields, kRed, ": "))
        .Text();
}

BorderParams ReadBorder(const Fields& fields) {
    return {fields.Integer(kTop), fields.Integer(kBottom), fields.Integer(kLeft),
            fields.Integer(kRight), !fields.Is(kUnits, "0")};
}

Outcome RunAddBorder(CLumoscriptView& view, const Fields& fields) {
    const ConstImageView source = std::as_const(view.working.main).View();
    const auto bands = BandsOf(source.Extent(), ReadBorder(fields));
    if (!bands) return Outcome::Failed;
    auto target = CreateTarget(view, source.Width() + bands->left + bands->right,
                               source.Height() + bands->top + bands->bottom,
                               "Cmd_01 Border: memory failure!:");
    if (!target) return Outcome::Failed;
    const bool ok =
        PlaceOnTarget(view, source, ToInt(bands->left), ToInt(bands->top), ColourOf(fields, kRed),
                      target->View(), {"Cmd_01 BorderFill L5380: ", "Cmd_01 BorderOver L5381: "});
    ReplaceMainImage(view, std::move(*target));
    SetFullColour(view);
    return ToOutcome(ok);
}

Image PreviewAddBorder(ConstImageView before, Size sample, const Fields& fields) {
    BorderParams params = ReadBorder(fields);
    if (!params.percent) {
        for (int* const band : {&params.top, &params.bottom})
            *band = ScaleLength(*band, before.Height(), sample.height);
        for (int* const band : {&params.left, &params.right})
            *band = ScaleLength(*band, before.Width(), sample.width);
    }
    const auto bands = BandsOf(before.Extent(), params);
    if (!bands) return OrUnchanged(std::nullopt, before);
    auto after = TryCanvas(before.Width() + bands->left + bands->right,
                           before.Height() + bands->top + bands->bottom, ColourOf(fields, kRed));
    if (after &&
        !imaging::OverlayImage(after->View(), before, ToInt(bands->left), ToInt(bands->top)))
        after.reset();
    return OrUnchanged(std::move(after), before);
}

}  // namespace

std::optional<Bands> BandsOf(Size source, const BorderParams& params) {
    if (std::min({params.top, params.bottom, params.left, params.right}) < 0) return std::nullopt;
    const auto thickness = [&](int value) -> std::int64_t {
        if (!params.percent) return value;
        // 32-bit unsigned, truncating: part of the contract.
        return static_cast<std::uint32_t>(source.height) * static_cast<std::uint32_t>(value) / 100;
    };
    return Bands{thickness(params.top), thickness(params.bottom), thickness(params.left),
                 thickness(params.right)};
}

const Command kAddBorderCommand{.spec = {.name = names::kAddBorder,
                                         .fields = kFields,
                                         .panelText = PanelOf,
                                         .dialog = &kDialog},
                                .opening = openings::kStandard,
                                .run = RunAddBorder,
                                .preview = PreviewAddBorder};

}  // namespace lumo::ops::geometry

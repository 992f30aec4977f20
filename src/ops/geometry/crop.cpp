#include "ops/geometry/crop.h"

#include <algorithm>
#include <array>
#include <utility>

#include "imaging/crop.h"
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

enum Field { kTop, kBottom, kLeft, kRight, kUnits, kMeasured };  // order of the stored string

constexpr int kMinKept = 5;  // rows and columns a crop must leave
constexpr std::string_view kUnitNames[] = {"Pixels", "Percent"};
constexpr std::string_view kOriginNames[] = {"From edges", "From center"};
constexpr std::string_view kUnitLines[] = {"crop by pixels", "crop by percent"};
constexpr std::string_view kOriginLines[] = {"crop from edges", "crop from center"};
constexpr int kSides[] = {kBottom, kLeft, kRight};

constexpr FieldSpec Inset(std::string_view label) {
    return Integer(label, "10").Clamp(0, 10000).ClampWhen(kUnits, "1", 0, 100);
}
constexpr std::array kFields{Inset("Top"),
                             Inset("Bottom"),
                             Inset("Left"),
                             Inset("Right"),
                             Choice("Units", "0", kUnitNames),
                             Choice("Measured", "0", kOriginNames)};
constexpr DialogSpec kDialog{.title = "Crop",
                             .windowState = "WS23",
                             .helpTopic = "Crop",
                             .follow = Follow{"Symmetric", kTop, kSides}};

// As the run has it: "1" is the second choice, anything else the first.
std::string PanelOf(const Fields& fields) {
    return PanelLines()
        .Line(kOriginLines[fields.Is(kMeasured, "1") ? 1 : 0])
        .Line(kUnitLines[fields.Is(kUnits, "1") ? 1 : 0])
        .Line("Top = ", fields.Text(kTop))
        .Line("Bottom = ", fields.Text(kBottom))
        .Line("Left = ", fields.Text(kLeft))
        .Line("Right = ", fields.Text(kRight))
        .Text();
}

CropParams ReadCrop(const Fields& fields) {
    return {fields.Integer(kTop),   fields.Integer(kBottom), fields.Integer(kLeft),
            fields.Integer(kRight), fields.Is(kUnits, "1"),  fields.Is(kMeasured, "1")};
}

// A rectangle cut down to what an int holds still lies outside of the picture.
Rect RectOf(const CropFrame& frame) {
    return {ToInt(frame.left), ToInt(frame.top), ToInt(frame.right), ToInt(frame.bottom)};
}

Outcome RunCrop(CLumoscriptView& view, const Fields& fields) {
    const ConstImageView source = std::as_const(view.working.main).View();
    const auto keep = CropRect(source.Extent(), ReadCrop(fields));
    if (!keep) return Outcome::Failed;
    auto target = CreateTarget(view, keep->Width(), keep->Height(), "Cmd_23 Crop: memory failure");
    if (!target) return Outcome::Failed;
    const bool ok = imaging::CropImage(source, RectOf(*keep), target->View());
    if (!ok) {
        OnCommandFailure(view, "Cmd_23 Crop L14588: ", LibraryError::Append);
        Clear(target->View());
    }
    ReplaceMainImage(view, std::move(*target));  // taken over even if the copy was refused
    return ToOutcome(ok);
}

// The preview shows where the cut falls rather than the cut picture.
Image PreviewCrop(ConstImageView before, Size sample, const Fields& fields) {
    const auto keep = CropRect(sample, ReadCrop(fields));
    return keep ? MarkCut(before, sample, RectOf(*keep)) : OrUnchanged(std::nullopt, before);
}

}  // namespace

std::optional<CropFrame> CropRect(Size source, const CropParams& params) {
    const auto inset = [&](int value, int extent, int half) -> std::int64_t {
        std::int64_t pixels = value;
        if (params.percent)  // 32-bit unsigned, truncating: part of the contract
            pixels = static_cast<std::uint32_t>(value) * static_cast<std::uint32_t>(extent) /
                     (params.fromCentre ? 200U : 100U);
        return params.fromCentre ? std::max<std::int64_t>(0, half - pixels) : pixels;
    };
    const std::int64_t width = source.width, height = source.height;
    // Measured from the centre, the odd row or column belongs to the top and the left.
    const auto half = [](std::int64_t extent) { return static_cast<int>(extent / 2); };
    const auto top = inset(params.top, source.height, half(height + 1));
    const auto bottom = inset(params.bottom, source.height, half(height));
    const auto left = inset(params.left, source.width, half(width + 1));
    const auto right = inset(params.right, source.width, half(width));
    if (height < top + kMinKept + bottom || width < left + kMinKept + right) return std::nullopt;
    return CropFrame{left, top, width - right, height - bottom};
}

const Command kCropCommand{
    .spec = {.name = names::kCrop, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunCrop,
    .preview = PreviewCrop};

}  // namespace lumo::ops::geometry

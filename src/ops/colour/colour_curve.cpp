#include "ops/colour/colour_curve.h"

#include <string>
#include <utility>

#include "imaging/pixel_runs.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/curve_kernels.h"
#include "ops/handler_steps.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Lut, imaging::LutSet,
    imaging::Size;

enum Field { kMode, kFirstPoint };  // order of the stored string

constexpr std::string_view kModes[] = {"1", "2", "3", "4", "5"};
constexpr std::string_view kModeNames[] = {"RGB (all color components)", "R (red only)",
                                           "G (green only)", "B (blue only)", "Brightness only"};
constexpr std::string_view kAllChannels = kModes[0], kRedOnly = kModes[1], kGreenOnly = kModes[2],
                           kBlueOnly = kModes[3], kBrightness = kModes[4];

constexpr std::string_view kStraight[kCurvePoints] = {"0",   "16",  "32",  "48",  "64",  "80",
                                                      "96",  "112", "128", "144", "160", "176",
                                                      "192", "208", "224", "240", "255"};

constexpr std::array<FieldSpec, kFirstPoint + kCurvePoints> MakeFields() {
    std::array<FieldSpec, kFirstPoint + kCurvePoints> fields{};
    fields[kMode] = Choice("Adjust for", "5", kModeNames, kModes);
    // Each point is labelled with the input level it stands at, which is also its default.
    for (std::size_t i = 0; i < kCurvePoints; ++i)
        fields[kFirstPoint + i] = script::Integer(kStraight[i], kStraight[i]).Clamp(0, 255);
    return fields;
}
constexpr auto kFields = MakeFields();
constexpr auto kPoints = script::FieldsFrom<kCurvePoints>(kFirstPoint);
constexpr script::FieldGroup kGroups[] = {{.title = "Levels", .fields = kPoints, .columns = 3}};
constexpr DialogSpec kDialog{.title = "Color curve adjustment",
                             .windowState = "WS14",
                             .helpTopic = "Colorcurveadjust",
                             .groups = kGroups};

std::string PanelText(const Fields& fields) {
    std::string text = "Adjustment curve for:\n";
    for (std::size_t i = 0; i < std::size(kModes); ++i)
        if (fields.Is(kMode, kModes[i])) text.append(kModeNames[i]).append("\n");
    if (fields.Is(kMode, kBrightness)) text += "no color change\n";
    return text;
}

CurvePoints ReadPoints(const Fields& fields) {
    CurvePoints points{};
    for (std::size_t i = 0; i < kCurvePoints; ++i)  // beyond a byte the low 8 bits count
        points[i] = static_cast<std::uint8_t>(fields.Integer(kFirstPoint + static_cast<int>(i)));
    return points;
}

bool Adjust(ImageView image, const Fields& fields) {
    const Lut lut = CurveLut(ReadPoints(fields));
    if (fields.Is(kMode, kBrightness)) {
        ApplyCurveToBrightness(image, lut);
        return true;
    }
    const auto tableFor = [&](std::string_view mode) {
        return fields.Is(kMode, mode) || fields.Is(kMode, kAllChannels) ? &lut : nullptr;
    };
    const LutSet luts{tableFor(kRedOnly), tableFor(kGreenOnly), tableFor(kBlueOnly)};
    return imaging::ApplyLUTsToImage(image, luts);
}

Outcome RunColourCurve(CLumoscriptView& view, const Fields& fields) {
    return ReportIfFailed(view, Adjust(view.working.main.View(), fields), "Cmd_14 Curve L9090: ");
}

Image PreviewColourCurve(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { (void)Adjust(after, fields); });
}

}  // namespace

Lut CurveLut(const CurvePoints& points) {
    Lut lut{};
    for (std::size_t i = 0; i < lut.size(); ++i) {
        const std::size_t k = i / 16;
        const int from = points[k], to = points[k + 1];
        const int steps = k == 15 ? 15 : 16;
        lut[i] = static_cast<std::uint8_t>(from + (to - from) * static_cast<int>(i % 16) / steps);
    }
    return lut;
}

void ApplyCurveToBrightness(ImageView image, const Lut& curve) {
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        kernels::CurveBrightness(pixels, count, curve);
    });
}

const Command kColourCurveAdjustCommand{.spec = {.name = names::kColourCurveAdjust,
                                                 .fields = kFields,
                                                 .panelText = PanelText,
                                                 .dialog = &kDialog},
                                        .opening = openings::kStandard,
                                        .run = RunColourCurve,
                                        .preview = PreviewColourCurve};

}  // namespace lumo::ops::colour

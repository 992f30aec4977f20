// Adjust: histogram luminance, Histogram (equalize), Histogram (stretch).

#include <array>

#include "imaging/tone.h"
#include "ops/colour/colour_commands.h"
#include "ops/handler_steps.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::HistogramMode, imaging::Image, imaging::ImageView,
    imaging::Size;

enum Field { kLow, kHigh, kMode };  // order of the stored string

constexpr std::string_view kModeNames[] = {"Stretch histogram", "Equalize histogram"};
constexpr std::array kFields{script::Integer("Low threshold", "0").Clamp(0, 127),
                             script::Integer("High threshold", "255").Clamp(128, 255),
                             Choice("Mode", "1", kModeNames)};
constexpr std::array kPanel{script::Value(kLow, "Low histogram threshold: "),
                            script::Value(kHigh, "High histogram threshold: "),
                            OneOf(kMode, kModeNames)};
constexpr DialogSpec kDialog{.title = "Adjust: luminance histogram ",
                             .windowState = "WS05",
                             .helpTopic = "Adjusthistogrmluminance"};

constexpr std::array kEqualizePanel{
    Fixed("Equalizes the luminance"), Fixed("histogram over the entire"),
    Fixed("range. Averages the image"), Fixed("brightness."), Fixed("No parameters.")};
constexpr std::array kStretchPanel{
    Fixed("Stretch the luminance"), Fixed("histogram over the entire"),
    Fixed("range. Increases the image"), Fixed("brightness range."), Fixed("No parameters.")};

bool Adjust(ImageView image, const Fields& fields) {
    const HistogramMode mode =
        fields.Integer(kMode) == 0 ? HistogramMode::Stretch : HistogramMode::Equalize;
    return imaging::AutoBrightnessRGB(image, fields.Integer(kLow), fields.Integer(kHigh), mode);
}

Outcome RunHistogramLuminance(CLumoscriptView& view, const Fields& fields) {
    return ReportIfFailed(view, Adjust(view.working.main.View(), fields),
                          "Cmd_05 Histogram(adjust) L19680: ");
}

Image PreviewHistogramLuminance(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { (void)Adjust(after, fields); });
}

Outcome RunEqualize(CLumoscriptView& view, const Fields&) {
    const bool ok =
        imaging::AutoBrightnessRGB(view.working.main.View(), 0, 255, HistogramMode::Equalize);
    return ReportIfFailed(view, ok, "Cmd_43 Histogram(equalize) L3109: ");
}

Outcome RunStretch(CLumoscriptView& view, const Fields&) {
    const bool ok =
        imaging::AutoBrightnessRGB(view.working.main.View(), 0, 255, HistogramMode::Stretch);
    return ReportIfFailed(view, ok, "Cmd_44 Histogram (stretch) L3124: ");
}

}  // namespace

const Command kAdjustHistogramLuminanceCommand{.spec = {.name = names::kAdjustHistogramLuminance,
                                                        .fields = kFields,
                                                        .panel = kPanel,
                                                        .dialog = &kDialog},
                                               .opening = openings::kStandard,
                                               .run = RunHistogramLuminance,
                                               .preview = PreviewHistogramLuminance};
const Command kHistogramEqualizeCommand{
    .spec = {.name = names::kHistogramEqualize, .panel = kEqualizePanel},
    .opening = openings::kStandard,
    .run = RunEqualize};
const Command kHistogramStretchCommand{
    .spec = {.name = names::kHistogramStretch, .panel = kStretchPanel},
    .opening = openings::kStandard,
    .run = RunStretch};

}  // namespace lumo::ops::colour

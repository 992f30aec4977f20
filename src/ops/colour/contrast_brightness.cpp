// Adjust: contrast-brightness.

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
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Size;

enum Field { kContrast, kBrightness };  // order of the stored string

constexpr std::array kFields{script::Integer("Contrast", "0").Clamp(-100, 100).Unit("%"),
                             script::Integer("Brightness", "0").Clamp(-100, 100).Unit("%")};
constexpr std::array kPanel{Fixed("  (-100..+100)"),
                            script::Value(kContrast, "Adjust contrast %: "),
                            script::Value(kBrightness, "Adjust brightness %: ")};
constexpr DialogSpec kDialog{.title = "Adjust: Contrast - Brightness",
                             .windowState = "WS02",
                             .helpTopic = "AdjustContrastBrightness"};

bool Adjust(ImageView image, const Fields& fields) {
    return imaging::AdjustBrightnessContrast(image, fields.Integer(kBrightness) / 100.0,
                                             fields.Integer(kContrast) / 100.0);
}

Outcome RunContrastBrightness(CLumoscriptView& view, const Fields& fields) {
    return ReportIfFailed(view, Adjust(view.working.main.View(), fields), "Cmd_02 CnBr L21561: ");
}

Image PreviewContrastBrightness(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { (void)Adjust(after, fields); });
}

}  // namespace

const Command kAdjustContrastBrightnessCommand{.spec = {.name = names::kAdjustContrastBrightness,
                                                        .fields = kFields,
                                                        .panel = kPanel,
                                                        .dialog = &kDialog},
                                               .opening = openings::kStandard,
                                               .run = RunContrastBrightness,
                                               .preview = PreviewContrastBrightness};

}  // namespace lumo::ops::colour

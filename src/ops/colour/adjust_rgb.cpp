#include "ops/colour/adjust_rgb.h"

#include <algorithm>
#include <array>

#include "imaging/pixel_runs.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/pixel_kernels.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Size;

enum Field { kRed, kGreen, kBlue };  // order of the stored string

// Shown as percent, but added as levels: 100 adds 100 to the byte.
constexpr FieldSpec Amount(std::string_view label) {
    return script::Integer(label, "0").Clamp(-100, 100).Unit("%");
}
constexpr std::array kFields{Amount("Adjust R"), Amount("Adjust G"), Amount("Adjust B")};
constexpr std::array kPanel{script::Value(kRed, "Adjust r (%) = "),
                            script::Value(kGreen, "Adjust g (%) = "),
                            script::Value(kBlue, "Adjust b (%) = ")};
constexpr DialogSpec kDialog{
    .title = "Adjust: color RGB", .windowState = "WS04", .helpTopic = "AdjustcolorRGB"};

void Add(ImageView image, const Fields& fields) {
    AddToChannels(image, fields.Integer(kRed), fields.Integer(kGreen), fields.Integer(kBlue));
}

Outcome RunAdjustRgb(CLumoscriptView& view, const Fields& fields) {
    Add(view.working.main.View(), fields);
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewAdjustRgb(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { Add(after, fields); });
}

}  // namespace

void AddToChannels(ImageView image, int red, int green, int blue) {
    const std::array amounts{std::clamp(red, -255, 255), std::clamp(green, -255, 255),
                             std::clamp(blue, -255, 255)};
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        kernels::Add(pixels, count, amounts);
    });
}

const Command kAdjustColourRgbCommand{.spec = {.name = names::kAdjustColourRgb,
                                               .fields = kFields,
                                               .panel = kPanel,
                                               .dialog = &kDialog},
                                      .opening = openings::kStandard,
                                      .run = RunAdjustRgb,
                                      .preview = PreviewAdjustRgb};

}  // namespace lumo::ops::colour

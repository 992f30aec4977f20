#include "ops/colour/solarize.h"

#include <array>

#include "imaging/pixel_runs.h"
#include "ops/colour/channels.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/pixel_kernels.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Size;

enum Field { kThreshold };

constexpr std::array kFields{script::Integer("Threshold", "255").Clamp(0, 255)};
constexpr std::array kPanel{script::Value(kThreshold, "Threshold(0 - 255) = ")};
constexpr DialogSpec kDialog{
    .title = "Solarize (threshold 0 - 255)", .windowState = "WS75", .helpTopic = "Solarize"};

Outcome RunSolarize(CLumoscriptView& view, const Fields& fields) {
    Solarize(view.working.main.View(), fields.Integer(kThreshold));
    return Outcome::Succeeded;
}

Image PreviewSolarize(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { Solarize(after, fields.Integer(kThreshold)); });
}

}  // namespace

void Solarize(ImageView image, int threshold) {
    if (threshold >= 255) return;  // no luma exceeds it
    if (threshold < 0) return InvertImage(image);
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        kernels::Solarize(pixels, count, static_cast<std::uint8_t>(threshold));
    });
}

const Command kSolarizeCommand{
    .spec = {.name = names::kSolarize, .fields = kFields, .panel = kPanel, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunSolarize,
    .preview = PreviewSolarize};

}  // namespace lumo::ops::colour

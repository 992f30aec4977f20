#include "ops/colour/solarize.h"

#include <array>

#include "imaging/colour.h"
#include "imaging/pixel_runs.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/support.h"
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
    return PreviewOf(before, [&](ImageView after) { Solarize(after, fields.Integer(kThreshold)); });
}

}  // namespace

void Solarize(ImageView image, int threshold) {
    ForPixelRuns(image, [&](std::uint8_t* p, std::size_t count) {
        for (const std::uint8_t* const end = p + count * 3; p != end; p += 3) {
            const bool inverted = imaging::ComputeLuma(p[0], p[1], p[2]) > threshold;
            const std::uint8_t mask = inverted ? 255 : 0;
            for (int c = 0; c < 3; ++c) p[c] ^= mask;
        }
    });
}

const Command kSolarizeCommand{
    .spec = {.name = names::kSolarize, .fields = kFields, .panel = kPanel, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunSolarize,
    .preview = PreviewSolarize};

}  // namespace lumo::ops::colour

#include "ops/colour/adjust_hsl.h"

#include <array>
#include <new>
#include <string>

#include "imaging/colour.h"
#include "imaging/pixel_runs.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/hsl_kernels.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Size;

enum Field { kHue, kSaturation, kLuminance };  // order of the stored string

constexpr std::array kFields{
    script::Integer("Hue", "0").Clamp(-180, 180),
    script::Integer("Saturation", "0").Clamp(-100, 100).Unit("%"),
    script::Integer("Luminance", "0").Clamp(-100, 100).Unit("%"),
};
constexpr DialogSpec kDialog{.title = "Adjust Hue-Saturation-Luminance",
                             .windowState = "WS03",
                             .helpTopic = "AdjustcolorHSL"};

std::string PanelText(const Fields& fields) {
    std::string text;
    const auto add = [&](std::string_view label, int field) {
        const std::string& value = fields.Text(field);
        text.append(label).append(value.starts_with('-') ? "" : "+").append(value).append("\n");
    };
    add("Adjust hue (degrees) = ", kHue);
    add("Adjust saturation (%) = ", kSaturation);
    add("Adjust luminance (%) = ", kLuminance);
    return text;
}

void Adjust(ImageView image, const Fields& fields) {
    AdjustHslOfImage(image, fields.Integer(kHue), fields.Integer(kSaturation),
                     fields.Integer(kLuminance));
}

Outcome RunAdjustHsl(CLumoscriptView& view, const Fields& fields) {
    Adjust(view.working.main.View(), fields);
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewAdjustHsl(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { Adjust(after, fields); });
}

/// Without tables: where there is no memory for them, and for turns that they do not cover.
void AdjustPlainly(std::uint8_t* p, std::size_t count, int hueDelta, int saturationPercent,
                   int lightnessPercent) {
    for (const std::uint8_t* const end = p + count * 3; p != end; p += 3) {
        const imaging::Hsl colour = imaging::RgbToHsl({p[0], p[1], p[2]});
        const imaging::Rgb pixel = imaging::HslToRgb(
            imaging::AdjustHsl(colour, hueDelta, saturationPercent, lightnessPercent));
        p[0] = pixel.red;
        p[1] = pixel.green;
        p[2] = pixel.blue;
    }
}

}  // namespace

void AdjustHslOfImage(ImageView image, int hueDelta, int saturationPercent, int lightnessPercent) {
    const auto memory = imaging::PixelBuffer::TryAllocate(sizeof(kernels::HslTables));
    auto* const tables = memory ? new (memory.Data()) kernels::HslTables : nullptr;
    const bool tabled =
        tables && kernels::FillHslTables(hueDelta, saturationPercent, lightnessPercent, *tables);
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        if (tabled)
            kernels::AdjustHsl(pixels, count, *tables);
        else
            AdjustPlainly(pixels, count, hueDelta, saturationPercent, lightnessPercent);
    });
}

const Command kAdjustColourHslCommand{.spec = {.name = names::kAdjustColourHsl,
                                               .fields = kFields,
                                               .panelText = PanelText,
                                               .dialog = &kDialog},
                                      .opening = openings::kStandard,
                                      .run = RunAdjustHsl,
                                      .preview = PreviewAdjustHsl};

}  // namespace lumo::ops::colour

#include "ops/colour/toners.h"

#include <array>

#include "imaging/colour.h"
#include "imaging/last_error.h"
#include "imaging/pixel_runs.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/hsl_kernels.h"
#include "ops/colour/pixel_kernels.h"
#include "ops/handler_steps.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Lut, imaging::LutSet,
    imaging::Rgb, imaging::Size;

enum Field { kHue, kSaturation };  // order of the stored string

constexpr std::array kFields{script::Integer("Hue", "0").Clamp(0, 360),
                             script::Integer("Saturation", "50").Clamp(0, 100).Unit("%")};
constexpr std::array kTonePanel{Fixed("Image made grayscale"), Fixed("with same luminance, then:"),
                                script::Value(kHue, "Set hue (degrees) = "),
                                script::Value(kSaturation, "Set saturation (%) = ")};
constexpr DialogSpec kDialog{.title = "Set single color tone (first made grayscale)",
                             .windowState = "WS18",
                             .helpTopic = "Convertonecolor"};

constexpr std::array kSepiaPanel{
    Fixed("Image is made grayscale"), Fixed("with same luminance, then"),
    Fixed("a one color sepia tone tint"), Fixed("is added."), Fixed("No parameters.")};

constexpr std::array kSepia{24, -10, -10};  // red, green, blue

ToneSource SourceOf(const CLumoscriptView& view) {
    return view.working.grey ? ToneSource::Grey : ToneSource::Colour;
}

Outcome RunOneColourTone(CLumoscriptView& view, const Fields& fields) {
    const bool ok = ToneImage(view.working.main.View(), SourceOf(view), fields.Integer(kHue),
                              fields.Integer(kSaturation));
    if (ok) SetFullColour(view);
    return ReportIfFailed(view, ok, "Cmd_18 TintGray L6431: ");
}

Image PreviewOneColourTone(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) {
        (void)ToneImage(after, ToneSource::Colour, fields.Integer(kHue),
                        fields.Integer(kSaturation));
    });
}

Outcome RunSepiaTone(CLumoscriptView& view, const Fields&) {
    const bool ok = SepiaImage(view.working.main.View(), SourceOf(view));
    if (ok) SetFullColour(view);
    return ReportIfFailed(view, ok, "Cmd_19 Sepia-Gray24 L3222: ");
}

/// Tables for the three channels, by lightness or by level of grey.
struct ThreeLuts {
    Lut red{}, green{}, blue{};
    LutSet Set() const { return {&red, &green, &blue}; }
    void Put(std::size_t index, Rgb colour) {
        red[index] = colour.red;
        green[index] = colour.green;
        blue[index] = colour.blue;
    }
};

bool RefuseEmpty(ConstImageView image) {
    if (!image.IsEmpty()) return false;
    imaging::SetLastError("the picture is empty");
    return true;
}

}  // namespace

bool ToneImage(ImageView image, ToneSource source, int hue, int saturation) {
    const auto tone = [&](int lightness) {
        return imaging::HslToRgb({hue, saturation, lightness});
    };
    ThreeLuts luts;
    if (source == ToneSource::Colour) {
        for (std::size_t v = 0; v < 256; ++v) {
            const auto level = static_cast<std::uint8_t>(v);
            luts.Put(v, tone(imaging::RgbToHsl({level, level, level}).lightness));
        }
        return imaging::ToneGrayScale(image, luts.Set());
    }
    if (RefuseEmpty(image)) return false;
    // A command that keeps the mark may have brought colour in since, so lightness is found anew.
    for (int lightness = 0; lightness <= 100; ++lightness)
        luts.Put(static_cast<std::size_t>(lightness), tone(lightness));
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        kernels::ToneByLightness(pixels, count, luts.Set());
    });
    return true;
}

bool SepiaImage(ImageView image, ToneSource source) {
    if (RefuseEmpty(image)) return false;
    const auto tint = source == ToneSource::Grey ? kernels::Add : kernels::AddToGrey;
    ForPixelRuns(image,
                 [&](std::uint8_t* pixels, std::size_t count) { tint(pixels, count, kSepia); });
    return true;
}

const Command kConvertOneColourToneCommand{.spec = {.name = names::kConvertOneColourTone,
                                                    .fields = kFields,
                                                    .panel = kTonePanel,
                                                    .dialog = &kDialog},
                                           .opening = openings::kStandard,
                                           .run = RunOneColourTone,
                                           .preview = PreviewOneColourTone};

const Command kConvertSepiaToneCommand{
    .spec = {.name = names::kConvertSepiaTone, .panel = kSepiaPanel},
    .opening = openings::kStandard,
    .run = RunSepiaTone};

}  // namespace lumo::ops::colour

#include "ops/colour/toners.h"

#include <array>

#include "imaging/colour.h"
#include "imaging/last_error.h"
#include "imaging/pixel_runs.h"
#include "ops/colour/adjust_rgb.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/support.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Hsl, imaging::Image, imaging::ImageView, imaging::Lut,
    imaging::LutSet, imaging::Rgb, imaging::Size;

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

constexpr int kSepiaRed = 24, kSepiaGreen = -10, kSepiaBlue = -10;

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
    return PreviewOf(before, [&](ImageView after) {
        (void)ToneImage(after, ToneSource::Colour, fields.Integer(kHue),
                        fields.Integer(kSaturation));
    });
}

Outcome RunSepiaTone(CLumoscriptView& view, const Fields&) {
    const bool ok = SepiaImage(view.working.main.View(), SourceOf(view));
    if (ok) SetFullColour(view);
    return ReportIfFailed(view, ok, "Cmd_19 Sepia-Gray24 L3222: ");
}

/// Three tables filled from one function of a level.
struct ThreeLuts {
    Lut red{}, green{}, blue{};
    LutSet Set() const { return {&red, &green, &blue}; }
};

template <typename ColourOf>
ThreeLuts LutsOf(const ColourOf& colourOf) {
    ThreeLuts luts;
    for (std::size_t level = 0; level < 256; ++level) {
        const Rgb colour = colourOf(static_cast<std::uint8_t>(level));
        luts.red[level] = colour.red;
        luts.green[level] = colour.green;
        luts.blue[level] = colour.blue;
    }
    return luts;
}

bool RefuseEmpty(ConstImageView image) {
    if (!image.IsEmpty()) return false;
    imaging::SetLastError("the picture is empty");
    return true;
}

}  // namespace

bool ToneImage(ImageView image, ToneSource source, int hue, int saturation) {
    const auto tone = [&](Rgb pixel) {
        return imaging::HslToRgb({hue, saturation, imaging::RgbToHsl(pixel).lightness});
    };
    const ThreeLuts ofGrey = LutsOf([&](std::uint8_t v) { return tone({v, v, v}); });
    if (source == ToneSource::Colour) return imaging::ToneGrayScale(image, ofGrey.Set());
    if (RefuseEmpty(image)) return false;
    // A command that keeps the mark may have brought colour in since.
    ForPixelRuns(image, [&](std::uint8_t* p, std::size_t count) {
        for (const std::uint8_t* const end = p + count * 3; p != end; p += 3) {
            const Rgb pixel{p[0], p[1], p[2]};
            const bool grey = pixel.red == pixel.green && pixel.red == pixel.blue;
            const Rgb toned =
                grey ? Rgb{ofGrey.red[pixel.red], ofGrey.green[pixel.red], ofGrey.blue[pixel.red]}
                     : tone(pixel);
            p[0] = toned.red;
            p[1] = toned.green;
            p[2] = toned.blue;
        }
    });
    return true;
}

bool SepiaImage(ImageView image, ToneSource source) {
    if (source == ToneSource::Grey) {
        if (RefuseEmpty(image)) return false;
        AddToChannels(image, kSepiaRed, kSepiaGreen, kSepiaBlue);
        return true;
    }
    static const ThreeLuts kLuts = LutsOf([](std::uint8_t v) {
        const auto shifted = [&](int by) {
            return static_cast<std::uint8_t>(std::clamp(v + by, 0, 255));
        };
        return Rgb{shifted(kSepiaRed), shifted(kSepiaGreen), shifted(kSepiaBlue)};
    });
    return imaging::ToneGrayScale(image, kLuts.Set());
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

#include "ops/overlays/noise.h"

#include <algorithm>
#include <array>

#include "ops/overlays/overlay_commands.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::kChannels;
using imaging::Size;

enum Field { kKind, kChannelsField, kAmount };

constexpr std::string_view kKindNames[] = {"Random noise", "Uniform noise"};
constexpr std::string_view kChannelNames[] = {"All color values", "Brightness only"};
constexpr std::array kFields{
    Choice("Noise", "0", kKindNames), Choice("Channels", "0", kChannelNames),
    Integer("% pixels changed:", "10").Clamp(1, 100).ClampWhen(kKind, "1", 1, 255)};
constexpr DialogSpec kDialog{
    .title = "Add noise to image", .windowState = "WS62", .helpTopic = "Noiseadd"};

std::string PanelOf(const Fields& fields) {
    const bool uniform = fields.Is(kKind, "1");
    return PanelLines()
        .Line(kKindNames[uniform ? 1 : 0])
        .Line(kChannelNames[fields.Is(kChannelsField, "1") ? 1 : 0])
        .Line(uniform ? "Pixel vary + or - : " : "% pixels changed: ", fields.Text(kAmount))
        .Text();
}

using Mode = void (*)(ImageView image, int amount, Random& random);

// None for texts that no dialog writes.
Mode ModeOf(const Fields& fields) {
    const bool all = fields.Is(kChannelsField, "0"), brightness = fields.Is(kChannelsField, "1");
    if (fields.Is(kKind, "0"))
        return all ? ReplaceChannels : brightness ? ReplaceBrightness : nullptr;
    if (fields.Is(kKind, "1")) return all ? VaryChannels : brightness ? VaryBrightness : nullptr;
    return nullptr;
}

Outcome RunNoise(CLumoscriptView& view, const Fields& fields) {
    if (const Mode mode = ModeOf(fields))
        mode(view.working.main.View(), fields.Integer(kAmount), view.random);
    SetFullColour(view);
    return Outcome::Succeeded;
}

// A generator of its own: looking at a preview must not change what a run gives.
Image PreviewNoise(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) {
        Random random;
        if (const Mode mode = ModeOf(fields)) mode(after, fields.Integer(kAmount), random);
    });
}

std::uint8_t ToByte(std::int64_t value) {
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(value, 0, 255));
}

int LuminanceOf(const std::uint8_t* pixel) {
    const double sum = 0.299 * pixel[0] + 0.587 * pixel[1] + 0.114 * pixel[2];
    return std::max(static_cast<int>(sum), 1);
}

void ScalePixel(std::uint8_t* pixel, int luminance, int target) {
    for (int c = 0; c < kChannels; ++c) pixel[c] = ToByte(pixel[c] * target / luminance);
}

// The negative of a number as 32 bits give it.
int Negative(int value) {
    return static_cast<int>(0U - static_cast<unsigned>(value));
}

}  // namespace

int RandomInRange(Random& random, int low, int high) {
    // Beyond the dialog's ranges the product wraps.
    const unsigned span = static_cast<unsigned>(high) - static_cast<unsigned>(low);
    const int part = static_cast<int>(static_cast<unsigned>(random.Next()) * span) / 32767;
    return static_cast<int>(static_cast<unsigned>(part) + static_cast<unsigned>(low));
}

void ReplaceChannels(ImageView image, int percent, Random& random) {
    for (std::uint8_t& channel : image.Bytes())
        if (RandomInRange(random, 0, 100) <= percent)
            channel = static_cast<std::uint8_t>(RandomInRange(random, 0, 255));
}

void ReplaceBrightness(ImageView image, int percent, Random& random) {
    const auto bytes = image.Bytes();
    for (std::size_t i = 0; i < bytes.size(); i += kChannels)
        if (RandomInRange(random, 0, 100) <= percent)
            ScalePixel(&bytes[i], LuminanceOf(&bytes[i]), RandomInRange(random, 0, 255));
}

void VaryChannels(ImageView image, int amount, Random& random) {
    for (std::uint8_t& channel : image.Bytes())
        channel = ToByte(std::int64_t{channel} + RandomInRange(random, Negative(amount), amount));
}

void VaryBrightness(ImageView image, int amount, Random& random) {
    const auto bytes = image.Bytes();
    for (std::size_t i = 0; i < bytes.size(); i += kChannels) {
        const int luminance = LuminanceOf(&bytes[i]);
        const std::int64_t varied =
            std::int64_t{luminance} + RandomInRange(random, Negative(amount), amount);
        ScalePixel(&bytes[i], luminance,
                   static_cast<int>(std::clamp<std::int64_t>(varied, 1, 255)));
    }
}

const Command kNoiseAddCommand{
    .spec = {.name = names::kNoiseAdd, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunNoise,
    .preview = PreviewNoise};

}  // namespace lumo::ops::overlays

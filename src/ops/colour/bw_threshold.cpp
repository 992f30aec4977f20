#include "ops/colour/bw_threshold.h"

#include <array>
#include <cstring>
#include <string>

#include "imaging/pixel_runs.h"
#include "imaging/wrapping.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/pixel_kernels.h"
#include "ops/handler_steps.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Size,
    imaging::WrappingProduct, imaging::WrappingSum;

enum Field { kThreshold, kAdjust, kMode };  // order of the stored string

constexpr std::string_view kModeNames[] = {"Set threshold absolute (0-255)",
                                           "Set threshold as % adjustment to mean"};
constexpr std::array kFields{script::Integer("Threshold", "120").Clamp(0, 255),
                             script::Integer("Adjust %", "0").Clamp(-100, 100),
                             Choice("Mode", "0", kModeNames)};
constexpr std::string_view kNotes[] = {"Pixels below threshold go to black, above go to white"};
constexpr DialogSpec kDialog{.title = "Convert to Black and White (threshold)",
                             .windowState = "WS17",
                             .helpTopic = "ConvertBWthreshold",
                             .notes = kNotes};

// "0" is absolute, any other text relative.
bool IsAbsolute(const Fields& fields) {
    return fields.Is(kMode, "0");
}

std::string PanelText(const Fields& fields) {
    return IsAbsolute(fields) ? "Absolute threshold:\n" + fields.Text(kThreshold) + "\n"
                              : "Threshold is % adjust to mean:\n" + fields.Text(kAdjust) + "\n";
}

void Convert(ImageView image, const Fields& fields) {
    ThresholdImage(image, IsAbsolute(fields)
                              ? fields.Integer(kThreshold)
                              : RelativeThreshold(ThresholdMean(image), fields.Integer(kAdjust)));
}

Outcome RunBwThreshold(CLumoscriptView& view, const Fields& fields) {
    Convert(view.working.main.View(), fields);
    SetGreyDepth(view, 1);
    return Outcome::Succeeded;
}

Image PreviewBwThreshold(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { Convert(after, fields); });
}

}  // namespace

int ThresholdMean(ConstImageView image) {
    if (image.IsEmpty()) return 0;
    const std::uint64_t sum = kernels::SumForMean(image.Bytes().data(), image.Extent().Area());
    // Whole numbers below 2^53: the doubles are exact.
    return static_cast<int>(static_cast<double>(sum) / static_cast<double>(image.Extent().Area()));
}

int RelativeThreshold(int mean, int percent) {
    if (percent < 0) return WrappingSum(mean, WrappingProduct(percent, mean) / 100);
    return WrappingSum(mean, WrappingProduct(255 - mean, percent) / 100);
}

void ThresholdImage(ImageView image, int threshold) {
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        if (threshold > 0 && threshold < 256)
            kernels::Threshold(pixels, count, static_cast<std::uint8_t>(threshold));
        else  // beyond all lumas
            std::memset(pixels, threshold <= 0 ? 255 : 0, count * 3);
    });
}

const Command kConvertBwThresholdCommand{.spec = {.name = names::kConvertBwThreshold,
                                                  .fields = kFields,
                                                  .panelText = PanelText,
                                                  .dialog = &kDialog},
                                         .opening = openings::kStandard,
                                         .run = RunBwThreshold,
                                         .preview = PreviewBwThreshold};

}  // namespace lumo::ops::colour

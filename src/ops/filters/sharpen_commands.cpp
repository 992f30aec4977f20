// "Sharpen" and "Unsharp mask".

#include <algorithm>
#include <array>

#include "imaging/blur_gaussian.h"
#include "imaging/simple_filters.h"
#include "ops/filters/filters_commands.h"
#include "ops/filters/support.h"
#include "ops/filters/unsharp.h"
#include "ops/handler_steps.h"
#include "script/names.h"

namespace lumo::ops::filters {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::Size;

enum SharpenField { kSharpenAmount };

constexpr std::array kSharpenFields{Integer("Sharpen", "0").Clamp(0, 100)};
constexpr std::array kSharpenPanel{Value(kSharpenAmount, "Sharpen(0 - 100) =")};
constexpr DialogSpec kSharpenDialog{
    .title = "Sharpen", .windowState = "WS71", .helpTopic = "Sharpen"};

Outcome RunSharpen(CLumoscriptView& view, const Fields& fields) {
    return RunOperationIntoNewImage(
        view, kSharpenFailures, [&](ConstImageView source, ImageView target) {
            return imaging::SharpenImage(source, target, fields.Integer(kSharpenAmount));
        });
}

Image PreviewSharpen(ConstImageView before, Size, const Fields& fields) {
    return PreviewInto(before, [&](ConstImageView source, ImageView target) {
        return imaging::SharpenImage(source, target, fields.Integer(kSharpenAmount));
    });
}

enum UnsharpField { kRadius, kAmount, kThreshold, kMode };

constexpr std::array kUnsharpFields{
    Real("Pixel radius", "1.0").Clamp(0.1, 20.0), Integer("Amount 1-500%", "100").Clamp(1, 500),
    Integer("Threshold 0-255", "0").Clamp(0, 255), Flag("Luminosity only", "1")};
constexpr DialogSpec kUnsharpDialog{
    .title = "Unsharp mask", .windowState = "WS88", .helpTopic = "Unsharpmask"};

constexpr std::array kUnsharpPanel{Value(kRadius, "Pixel radius:"), Value(kAmount, "Amount:"),
                                   Value(kThreshold, "Threashold:")};

std::string UnsharpPanel(const Fields& fields) {
    return PanelText(kUnsharpPanel, fields) +
           (fields.Is(kMode, "1") ? "Luminance only\n" : "Colors modified\n");
}

UnsharpParams ReadUnsharp(const Fields& fields) {
    return {fields.Integer(kAmount), fields.Integer(kThreshold), fields.Is(kMode, "1")};
}

Outcome RunUnsharpMask(CLumoscriptView& view, const Fields& fields) {
    constexpr std::string_view kNoCopy = "Unsharp mask: memory failure!";
    auto target = NewImage(view, "Cmd_88 Unsharp mask: memory failure");
    if (!target) return Outcome::Failed;
    // Stands for the blurred image where there is no memory to blur: nothing changes then.
    auto copy = NewImage(view, kNoCopy);
    if (!copy) return Outcome::Failed;
    const ConstImageView source = std::as_const(view.working.main).View();
    Image blurred = std::move(*target), unblurred = std::move(*copy);
    if (!imaging::BlurGaussian(source, blurred.View(), fields.Real(kRadius))) {
        std::ranges::copy(source.Bytes(), unblurred.View().Bytes().begin());
        std::swap(blurred, unblurred);
    }
    unblurred.Reset();
    if (!UnsharpMask(source, blurred.View(), ReadUnsharp(fields))) return FailWith(view, kNoCopy);
    ReplaceMainImage(view, std::move(blurred));
    return Outcome::Succeeded;
}

Image PreviewUnsharpMask(ConstImageView before, Size sample, const Fields& fields) {
    const double radius = ScaleRadius(fields.Real(kRadius), sample, before.Extent());
    return PreviewInto(before, [&](ConstImageView source, ImageView target) {
        return imaging::BlurGaussian(source, target, radius) &&
               UnsharpMask(source, target, ReadUnsharp(fields));
    });
}

}  // namespace

const Command kSharpenCommand{.spec = {.name = names::kSharpen,
                                       .fields = kSharpenFields,
                                       .panel = kSharpenPanel,
                                       .dialog = &kSharpenDialog},
                              .opening = openings::kStandard,
                              .run = RunSharpen,
                              .preview = PreviewSharpen};

const Command kUnsharpMaskCommand{.spec = {.name = names::kUnsharpMask,
                                           .fields = kUnsharpFields,
                                           .panelText = UnsharpPanel,
                                           .dialog = &kUnsharpDialog},
                                  .opening = openings::kStandard,
                                  .run = RunUnsharpMask,
                                  .preview = PreviewUnsharpMask};

}  // namespace lumo::ops::filters

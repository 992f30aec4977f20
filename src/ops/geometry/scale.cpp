#include "ops/geometry/scale.h"

#include <algorithm>
#include <array>
#include <string>

#include "imaging/resample.h"
#include "imaging/truncate.h"
#include "ops/geometry/sizing_algorithm.h"
#include "script/names.h"

namespace lumo::ops::geometry {
namespace {

using namespace engine;
using namespace script;
using imaging::Image, imaging::Size, imaging::Truncate;

enum Field { kAspect, kMethod, kWidth, kHeight, kSizing, kGivenSide };

constexpr int kSmallestSide = 4;  // pixels of a result

constexpr std::string_view kMethodNames[] = {"Absolute", "Relative", "Percentage"};
constexpr std::string_view kGivenNames[] = {"Width", "Height", "Best fit"};
const std::array kFields{
    Flag("Maintain aspect ratio (constrains proportions)", "1"),
    Choice("Method", "0", kMethodNames),
    Integer("Width", "128").Clamp(0, 65500).ClampWhen(kMethod, "1", -65500, 65500),
    Integer("Height", "96").Clamp(0, 65500).ClampWhen(kMethod, "1", -65500, 65500),
    Choice("Sizing algorithm", "3", SizingDialogNames(), SizingCodes()),
    Choice("Given side", "0", kGivenNames)};
constexpr DialogSpec kDialog{.title = "Scale image - change image size",
                             .windowState = "WS69",
                             .helpTopic = "Scalechangesize"};

ScaleParams ReadScale(const Fields& fields) {
    ScaleParams params;
    params.keepAspect = fields.Is(kAspect, "1");
    if (fields.Is(kMethod, "1")) params.method = ScaleMethod::Relative;
    if (fields.Is(kMethod, "2")) params.method = ScaleMethod::Percentage;
    params.width = fields.Integer(kWidth);
    params.height = fields.Integer(kHeight);
    if (fields.Is(kGivenSide, "1")) params.given = GivenSide::Height;
    if (fields.Is(kGivenSide, "2")) params.given = GivenSide::Both;
    return params;
}

Outcome RunScale(CLumoscriptView& view, const Fields& fields) {
    const imaging::ConstImageView source = view.working.main.View();
    const Size target = ScaledSize(source.Extent(), ReadScale(fields));
    if (target == source.Extent()) return Outcome::Succeeded;
    if (target.width < kSmallestSide || target.height < kSmallestSide) return Outcome::Failed;
    const int code = SizingCode(SizingTable::Scale, fields.Text(kSizing), source.Extent(), target);
    auto scaled = Image::TryCreate(target);
    if (!scaled) {
        OnCommandFailure(view, "Cmd_69 Scale L15265: memory failure", LibraryError::Append);
        return Outcome::Failed;
    }
    if (!imaging::ResizeImage(source, scaled->View(), imaging::FilterOfCode(code))) {
        OnCommandFailure(view, "Cmd_69 Scale L15278: ", LibraryError::Append);
        return Outcome::Failed;
    }
    ReplaceMainImage(view, std::move(*scaled));
    return Outcome::Succeeded;
}

/// The new size beside the sample: what is smaller looks smaller, what is larger fills the frame.
Image PreviewScale(imaging::ConstImageView before, Size sample, const Fields& fields) {
    const Size target = ScaledSize(sample, ReadScale(fields));
    const bool refused = target.width < kSmallestSide || target.height < kSmallestSide;
    const Size shown = refused ? before.Extent() : ShownSize(target, sample, before.Extent());
    const int code = SizingCode(SizingTable::Scale, fields.Text(kSizing), before.Extent(), shown);
    auto after = Image::TryCreate(shown);
    if (!after || !imaging::ResizeImage(before, after->View(), imaging::FilterOfCode(code)))
        return {};
    return std::move(*after);
}

/// A change of pixels shows its sign.
std::string WithSign(const std::string& value) {
    return value.starts_with('-') ? value : "+" + value;
}

std::string ScalePanel(const Fields& fields) {
    const bool constrained = !fields.Is(kAspect, "0");
    std::string width = fields.Text(kWidth), height = fields.Text(kHeight);
    std::string text = constrained ? "Aspect ratio maintained\n" : "Size not constrained\n";
    if (fields.Is(kMethod, "1")) {
        text += "Method: Relative adjustment\n";
        width = WithSign(width);
        height = WithSign(height);
    } else if (fields.Is(kMethod, "2")) {
        text += "Method: Percentage\n";
    } else {
        text += fields.Is(kAspect, "1") ? "Method: Best fit\n" : "Method: Absolute size\n";
    }
    const bool follows = fields.Is(kAspect, "1");
    text += follows && fields.Is(kGivenSide, "1") ? "Width: auto set\n" : "Width: " + width + "\n";
    const bool heightGiven = fields.Is(kGivenSide, "1") || fields.Is(kGivenSide, "2");
    text += follows && !heightGiven ? "Height: auto set\n" : "Height: " + height + "\n";
    return text + "Sizing algorithm: " + std::string(SizingPanelName(fields.Text(kSizing))) + "\n";
}

std::int32_t WrappingSum(int a, int b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

/// Unsigned, 32 bits, truncating: part of the contract. Nothing is left of a side at less than 0
/// percent; wrapped around it would be longer than any picture.
std::int32_t Percent(int side, int percent) {
    if (percent < 0) return 0;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(side) *
                                     static_cast<std::uint32_t>(percent) / 100U);
}

}  // namespace

Size ScaledSize(Size current, const ScaleParams& params) {
    const int a = params.width, b = params.height;
    const double aspect = static_cast<double>(current.width) / current.height;
    const bool byHeight = params.keepAspect && params.given == GivenSide::Height;
    switch (params.method) {
        case ScaleMethod::Absolute: {
            if (!params.keepAspect) return {a, b};
            if (byHeight) return {Truncate(b * aspect), b};
            Size size{a, Truncate(a / aspect)};
            if (params.given == GivenSide::Both && b < size.height)
                size = {Truncate(b * aspect), b};
            return size;
        }
        case ScaleMethod::Relative: {
            const int dx = byHeight ? Truncate(b * aspect) : a;
            const int dy = params.keepAspect && !byHeight ? Truncate(a / aspect) : b;
            return {WrappingSum(current.width, dx), WrappingSum(current.height, dy)};
        }
        case ScaleMethod::Percentage:
            return {Percent(current.width, byHeight ? b : a),
                    Percent(current.height, params.keepAspect && !byHeight ? a : b)};
    }
    return current;
}

Size ShownSize(Size target, Size sample, Size shown) {
    // Of the frame; above 1 the whole is reduced.
    const double width = static_cast<double>(target.width) / sample.width;
    const double height = static_cast<double>(target.height) / sample.height;
    const double reduction = std::max({1.0, width, height});
    return {std::max(1, Truncate(shown.width * width / reduction)),
            std::max(1, Truncate(shown.height * height / reduction))};
}

const Command kScaleCommand{
    .spec = {.name = names::kScale, .fields = kFields, .panelText = ScalePanel, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunScale,
    .preview = PreviewScale};

}  // namespace lumo::ops::geometry

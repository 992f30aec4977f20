#include "ops/overlays/drop_shadow.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "imaging/blur_gaussian.h"
#include "imaging/compose.h"
#include "imaging/last_error.h"
#include "imaging/transparent_rect.h"
#include "ops/colour_fields.h"
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
using imaging::Rect;
using imaging::Rgb;
using imaging::Size;

enum Field { kRed, kGreen, kBlue, kSize, kBlur, kPosition, kSizing, kOpacity };

constexpr std::string_view kPositionNames[] = {"Bottom right", "Bottom left", "Top left",
                                               "Top right"};
constexpr std::string_view kPositionLines[] = {"Position: bottom right", "Position: bottom left",
                                               "Position: top left", "Position: top right"};
constexpr std::string_view kSizingNames[] = {"% of width", "Absolute pixels"};
constexpr std::string_view kSizingLines[] = {"Sizing shadow: % of width",
                                             "Sizing shadow: absolute pixels"};
constexpr std::array kFields{Red("Background color:", "192"),
                             Green("192"),
                             Blue("192"),
                             Integer("Size of shadow:", "10").Clamp(0, 10000),
                             Integer("Blur shadow %:", "50").Clamp(0, 100),
                             Choice("Position", "0", kPositionNames),
                             Choice("Sizing shadow", "1", kSizingNames),
                             Integer("Shadow opacity %:", "50").Clamp(0, 100)};
constexpr DialogSpec kDialog{
    .title = "Drop Shadow effect", .windowState = "WS29", .helpTopic = "Dropshadoweffect"};

/// The words of each corner; the empty ones are not reported.
struct FailureTexts {
    std::string_view fill, blur, overlay;
};
constexpr FailureTexts kTexts[] = {
    {"Cmd_29 DropTransparent L16160: ", "Cmd_29 DropGaussBlur L16164: ",
     "Cmd_29 DropOverlay L16169: "},
    {"", "Cmd_29 DropGauss L16182: ", "Cmd_29 DropOver L16187: "},
    {"", "Cmd_29 DropGaussian L16199: ", "Cmd_29 DropOverlay L16204: "},
    {"Cmd_29 DropFill L16143: ", "Cmd_29 DropGaussian L16147: ", "Cmd_29 DropOver L16152: "}};

struct ShadowParams {
    Rgb background;
    std::int64_t size = 0;  // pixels
    int blurPercent = 0;
    int corner = 0;
    double opacity = 0;
};

ShadowParams ReadShadow(const Fields& fields, int imageWidth) {
    ShadowParams params{ColourOf(fields, kRed), fields.Integer(kSize),
                        std::clamp(fields.Integer(kBlur), 0, 100), fields.Integer(kPosition),
                        std::clamp(fields.Integer(kOpacity), 0, 100) / 100.0};
    if (fields.Is(kSizing, "0")) params.size = params.size * imageWidth / 100;
    return params;
}

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    lines.Line("Background color: ", JoinColour(fields, kRed, ": "))
        .Line(kSizingLines[fields.Is(kSizing, "0") ? 0 : 1])
        .Line("Size of shadow: ", fields.Text(kSize));
    if (std::clamp(fields.Integer(kBlur), 0, 100) == 0)
        lines.Line("No blur of shadow.");
    else
        lines.Line("Blur shadow %: ", fields.Text(kBlur));
    const int corner = fields.Integer(kPosition);
    if (corner >= kBottomRight && corner <= kTopRight) lines.Line(kPositionLines[corner]);
    return lines.Line("Shadow opacity %: ", fields.Text(kOpacity)).Text();
}

bool FillAll(Image& canvas, Rgb colour) {
    return imaging::FillSolidRect(canvas.View(), {0, 0, canvas.Width(), canvas.Height()}, colour);
}

/// Shadow, blur and image on a canvas; `blurred` is empty without a blur. `report` takes the words
/// of a step that failed; the result is that of the last step.
template <typename Report>
bool DrawShadow(Image& canvas, Image& blurred, ConstImageView image, const ShadowLayout& layout,
                const ShadowParams& params, const Report& report) {
    const FailureTexts& texts = kTexts[params.corner];
    if (!imaging::FillTransparentRectOnImage(canvas.View(), layout.shadow, {0, 0, 0},
                                             params.opacity) &&
        !texts.fill.empty())
        report(texts.fill);
    if (!blurred.IsEmpty()) {
        const double deviation = ShadowDeviation(params.size, params.blurPercent);
        if (imaging::BlurGaussian(std::as_const(canvas).View(), blurred.View(), deviation))
            canvas = std::move(blurred);
        else
            report(texts.blur);  // the hard shadow stays
    }
    const bool laid = imaging::OverlayImage(canvas.View(), image, layout.imageX, layout.imageY);
    if (!laid) report(texts.overlay);
    return laid;
}

bool IsCorner(int corner) {
    return corner >= kBottomRight && corner <= kTopRight;
}

Outcome RunDropShadow(CLumoscriptView& view, const Fields& fields) {
    const ConstImageView image = std::as_const(view.working.main).View();
    const ShadowParams params = ReadShadow(fields, image.Width());
    if (params.size < 0) return Outcome::Failed;
    const auto report = [&](std::string_view text) {
        OnCommandFailure(view, text, LibraryError::Append);
    };
    const bool blurOn = params.blurPercent != 0;
    const auto layout = LayOutShadow(image.Extent(), params.size, blurOn, params.corner);
    if (!layout) imaging::SetLastError("no picture is that large");
    auto canvas = layout ? Image::TryCreate(layout->canvas) : std::nullopt;
    if (!canvas) {
        report("Cmd_29 Drop Shadow: memory failure");
        return Outcome::Failed;
    }
    Image blurred;
    if (blurOn) {
        auto second = Image::TryCreate(layout->canvas);
        if (!second) {
            report("Cmd_29 Drop: memory failure");
            return Outcome::Failed;
        }
        blurred = std::move(*second);
    }
    bool ok = FillAll(*canvas, params.background);
    if (!ok) report("Cmd_29 Drop L16130: ");
    if (IsCorner(params.corner)) ok = DrawShadow(*canvas, blurred, image, *layout, params, report);
    if (ok)
        ReplaceMainImage(view, std::move(*canvas));
    else
        view.working.main.Reset();
    SetFullColour(view);
    return ToOutcome(ok);
}

Image PreviewDropShadow(ConstImageView before, Size sample, const Fields& fields) {
    ShadowParams params = ReadShadow(fields, sample.width);
    constexpr std::int64_t kMost = 10000;
    params.size = PreviewLength(static_cast<int>(std::clamp<std::int64_t>(params.size, 0, kMost)),
                                before.Width(), sample.width, 0);
    const bool blurOn = params.blurPercent != 0;
    const auto layout = LayOutShadow(before.Extent(), params.size, blurOn, params.corner);
    auto canvas = layout ? Image::TryCreate(layout->canvas) : std::nullopt;
    auto second = layout ? Image::TryCreate(layout->canvas) : std::nullopt;
    if (!canvas || !second || !FillAll(*canvas, params.background)) return {};
    if (!blurOn) second->Reset();
    if (IsCorner(params.corner) &&
        !DrawShadow(*canvas, *second, before, *layout, params, [](std::string_view) {}))
        return {};
    return std::move(*canvas);
}

}  // namespace

std::optional<ShadowLayout> LayOutShadow(Size image, std::int64_t size, bool blurred, int corner) {
    const std::int64_t margin = blurred ? size / 2 : 0;
    const std::int64_t grown = size + margin;
    const std::int64_t most =
        std::numeric_limits<int>::max() - std::int64_t{std::max(image.width, image.height)};
    if (size < 0 || grown > most) return std::nullopt;
    const int s = static_cast<int>(size), e = static_cast<int>(margin), both = s + e;
    const bool right = corner == kBottomRight || corner == kTopRight;
    const bool bottom = corner == kBottomRight || corner == kBottomLeft;
    const int left = right ? s : e, top = bottom ? s : e;
    return ShadowLayout{{image.width + both, image.height + both},
                        {left, top, left + image.width, top + image.height},
                        right ? 0 : both,
                        bottom ? 0 : both};
}

double ShadowDeviation(std::int64_t size, int blurPercent) {
    const auto s = static_cast<double>(size);
    return (s * 0.24 + s * 0.24) * blurPercent / 100.0;
}

const Command kDropShadowCommand{.spec = {.name = names::kDropShadow,
                                          .fields = kFields,
                                          .panelText = PanelOf,
                                          .dialog = &kDialog},
                                 .opening = openings::kStandard,
                                 .run = RunDropShadow,
                                 .preview = PreviewDropShadow};

}  // namespace lumo::ops::overlays

#include "ops/geometry/canvas_size.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "imaging/compose.h"
#include "imaging/resample.h"
#include "ops/colour_fields.h"
#include "ops/geometry/geometry_commands.h"
#include "ops/geometry/preview.h"
#include "ops/geometry/target.h"
#include "ops/panel_lines.h"
#include "script/names.h"

namespace lumo::ops::geometry {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;

enum Field { kWidth, kHeight, kShrink, kCentred, kRed, kGreen, kBlue };

constexpr FieldSpec Side(std::string_view label) {
    return Integer(label, "100").Clamp(20, 32767);
}
constexpr std::array kFields{Side("Width"),
                             Side("Height"),
                             Flag("Resize to fit", "0"),
                             Flag("Centered", "1"),
                             Red("Canvas color", "0"),
                             Green("0"),
                             Blue("0")};
constexpr DialogSpec kDialog{
    .title = "Set canvas size", .windowState = "WS13", .helpTopic = "Canvas"};

struct CanvasParams {
    Size canvas;
    bool shrink = false;
    bool centred = false;
    Rgb colour;
};

CanvasParams ReadCanvas(const Fields& fields) {
    return {{fields.Integer(kWidth), fields.Integer(kHeight)},
            fields.Integer(kShrink) != 0,
            fields.Integer(kCentred) != 0,
            ColourOf(fields, kRed)};
}

std::string PanelOf(const Fields& fields) {
    const CanvasParams params = ReadCanvas(fields);
    return PanelLines()
        .Line("Width = ", fields.Text(kWidth))
        .Line("Height = ", fields.Text(kHeight))
        .Line(params.shrink ? "Resize image to fit" : "No resize image")
        .Line(params.centred ? "Image is centered" : "Image in upper left")
        .Line("Color(RGB) = ", JoinColour(fields, kRed, ": "))
        .Text();
}

struct Point {
    int x = 0, y = 0;
};

// Where a picture that fits lies on the canvas.
Point PlaceOn(const CanvasParams& params, Size picture) {
    if (!params.centred) return {};
    return {(params.canvas.width - picture.width) >> 1,
            (params.canvas.height - picture.height) >> 1};
}

bool ShrinkMainImage(CLumoscriptView& view, Size canvas) {
    const ConstImageView source = std::as_const(view.working.main).View();
    const auto [width, height] = ShrunkToFit(canvas, source.Extent());
    auto target = CreateTarget(view, width, height, "Cmd_13 Canvas: memory failure");
    if (!target) return false;
    if (!imaging::ResizeImage(source, target->View(), imaging::FilterOfCode(14))) {
        OnCommandFailure(view, "Cmd_13 Canvas L5767: ", LibraryError::Append);
        Clear(target->View());
    }
    ReplaceMainImage(view, std::move(*target));  // taken over even if the resampling failed
    return true;
}

Outcome RunCanvasSize(CLumoscriptView& view, const Fields& fields) {
    const CanvasParams params = ReadCanvas(fields);
    if (!FitsOn(params.canvas, view.working.main.Extent())) {
        if (!params.shrink) return Outcome::Succeeded;  // not applied rather than clipped
        if (!ShrinkMainImage(view, params.canvas)) return Outcome::Failed;
    }
    const ConstImageView source = std::as_const(view.working.main).View();
    auto target =
        CreateTarget(view, params.canvas.width, params.canvas.height, "Canvas: memory failure");
    if (!target) return Outcome::Failed;
    const Point place = PlaceOn(params, source.Extent());
    const PlaceFailures failures =
        params.centred ? PlaceFailures{"Cmd_13 CanvasFill L5807: ", "Cmd_13 CanvasOver L5809: "}
                       : PlaceFailures{"Cmd_13 CanvasFill L5794: ", "Cmd_13 CanvasOver L5796: "};
    const bool ok =
        PlaceOnTarget(view, source, place.x, place.y, params.colour, target->View(), failures);
    ReplaceMainImage(view, std::move(*target));
    SetFullColour(view);
    return ToOutcome(ok);
}

// The canvas is drawn at the scale of the preview, or smaller where it would be more than twice as
// large as the picture shown.
Image PreviewCanvasSize(ConstImageView before, Size sample, const Fields& fields) {
    CanvasParams params = ReadCanvas(fields);
    std::int64_t width = sample.width, height = sample.height;
    const bool fits = FitsOn(params.canvas, sample);
    if (sample.IsEmpty() || params.canvas.IsEmpty() || (!fits && !params.shrink))
        return OrUnchanged(std::nullopt, before);
    if (!fits) std::tie(width, height) = ShrunkToFit(params.canvas, sample);

    const double scale = std::min({static_cast<double>(before.Width()) / sample.width,
                                   2.0 * before.Width() / params.canvas.width,
                                   2.0 * before.Height() / params.canvas.height});
    const auto shown = [&](std::int64_t side, int most) {
        return std::clamp(static_cast<int>(std::lround(static_cast<double>(side) * scale)), 1,
                          most);
    };
    constexpr int kMost = 16384;
    params.canvas = {shown(params.canvas.width, kMost), shown(params.canvas.height, kMost)};
    const Size picture{shown(width, params.canvas.width), shown(height, params.canvas.height)};

    auto reduced = Image::TryCreate(picture);
    auto after = TryCanvas(params.canvas.width, params.canvas.height, params.colour);
    const Point place = PlaceOn(params, picture);
    const bool ok = reduced && after &&
                    imaging::ResizeImage(before, reduced->View(), imaging::FilterOfCode(14)) &&
                    imaging::OverlayImage(after->View(), reduced->View(), place.x, place.y);
    return OrUnchanged(ok ? std::move(after) : std::nullopt, before);
}

}  // namespace

std::pair<std::int64_t, std::int64_t> ShrunkToFit(Size canvas, Size picture) {
    const double width = picture.width, height = picture.height;
    const auto truncate = [](double value) { return static_cast<std::int64_t>(value); };
    const std::int64_t widthAtFullHeight = truncate(width / height * canvas.height);
    if (canvas.width >= picture.width) return {widthAtFullHeight, canvas.height};
    const std::int64_t heightAtFullWidth = truncate(height / width * canvas.width);
    if (heightAtFullWidth > canvas.height) return {widthAtFullHeight, canvas.height};
    return {canvas.width, heightAtFullWidth};
}

const Command kCanvasSizeCommand{.spec = {.name = names::kCanvasSize,
                                          .fields = kFields,
                                          .panelText = PanelOf,
                                          .dialog = &kDialog},
                                 .opening = openings::kStandard,
                                 .run = RunCanvasSize,
                                 .preview = PreviewCanvasSize};

}  // namespace lumo::ops::geometry

// "New (canvas)": a canvas of one colour in place of the picture.

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

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
using imaging::Size;

enum Field { kWidth, kHeight, kUseImageSize, kRed, kGreen, kBlue };

constexpr std::array kFields{Integer("Width", "640").Clamp(20, 32767),
                             Integer("Height", "480").Clamp(20, 32767),
                             Flag("Use image size", "0"),
                             Red("Canvas color", "0"),
                             Green("0"),
                             Blue("0")};
constexpr DialogSpec kDialog{.title = "New (canvas)   Replace current image with canvas",
                             .helpTopic = "Newcanvas"};

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    if (fields.Integer(kUseImageSize) == 0)
        lines.Line("Fixed canvas size")
            .Line("Width = ", fields.Text(kWidth))
            .Line("Height = ", fields.Text(kHeight));
    else
        lines.Line("Set canvas to current").Line("image size");
    return lines.Line("Color(RGB) = ", JoinColour(fields, kRed, ": ")).Text();
}

Size CanvasFor(const Fields& fields, Size image) {
    if (fields.Integer(kUseImageSize) == 1) return image;
    return {fields.Integer(kWidth), fields.Integer(kHeight)};
}

// Without a picture to take the size from, a canvas of 0 by 0 is asked for, which cannot be had.
Outcome RunNewCanvas(CLumoscriptView& view, const Fields& fields) {
    const Size size = CanvasFor(fields, view.working.main.Extent());
    auto target = CreateTarget(view, size.width, size.height, "Cmd_61 NewCanvas: memory failure");
    if (!target) return Outcome::Failed;
    FillTarget(view, target->View(), ColourOf(fields, kRed), "Cmd_61 New CanvasFill L5799: ");
    ReplaceMainImage(view, std::move(*target));
    SetFullColour(view);
    return Outcome::Succeeded;
}

// A canvas of one colour, as large as fits into twice the picture shown.
Image PreviewNewCanvas(ConstImageView before, Size sample, const Fields& fields) {
    const Size size = CanvasFor(fields, sample);
    if (sample.IsEmpty() || size.IsEmpty()) return OrUnchanged(std::nullopt, before);
    const double scale =
        std::min({static_cast<double>(before.Width()) / sample.width,
                  2.0 * before.Width() / size.width, 2.0 * before.Height() / size.height});
    const auto shown = [&](int side) { return std::max(1L, std::lround(side * scale)); };
    return OrUnchanged(TryCanvas(shown(size.width), shown(size.height), ColourOf(fields, kRed)),
                       before);
}

}  // namespace

const Command kNewCanvasCommand{.spec = {.name = names::kNewCanvas,
                                         .fields = kFields,
                                         .panelText = PanelOf,
                                         .dialog = &kDialog},
                                .opening = openings::kNoImage,
                                .run = RunNewCanvas,
                                .preview = PreviewNewCanvas};

}  // namespace lumo::ops::geometry

#include <array>
#include <string>
#include <tuple>
#include <utility>

#include "imaging/colour_key.h"
#include "imaging/resample.h"
#include "io/input.h"
#include "io/second_picture.h"
#include "ops/colour_fields.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/overlays/second_fields.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ColourKey;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::ResampleFilter;
using imaging::Size;

enum Field { kRed, kGreen, kBlue, kPath, kUseCentre, kTolerance };

constexpr std::array kFields{Red("Transparent color", "255"),
                             Green("255"),
                             Blue("255"),
                             SecondPicture("Frame image:", "<INSTALL_FOLDER>\\Frames\\frame.bmp"),
                             Flag("Use frame center", "0"),
                             Integer("Tolerance", "0").Clamp(0, 100).Unit("%")};
constexpr DialogSpec kDialog{
    .title = "Frame - Place frame on image", .windowState = "WS39", .helpTopic = "Frameoverlay"};

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    if (fields.Is(kUseCentre, "1"))
        lines.Line("Use frame center");
    else
        lines.Line("Transparent color: ", JoinColour(fields, kRed, ": "));
    return lines.Line("Tolerance %: ", fields.Text(kTolerance))
        .Line("Frame image:")
        .Line(PanelPath(fields.Text(kPath)))
        .Text();
}

// `frame` has the size of the picture. A tolerance of 0 leaves out the exact colour alone.
ColourKey KeyOf(ConstImageView frame, const Fields& fields) {
    const imaging::Rgb colour = fields.Is(kUseCentre, "1")
                                    ? frame.Pixel(frame.Width() / 2, frame.Height() / 2)
                                    : ColourOf(fields, kRed);
    return imaging::KeyWithin(colour, fields.Integer(kTolerance));
}

Outcome Report(CLumoscriptView& view, std::string_view text) {
    OnCommandFailure(view, text, LibraryError::Append);
    return Outcome::Failed;
}

Outcome RunFrame(CLumoscriptView& view, const Fields& fields) {
    const std::string path = io::NativePath(view, fields.Text(kPath));
    const auto opened = io::OpenSecondPicture(view, path);
    if (!opened) return Report(view, "Unable to find or open:" + path + " - ");
    const ImageView image = view.working.main.View();
    auto frame = Image::TryCreate(image.Extent());
    if (!frame) return Report(view, "Cmd_39 Frame L16726: memory failure");
    if (!imaging::ResizeImage(opened->View(), frame->View(), ResampleFilter::Nearest))
        return Report(view, "Cmd_39 Frame L16738: ISource resize failure: ");
    const ConstImageView stretched = std::as_const(*frame).View();
    if (!imaging::OverlayRGBTrans(image, stretched, KeyOf(stretched, fields)))
        return Report(view, "Cmd_39 Frame L16757: Overlay failure: ");
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewFrame(ConstImageView before, Size, ConstImageView second, const Fields& fields) {
    auto frame = Resized(second, before.Extent(), ResampleFilter::Nearest);
    return PreviewOn(before, [&](ImageView after) {
        if (!frame) return;
        const ConstImageView stretched = std::as_const(*frame).View();
        // Sizes agree, so it cannot fail.
        std::ignore = imaging::OverlayRGBTrans(after, stretched, KeyOf(stretched, fields));
    });
}

}  // namespace

const Command kFrameOverlayCommand{.spec = {.name = names::kFrameOverlay,
                                            .fields = kFields,
                                            .panelText = PanelOf,
                                            .dialog = &kDialog},
                                   .opening = openings::kStandard,
                                   .run = RunFrame,
                                   .secondField = kPath,
                                   .overlayPreview = PreviewFrame};

}  // namespace lumo::ops::overlays

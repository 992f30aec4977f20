#include <array>
#include <utility>

#include "imaging/resample.h"
#include "io/input.h"
#include "io/second_picture.h"
#include "ops/overlays/blend_kernel.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/overlays/second_fields.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/decimal_text.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::ResampleFilter;
using imaging::Size;

enum Field { kMethod, kOffset, kOpacity, kScale, kInvert, kPath };

constexpr std::array kFields{Choice("Blend method:", "Normal", kBlendNames, kBlendNames),
                             Integer("Offset", "0").Clamp(-255, 255),
                             Integer("Opacity", "100").Clamp(0, 100).Unit("%"),
                             Real("Scale", "1").Clamp(1.0, 999.0),
                             Flag("Invert source image", "0"),
                             SecondPicture("Source image:", "<INSTALL_FOLDER>\\Masks\\Mask-1.bmp")};
constexpr DialogSpec kDialog{
    .title = "Blend target and source images", .windowState = "WS07", .helpTopic = "Blend"};

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    lines.Line("Blend method: ", fields.Text(kMethod))
        .Line("Offset: ", fields.Text(kOffset))
        .Line("Opacity %: ", fields.Text(kOpacity))
        .Line("Scale: ", fields.Text(kScale));
    if (fields.Is(kInvert, "1")) lines.Line("Source image inverted");
    return lines.Line("Source image:").Line(PanelPath(fields.Text(kPath))).Text();
}

BlendParams ReadBlend(const Fields& fields) {
    return {BlendMethodOf(fields.Text(kMethod)), fields.Integer(kOffset), fields.Integer(kOpacity),
            ParseDecimalText(fields.Text(kScale)), fields.Is(kInvert, "1")};
}

// The library's five methods cannot fail: their success takes the place of an earlier failure.
bool IsLibraryMethod(BlendMethod method) {
    return method >= BlendMethod::SoftDodge;
}

Outcome RunBlend(CLumoscriptView& view, const Fields& fields) {
    const std::string path = io::NativePath(view, fields.Text(kPath));
    const auto opened = io::OpenSecondPicture(view, path);
    if (!opened) {
        OnCommandFailure(view, "Unable to find or open:" + path + " - ", LibraryError::Append);
        return Outcome::Failed;
    }
    const ImageView image = view.working.main.View();
    const BlendParams params = ReadBlend(fields);
    bool ok = true;
    Image& fitted = view.sample.blendSource;
    fitted.Reset();
    if (opened->Extent() != image.Extent()) {
        auto target = Image::TryCreate(image.Extent());
        if (!target) {
            OnCommandFailure(view, "Cmd_07 Blend images: memory failure", LibraryError::Append);
            return Outcome::Failed;
        }
        fitted = std::move(*target);
        ok = imaging::ResizeImage(opened->View(), fitted.View(), ResampleFilter::Bicubic);
        if (!ok) {
            OnCommandFailure(view, "Cmd_07 Blend L13115: ", LibraryError::Append);
            Clear(fitted.View());
        }
    }
    BlendImages(image, fitted ? std::as_const(fitted).View() : opened->View(), params);
    fitted.Reset();
    SetFullColour(view);
    ok = ok || IsLibraryMethod(params.method);
    if (!ok) OnCommandFailure(view, "Cmd_07 Blend L16178: ", LibraryError::Append);
    return ToOutcome(ok);
}

Image PreviewBlend(ConstImageView before, Size, ConstImageView second, const Fields& fields) {
    auto fitted = Resized(second, before.Extent(), ResampleFilter::Bilinear);
    return PreviewOn(before, [&](ImageView after) {
        if (fitted) BlendImages(after, std::as_const(*fitted).View(), ReadBlend(fields));
    });
}

}  // namespace

const Command kBlendImagesCommand{.spec = {.name = names::kBlendImages,
                                           .fields = kFields,
                                           .panelText = PanelOf,
                                           .dialog = &kDialog},
                                  .opening = openings::kStandard,
                                  .run = RunBlend,
                                  .secondField = kPath,
                                  .overlayPreview = PreviewBlend};

}  // namespace lumo::ops::overlays

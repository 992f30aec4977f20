#include "ops/colour/bw_dither.h"

#include <array>
#include <string>

#include "imaging/tone.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/dither_kernels.h"
#include "ops/handler_steps.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::PixelBuffer,
    imaging::Size;

enum Field { kContrast };

constexpr std::array kFields{
    script::Integer("Less  -- contrast --  More", "0").Clamp(0, 100).Unit("%")};
constexpr std::string_view kNotes[] = {"1 bit black and white using dithered error diffusion ",
                                       "More  -- shadow --  Less"};
constexpr DialogSpec kDialog{.title = "Convert to black and white (1bit dithered)",
                             .windowState = "WS16",
                             .helpTopic = "ConvertBWdither",
                             .notes = kNotes};

std::string PanelText(const Fields& fields) {
    return "Lessen shadow, more contrast:\n" + fields.Text(kContrast) + " %\n";
}

bool RaiseContrast(ImageView image, const Fields& fields) {
    return imaging::AdjustBrightnessContrast(image, 0.0, fields.Integer(kContrast) / 100.0);
}

Outcome RunBwDither(CLumoscriptView& view, const Fields& fields) {
    const ImageView image = view.working.main.View();
    // First of all, so that a failure finds the picture as it was.
    const PixelBuffer errors = TryAllocateErrors(image.Width());
    if (!errors) return FailWith(view, "Cmd_16 Dither: memory failure");
    // Without its contrast the picture is dithered all the same.
    const Outcome outcome =
        ReportIfFailed(view, RaiseContrast(image, fields), "Cmd_16 Dither L20200: ");
    DitherImage(image, errors);
    SetGreyDepth(view, 1);
    return outcome;
}

Image PreviewBwDither(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) {
        (void)RaiseContrast(after, fields);
        (void)DitherImage(after);
    });
}

}  // namespace

PixelBuffer TryAllocateErrors(int width) {
    return PixelBuffer::TryAllocate(kernels::DitherScratch(static_cast<std::size_t>(width)) *
                                    sizeof(double));
}

void DitherImage(ImageView image, const PixelBuffer& errors) {
    if (image.IsEmpty()) return;
    kernels::Dither(image.Row(0), static_cast<std::size_t>(image.Width()),
                    static_cast<std::size_t>(image.Height()),
                    reinterpret_cast<double*>(errors.Data()));
}

bool DitherImage(ImageView image) {
    const PixelBuffer errors = TryAllocateErrors(image.Width());
    if (errors) DitherImage(image, errors);
    return static_cast<bool>(errors);
}

const Command kConvertBwDitherCommand{.spec = {.name = names::kConvertBwDither,
                                               .fields = kFields,
                                               .panelText = PanelText,
                                               .dialog = &kDialog},
                                      .opening = openings::kStandard,
                                      .run = RunBwDither,
                                      .preview = PreviewBwDither};

}  // namespace lumo::ops::colour

#include "ops/colour/bw_dither.h"

#include <array>
#include <string>

#include "imaging/tone.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/dither_kernels.h"
#include "ops/colour/support.h"
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
    const bool ok = RaiseContrast(image, fields);
    if (!ok) OnCommandFailure(view, "Cmd_16 Dither L20200: ", LibraryError::Append);
    if (!DitherImage(image)) {
        OnCommandFailure(view, "Cmd_16 Dither: memory failure", LibraryError::Append);
        return Outcome::Failed;
    }
    SetGreyDepth(view, 1);
    return ToOutcome(ok);
}

Image PreviewBwDither(ConstImageView before, Size, const Fields& fields) {
    return PreviewOf(before, [&](ImageView after) {
        (void)RaiseContrast(after, fields);
        (void)DitherImage(after);
    });
}

}  // namespace

bool DitherImage(ImageView image) {
    if (image.IsEmpty()) return true;
    const auto width = static_cast<std::size_t>(image.Width());
    const PixelBuffer memory =
        PixelBuffer::TryAllocate(kernels::DitherScratch(width) * sizeof(double));
    if (!memory) return false;
    kernels::Dither(image.Row(0), width, static_cast<std::size_t>(image.Height()),
                    reinterpret_cast<double*>(memory.Data()));
    return true;
}

const Command kConvertBwDitherCommand{.spec = {.name = names::kConvertBwDither,
                                               .fields = kFields,
                                               .panelText = PanelText,
                                               .dialog = &kDialog},
                                      .opening = openings::kStandard,
                                      .run = RunBwDither,
                                      .preview = PreviewBwDither};

}  // namespace lumo::ops::colour

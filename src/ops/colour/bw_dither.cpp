#include "ops/colour/bw_dither.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "imaging/tone.h"
#include "ops/colour/colour_commands.h"
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

/// Two rows of errors, with one place more at either end for the neighbours beyond the edges.
struct ErrorRows {
    double* current;
    double* next;
};

void DitherRow(std::uint8_t* p, std::size_t width, ErrorRows rows) {
    for (std::size_t i = 1; i <= width; ++i, p += 3) {
        double v = 0.114 * p[2] + 0.587 * p[1] + 0.299 * p[0] + rows.current[i];
        const bool white = v >= 255.0;
        if (white) v -= 255.0;
        rows.current[i + 1] += v * 7.0 / 16.0;
        rows.next[i - 1] += v * 3.0 / 16.0;
        rows.next[i] += v * 5.0 / 16.0;
        rows.next[i + 1] += v / 16.0;
        p[0] = p[1] = p[2] = white ? 255 : 0;
    }
}

}  // namespace

bool DitherImage(ImageView image) {
    const auto width = static_cast<std::size_t>(image.Width());
    const std::size_t count = width + 2;
    const PixelBuffer memory = PixelBuffer::TryAllocate(2 * count * sizeof(double));
    if (!memory) return false;
    ErrorRows rows{reinterpret_cast<double*>(memory.Data()),
                   reinterpret_cast<double*>(memory.Data()) + count};
    std::fill_n(rows.next, count, 0.0);
    for (int y = 0; y < image.Height(); ++y) {
        std::swap(rows.current, rows.next);
        std::fill_n(rows.next, count, 0.0);
        DitherRow(image.Row(y), width, rows);
    }
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

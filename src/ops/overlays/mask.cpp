#include "ops/overlays/mask.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "imaging/colour.h"
#include "imaging/pixel_runs.h"
#include "imaging/resample.h"
#include "imaging/simd.h"
#include "io/input.h"
#include "io/second_picture.h"
#include "ops/colour_fields.h"
#include "ops/overlays/mix.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/overlays/second_fields.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::kChannels;
using imaging::PixelBuffer;
using imaging::ResampleFilter;
using imaging::Size;

enum Field { kRed, kGreen, kBlue, kPath, kTransparent, kInvert };

// The panel's words run the other way round; that is how users know them.
constexpr std::string_view kEdgeNames[] = {"Hard edge", "Fade"};
constexpr std::string_view kEdgeLines[] = {"Blend transparent", "Overlay opaque"};
constexpr std::array kFields{Red("Mask color", "0"),
                             Green("0"),
                             Blue("0"),
                             SecondPicture("Edge mask:", "<INSTALL_FOLDER>\\Masks\\Mask-1.bmp"),
                             Choice("Transparent", "1", kEdgeNames),
                             Flag("Invert", "0")};
constexpr DialogSpec kDialog{.title = "Apply a mask overlay  (single color)",
                             .windowState = "WS55",
                             .helpTopic = "Maskoverlay"};

MaskParams ReadMask(const Fields& fields) {
    return {ColourOf(fields, kRed), fields.Is(kTransparent, "0"), !fields.Is(kInvert, "0")};
}

std::string PanelOf(const Fields& fields) {
    const MaskParams params = ReadMask(fields);
    PanelLines lines;
    lines.Line("Mask color: ", JoinColour(fields, kRed, ": "))
        .Line(kEdgeLines[params.hardEdge ? 0 : 1]);
    if (params.invert) lines.Line("Mask values inverted");
    return lines.Line("Edge mask:").Line(PanelPath(fields.Text(kPath))).Text();
}

Outcome RunMask(CLumoscriptView& view, const Fields& fields) {
    const auto report = [&](std::string_view text) {
        OnCommandFailure(view, text, LibraryError::Append);
        return Outcome::Failed;
    };
    const auto opened = io::OpenSecondPicture(view, io::NativePath(view, fields.Text(kPath)));
    if (!opened) return report("Cmd_55 Edge fade - open image file failure");
    const ImageView image = view.working.main.View();
    auto stretched = Image::TryCreate(image.Extent());
    if (!stretched) return report("Cmd_55 Edge fade: memory failure!");
    if (!imaging::ResizeImage(opened->View(), stretched->View(), ResampleFilter::Nearest)) {
        report("Cmd_55 Edge Fade L15147: ");
        Clear(stretched->View());
    }
    const std::size_t pixels = image.Extent().Area();
    const PixelBuffer grey = PixelBuffer::TryAllocate(pixels);
    if (!grey) return report("Cmd_55 Edge fade-2: memory failure");
    if (!imaging::ImageToGrayScale8Bit(std::as_const(*stretched).View(), {grey.Data(), pixels})) {
        report("Cmd_55 EdgeFade L15170: ");
        std::memset(grey.Data(), 0, pixels);
    }
    stretched->Reset();
    ApplyMask(image, grey.Data(), ReadMask(fields));
    return Outcome::Succeeded;
}

Image PreviewMask(ConstImageView before, Size, ConstImageView second, const Fields& fields) {
    const auto mask = Resized(second, before.Extent(), ResampleFilter::Nearest);
    const std::size_t pixels = before.Extent().Area();
    const PixelBuffer grey = PixelBuffer::TryAllocate(pixels);
    return PreviewOn(before, [&](ImageView after) {
        if (mask && grey && imaging::ImageToGrayScale8Bit(mask->View(), {grey.Data(), pixels}))
            ApplyMask(after, grey.Data(), ReadMask(fields));
    });
}

constexpr std::size_t kPart = 1024;  // pixels whose mask is spread at once

using Byte = std::uint8_t;

LUMO_SIMD_CLONES void Spread(const Byte* grey, std::size_t count, Byte flip, Byte* mask) {
    for (std::size_t i = 0; i < count; ++i) {
        const Byte value = grey[i] ^ flip;
        mask[3 * i] = value;
        mask[3 * i + 1] = value;
        mask[3 * i + 2] = value;
    }
}

LUMO_SIMD_CLONES void Fade(Byte* image, const Byte* mask, const Byte* colour, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
        const auto shown = static_cast<std::uint16_t>(image[i] * mask[i]);
        const auto hidden = static_cast<std::uint16_t>(colour[i] * (255 - mask[i]));
        image[i] = static_cast<Byte>(By255(static_cast<std::uint16_t>(shown + hidden)));
    }
}

LUMO_SIMD_CLONES void Cut(Byte* image, const Byte* mask, const Byte* colour, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) image[i] = mask[i] == 255 ? image[i] : colour[i];
}

}  // namespace

void ApplyMask(ImageView image, const Byte* grey, const MaskParams& params) {
    std::array<Byte, kPart * kChannels> colour;
    for (std::size_t i = 0; i < colour.size(); i += kChannels) {
        colour[i] = params.colour.red;
        colour[i + 1] = params.colour.green;
        colour[i + 2] = params.colour.blue;
    }
    imaging::ForPixelRuns(image, [&](Byte* pixels, std::size_t count) {
        std::array<Byte, kPart * kChannels> mask;
        const Byte* value = grey + (pixels - image.Row(0)) / kChannels;
        for (; count > 0;) {
            const std::size_t part = std::min(count, kPart), bytes = part * kChannels;
            Spread(value, part, params.invert ? 255 : 0, mask.data());
            (params.hardEdge ? Cut : Fade)(pixels, mask.data(), colour.data(), bytes);
            pixels += bytes;
            value += part;
            count -= part;
        }
    });
}

const Command kMaskOverlayCommand{.spec = {.name = names::kMaskOverlay,
                                           .fields = kFields,
                                           .panelText = PanelOf,
                                           .dialog = &kDialog},
                                  .opening = openings::kStandard,
                                  .run = RunMask,
                                  .secondField = kPath,
                                  .overlayPreview = PreviewMask};

}  // namespace lumo::ops::overlays

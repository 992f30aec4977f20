#include "ops/overlays/watermark.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "imaging/colour_key.h"
#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/resample.h"
#include "imaging/resize_masked.h"
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
using imaging::Rgb;
using imaging::Size;

enum Field {
    kX,
    kY,
    kSize,
    kOpacity,
    kUseKey,
    kRed,
    kGreen,
    kBlue,
    kTolerance,
    kPath,
    kPositioning,
    kEnlarging
};

constexpr std::string_view kPositioningNames[] = {"Relative (%)", "Absolute(pixels)"};
constexpr std::string_view kEnlargingNames[] = {"No enlarging overlay", "Allow enlarging"};

constexpr FieldSpec Position(std::string_view label) {
    return Integer(label, "10").Clamp(0, 100).ClampWhen(kPositioning, "1", 0, 65500);
}
constexpr std::array kFields{
    Position("X position"),
    Position("Y position"),
    Integer("Size", "20").Clamp(0, 100).Unit("%"),
    Integer("Opacity", "100").Clamp(0, 100).Unit("%"),
    Flag("Use transparent color", "1"),
    Red("Transparent color", "0"),
    Green("0"),
    Blue("255"),
    Integer("Tolerance", "10").Clamp(0, 100).Unit("%"),
    SecondPicture("Overlay image:", "<INSTALL_FOLDER>\\Overlays\\HalcyraWorks.bmp"),
    Choice("Positioning", "0", kPositioningNames),
    Choice("Enlarging", "0", kEnlargingNames)};
constexpr DialogSpec kDialog{.title = "Watermark - image overlay",
                             .windowState = "WS90",
                             .helpTopic = "Watermarkimageoverlay"};

// Scripts that were stored before the last two fields came are relative and do not enlarge.
bool IsZero(const Fields& fields, int field) {
    return fields.IsEmpty(field) || fields.Is(field, "0");
}

WatermarkParams ReadWatermark(const Fields& fields) {
    return {.x = fields.Integer(kX),
            .y = fields.Integer(kY),
            .sizePercent = fields.Integer(kSize),
            .opacity = fields.Integer(kOpacity),
            .useKey = fields.Is(kUseKey, "1"),
            .key = ColourOf(fields, kRed),
            .tolerance = fields.Integer(kTolerance),
            .absolute = !IsZero(fields, kPositioning),
            .enlarge = !IsZero(fields, kEnlarging)};
}

std::string PanelOf(const Fields& fields) {
    const WatermarkParams params = ReadWatermark(fields);
    PanelLines lines;
    lines.Line(kPositioningNames[params.absolute ? 1 : 0])
        .Line("X = ", fields.Text(kX))
        .Line("Y = ", fields.Text(kY));
    if (!params.absolute)
        lines.Line("Size %: ", fields.Text(kSize)).Line(kEnlargingNames[params.enlarge ? 1 : 0]);
    lines.Line("Opacity %: ", fields.Text(kOpacity));
    if (params.useKey)
        lines.Line("Transparent color: ", JoinColour(fields, kRed, ": "))
            .Line("Tolerance %: ", fields.Text(kTolerance));
    return lines.Line("Overlay image:").Line(PanelPath(fields.Text(kPath))).Text();
}

Outcome RunWatermark(CLumoscriptView& view, const Fields& fields) {
    const std::string path = io::NativePath(view, fields.Text(kPath));
    const auto opened = io::OpenSecondPicture(view, path);
    if (!opened) {
        OnCommandFailure(view, "Cmd_90 Unable to find or open:" + path, LibraryError::Append);
        return Outcome::Failed;
    }
    return LayWatermark(view, opened->View(), ReadWatermark(fields));
}

enum class Resizing { Done, Failed, NoMemory };

bool Resize(ConstImageView source, ImageView target, const WatermarkParams& params) {
    return params.useKey ? imaging::ResizeImageMasked(source, target, params.key)
                         : imaging::ResizeImage(source, target, imaging::ResampleFilter::Bicubic);
}

// The overlay at the size of its place. An empty one at either end is a failure without pixels.
Resizing ResizeToPlace(ConstImageView source, const WatermarkPlace& place,
                       const WatermarkParams& params, Image& target) {
    if (source.IsEmpty() || place.width <= 0 || place.height <= 0) {
        imaging::SetLastError("a picture needs a positive width and height");
        return Resizing::Failed;
    }
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    if (place.width > kMost || place.height > kMost) {
        imaging::SetLastError("no picture is that large");
        return Resizing::NoMemory;
    }
    auto resized =
        Image::TryCreate({static_cast<int>(place.width), static_cast<int>(place.height)});
    if (!resized) return Resizing::NoMemory;
    target = std::move(*resized);
    if (Resize(source, target.View(), params)) return Resizing::Done;
    Clear(target.View());
    return Resizing::Failed;
}

Image PreviewWatermark(ConstImageView before, Size sample, ConstImageView second,
                       const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) {
        if (second.IsEmpty() || sample.IsEmpty()) return;
        const WatermarkParams params = ReadWatermark(fields);
        WatermarkPlace place = PlaceWatermark(sample, second.Extent(), params);
        place = {place.x * before.Width() / sample.width, place.y * before.Height() / sample.height,
                 place.width * before.Width() / sample.width,
                 place.height * before.Height() / sample.height};
        // Beyond this an overlay covers any preview many times.
        constexpr std::int64_t kMost = 20000;
        if (place.width > kMost || place.height > kMost) return;
        auto snapped = Image::TryCopy(second);
        if (!snapped) return;
        if (params.useKey)
            imaging::SnapToKey(snapped->View(), imaging::KeyWithin(params.key, params.tolerance));
        Image resized;
        if (ResizeToPlace(std::as_const(*snapped).View(), place, params, resized) == Resizing::Done)
            CompositeWatermark(after, std::as_const(resized).View(), place.x, place.y,
                               params.opacity, params.useKey ? &params.key : nullptr);
    });
}

// Pixels that are mixed at once.
constexpr std::size_t kPart = 512;

void CompositeRow(std::uint8_t* image, const std::uint8_t* overlay, std::size_t count,
                  int imagePercent, const Rgb* key) {
    std::array<std::uint8_t, kPart * kChannels> mixed, mask;
    for (; count > 0;) {
        const std::size_t part = std::min(count, kPart), bytes = part * kChannels;
        if (key == nullptr) {
            MixDividedApart(image, overlay, bytes, imagePercent);
        } else {
            std::memcpy(mixed.data(), image, bytes);
            MixDividedApart(mixed.data(), overlay, bytes, imagePercent);
            imaging::MaskKey(overlay, part, {*key}, mask.data());
            imaging::CopyUnmasked(mixed.data(), mask.data(), bytes, image);
        }
        image += bytes;
        overlay += bytes;
        count -= part;
    }
}

}  // namespace

WatermarkPlace PlaceWatermark(Size image, Size overlay, const WatermarkParams& params) {
    if (params.absolute) return {params.x, params.y, overlay.width, overlay.height};
    WatermarkPlace place{std::int64_t{params.x} * image.width / 100,
                         std::int64_t{params.y} * image.height / 100,
                         std::int64_t{params.sizePercent} * image.width / 100, 0};
    if (overlay.IsEmpty()) return {place.x, place.y, 0, 0};
    place.height = place.width * overlay.height / overlay.width;
    const auto keepFileSize = [&] {
        place.width = overlay.width;
        place.height = overlay.height;
    };
    if (!params.enlarge && overlay.width < place.width) keepFileSize();
    if (!params.enlarge && overlay.height < place.height) keepFileSize();
    return place;
}

void CompositeWatermark(ImageView image, ConstImageView overlay, std::int64_t x, std::int64_t y,
                        int opacity, const Rgb* key) {
    const std::int64_t left = std::max<std::int64_t>(x, 0), top = std::max<std::int64_t>(y, 0);
    const std::int64_t right = std::min<std::int64_t>(x + overlay.Width(), image.Width());
    const std::int64_t bottom = std::min<std::int64_t>(y + overlay.Height(), image.Height());
    if (left >= right || top >= bottom) return;
    const auto count = static_cast<std::size_t>(right - left);
    const auto imagePercent = static_cast<int>(100U - static_cast<unsigned>(opacity));
    imaging::ForRows(static_cast<int>(bottom - top), count * kChannels, [&](int first, int last) {
        for (int i = first; i < last; ++i) {
            const std::int64_t row = top + i;
            CompositeRow(image.At(static_cast<int>(left), static_cast<int>(row)),
                         overlay.At(static_cast<int>(left - x), static_cast<int>(row - y)), count,
                         imagePercent, key);
        }
    });
}

Outcome LayWatermark(CLumoscriptView& view, ConstImageView opened, const WatermarkParams& params) {
    const ImageView image = view.working.main.View();
    if (opened.IsEmpty())
        OnCommandFailure(view, "Cmd_90 Watermark overlay: Nothing in image or corrupt file!",
                         LibraryError::Omit);
    const WatermarkPlace place = PlaceWatermark(image.Extent(), opened.Extent(), params);
    // The opened picture may be kept for the next image; only a copy is snapped.
    std::optional<Image> snapped;
    ConstImageView overlay = opened;
    const auto failForMemory = [&] {
        OnCommandFailure(view, "Cmd_90 Watermark: memory failure", LibraryError::Append);
        return Outcome::Failed;
    };
    if (params.useKey && !opened.IsEmpty()) {
        snapped = Image::TryCopy(opened);
        if (!snapped) return failForMemory();
        imaging::SnapToKey(snapped->View(), imaging::KeyWithin(params.key, params.tolerance));
        overlay = std::as_const(*snapped).View();
    }
    bool ok = true;
    Image resized;
    if (!params.absolute) {
        const Resizing result = ResizeToPlace(overlay, place, params, resized);
        if (result == Resizing::NoMemory) return failForMemory();
        ok = result == Resizing::Done;
        if (!ok)
            OnCommandFailure(
                view, params.useKey ? "Cmd_90 Watermark L3487: " : "Cmd_90 Watermark L3492: ",
                LibraryError::Append);
        overlay = std::as_const(resized).View();
    }
    CompositeWatermark(image, overlay, place.x, place.y, params.opacity,
                       params.useKey ? &params.key : nullptr);
    SetFullColour(view);
    return ToOutcome(ok);
}

const Command kWatermarkCommand{.spec = {.name = names::kWatermark,
                                         .fields = kFields,
                                         .panelText = PanelOf,
                                         .dialog = &kDialog},
                                .opening = openings::kStandard,
                                .run = RunWatermark,
                                .secondField = kPath,
                                .overlayPreview = PreviewWatermark};

}  // namespace lumo::ops::overlays

#include "imaging/resize_masked.h"

#include <cstring>
#include <utility>

#include "imaging/colour_key.h"
#include "imaging/last_error.h"
#include "imaging/resample.h"

namespace lumo::imaging {
namespace {

// Steps to the nearest pixel that is not of the key; more than any picture is wide and high.
constexpr int kUnknown = 1 << 20;

// The colour and the distance of a pixel, from a neighbour if that is nearer.
void TakeFrom(std::uint8_t* pixel, int& steps, const std::uint8_t* neighbour, int neighbourSteps) {
    if (neighbourSteps + 1 >= steps) return;
    steps = neighbourSteps + 1;
    std::memcpy(pixel, neighbour, kChannels);
}

// Gives key pixels the colour of a nearest other pixel, counted in steps along rows and columns;
// two sweeps find it. `steps` holds one number for each pixel, 0 for those that stay.
void GrowOverKey(ImageView image, int* steps) {
    const auto width = static_cast<std::ptrdiff_t>(image.Width());
    const auto row = static_cast<std::ptrdiff_t>(image.Stride());
    const std::ptrdiff_t count = width * image.Height();
    std::uint8_t* const pixels = image.Row(0);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        std::uint8_t* const pixel = pixels + i * kChannels;
        if (i % width != 0) TakeFrom(pixel, steps[i], pixel - kChannels, steps[i - 1]);
        if (i >= width) TakeFrom(pixel, steps[i], pixel - row, steps[i - width]);
    }
    for (std::ptrdiff_t i = count - 1; i >= 0; --i) {
        std::uint8_t* const pixel = pixels + i * kChannels;
        if (i % width != width - 1) TakeFrom(pixel, steps[i], pixel + kChannels, steps[i + 1]);
        if (i < count - width) TakeFrom(pixel, steps[i], pixel + row, steps[i + width]);
    }
}

// Stamps the key where the mask has at least half, and keeps it from everywhere else.
void StampKey(ImageView target, ConstImageView mask, Rgb key) {
    const std::uint8_t* covered = mask.Row(0);
    const ColourKey exact{key};
    const auto nudged = static_cast<std::uint8_t>(key.blue < 255 ? key.blue + 1 : key.blue - 1);
    const auto bytes = target.Bytes();
    for (std::size_t i = 0; i < bytes.size(); i += kChannels) {
        std::uint8_t* const pixel = &bytes[i];
        if (covered[i] >= 128) {
            pixel[0] = key.red;
            pixel[1] = key.green;
            pixel[2] = key.blue;
        } else if (exact.Matches(pixel)) {
            pixel[2] = nudged;
        }
    }
}

}  // namespace

bool ResizeImageMasked(ConstImageView source, ImageView target, Rgb key) {
    if (source.IsEmpty() || target.IsEmpty()) {
        SetLastError("a picture needs a positive width and height");
        return false;
    }
    auto mask = Image::TryCreate(source.Extent());
    auto grown = Image::TryCopy(source);
    auto targetMask = Image::TryCreate(target.Extent());
    const PixelBuffer steps = PixelBuffer::TryAllocate(source.Extent().Area() * sizeof(int));
    if (!mask || !grown || !targetMask || !steps) return false;
    int* const step = reinterpret_cast<int*>(steps.Data());
    MaskKey(source.Row(0), source.Extent().Area(), {key}, mask->View().Row(0));
    const std::uint8_t* const covered = mask->View().Row(0);
    for (std::size_t i = 0; i < source.Extent().Area(); ++i)
        step[i] = covered[i * kChannels] != 0 ? kUnknown : 0;
    GrowOverKey(grown->View(), step);
    constexpr auto kFilter = ResampleFilter::Bicubic;
    if (!ResizeImage(std::as_const(*grown).View(), target, kFilter) ||
        !ResizeImage(std::as_const(*mask).View(), targetMask->View(), kFilter))
        return false;
    StampKey(target, std::as_const(*targetMask).View(), key);
    return true;
}

}  // namespace lumo::imaging

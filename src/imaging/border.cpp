#include "imaging/border.h"

#include <algorithm>
#include <array>

#include "imaging/simd.h"

namespace lumo::imaging {
namespace {

// A colour and what counts as near to it. Distances stay below 2^18, so 32 bits do.
struct NearColour {
    int red, green, blue;
    int tolerance;

    bool operator()(const std::uint8_t* pixel) const {
        const int r = pixel[0] - red, g = pixel[1] - green, b = pixel[2] - blue;
        return r * r + g * g + b * b <= tolerance;
    }
};

// Without a branch for each pixel, which lets the compiler take many at once.
LUMO_SIMD_CLONES
int CountOthers(const std::uint8_t* pixels, int count, const NearColour& isNear) {
    const NearColour local = isNear;  // bytes may alias anything, a copy may not
    int others = 0;
    for (int i = 0; i < count; ++i) {
        const std::uint8_t* pixel = pixels + std::size_t{3} * static_cast<std::size_t>(i);
        others += local(pixel) ? 0 : 1;
    }
    return others;
}

// Near pixels at the start of a run; `count` if all are.
int LeadingRun(const std::uint8_t* pixels, int count, const NearColour& isNear) {
    constexpr int kBlock = 256;
    int done = 0;
    while (done < count) {
        const int block = std::min(kBlock, count - done);
        const std::uint8_t* from = pixels + std::size_t{3} * static_cast<std::size_t>(done);
        if (CountOthers(from, block, isNear) == 0) {
            done += block;
            continue;
        }
        while (isNear(pixels + std::size_t{3} * static_cast<std::size_t>(done))) ++done;
        break;
    }
    return done;
}

// Near pixels at the end of a run that is known to hold others too.
int TrailingRun(const std::uint8_t* pixels, int count, const NearColour& isNear) {
    int done = 0;
    while (isNear(pixels + std::size_t{3} * static_cast<std::size_t>(count - 1 - done))) ++done;
    return done;
}

std::optional<InclusiveRect> Enclosed(ConstImageView image, const NearColour& isNear) {
    const int width = image.Width(), height = image.Height();
    const auto isBorder = [&](int y) { return LeadingRun(image.Row(y), width, isNear) == width; };
    int top = 0, bottom = height - 1;
    while (top < height && isBorder(top)) ++top;
    if (top == height) return std::nullopt;
    while (isBorder(bottom)) --bottom;

    // Border columns at each side; each row can only take some away.
    int left = LeadingRun(image.Row(top), width, isNear);
    int right = TrailingRun(image.Row(top), width, isNear);
    for (int y = top + 1; y <= bottom && (left > 0 || right > 0); ++y) {
        left = LeadingRun(image.Row(y), left, isNear);
        const std::uint8_t* tail =
            image.Row(y) + std::size_t{3} * static_cast<std::size_t>(width - right);
        if (CountOthers(tail, right, isNear) != 0) right = TrailingRun(tail, right, isNear);
    }
    const InclusiveRect rect{left, top, width - 1 - right, bottom};
    if (rect == InclusiveRect{0, 0, width - 1, height - 1}) return std::nullopt;
    return rect;
}

// Pixels along the four edges that are near; those of the corners count twice.
std::int64_t CountOnEdges(ConstImageView image, const NearColour& isNear) {
    const int width = image.Width(), height = image.Height();
    std::int64_t count = std::int64_t{2} * width - CountOthers(image.Row(0), width, isNear) -
                         CountOthers(image.Row(height - 1), width, isNear);
    for (int y = 0; y < height; ++y) {
        count += isNear(image.At(0, y)) ? 1 : 0;
        count += isNear(image.At(width - 1, y)) ? 1 : 0;
    }
    return count;
}

}  // namespace

std::optional<InclusiveRect> GetBorder(ConstImageView image, std::uint32_t tolerance,
                                       std::optional<Rgb> colour) {
    if (image.IsEmpty()) return std::nullopt;
    const auto nearTo = [&](Rgb pixel) {
        constexpr std::uint32_t kMost = 3 * 255 * 255;
        return NearColour{pixel.red, pixel.green, pixel.blue,
                          static_cast<int>(std::min(tolerance, kMost))};
    };
    if (colour) return Enclosed(image, nearTo(*colour));

    const int right = image.Width() - 1, bottom = image.Height() - 1;
    struct Candidate {
        int corner;
        NearColour isNear;
        std::int64_t votes;
    };
    std::array<Candidate, 4> candidates{Candidate{0, nearTo(image.Pixel(0, 0)), 0},
                                        Candidate{1, nearTo(image.Pixel(right, 0)), 0},
                                        Candidate{2, nearTo(image.Pixel(0, bottom)), 0},
                                        Candidate{3, nearTo(image.Pixel(right, bottom)), 0}};
    for (Candidate& candidate : candidates) candidate.votes = CountOnEdges(image, candidate.isNear);
    // Most votes first, of as many the earlier corner.
    std::sort(candidates.begin(), candidates.end(), [](const Candidate& a, const Candidate& b) {
        return a.votes != b.votes ? a.votes > b.votes : a.corner < b.corner;
    });
    for (const Candidate& candidate : candidates)
        if (const auto rect = Enclosed(image, candidate.isNear)) return rect;
    return std::nullopt;
}

}  // namespace lumo::imaging

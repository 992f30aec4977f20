// Pixels as indices into a palette.

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <utility>

#include "imaging/codecs/gif_palette.h"

namespace lumo::imaging::codecs {
namespace {

int SquaredDistance(Rgb a, Rgb b) {
    const int red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
    return red * red + green * green + blue * blue;
}

}  // namespace

NearestColour::NearestColour(ColourTable palette)
    : palette_(std::move(palette)), cells_(std::size_t{1} << (3 * kSideBits)) {}

std::uint8_t NearestColour::Best(const Cell& cell, Rgb colour) const {
    std::uint8_t best = candidates_[cell.first];
    int least = SquaredDistance(palette_[best], colour);
    for (std::uint32_t i = cell.first + 1; i < cell.first + cell.count; ++i) {
        const int distance = SquaredDistance(palette_[candidates_[i]], colour);
        if (distance < least) least = distance, best = candidates_[i];
    }
    return best;
}

// An entry can be nearest to some colour of the cell only if its least distance to the cell is no
// more than the greatest distance of the entry for which that is smallest.
std::uint8_t NearestColour::Explore(Rgb colour) {
    const auto range = [](std::uint8_t value, std::uint8_t corner) {
        const int low = corner >> kCellBits << kCellBits;
        const int high = low + (1 << kCellBits) - 1;
        const int outside = std::max({low - value, value - high, 0});
        const int across = std::max(std::abs(value - low), std::abs(value - high));
        return std::pair(outside * outside, across * across);
    };
    std::array<int, kMaxColours> nearest{};
    int reach = std::numeric_limits<int>::max();
    for (std::size_t i = 0; i < palette_.size(); ++i) {
        const auto [redNear, redFar] = range(palette_[i].red, colour.red);
        const auto [greenNear, greenFar] = range(palette_[i].green, colour.green);
        const auto [blueNear, blueFar] = range(palette_[i].blue, colour.blue);
        nearest[i] = redNear + greenNear + blueNear;
        reach = std::min(reach, redFar + greenFar + blueFar);
    }
    Cell& cell = cells_[CellOf(colour)];
    cell.first = static_cast<std::uint32_t>(candidates_.size());
    for (std::size_t i = 0; i < palette_.size(); ++i)
        if (nearest[i] <= reach) candidates_.push_back(static_cast<std::uint8_t>(i));
    cell.count = static_cast<std::uint32_t>(candidates_.size()) - cell.first;
    return Best(cell, colour);
}

void MapBestFit(ConstImageView image, const ColourTable& palette, std::span<std::uint8_t> indices) {
    NearestColour nearest(palette);
    std::uint8_t* out = indices.data();
    for (int y = 0; y < image.Height(); ++y) {
        const std::uint8_t* p = image.Row(y);
        for (int x = 0; x < image.Width(); ++x, p += kChannels)
            *out++ = nearest({p[0], p[1], p[2]});
    }
}

namespace {

using Error = std::array<int, kChannels>;  // in sixteenths of a step

/// Two rows of errors. Place x + 1 belongs to column x, so that every pixel has both neighbours.
struct ErrorRows {
    explicit ErrorRows(int width)
        : current(static_cast<std::size_t>(width) + 2), next(current.size()) {}
    void Advance() {
        std::swap(current, next);
        std::ranges::fill(next, Error{});
    }
    std::vector<Error> current, next;
};

template <Diffusion kDiffusion>
void PassOn(ErrorRows& rows, std::size_t place, std::size_t c, int missed) {
    if constexpr (kDiffusion == Diffusion::TwoNeighbours) {
        const int right = missed / 2;
        rows.current[place + 1][c] += right;
        rows.next[place][c] += missed - right;
    } else {
        const int right = missed * 7 / 16, belowLeft = missed * 3 / 16, below = missed * 5 / 16;
        rows.current[place + 1][c] += right;
        rows.next[place - 1][c] += belowLeft;
        rows.next[place][c] += below;
        rows.next[place + 1][c] += missed - right - belowLeft - below;
    }
}

template <Diffusion kDiffusion>
void Diffuse(ConstImageView image, const ColourTable& palette, std::uint8_t* out) {
    NearestColour nearest(palette);
    ErrorRows rows(image.Width());
    for (int y = 0; y < image.Height(); ++y) {
        rows.Advance();
        const std::uint8_t* p = image.Row(y);
        for (std::size_t place = 1; place <= static_cast<std::size_t>(image.Width()); ++place) {
            std::array<int, kChannels> wanted;  // in sixteenths
            for (std::size_t c = 0; c < kChannels; ++c)
                wanted[c] = std::clamp(*p++ * 16 + rows.current[place][c], 0, 255 * 16);
            const auto rounded = [&](std::size_t c) {
                return static_cast<std::uint8_t>((wanted[c] + 8) >> 4);
            };
            const std::uint8_t index = nearest({rounded(0), rounded(1), rounded(2)});
            const Rgb given = nearest.ColourAt(index);
            PassOn<kDiffusion>(rows, place, 0, wanted[0] - given.red * 16);
            PassOn<kDiffusion>(rows, place, 1, wanted[1] - given.green * 16);
            PassOn<kDiffusion>(rows, place, 2, wanted[2] - given.blue * 16);
            *out++ = index;
        }
    }
}

}  // namespace

void MapDiffused(ConstImageView image, const ColourTable& palette, Diffusion diffusion,
                 std::span<std::uint8_t> indices) {
    if (diffusion == Diffusion::TwoNeighbours)
        Diffuse<Diffusion::TwoNeighbours>(image, palette, indices.data());
    else
        Diffuse<Diffusion::FourNeighbours>(image, palette, indices.data());
}

}  // namespace lumo::imaging::codecs

#include "reference/disc_reference.h"

#include <array>
#include <cmath>
#include <cstdlib>

#include "support/test_images.h"

namespace lumo::reference {
namespace {

using imaging::ConstImageView;
using imaging::Image;
using imaging::Rgb;

struct Mask {
    explicit Mask(double radius) : cells(DiscMask(radius)) {
        side = static_cast<int>(cells.size());
        half = side / 2;
        for (const auto& row : cells) {
            int column = 0;
            while (row[static_cast<std::size_t>(column)] == 0) ++column;
            first.push_back(column);
            for (const int cell : row) count += cell;
        }
    }
    bool Has(int row, int column) const {
        return cells[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] != 0;
    }
    int First(int row) const { return first[static_cast<std::size_t>(row)]; }

    std::vector<std::vector<int>> cells;
    std::vector<int> first;
    int side = 0, half = 0, count = 0;
};

bool Inside(ConstImageView image, int x, int y) {
    return x >= 0 && y >= 0 && x < image.Width() && y < image.Height();
}

int Luma(Rgb p) {
    return static_cast<int>(0.299 * p.red + 0.587 * p.green + 0.114 * p.blue + 0.5);
}

// The best pixel so far, of the maximum (sign 1) or the minimum (sign -1).
struct Best {
    int luma = 0, x = 0, y = 0;
};

Best FullSearch(ConstImageView image, const Mask& mask, int x, int y, int sign) {
    Best best{sign > 0 ? 0 : 255, 0, 0};
    for (int row = 0; row < mask.side; ++row)
        for (int column = 0; column < mask.side; ++column) {
            const int px = x - mask.half + column, py = y - mask.half + row;
            if (!mask.Has(row, column) || !Inside(image, px, py)) continue;
            const int luma = Luma(image.Pixel(px, py));
            if (sign * luma >= sign * best.luma) best = {luma, px, py};
        }
    return best;
}

Image Extremum(ConstImageView image, double radius, int sign) {
    const Mask mask(radius);
    Image result = test::Copy(image);
    for (int y = 0; y < image.Height(); ++y) {
        Best best = FullSearch(image, mask, -1, y, sign);
        for (int x = 0; x < image.Width(); ++x) {
            bool leaves = false;
            for (int row = 0; row < mask.side; ++row)
                if (best.y == y - mask.half + row && best.x == x - mask.half - 1 + mask.First(row))
                    leaves = true;
            if (leaves) {
                best = FullSearch(image, mask, x, y, sign);
            } else {
                for (int row = 0; row < mask.side; ++row) {
                    const int px = x + mask.half - mask.First(row), py = y - mask.half + row;
                    if (!Inside(image, px, py)) continue;
                    const int luma = Luma(image.Pixel(px, py));
                    if (sign * luma > sign * best.luma) best = {luma, px, py};
                }
            }
            result.View().SetPixel(x, y, image.Pixel(best.x, best.y));
        }
    }
    return result;
}

// Histograms, sums and count of a window, kept up to date pixel by pixel.
struct Window {
    explicit Window(ConstImageView source) : image(source) {}

    void Change(int x, int y, int by) {
        if (Inside(image, x, y)) {
            const Rgb p = image.Pixel(x, y);
            const std::array<int, 3> values{p.red, p.green, p.blue};
            for (std::size_t c = 0; c < 3; ++c) {
                counts[c][static_cast<std::size_t>(values[c])] += by;
                sums[c] += by * values[c];
            }
            inside += by;
        } else {
            const std::size_t value = std::abs(x) % 2 == std::abs(y) % 2 ? 255 : 0;
            for (auto& channel : counts) channel[value] += by;
        }
    }
    void Fill(const Mask& mask, int x, int y) {
        for (int row = 0; row < mask.side; ++row)
            for (int column = 0; column < mask.side; ++column)
                if (mask.Has(row, column)) Change(x - mask.half + column, y - mask.half + row, 1);
    }
    void Slide(const Mask& mask, int x, int y) {
        for (int row = 0; row < mask.side; ++row) {
            Change(x - mask.half - 1 + mask.First(row), y - mask.half + row, -1);
            Change(x + mask.half - mask.First(row), y - mask.half + row, 1);
        }
    }
    int Median(std::size_t channel, int n) const {
        int total = 0, value = -1;
        while (total < n / 2 + 1) total += counts[channel][static_cast<std::size_t>(++value)];
        return value;
    }
    Rgb Medians(int n) const {
        return {static_cast<std::uint8_t>(Median(0, n)), static_cast<std::uint8_t>(Median(1, n)),
                static_cast<std::uint8_t>(Median(2, n))};
    }

    ConstImageView image;
    std::array<std::array<int, 256>, 3> counts{};
    std::array<int, 3> sums{};
    int inside = 0;
};

template <typename PixelOf>
Image SlideOver(ConstImageView image, const Mask& mask, const PixelOf& pixelOf) {
    Image result = test::Copy(image);
    for (int y = 0; y < image.Height(); ++y) {
        Window window(image);
        window.Fill(mask, -1, y);
        for (int x = 0; x < image.Width(); ++x) {
            window.Slide(mask, x, y);
            result.View().SetPixel(x, y, pixelOf(window, image.Pixel(x, y)));
        }
    }
    return result;
}

}  // namespace

std::vector<std::vector<int>> DiscMask(double radius) {
    const double reach = radius + 1.0;
    const int half = static_cast<int>(reach / 1.4 + 0.5);
    std::vector<std::vector<int>> mask;
    for (int dy = -half; dy <= half; ++dy) {
        mask.emplace_back();
        for (int dx = -half; dx <= half; ++dx)
            mask.back().push_back(std::sqrt(1.0 * dx * dx + 1.0 * dy * dy) < reach ? 1 : 0);
    }
    return mask;
}

Image MaximumFilter(ConstImageView source, double radius) {
    return Extremum(source, radius, 1);
}
Image MinimumFilter(ConstImageView source, double radius) {
    return Extremum(source, radius, -1);
}

Image MedianFilter(ConstImageView source, double radius) {
    const Mask mask(radius);
    return SlideOver(source, mask,
                     [&](const Window& window, Rgb) { return window.Medians(mask.count); });
}

Image DustRemove(ConstImageView source, int threshold, double radius) {
    const Mask mask(radius);
    return SlideOver(source, mask, [&](const Window& window, Rgb p) {
        const std::array<int, 3> values{p.red, p.green, p.blue};
        bool standsOut = false;
        for (std::size_t c = 0; c < 3; ++c)
            if (std::abs(values[c] - window.sums[c] / window.inside) > threshold) standsOut = true;
        return standsOut ? window.Medians(mask.count) : p;
    });
}

}  // namespace lumo::reference

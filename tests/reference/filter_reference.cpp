#include "reference/filter_reference.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "support/test_images.h"

namespace lumo::reference {
namespace {

using imaging::ConstImageView;
using imaging::Image;
using imaging::Rgb;

bool Inside(ConstImageView image, int x, int y) {
    return x >= 0 && y >= 0 && x < image.Width() && y < image.Height();
}
int Channel(ConstImageView image, int x, int y, int c) {
    return image.At(x, y)[c];
}

double Luma(ConstImageView image, int x, int y) {
    const Rgb p = image.Pixel(x, y);
    return 0.299 * p.red + 0.587 * p.green + 0.114 * p.blue;
}

}  // namespace

Image BlurOutward(ConstImageView source, int percent, double radius) {
    Image result = test::Copy(source);
    const int width = source.Width(), height = source.Height();
    const int h = static_cast<int>(radius) + 1;
    const int start = (height * percent) / 200;
    const int range = height / 2 - start;
    const double a = static_cast<double>(height) / width;
    for (int y = 0; y < height; ++y) {
        std::array<int, 3> sums{};
        int count = 0;
        const auto change = [&](int x, int by) {
            for (int row = y - h; row <= y + h; ++row) {
                if (!Inside(source, x, row)) continue;
                for (int c = 0; c < 3; ++c)
                    sums[static_cast<std::size_t>(c)] += by * Channel(source, x, row, c);
                count += by;
            }
        };
        for (int x = -1 - h; x <= -1 + h; ++x) change(x, 1);
        for (int x = 0; x < width; ++x) {
            const int dx = x - width / 2, dy = y - height / 2;
            const int d = static_cast<int>(std::sqrt((dx * a) * (dx * a) + dy * dy));
            int s = range == 0 ? 0 : ((d - start) * 100) / range;
            s = std::clamp(s, 0, 100);
            change(x - h - 1, -1);
            change(x + h, 1);
            if (d < start) continue;
            for (int c = 0; c < 3; ++c)
                result.View().At(x, y)[c] =
                    static_cast<std::uint8_t>(((sums[static_cast<std::size_t>(c)] / count) * 100 +
                                               Channel(source, x, y, c) * (100 - s)) /
                                              (200 - s));
        }
    }
    return result;
}

Image BlurMore(ConstImageView source) {
    Image result = test::Copy(source);
    const int width = source.Width(), height = source.Height();
    if (width < 5) return result;
    for (int y = 2; y <= height - 3; ++y) {
        std::array<int, 3> sums{};
        const auto change = [&](int x, int by) {
            for (int row = y - 2; row <= y + 2; ++row)
                for (int c = 0; c < 3; ++c)
                    sums[static_cast<std::size_t>(c)] += by * Channel(source, x, row, c);
        };
        for (int x = 0; x <= 4; ++x) change(x, 1);
        for (int x = 3; x <= width - 3; ++x) {
            change(x - 3, -1);
            change(x + 2, 1);
            for (int c = 0; c < 3; ++c)
                result.View().At(x, y)[c] =
                    static_cast<std::uint8_t>(sums[static_cast<std::size_t>(c)] / 25);
        }
    }
    return result;
}

Image Convolve(ConstImageView source, const std::array<int, 25>& weights, int scale, int offset) {
    Image result = test::Copy(source);
    const int width = source.Width(), height = source.Height();
    for (int c = 0; c < 3; ++c) {
        std::vector<std::vector<int>> plane(static_cast<std::size_t>(height + 4),
                                            std::vector<int>(static_cast<std::size_t>(width + 4)));
        for (int y = -2; y < height + 2; ++y)
            for (int x = -2; x < width + 2; ++x)
                plane[static_cast<std::size_t>(y + 2)][static_cast<std::size_t>(x + 2)] =
                    Channel(source, std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1), c);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                std::uint32_t sum = 0;  // wraps as 32-bit integers do
                for (int row = 0; row < 5; ++row)
                    for (int column = 0; column < 5; ++column)
                        sum +=
                            static_cast<std::uint32_t>(
                                weights[static_cast<std::size_t>(row * 5 + column)]) *
                            static_cast<std::uint32_t>(plane[static_cast<std::size_t>(y + row)]
                                                            [static_cast<std::size_t>(x + column)]);
                double value = offset;
                if (scale != 0)
                    value = static_cast<double>(static_cast<int>(sum)) / scale + offset + 0.4;
                if (value > 255) value = 255;
                if (value < 0) value = 0;
                result.View().At(x, y)[c] = static_cast<std::uint8_t>(value);
            }
    }
    return result;
}

Image UnsharpMask(ConstImageView source, ConstImageView blurred, int amount, int threshold,
                  bool luminance) {
    Image result = test::Copy(source);
    const double a = (amount + 100) / 100.0;
    for (int y = 0; y < source.Height(); ++y)
        for (int x = 0; x < source.Width(); ++x) {
            bool edge = threshold == 0;
            const std::array<std::array<int, 2>, 4> neighbours{
                {{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}}};
            for (const auto& [nx, ny] : neighbours)
                if (!edge && Inside(source, nx, ny))
                    edge = std::abs(static_cast<int>(Luma(source, nx, ny) - Luma(source, x, y))) >
                           threshold;
            if (!edge) continue;
            for (int c = 0; c < 3; ++c) {
                const double o = Channel(source, x, y, c);
                double b = Channel(blurred, x, y, c);
                if (luminance) b = o * Luma(blurred, x, y) / Luma(source, x, y);
                const double value = a * o - (a - 1.0) * b + 0.5;
                std::uint8_t byte = 0;  // also for no number
                if (value > 255)
                    byte = 255;
                else if (value > 0)
                    byte = static_cast<std::uint8_t>(value);
                result.View().At(x, y)[c] = byte;
            }
        }
    return result;
}

}  // namespace lumo::reference

#include "ops/filters/unsharp.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "imaging/parallel.h"
#include "imaging/pixel_buffer.h"
#include "imaging/simd.h"

namespace lumo::ops::filters {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;
using imaging::PixelBuffer;

constexpr std::size_t kStep = kChannels;

inline double Luma(double red, double green, double blue) {
    return 0.299 * red + 0.587 * green + 0.114 * blue;
}

// A value that is no number comes out as 0: a black pixel has no luminance to divide by.
inline std::uint8_t Sharpened(double o, double b, double factor) {
    double value = factor * o - (factor - 1.0) * b + 0.5;
    value = value > 0.0 ? value : 0.0;
    value = value > 255.0 ? 255.0 : value;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
}

LUMO_SIMD_CLONES
void SharpenColours(const std::uint8_t* __restrict image, std::size_t samples, double factor,
                    std::uint8_t* __restrict result) {
    for (std::size_t i = 0; i < samples; ++i) result[i] = Sharpened(image[i], result[i], factor);
}

// The same in integers: value * 100 is an integer but for the rounding of the factor.
inline int SharpenedInHundredths(int o, int b, int amount) {
    const int hundredths = (amount + 100) * o - amount * b + 50;
    return std::clamp(hundredths, 0, 25599) / 100;
}

LUMO_SIMD_CLONES
void SharpenColoursInIntegers(const std::uint8_t* __restrict image, std::size_t samples, int amount,
                              std::uint8_t* __restrict result) {
    for (std::size_t i = 0; i < samples; ++i)
        result[i] = static_cast<std::uint8_t>(SharpenedInHundredths(image[i], result[i], amount));
}

// True if integers give the byte that doubles give for every pair of samples. With many amounts
// they do not: where the exact value is a whole number the doubles may end just below it.
bool IntegersAgree(int amount, double factor) {
    if (std::abs(static_cast<long long>(amount)) > 10000) return false;
    std::uint8_t row[256], doubles[256], integers[256];
    for (int o = 0; o < 256; ++o) row[o] = static_cast<std::uint8_t>(o);
    for (int b = 0; b < 256; ++b) {
        std::memset(doubles, b, sizeof doubles);
        std::memset(integers, b, sizeof integers);
        SharpenColours(row, sizeof row, factor, doubles);
        SharpenColoursInIntegers(row, sizeof row, amount, integers);
        if (std::memcmp(doubles, integers, sizeof doubles) != 0) return false;
    }
    return true;
}

LUMO_SIMD_CLONES
void SharpenLuminance(const std::uint8_t* __restrict image, std::size_t samples, double factor,
                      std::uint8_t* __restrict result) {
    for (std::size_t i = 0; i < samples; i += kStep) {
        const double red = image[i], green = image[i + 1], blue = image[i + 2];
        const double own = Luma(red, green, blue);
        const double blurred = Luma(result[i], result[i + 1], result[i + 2]);
        result[i] = Sharpened(red, red * blurred / own, factor);
        result[i + 1] = Sharpened(green, green * blurred / own, factor);
        result[i + 2] = Sharpened(blue, blue * blurred / own, factor);
    }
}

LUMO_SIMD_CLONES
void LumaRow(const std::uint8_t* __restrict row, std::size_t width, double* __restrict luma) {
    for (std::size_t x = 0; x < width; ++x)
        luma[x] = Luma(row[x * kStep], row[x * kStep + 1], row[x * kStep + 2]);
}

// 1 if they differ by more than the threshold.
inline unsigned Differ(double a, double b, int threshold) {
    return std::abs(static_cast<int>(a - b)) > threshold ? 1U : 0U;
}

// 1 for the pixels that differ from the one above, below, to the left or to the right; what lies
// outside of the picture is given as the pixel itself, or for the row as the row itself.
LUMO_SIMD_CLONES
void MarkEdges(const double* __restrict above, const double* __restrict here,
               const double* __restrict below, std::size_t begin, std::size_t end, int threshold,
               std::uint8_t* __restrict edges) {
    for (std::size_t x = begin; x < end; ++x)
        edges[x] = static_cast<std::uint8_t>(
            Differ(here[x - 1], here[x], threshold) | Differ(here[x + 1], here[x], threshold) |
            Differ(above[x], here[x], threshold) | Differ(below[x], here[x], threshold));
}

class EdgeRows {
  public:
    EdgeRows(ConstImageView image, int threshold, std::uint8_t* scratch)
        : image_(image),
          width_(static_cast<std::size_t>(image.Width())),
          // Below 0 any neighbour at all makes an edge, and so does -1.
          threshold_(std::max(threshold, -1)),
          luma_(reinterpret_cast<double*>(scratch)),
          edges_(scratch + 3 * RowSize() * sizeof(double)) {}

    static std::size_t ScratchSize(ConstImageView image) {
        const auto width = static_cast<std::size_t>(image.Width());
        return 3 * (width + 2) * sizeof(double) + width;
    }

    void Read(int y) const {
        if (y < 0 || y >= image_.Height()) return;
        double* luma = At(y);
        LumaRow(image_.Row(y), width_, luma);
        luma[-1] = luma[0];
        luma[width_] = luma[width_ - 1];
    }

    const std::uint8_t* Mark(int y) const {
        // A picture of one pixel has no neighbour, so no edge. Everywhere else the pixel itself,
        // which stands for a neighbour outside, changes nothing: beside it there is a real one.
        if (image_.Extent().Area() == 1) {
            edges_[0] = 0;
        } else {
            MarkEdges(At(std::max(y - 1, 0)), At(y), At(std::min(y + 1, image_.Height() - 1)), 0,
                      width_, threshold_, edges_);
        }
        return edges_;
    }

  private:
    std::size_t RowSize() const { return width_ + 2; }
    double* At(int y) const { return luma_ + static_cast<std::size_t>(y % 3) * RowSize() + 1; }

    ConstImageView image_;
    std::size_t width_;
    int threshold_;
    double* luma_;
    std::uint8_t* edges_;
};

class RowSharpener {
  public:
    explicit RowSharpener(const UnsharpParams& params)
        : params_(params),
          factor_((static_cast<double>(params.amount) + 100.0) / 100.0),
          integers_(!params.luminanceOnly && IntegersAgree(params.amount, factor_)) {}

    void Run(const std::uint8_t* image, std::size_t samples, std::uint8_t* result) const {
        if (integers_)
            SharpenColoursInIntegers(image, samples, params_.amount, result);
        else if (params_.luminanceOnly)
            SharpenLuminance(image, samples, factor_, result);
        else
            SharpenColours(image, samples, factor_, result);
    }

  private:
    UnsharpParams params_;
    double factor_;
    bool integers_;
};

}  // namespace

bool UnsharpMask(ConstImageView image, ImageView blurredAndResult, const UnsharpParams& params) {
    const std::size_t stride = image.Stride();
    const RowSharpener sharpener(params);
    std::atomic<bool> ok{true};
    imaging::ForRows(image.Height(), 8 * stride, [&](int first, int last) {
        if (params.threshold == 0) {
            for (int y = first; y < last; ++y)
                sharpener.Run(image.Row(y), stride, blurredAndResult.Row(y));
            return;
        }
        const PixelBuffer scratch = PixelBuffer::TryAllocate(EdgeRows::ScratchSize(image));
        if (!scratch) {
            ok = false;
            return;
        }
        const EdgeRows rows(image, params.threshold, scratch.Data());
        rows.Read(first - 1);
        rows.Read(first);
        for (int y = first; y < last; ++y) {
            rows.Read(y + 1);
            const std::uint8_t* edges = rows.Mark(y);
            std::uint8_t* result = blurredAndResult.Row(y);
            sharpener.Run(image.Row(y), stride, result);
            for (int x = 0; x < image.Width(); ++x)
                if (edges[x] == 0)
                    std::memcpy(result + static_cast<std::size_t>(x) * kStep, image.At(x, y),
                                kStep);
        }
    });
    return ok;
}

}  // namespace lumo::ops::filters

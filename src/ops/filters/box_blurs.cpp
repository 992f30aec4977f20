#include "ops/filters/box_blurs.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "imaging/parallel.h"
#include "imaging/pixel_buffer.h"
#include "imaging/simd.h"
#include "ops/filters/column_sums.h"
#include "ops/filters/disc.h"

namespace lumo::ops::filters {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;
using imaging::PixelBuffer;

constexpr std::size_t kStep = kChannels;

// Sums of five rows in blocks, then of five columns. The block's sums stay in the first cache.
LUMO_SIMD_CLONES
void BlurMoreRow(const std::uint8_t* const* rows, std::size_t begin, std::size_t end,
                 std::uint8_t* __restrict out) {
    constexpr std::size_t kBlock = 1536;
    std::uint16_t sums[kBlock + 4 * kStep];
    for (std::size_t at = begin; at < end; at += kBlock) {
        const std::size_t count = std::min(kBlock, end - at);
        const std::size_t from = at - 2 * kStep;
        for (std::size_t i = 0; i < count + 4 * kStep; ++i)
            sums[i] = static_cast<std::uint16_t>(rows[0][from + i] + rows[1][from + i] +
                                                 rows[2][from + i] + rows[3][from + i] +
                                                 rows[4][from + i]);
        for (std::size_t i = 0; i < count; ++i) {
            const auto sum =
                static_cast<std::uint16_t>(sums[i] + sums[i + kStep] + sums[i + 2 * kStep] +
                                           sums[i + 3 * kStep] + sums[i + 4 * kStep]);
            out[at + i] = static_cast<std::uint8_t>(sum / 25);
        }
    }
}

std::int32_t Wrapped(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

// The distance of each pixel of a row from the middle, in pixels of the height, truncated.
LUMO_SIMD_CLONES
void Distances(int width, double dy, double aspect, std::int32_t* __restrict distances) {
    const double dySquared = dy * dy;
    const int middle = width / 2;
    for (int x = 0; x < width; ++x) {
        const double dx = static_cast<double>(x - middle) * aspect;
        distances[x] = static_cast<std::int32_t>(std::sqrt(dx * dx + dySquared));
    }
}

class OutwardBlur {
  public:
    OutwardBlur(ConstImageView source, int startPercent, double radius)
        : source_(source),
          half_(static_cast<int>(LimitRadius(radius)) + 1),
          start_(Wrapped(static_cast<std::int64_t>(source.Height()) * startPercent) / 200),
          range_(Wrapped(static_cast<std::int64_t>(source.Height() / 2) - start_)),
          aspect_(static_cast<double>(source.Height()) / source.Width()) {}

    std::size_t ScratchSize() const {
        return source_.Stride() * sizeof(std::uint32_t) +
               static_cast<std::size_t>(source_.Width()) * sizeof(std::int32_t);
    }

    void Run(ImageView target, int first, int last, std::uint8_t* scratch) const {
        const std::size_t samples = source_.Stride();
        auto* columns = reinterpret_cast<std::uint32_t*>(scratch);
        auto* distances = reinterpret_cast<std::int32_t*>(columns + samples);
        std::fill_n(columns, samples, 0U);
        const auto enter = [&](int y) {
            if (y < source_.Height()) AddSamples(source_.Row(y), samples, columns);
        };
        for (int y = std::max(0, first - half_); y < first + half_; ++y) enter(y);
        for (int y = first; y < last; ++y) {
            const int gone = y - half_ - 1;
            if (y > first && gone >= 0) TakeSamples(source_.Row(gone), samples, columns);
            enter(y + half_);
            Distances(source_.Width(), y - source_.Height() / 2, aspect_, distances);
            BlurRow(y, columns, distances, target.Row(y));
        }
    }

  private:
    int Strength(std::int32_t distance) const {
        if (range_ == 0) return 0;
        const std::int64_t scaled = Wrapped((std::int64_t{distance} - start_) * 100);
        return static_cast<int>(std::clamp<std::int64_t>(scaled / range_, 0, 100));
    }

    void BlurRow(int y, const std::uint32_t* columns, const std::int32_t* distances,
                 std::uint8_t* out) const {
        const int width = source_.Width();
        const int rows = std::min(source_.Height(), y + half_ + 1) - std::max(0, y - half_);
        const std::uint8_t* in = source_.Row(y);
        std::uint32_t sum[kStep] = {};
        const auto change = [&](int x, bool add) {
            if (x < 0 || x >= width) return;
            const std::uint32_t* column = columns + static_cast<std::size_t>(x) * kStep;
            for (std::size_t c = 0; c < kStep; ++c) sum[c] += add ? column[c] : 0U - column[c];
        };
        for (int x = 0; x < half_; ++x) change(x, true);
        for (int x = 0; x < width; ++x, in += kStep, out += kStep) {
            change(x + half_, true);
            change(x - half_ - 1, false);
            if (distances[x] < start_) {
                std::memcpy(out, in, kStep);
                continue;
            }
            const int across = std::min(width, x + half_ + 1) - std::max(0, x - half_);
            const auto count = static_cast<std::uint32_t>(across * rows);
            const auto strength = static_cast<std::uint32_t>(Strength(distances[x]));
            for (std::size_t c = 0; c < kStep; ++c)
                out[c] = static_cast<std::uint8_t>(
                    ((sum[c] / count) * 100 + in[c] * (100 - strength)) / (200 - strength));
        }
    }

    ConstImageView source_;
    int half_;
    std::int32_t start_, range_;
    double aspect_;
};

}  // namespace

void BlurMore(ConstImageView source, ImageView target) {
    const int width = source.Width(), height = source.Height();
    imaging::ForRows(height, 4 * source.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            std::memcpy(target.Row(y), source.Row(y), source.Stride());
            if (y < 2 || y > height - 3 || width < 6) continue;
            const std::uint8_t* rows[5];
            for (int k = 0; k < 5; ++k) rows[k] = source.Row(y - 2 + k);
            BlurMoreRow(rows, 3 * kStep, static_cast<std::size_t>(width - 2) * kStep,
                        target.Row(y));
        }
    });
}

bool BlurOutward(ConstImageView source, ImageView target, int startPercent, double radius) {
    const OutwardBlur blur(source, startPercent, radius);
    std::atomic<bool> ok{true};
    imaging::ForRows(source.Height(), 16 * source.Stride(), [&](int first, int last) {
        const PixelBuffer scratch = PixelBuffer::TryAllocate(blur.ScratchSize());
        if (scratch) {
            blur.Run(target, first, last, scratch.Data());
        } else {
            ok = false;
        }
    });
    return ok;
}

}  // namespace lumo::ops::filters

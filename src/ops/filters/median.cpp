#include "ops/filters/median.h"

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "imaging/parallel.h"
#include "imaging/pixel_buffer.h"
#include "imaging/simd.h"
#include "ops/filters/column_sums.h"
#include "ops/filters/median_kernel.h"

namespace lumo::ops::filters {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;
using imaging::PixelBuffer;

bool MedianWhere(ConstImageView source, ImageView target, const Disc& disc,
                 const std::uint8_t* wanted) {
    std::atomic<bool> ok{true};
    imaging::ForRows(source.Height(), 32 * source.Stride(), [&](int first, int last) {
        const PixelBuffer scratch = PixelBuffer::TryAllocate(MedianScratchSize());
        if (scratch) {
            MedianRows(source, target, disc, wanted, first, last, scratch.Data());
        } else {
            ok = false;
        }
    });
    return ok;
}

// 1 where the sample differs by more than the threshold from the truncated mean.
LUMO_SIMD_CLONES
void CompareWithMean(const std::uint8_t* __restrict row, const std::uint32_t* __restrict sums,
                     const std::uint32_t* __restrict counts, int threshold, std::size_t samples,
                     std::uint8_t* __restrict far) {
    for (std::size_t i = 0; i < samples; ++i) {
        const auto sum = static_cast<std::int32_t>(sums[i]);
        const auto count = static_cast<std::int32_t>(counts[i]);
        // mean < sample - threshold, and mean > sample + threshold, without the division
        const bool bright = sum < (row[i] - threshold) * count;
        const bool dark = sum >= (row[i] + threshold + 1) * count;
        far[i] = static_cast<std::uint8_t>(bright | dark);
    }
}

// Marks the pixels of some rows that stand out. `columns`, `sums` and `counts` have one number for
// each sample of a row; `columns` holds the sums of the square's rows.
class DustMarks {
  public:
    DustMarks(ConstImageView source, const Disc& disc, int threshold, std::uint32_t* scratch)
        : source_(source),
          disc_(disc),
          threshold_(threshold),
          samples_(source.Stride()),
          columns_(scratch),
          sums_(scratch + samples_),
          counts_(scratch + 2 * samples_),
          far_(reinterpret_cast<std::uint8_t*>(scratch + 3 * samples_)) {}

    static std::size_t ScratchSize(ConstImageView source) { return 13 * source.Stride(); }

    void Run(int first, int last, std::uint8_t* marks) {
        std::fill_n(columns_, samples_, 0U);
        for (int y = std::max(0, first - disc_.half); y < first + disc_.half; ++y) Enter(y);
        for (int y = first; y < last; ++y) {
            const int gone = y - disc_.half - 1;
            if (y > first && gone >= 0) TakeSamples(source_.Row(gone), samples_, columns_);
            Enter(y + disc_.half);
            MarkRow(
                y, marks + static_cast<std::size_t>(y) * static_cast<std::size_t>(source_.Width()));
        }
    }

  private:
    void Enter(int y) const {
        if (y < source_.Height()) AddSamples(source_.Row(y), samples_, columns_);
    }

    // Sums and counts over the square, inside of the picture.
    void SumSquares(int y) const {
        const int width = source_.Width();
        const int rows =
            std::min(source_.Height(), y + disc_.half + 1) - std::max(0, y - disc_.half);
        std::uint32_t sum[kChannels] = {};
        const auto change = [&](int x, bool add) {
            if (x < 0 || x >= width) return;
            const std::uint32_t* column = columns_ + static_cast<std::size_t>(x) * kChannels;
            for (int c = 0; c < kChannels; ++c) sum[c] += add ? column[c] : 0U - column[c];
        };
        for (int x = 0; x < disc_.half; ++x) change(x, true);
        for (int x = 0; x < width; ++x) {
            change(x + disc_.half, true);
            change(x - disc_.half - 1, false);
            const int across = std::min(width, x + disc_.half + 1) - std::max(0, x - disc_.half);
            const auto place = static_cast<std::size_t>(x) * kChannels;
            for (std::size_t c = 0; c < kChannels; ++c) {
                sums_[place + c] = sum[c];
                counts_[place + c] = static_cast<std::uint32_t>(across * rows);
            }
        }
    }

    // Takes off a cell of the square that the disc lacks, where it lies inside.
    void TakeCell(int y, int dy, int dx) const {
        if (y + dy < 0 || y + dy >= source_.Height()) return;
        const int begin = std::max(0, -dx);
        const int end = std::min(source_.Width(), source_.Width() - dx);
        if (begin >= end) return;
        const auto place = static_cast<std::size_t>(begin) * kChannels;
        const auto count = static_cast<std::size_t>(end - begin) * kChannels;
        TakeSamples(source_.At(begin + dx, y + dy), count, sums_ + place);
        for (std::size_t i = 0; i < count; ++i) --counts_[place + i];
    }

    void MarkRow(int y, std::uint8_t* marks) const {
        SumSquares(y);
        for (int row = 0; row < disc_.Side(); ++row)
            for (int k = 0; k < disc_.First(row); ++k) {
                TakeCell(y, row - disc_.half, k - disc_.half);
                TakeCell(y, row - disc_.half, disc_.half - k);
            }
        CompareWithMean(source_.Row(y), sums_, counts_, threshold_, samples_, far_);
        for (int x = 0; x < source_.Width(); ++x) {
            const std::uint8_t* far = far_ + static_cast<std::size_t>(x) * kChannels;
            marks[x] = static_cast<std::uint8_t>(far[0] | far[1] | far[2]);
        }
    }

    ConstImageView source_;
    const Disc& disc_;
    int threshold_;
    std::size_t samples_;
    std::uint32_t *columns_, *sums_, *counts_;
    std::uint8_t* far_;
};

}  // namespace

bool FilterMedian(ConstImageView source, ImageView target, const Disc& disc) {
    return MedianWhere(source, target, disc, nullptr);
}

bool RemoveDust(ConstImageView source, ImageView target, const Disc& disc, int threshold) {
    const PixelBuffer marks = PixelBuffer::TryAllocate(source.Extent().Area());
    if (!marks) return false;
    // No difference is below 0 or above 255.
    const int limited = std::clamp(threshold, -1, 255);
    std::atomic<bool> ok{true};
    imaging::ForRows(source.Height(), 8 * source.Stride(), [&](int first, int last) {
        const PixelBuffer scratch = PixelBuffer::TryAllocate(DustMarks::ScratchSize(source));
        if (scratch) {
            DustMarks(source, disc, limited, reinterpret_cast<std::uint32_t*>(scratch.Data()))
                .Run(first, last, marks.Data());
        } else {
            ok = false;
        }
    });
    return ok && MedianWhere(source, target, disc, marks.Data());
}

}  // namespace lumo::ops::filters

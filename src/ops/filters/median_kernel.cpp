#include "ops/filters/median_kernel.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

// A strip of the picture is walked row by row. Each of its columns keeps a histogram of the samples
// that the disc's square covers in it, in two levels: 16 counts of the upper four bits, and for
// each of them 16 counts of the lower four. All counts are cumulative, so that adding a sample is
// one addition of a vector of zeros and ones, and a rank is found by one comparison. The counts of
// the square are sums of its columns; of the lower level only the part that holds the median is
// brought up to date. Cells of the square that the disc lacks are taken off at the end.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ops/filters/median_kernel.cpp"
#include <hwy/foreach_target.h>
// foreach_target.h comes first.
#include <hwy/highway.h>

#ifndef LUMO_MEDIAN_TYPES
#define LUMO_MEDIAN_TYPES
namespace lumo::ops::filters {
namespace {

constexpr int kStrip = 256;  // columns; their histograms fit in the second cache
constexpr std::size_t kColumns = kStrip + 2 * Disc::kMostHalf;
constexpr std::size_t kBins = 16;
constexpr int kMostMissing = 12;  // cells of the square that a disc may lack
constexpr int kNever = -1'000'000;

struct ColumnCounts {
    alignas(16) std::array<std::uint8_t, kBins> upper;
    alignas(16) std::array<std::array<std::uint8_t, kBins>, kBins> lower;
};

// Counts of the square around the pixel in hand, and the pixel for which they were right.
struct SquareCounts {
    alignas(32) std::array<std::uint16_t, kBins> upper;
    alignas(32) std::array<std::array<std::uint16_t, kBins>, kBins> lower;
    int upperAt;
    std::array<int, kBins> lowerAt;
};

// What one channel of a strip is made of.
struct ChannelState {
    std::array<ColumnCounts, kColumns> columns;
    // Samples of the rows that the square covers, and of the one that it has left.
    std::array<std::array<std::uint8_t, kColumns>, Disc::kMostSide + 1> rows;
    SquareCounts square;
};
struct Strip {
    std::array<ChannelState, imaging::kChannels> channels;
};

struct StepTables {
    // Row k: zeros below k, ones from k on.
    alignas(64) std::array<std::array<std::uint8_t, kBins>, kBins> bytes{};
};
constexpr StepTables kSteps = [] {
    StepTables tables;
    for (std::size_t k = 0; k < kBins; ++k)
        for (std::size_t i = k; i < kBins; ++i) tables.bytes[k][i] = 1;
    return tables;
}();

struct Cell {
    int row = 0, column = 0;  // in the square, from 0
};

// The cells of the square that do not belong to the disc.
struct MissingCells {
    explicit MissingCells(const Disc& disc) {
        for (int row = 0; row < disc.Side(); ++row)
            for (int k = 0; k < disc.First(row); ++k) {
                cells[count++] = {row, k};
                cells[count++] = {row, disc.Side() - 1 - k};
            }
    }
    std::size_t count = 0;
    std::array<Cell, kMostMissing> cells{};
};

}  // namespace
}  // namespace lumo::ops::filters
#endif

HWY_BEFORE_NAMESPACE();
namespace lumo::ops::filters::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;
using D8 = hn::CappedTag<std::uint8_t, kBins>;
using D16 = hn::CappedTag<std::uint16_t, kBins>;
using D8Of16 = hn::Rebind<std::uint8_t, D16>;

HWY_INLINE void AddBytes(std::uint8_t* counts, const std::uint8_t* step) {
    const D8 d;
    for (std::size_t i = 0; i < kBins; i += hn::Lanes(d))
        hn::StoreU(hn::Add(hn::LoadU(d, counts + i), hn::LoadU(d, step + i)), d, counts + i);
}
HWY_INLINE void SubtractBytes(std::uint8_t* counts, const std::uint8_t* step) {
    const D8 d;
    for (std::size_t i = 0; i < kBins; i += hn::Lanes(d))
        hn::StoreU(hn::Sub(hn::LoadU(d, counts + i), hn::LoadU(d, step + i)), d, counts + i);
}

HWY_INLINE void AddSample(ColumnCounts& column, std::size_t value) {
    AddBytes(column.upper.data(), kSteps.bytes[value / kBins].data());
    AddBytes(column.lower[value / kBins].data(), kSteps.bytes[value % kBins].data());
}
HWY_INLINE void ReplaceSample(ColumnCounts& column, std::size_t old, std::size_t value) {
    const D8 d;
    std::uint8_t* upper = column.upper.data();
    const std::uint8_t* plus = kSteps.bytes[value / kBins].data();
    const std::uint8_t* minus = kSteps.bytes[old / kBins].data();
    for (std::size_t i = 0; i < kBins; i += hn::Lanes(d)) {
        const auto change = hn::Sub(hn::LoadU(d, plus + i), hn::LoadU(d, minus + i));
        hn::StoreU(hn::Add(hn::LoadU(d, upper + i), change), d, upper + i);
    }
    SubtractBytes(column.lower[old / kBins].data(), kSteps.bytes[old % kBins].data());
    AddBytes(column.lower[value / kBins].data(), kSteps.bytes[value % kBins].data());
}

// Brings counts that were right for the square around column `at` to the one around `x`: `part`
// of a column gives its counts of that level.
template <class Part>
HWY_INLINE void BringTo(int x, int& at, int half, std::uint16_t* counts, const Part& part) {
    const D16 d;
    const D8Of16 d8;
    const auto load = [&](int column, std::size_t i) {
        return hn::PromoteTo(d, hn::LoadU(d8, part(column) + i));
    };
    for (std::size_t i = 0; i < kBins; i += hn::Lanes(d)) {
        auto sum = hn::Zero(d);
        if (x - at > half) {
            for (int column = x - half; column <= x + half; ++column)
                sum = hn::Add(sum, load(column, i));
        } else {
            sum = hn::LoadU(d, counts + i);
            for (int to = at + 1; to <= x; ++to)
                sum = hn::Add(sum, hn::Sub(load(to + half, i), load(to - half - 1, i)));
        }
        hn::StoreU(sum, d, counts + i);
    }
    at = x;
}

// The samples of the missing cells, one in all lanes of each vector.
using DSigned = hn::RebindToSigned<D16>;
using Missing = std::array<hn::Vec<DSigned>, kMostMissing>;

// How many of the 16 cumulative counts are at most `rank`. Count i covers the samples below
// `limit + i * step`; `below` is added to all counts, and the missing samples are taken off.
HWY_INLINE std::size_t FindRank(const std::uint16_t* counts, int below, int limit, int step,
                                int rank, std::size_t missing, const Missing& samples) {
    const D16 d;
    const DSigned ds;
    const auto above = hn::Set(ds, static_cast<std::int16_t>(rank + 1));
    const auto steps = hn::Mul(hn::Iota(ds, 0), hn::Set(ds, static_cast<std::int16_t>(step)));
    std::size_t found = 0;
    for (std::size_t i = 0; i < kBins; i += hn::Lanes(d)) {
        auto sum = hn::Add(hn::BitCast(ds, hn::LoadU(d, counts + i)),
                           hn::Set(ds, static_cast<std::int16_t>(below)));
        const auto limits = hn::Add(
            steps, hn::Set(ds, static_cast<std::int16_t>(limit + static_cast<int>(i) * step)));
        for (std::size_t k = 0; k < missing; ++k)  // a true lane is -1
            sum = hn::Add(sum, hn::VecFromMask(ds, hn::Lt(samples[k], limits)));
        found += hn::CountTrue(ds, hn::Lt(sum, above));
    }
    return found;
}

// The median of the disc whose square is centred on column x of the strip.
HWY_INLINE std::uint8_t MedianAt(ChannelState& state, int x, const Disc& disc, std::size_t missing,
                                 const std::uint8_t* const* missingRows) {
    SquareCounts& square = state.square;
    const ColumnCounts* columns = state.columns.data();
    const int rank = disc.count / 2;
    Missing samples;
    for (std::size_t k = 0; k < missing; ++k)
        samples[k] = hn::Set(DSigned(), static_cast<std::int16_t>(missingRows[k][x]));

    BringTo(x, square.upperAt, disc.half, square.upper.data(),
            [&](int column) { return columns[column].upper.data(); });
    constexpr int kStep = static_cast<int>(kBins);
    const std::size_t bin = FindRank(square.upper.data(), 0, kStep, kStep, rank, missing, samples);
    const int below = bin == 0 ? 0 : square.upper[bin - 1];
    BringTo(x, square.lowerAt[bin], disc.half, square.lower[bin].data(),
            [&](int column) { return columns[column].lower[bin].data(); });
    return static_cast<std::uint8_t>(bin * kBins + FindRank(square.lower[bin].data(), below,
                                                            static_cast<int>(bin) * kStep + 1, 1,
                                                            rank, missing, samples));
}

class StripWalk {
  public:
    StripWalk(imaging::ConstImageView source, imaging::ImageView target, const Disc& disc,
              const std::uint8_t* wanted, int begin, int end, Strip& strip)
        : source_(source),
          target_(target),
          disc_(disc),
          missing_(disc),
          wanted_(wanted),
          begin_(begin),
          end_(end),
          columns_(end - begin + 2 * disc.half),
          strip_(strip) {}

    void Run(int first, int last) {
        for (ChannelState& state : strip_.channels)
            std::memset(static_cast<void*>(state.columns.data()), 0, sizeof state.columns);
        for (int y = first - disc_.half; y < first + disc_.half; ++y) AddRow(y);
        for (int y = first; y < last; ++y) {
            if (y == first) {
                AddRow(y + disc_.half);
            } else {
                ReplaceRow(y - disc_.half - 1, y + disc_.half);
            }
            for (std::size_t c = 0; c < strip_.channels.size(); ++c) FilterRow(y, c);
        }
    }

  private:
    std::uint8_t* Row(ChannelState& state, int y) const {
        return state.rows[static_cast<std::size_t>(y + disc_.Side()) % state.rows.size()].data();
    }

    static std::uint8_t Checker(int x, int y) {
        return std::abs(x) % 2 == std::abs(y) % 2 ? 255 : 0;
    }

    // Column 0 of the strip's samples is column begin - half of the picture.
    const std::uint8_t* ReadRow(int y, std::size_t channel) const {
        std::uint8_t* row = Row(strip_.channels[channel], y);
        const int origin = begin_ - disc_.half;
        const bool inside = y >= 0 && y < source_.Height();
        const int from = inside ? std::max(0, -origin) : columns_;
        const int to = inside ? std::min(columns_, source_.Width() - origin) : columns_;
        for (int i = 0; i < from; ++i) row[i] = Checker(origin + i, y);
        if (from < to) {
            const std::uint8_t* in = source_.At(origin + from, y) + channel;
            for (int i = from; i < to; ++i, in += imaging::kChannels) row[i] = *in;
        }
        for (int i = to; i < columns_; ++i) row[i] = Checker(origin + i, y);
        return row;
    }

    void AddRow(int y) const {
        for (std::size_t c = 0; c < strip_.channels.size(); ++c) {
            const std::uint8_t* row = ReadRow(y, c);
            for (int i = 0; i < columns_; ++i)
                AddSample(strip_.channels[c].columns[static_cast<std::size_t>(i)], row[i]);
        }
    }

    void ReplaceRow(int gone, int y) const {
        for (std::size_t c = 0; c < strip_.channels.size(); ++c) {
            ChannelState& state = strip_.channels[c];
            const std::uint8_t* row = ReadRow(y, c);
            const std::uint8_t* old = Row(state, gone);
            for (int i = 0; i < columns_; ++i)
                ReplaceSample(state.columns[static_cast<std::size_t>(i)], old[i], row[i]);
        }
    }

    void FilterRow(int y, std::size_t channel) const {
        ChannelState& state = strip_.channels[channel];
        state.square.upperAt = kNever;
        state.square.lowerAt.fill(kNever);
        // For each missing cell the samples that it passes over, by the strip's column of x.
        std::array<const std::uint8_t*, kMostMissing> missingRows{};
        for (std::size_t k = 0; k < missing_.count; ++k)
            missingRows[k] = Row(state, y - disc_.half + missing_.cells[k].row) +
                             missing_.cells[k].column - disc_.half;
        const std::uint8_t* wanted =
            wanted_ == nullptr
                ? nullptr
                : wanted_ + static_cast<std::size_t>(y) * static_cast<std::size_t>(source_.Width());
        const std::uint8_t* in = source_.Row(y) + channel;
        std::uint8_t* out = target_.Row(y) + channel;
        for (int x = begin_; x < end_; ++x) {
            const auto place = static_cast<std::size_t>(x) * imaging::kChannels;
            out[place] = wanted != nullptr && wanted[x] == 0
                             ? in[place]
                             : MedianAt(state, x - begin_ + disc_.half, disc_, missing_.count,
                                        missingRows.data());
        }
    }

    imaging::ConstImageView source_;
    imaging::ImageView target_;
    const Disc& disc_;
    MissingCells missing_;
    const std::uint8_t* wanted_;
    int begin_, end_;
    int columns_;
    Strip& strip_;
};

void MedianRowsOf(imaging::ConstImageView source, imaging::ImageView target, const Disc& disc,
                  const std::uint8_t* wanted, int first, int last, std::uint8_t* scratch) {
    Strip& strip = *new (scratch) Strip;
    for (int begin = 0; begin < source.Width(); begin += kStrip)
        StripWalk(source, target, disc, wanted, begin, std::min(begin + kStrip, source.Width()),
                  strip)
            .Run(first, last);
}

}  // namespace lumo::ops::filters::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace lumo::ops::filters {

HWY_EXPORT(MedianRowsOf);

std::size_t MedianScratchSize() {
    return sizeof(Strip);
}

void MedianRows(imaging::ConstImageView source, imaging::ImageView target, const Disc& disc,
                const std::uint8_t* wanted, int first, int last, std::uint8_t* scratch) {
    HWY_DYNAMIC_DISPATCH(MedianRowsOf)(source, target, disc, wanted, first, last, scratch);
}

}  // namespace lumo::ops::filters
#endif

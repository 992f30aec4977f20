#include <hwy/cache_control.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "imaging/parallel.h"
#include "imaging/simd.h"
#include "ops/geometry/perspective.h"

namespace lumo::ops::geometry {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;

constexpr int kStripWidth = 256;
constexpr std::size_t kBlock = 16;       // columns whose pixels to come are asked for at once,
constexpr std::uint32_t kRowsAhead = 8;  // so many rows before they are drawn

// One squeezed column or row: pixel `offset` + i shows source pixel i * full / left, for i below
// `left`.
struct Squeezed {
    std::int64_t left = 0;
    std::int64_t offset = 0;
};

Squeezed SqueezedAt(int percent, int index, int count, int length) {
    const std::int64_t left = SqueezedLength(percent, index, count, length);
    if (left <= 0) return {};
    return {left, (length - left) / 2};
}

// i * full / left for one i after the other, without a division for each. Unsigned, since a rest
// and a step together may leave 31 bits.
struct Quotient {
    std::uint32_t whole = 0, rest = 0;     // of the present i
    std::uint32_t step = 0, stepRest = 0;  // of one i more
    std::uint32_t divisor = 1;

    Quotient() = default;
    Quotient(std::int64_t i, int full, std::int64_t left)
        : whole(static_cast<std::uint32_t>(i * full / left)),
          rest(static_cast<std::uint32_t>(i * full % left)),
          step(static_cast<std::uint32_t>(full / left)),
          stepRest(static_cast<std::uint32_t>(full % left)),
          divisor(static_cast<std::uint32_t>(left)) {}

    void Next() {
        rest += stepRest;
        const bool carry = rest >= divisor;
        rest -= carry ? divisor : 0;
        whole += step + (carry ? 1 : 0);
    }
};

void SqueezeRow(const std::uint8_t* source, int width, Squeezed row, std::uint8_t* target) {
    if (row.left <= 0) return;
    std::uint8_t* out = target + row.offset * kChannels;
    Quotient from(0, width, row.left);
    // Four bytes at once but for the last pixel: the fourth is overwritten by the next one.
    for (std::int64_t i = 1; i < row.left; ++i, out += kChannels, from.Next())
        std::memcpy(out, source + std::size_t{kChannels} * from.whole, 4);
    std::memcpy(out, source + std::size_t{kChannels} * from.whole, kChannels);
}

// The rows from which the columns of a strip take their pixels, side by side so that many are moved
// on at once.
struct StripQuotients {
    std::array<std::uint32_t, kStripWidth> whole, rest, step, stepRest, divisor;

    void Set(std::size_t k, const Quotient& quotient) {
        whole[k] = quotient.whole;
        rest[k] = quotient.rest;
        step[k] = quotient.step;
        stepRest[k] = quotient.stepRest;
        divisor[k] = quotient.divisor;
    }
};

LUMO_SIMD_CLONES
void MoveOn(StripQuotients& q, std::size_t from, std::size_t to) {
    for (std::size_t k = from; k < to; ++k) {
        const std::uint32_t rest = q.rest[k] + q.stepRest[k];
        const bool carry = rest >= q.divisor[k];
        q.rest[k] = rest - (carry ? q.divisor[k] : 0);
        q.whole[k] += q.step[k] + (carry ? 1 : 0);
    }
}

// Neighbouring columns from `first` on, and where they stand between two rows of the target.
class ColumnStrip {
  public:
    ColumnStrip(ConstImageView source, int percent, int first, int count, int top)
        : source_(source),
          first_(first),
          count_(static_cast<std::size_t>(count)),
          longestFirst_(percent > 0),
          from_(longestFirst_ ? 0 : count_),
          to_(longestFirst_ ? 0 : count_) {
        for (std::size_t k = 0; k < count_; ++k) {
            const Squeezed column =
                SqueezedAt(percent, first + static_cast<int>(k), source.Width(), source.Height());
            columns_[k] = column;
            if (column.left > 0)
                rows_.Set(k, Quotient(std::max<std::int64_t>(top - column.offset, 0),
                                      source.Height(), column.left));
        }
    }

    // Rows in their order, without a gap, from `top` on.
    void DrawRow(int y, ImageView target) {
        FindDrawn(y);
        if (from_ == to_) return;
        const std::size_t stride = source_.Stride();
        const std::uint8_t* const in = source_.At(first_, 0);
        std::uint8_t* const out = target.At(first_, y);
        const auto lastRow = static_cast<std::uint32_t>(source_.Height()) - 1;
        for (std::size_t begin = from_; begin < to_; begin += kBlock) {
            const std::size_t end = std::min(begin + kBlock, to_);
            const std::size_t ahead = std::min(rows_.whole[begin] + kRowsAhead, lastRow);
            hwy::Prefetch(in + ahead * stride + begin * kChannels);
            // Four bytes at once but for the last pixel: the fourth is overwritten by the next one.
            for (std::size_t k = begin; k < end - (end == to_ ? 1 : 0); ++k)
                std::memcpy(out + k * kChannels, in + rows_.whole[k] * stride + k * kChannels, 4);
        }
        const std::size_t k = to_ - 1;
        std::memcpy(out + k * kChannels, in + rows_.whole[k] * stride + k * kChannels, kChannels);
        MoveOn(rows_, from_, to_);
    }

  private:
    bool IsDrawn(std::size_t k, int y) const {
        return y >= columns_[k].offset && y < columns_[k].offset + columns_[k].left;
    }

    // The lengths rise or fall from column to column, and all have the same middle: those with a
    // pixel in row y reach from the longest one to some neighbour.
    void FindDrawn(int y) {
        if (longestFirst_) {
            while (to_ < count_ && IsDrawn(to_, y)) ++to_;
            while (to_ > 0 && !IsDrawn(to_ - 1, y)) --to_;
        } else {
            while (from_ > 0 && IsDrawn(from_ - 1, y)) --from_;
            while (from_ < count_ && !IsDrawn(from_, y)) ++from_;
        }
    }

    ConstImageView source_;
    int first_;
    std::size_t count_;
    bool longestFirst_;
    std::size_t from_, to_;  // columns that have a pixel in the present row
    std::array<Squeezed, kStripWidth> columns_;
    StripQuotients rows_;
};

}  // namespace

std::int64_t SqueezedLength(int percent, int index, int count, int length) {
    const double p = percent / 100.0;
    double begin = length, end = length;
    if (p < 0) begin = p * begin + begin;
    if (p > 0) end = end - p * end;
    return static_cast<std::int64_t>(((end - begin) * (index + 1.0)) / count + begin);
}

void SqueezeImage(ConstImageView source, Squeeze squeeze, int percent, ImageView target) {
    imaging::ForRows(target.Height(), target.Stride(), [&](int top, int bottom) {
        if (squeeze == Squeeze::Columns) {
            for (int first = 0; first < source.Width(); first += kStripWidth) {
                ColumnStrip strip(source, percent, first,
                                  std::min(kStripWidth, source.Width() - first), top);
                for (int y = top; y < bottom; ++y) strip.DrawRow(y, target);
            }
            return;
        }
        for (int y = top; y < bottom; ++y)
            SqueezeRow(source.Row(y), source.Width(),
                       SqueezedAt(percent, y, source.Height(), source.Width()), target.Row(y));
    });
}

}  // namespace lumo::ops::geometry

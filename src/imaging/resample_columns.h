#pragma once

// Resampling along the rows: the shape in which the kernel wants a row and its weights.

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "imaging/image.h"
#include "imaging/pixel_buffer.h"
#include "imaging/resample_kernels.h"
#include "imaging/resample_weights.h"

namespace lumo::imaging {

/// One allocation, handed out in pieces that start at cache lines.
class Scratch {
  public:
    template <typename T>
    static std::size_t Room(std::size_t count) {
        return (count * sizeof(T) + 63) / 64 * 64;
    }
    explicit Scratch(std::size_t bytes) : memory_(PixelBuffer::TryAllocate(bytes)), bytes_(bytes) {}
    explicit operator bool() const { return static_cast<bool>(memory_); }

    template <typename T>
    T* Take(std::size_t count) {
        auto* piece = reinterpret_cast<T*>(memory_.Data() + used_);
        used_ += Room<T>(count);
        assert(used_ <= bytes_);
        return piece;
    }

  private:
    PixelBuffer memory_;
    [[maybe_unused]] std::size_t bytes_ = 0;  // for the assertion only
    std::size_t used_ = 0;
};

/// The weights across a row in the form of the kernel, and the shape of its rows of pairs.
struct ColumnPlan {
    kernels::ColumnSum sum{};
    bool twoPhases = false;  // pairs that begin at odd pixels follow those that begin at even ones
    std::size_t phaseSize = 0;  // 16-bit numbers
    std::size_t rowSize = 0;
    PixelBuffer memory;
};

/// Puts the weights of the axis into the form of the kernel. False, with LastError() set, if there
/// is no memory.
bool PlanColumns(const AxisWeights& axis, ColumnPlan& plan);

/// Packs `count` pixels of a row from an even x on; what lies behind the row stays as it is. Rows
/// of two phases are packed in one go.
template <typename Sample>
void PackPart(const ColumnPlan& plan, const Sample* row, std::size_t x, std::size_t count,
              std::int16_t* pairs) {
    kernels::PackPairs(row + x * kChannels, count, pairs + x / 2 * kernels::kPairSize);
    if (plan.twoPhases) {
        assert(x == 0);
        kernels::PackPairs(row + kChannels, count - 1, pairs + plan.phaseSize);
    }
}

/// Rows of pairs for one call of the kernel. They start black, and stay so behind their last pixel.
struct PairRows {
    static std::size_t Room(const ColumnPlan& plan) {
        return Scratch::Room<std::int16_t>(plan.rowSize * kernels::kMostRows);
    }
    PairRows(const ColumnPlan& plan, Scratch& scratch) {
        const std::size_t size = plan.rowSize * kernels::kMostRows;
        auto* first = scratch.Take<std::int16_t>(size);
        std::fill_n(first, size, std::int16_t{0});
        for (std::size_t i = 0; i < kernels::kMostRows; ++i) rows[i] = first + i * plan.rowSize;
    }
    std::int16_t* rows[kernels::kMostRows];
};

/// Makes as many rows of the target's width.
template <typename Out>
void SumPairs(const ColumnPlan& plan, const PairRows& pairs, int count, int shift,
              Out* const* out) {
    kernels::ColumnSum sum = plan.sum;
    sum.shift = shift;
    kernels::SumColumns(sum, pairs.rows, count, out);
}

}  // namespace lumo::imaging

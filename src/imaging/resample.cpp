#include "imaging/resample.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstring>
#include <vector>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/resample_columns.h"
#include "imaging/resample_kernels.h"
#include "imaging/resample_weights.h"

namespace lumo::imaging {
namespace {

using kernels::kMostRows;

// The sums of the first axis start from bytes: 22 bits of weight, twice over for filters that
// overshoot, and 8 of the sample stay below 2^31. Those of the second axis start from 16-bit
// samples, which share the 31 bits with the weights.
constexpr int kFirstAxisBits = 22;
constexpr int kSecondAxisBits = 18;
constexpr int kMostFractionBits = 6;

// Bytes of each source row that are worked on at a time, so that the rows under a few target rows
// stay in the cache however many they are.
constexpr std::size_t kTile = 3072;
static_assert(kTile % (2 * kChannels) == 0, "a tile is made of whole pairs of pixels");

/// Everything that stays the same from row to row.
struct Job {
    ConstImageView source;
    ImageView target;
    AxisWeights across, down;
    ColumnPlan columns;
    int fractionBits = 0;  // of the samples between the two axes
};

/// The source rows under target row y; an odd number of taps names its last row twice.
void ListRows(const Job& job, int y, const std::uint8_t** rows) {
    const int first = job.down.First(y);
    for (int k = 0; k < job.down.taps; ++k) rows[k] = job.source.Row(first + k);
    if (job.down.taps < job.down.stride) rows[job.down.taps] = rows[job.down.taps - 1];
}

/// The source rows under a few target rows in turn.
class RowLists {
  public:
    static std::size_t Room(const Job& job) {
        return Scratch::Room<const std::uint8_t*>(Listed(job) * kMostRows);
    }
    RowLists(const Job& job, Scratch& scratch)
        : listed_(Listed(job)), rows_(scratch.Take<const std::uint8_t*>(listed_ * kMostRows)) {}

    void Fill(const Job& job, int y, int count) {
        for (int i = 0; i < count; ++i) ListRows(job, y + i, Row(i));
    }
    const std::uint8_t** Row(int i) { return rows_ + static_cast<std::size_t>(i) * listed_; }

  private:
    static std::size_t Listed(const Job& job) { return static_cast<std::size_t>(job.down.stride); }

    std::size_t listed_;
    const std::uint8_t** rows_;
};

/// The rows of the target that one step makes.
struct TargetRows {
    TargetRows(ImageView target, int y, int last) : count(std::min(kMostRows, last - y)) {
        for (int i = 0; i < count; ++i) rows[i] = target.Row(y + i);
    }
    int count;
    std::uint8_t* rows[kMostRows] = {};
};

bool DownOnly(const Job& job, int first, int last) {
    Scratch scratch(RowLists::Room(job));
    if (!scratch) return false;
    RowLists lists(job, scratch);
    const std::size_t bytes = job.source.Stride();
    for (int y = first; y < last; y += kMostRows) {
        const TargetRows out(job.target, y, last);
        lists.Fill(job, y, out.count);
        for (std::size_t begin = 0; begin < bytes; begin += kTile)
            for (int i = 0; i < out.count; ++i)
                kernels::SumRows(
                    {lists.Row(i), job.down.Weights(y + i), job.down.stride, job.down.bits}, begin,
                    std::min(bytes, begin + kTile), out.rows[i]);
    }
    return true;
}

bool AcrossOnly(const Job& job, int first, int last) {
    Scratch scratch(PairRows::Room(job.columns));
    if (!scratch) return false;
    const PairRows pairs(job.columns, scratch);
    const auto width = static_cast<std::size_t>(job.source.Width());
    for (int y = first; y < last; y += kMostRows) {
        const TargetRows out(job.target, y, last);
        for (int i = 0; i < out.count; ++i)
            PackPart(job.columns, job.source.Row(y + i), 0, width, pairs.rows[i]);
        SumPairs(job.columns, pairs, out.count, job.across.bits, out.rows);
    }
    return true;
}

/// For a picture that gets lower: few rows are left for the dearer axis.
bool DownThenAcross(const Job& job, int first, int last) {
    const std::size_t bytes = job.source.Stride();
    Scratch scratch(RowLists::Room(job) + PairRows::Room(job.columns) +
                    Scratch::Room<std::int16_t>(bytes));
    if (!scratch) return false;
    RowLists lists(job, scratch);
    const PairRows pairs(job.columns, scratch);
    auto* between = scratch.Take<std::int16_t>(bytes);
    const std::size_t tile = job.columns.twoPhases ? bytes : kTile;
    const int shift = job.down.bits - job.fractionBits;
    for (int y = first; y < last; y += kMostRows) {
        const TargetRows out(job.target, y, last);
        lists.Fill(job, y, out.count);
        for (std::size_t begin = 0; begin < bytes; begin += tile) {
            const std::size_t end = std::min(bytes, begin + tile);
            for (int i = 0; i < out.count; ++i) {
                kernels::SumRows({lists.Row(i), job.down.Weights(y + i), job.down.stride, shift},
                                 begin, end, between);
                PackPart(job.columns, between, begin / kChannels, (end - begin) / kChannels,
                         pairs.rows[i]);
            }
        }
        SumPairs(job.columns, pairs, out.count, job.across.bits + job.fractionBits, out.rows);
    }
    return true;
}

/// How far, at most, the first source row of a target row lies above that of an earlier one:
/// weights that came out as 0 at the start of a window move it on by a few.
int StepBack(const AxisWeights& axis) {
    int furthest = 0, back = 0;
    for (int i = 0; i < axis.target; ++i) {
        furthest = std::max(furthest, axis.First(i));
        back = std::max(back, furthest - axis.First(i));
    }
    return back;
}

/// The last few source rows, made as wide as the target.
class WideRows {
  public:
    WideRows(const Job& job, int capacity)
        : capacity_(capacity),
          stride_(Scratch::Room<std::int16_t>(job.target.Stride() + 1) / sizeof(std::int16_t)) {}
    std::size_t Room() const {
        return Scratch::Room<std::int16_t>(stride_ * static_cast<std::size_t>(capacity_));
    }
    void Take(Scratch& scratch) {
        rows_ = scratch.Take<std::int16_t>(stride_ * static_cast<std::size_t>(capacity_));
    }
    std::int16_t* Row(int y) const {
        return rows_ + static_cast<std::size_t>(y % capacity_) * stride_;
    }

  private:
    int capacity_;
    std::size_t stride_;
    std::int16_t* rows_ = nullptr;
};

/// Widens up to kMostRows source rows from y on, and says how many.
int Widen(const Job& job, int y, const PairRows& pairs, const WideRows& wide) {
    const int count = std::min(kMostRows, job.source.Height() - y);
    std::int16_t* out[kMostRows] = {};
    for (int i = 0; i < count; ++i) {
        PackPart(job.columns, job.source.Row(y + i), 0,
                 static_cast<std::size_t>(job.source.Width()), pairs.rows[i]);
        out[i] = wide.Row(y + i);
    }
    SumPairs(job.columns, pairs, count, job.across.bits - job.fractionBits, out);
    return count;
}

/// For a picture that gets higher: each source row is made wider once and waits in a ring until
/// the last target row that needs it.
bool AcrossThenDown(const Job& job, int first, int last) {
    const int taps = job.down.taps;
    const int back = StepBack(job.down);
    const auto listed = static_cast<std::size_t>(job.down.stride);
    WideRows wide(job, taps + back + kMostRows - 1);
    Scratch scratch(PairRows::Room(job.columns) + Scratch::Room<const std::int16_t*>(listed) +
                    wide.Room());
    if (!scratch) return false;
    const PairRows pairs(job.columns, scratch);
    auto* rows = scratch.Take<const std::int16_t*>(listed);
    wide.Take(scratch);
    const int shift = job.down.bits + job.fractionBits;
    int next = std::max(0, job.down.First(first) - back);  // source row that the ring takes next
    for (int y = first; y < last; ++y) {
        const int top = job.down.First(y);
        while (next < top + taps) next += Widen(job, next, pairs, wide);
        for (int k = 0; k < job.down.stride; ++k) rows[k] = wide.Row(top + std::min(k, taps - 1));
        kernels::SumRows({rows, job.down.Weights(y), job.down.stride, shift}, 0,
                         job.target.Stride(), job.target.Row(y));
    }
    return true;
}

/// The most fraction bits with which neither the samples between the axes leave 16 bits nor the
/// sums of the second axis 32. Each axis can overshoot by its gain.
int FractionBits(const AxisWeights& first, const AxisWeights& second) {
    const double overshoot = 255.0 * static_cast<double>(first.gain) / (1 << first.bits) + 1.0;
    int bits = kMostFractionBits;
    while (overshoot * (1 << bits) > 32767.0 ||
           (overshoot * static_cast<double>(second.gain) + (1 << (second.bits - 1))) * (1 << bits) >
               2147483647.0)
        --bits;
    assert(bits >= 1);
    return bits;
}

bool OverRows(const Job& job, bool (*range)(const Job& job, int first, int last)) {
    std::atomic<bool> ok = true;
    const int rows = job.target.Height();
    const std::size_t work =
        (job.source.Bytes().size() + job.target.Bytes().size()) / static_cast<std::size_t>(rows);
    ForRows(rows, work, [&](int first, int last) {
        if (!range(job, first, last)) ok = false;
    });
    if (!ok) SetLastError("not enough memory to change the size");
    return ok;
}

bool BuildAxis(int source, int target, ResampleFilter filter, int maxBits, AxisWeights& axis) {
    auto built = BuildAxisWeights(source, target, filter, maxBits);
    if (built) axis = std::move(*built);
    return built.has_value();
}

bool Filtered(ConstImageView source, ImageView target, ResampleFilter filter) {
    Job job{.source = source, .target = target};
    const Size from = source.Extent(), to = target.Extent();
    const bool across = from.width != to.width, down = from.height != to.height;
    const bool downFirst = to.height < from.height;
    const int downBits = across && !downFirst ? kSecondAxisBits : kFirstAxisBits;
    const int acrossBits = down && downFirst ? kSecondAxisBits : kFirstAxisBits;
    if (down && !BuildAxis(from.height, to.height, filter, downBits, job.down)) return false;
    if (across && (!BuildAxis(from.width, to.width, filter, acrossBits, job.across) ||
                   !PlanColumns(job.across, job.columns)))
        return false;
    if (!across) return OverRows(job, DownOnly);
    if (!down) return OverRows(job, AcrossOnly);
    job.fractionBits =
        downFirst ? FractionBits(job.down, job.across) : FractionBits(job.across, job.down);
    return OverRows(job, downFirst ? DownThenAcross : AcrossThenDown);
}

/// The source position under the centre of target position i; on a border, the right one.
int NearestPosition(int source, int target, int i) {
    return static_cast<int>((2 * static_cast<std::int64_t>(i) + 1) * source /
                            (2 * static_cast<std::int64_t>(target)));
}

bool Nearest(ConstImageView source, ImageView target) {
    const int width = target.Width();
    const auto columns = static_cast<std::size_t>(width);
    Scratch scratch(Scratch::Room<std::size_t>(columns));
    if (!scratch) return false;
    auto* offsets = scratch.Take<std::size_t>(columns);
    for (int x = 0; x < width; ++x)
        offsets[x] = StrideOf({NearestPosition(source.Width(), width, x), 1});
    ForRows(target.Height(), target.Stride() * 2, [&](int first, int last) {
        int before = -1;
        for (int y = first; y < last; ++y) {
            const int from = NearestPosition(source.Height(), target.Height(), y);
            std::uint8_t* out = target.Row(y);
            const std::uint8_t* row = source.Row(from);
            if (from == before) {
                std::memcpy(out, target.Row(y - 1), target.Stride());
            } else if (width == source.Width()) {
                std::memcpy(out, row, target.Stride());
            } else {
                for (int x = 0; x < width; ++x, out += kChannels)
                    std::memcpy(out, row + offsets[x], kChannels);
            }
            before = from;
        }
    });
    return true;
}

}  // namespace

ResampleFilter FilterOfCode(int code) {
    switch (code) {
        case 1:
        case 18:
            return ResampleFilter::Nearest;
        case 3:
        case 17:
            return ResampleFilter::Bicubic;
        case 4:
        case 14:
            return ResampleFilter::Box;
        case 8:
            return ResampleFilter::Lanczos3;
        case 11:
            return ResampleFilter::Hermite;
        case 13:
            return ResampleFilter::CatmullRom;
        default:
            return ResampleFilter::Bilinear;
    }
}

bool ResizeImage(ConstImageView source, ImageView target, ResampleFilter filter) {
    assert(!source.IsEmpty() && !target.IsEmpty());
    if (std::max({source.Width(), source.Height(), target.Width(), target.Height()}) >
        kLongestSide) {
        SetLastError("a side is too long to change the size");
        return false;
    }
    if (source.Extent() == target.Extent()) {
        std::memcpy(target.Bytes().data(), source.Bytes().data(), source.Bytes().size());
        return true;
    }
    return filter == ResampleFilter::Nearest ? Nearest(source, target)
                                             : Filtered(source, target, filter);
}

}  // namespace lumo::imaging

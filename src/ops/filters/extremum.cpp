#include "ops/filters/extremum.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>

#include "imaging/colour.h"
#include "imaging/parallel.h"
#include "imaging/pixel_buffer.h"
#include "imaging/simd.h"

namespace lumo::ops::filters {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;
using imaging::PixelBuffer;

// The search is made for all pixels of a stretch of a row at once. A cell's key orders the cells
// of a disc: brightness (of the complement for the minimum) first, then the place, so that the
// largest key is the one that a search would end with. A key of 0 is a cell outside.
constexpr int kStretch = 2048;
constexpr int kMargin = 2 * Disc::kMostHalf;
constexpr std::size_t kKeys = kStretch + 2 * kMargin;
constexpr std::size_t kGroups = Disc::kMostFirst + 1;  // rows by their first cell

using Keys16 = std::array<std::uint16_t, kKeys>;
using Keys32 = std::array<std::uint32_t, kKeys>;

struct Scratch {
    std::array<Keys16, kGroups> search;    // of each column: brightness, row counted from above
    std::array<Keys16, kGroups> entering;  // brightness, row counted from below: the first wins
    Keys32 best, next;                     // brightness, row, column of the stretch
};

LUMO_SIMD_CLONES
void LumaRow(const std::uint8_t* row, std::size_t width, std::uint8_t flip, std::uint8_t* luma) {
    for (std::size_t x = 0; x < width; ++x) {
        const std::uint8_t* pixel = row + x * kChannels;
        luma[x] =
            static_cast<std::uint8_t>(imaging::ComputeLuma(pixel[0], pixel[1], pixel[2]) ^ flip);
    }
}

// Takes one more row of brightness into the keys of its columns.
LUMO_SIMD_CLONES
void TakeRow(const std::uint8_t* __restrict luma, std::size_t count, std::uint16_t fromAbove,
             std::uint16_t fromBelow, std::uint16_t* __restrict search,
             std::uint16_t* __restrict entering) {
    for (std::size_t x = 0; x < count; ++x) {
        const auto bright = static_cast<std::uint16_t>(luma[x] << 8);
        search[x] = std::max(search[x], static_cast<std::uint16_t>(bright | fromAbove));
        entering[x] = std::max(entering[x], static_cast<std::uint16_t>(bright | fromBelow));
    }
}

LUMO_SIMD_CLONES
void MaxKeys(const std::uint16_t* __restrict more, std::size_t count,
             std::uint16_t* __restrict keys) {
    for (std::size_t x = 0; x < count; ++x) keys[x] = std::max(keys[x], more[x]);
}

// Key of a column with its place below; a column without a cell inside keeps no place.
inline std::uint32_t WithPlace(std::uint16_t key, std::size_t place) {
    return key == 0 ? 0U : (std::uint32_t{key} << 16) | static_cast<std::uint32_t>(place);
}

LUMO_SIMD_CLONES
void AddPlaces(const std::uint16_t* __restrict keys, std::size_t count,
               std::uint32_t* __restrict placed) {
    for (std::size_t x = 0; x < count; ++x) placed[x] = WithPlace(keys[x], x);
}

// out[x] = the larger of in[x] and in[x + step]
LUMO_SIMD_CLONES
void MaxOfTwo(const std::uint32_t* __restrict in, std::size_t step, std::size_t count,
              std::uint32_t* __restrict out) {
    for (std::size_t x = 0; x < count; ++x) out[x] = std::max(in[x], in[x + step]);
}

// best[x] = the largest of itself and the keys of the two columns at these distances
LUMO_SIMD_CLONES
void TakeColumns(const std::uint16_t* __restrict keys, std::size_t left, std::size_t right,
                 std::size_t count, std::uint32_t* __restrict best) {
    for (std::size_t x = 0; x < count; ++x)
        best[x] = std::max(
            {best[x], WithPlace(keys[x + left], x + left), WithPlace(keys[x + right], x + right)});
}

// The search along one chunk of rows.
class RowSearch {
  public:
    RowSearch(ConstImageView source, const Disc& disc, Extremum extremum, std::uint8_t* lumaRing,
              Scratch& scratch)
        : source_(source),
          disc_(disc),
          flip_(extremum == Extremum::Maximum ? 0 : 255),
          width_(static_cast<std::size_t>(source.Width())),
          ring_(lumaRing),
          scratch_(scratch) {
        for (int row = 0; row < disc.Side(); ++row) cut_ = std::max(cut_, disc.First(row));
    }

    void Run(ImageView target, int first, int last) {
        for (int y = std::max(0, first - disc_.half); y < first + disc_.half; ++y) ReadLuma(y);
        for (int y = first; y < last; ++y) {
            ReadLuma(y + disc_.half);
            SearchRow(y, target.Row(y));
        }
    }

  private:
    std::uint8_t* Luma(int y) const {
        return ring_ + static_cast<std::size_t>(y % disc_.Side()) * width_;
    }
    void ReadLuma(int y) const {
        if (y < source_.Height()) LumaRow(source_.Row(y), width_, flip_, Luma(y));
    }

    // Pixel under the hand: what the rows' history has come to.
    struct Held {
        unsigned bright = 0;
        int leaves = 0;  // the step at which it is outside of the disc
        const std::uint8_t* pixel = nullptr;
    };

    void Hold(Held& held, int y, unsigned bright, int row, int column) const {
        held.bright = bright;
        held.leaves = column + disc_.half + 1 - disc_.First(row);
        held.pixel = source_.At(column, y - disc_.half + row);
    }

    void SearchRow(int y, std::uint8_t* out) const {
        Held held;
        held.leaves = -1;  // the disc around column -1 is searched in full
        for (int begin = -1; begin < source_.Width(); begin += kStretch) {
            const int end = std::min(begin + kStretch, source_.Width());
            FillKeys(y, begin, end);
            SearchStretch(y, begin, end, held, out);
        }
    }

    // Index 0 of the keys stands for the column begin - half.
    void FillKeys(int y, int begin, int end) const {
        const int origin = begin - disc_.half;
        const auto count = static_cast<std::size_t>(end - origin + disc_.half);
        const auto groups = static_cast<std::size_t>(cut_) + 1;
        for (std::size_t g = 0; g < groups; ++g) {
            std::fill_n(scratch_.search[g].begin(), count, std::uint16_t{0});
            std::fill_n(scratch_.entering[g].begin(), count, std::uint16_t{0});
        }
        const int from = std::max(0, origin);
        const int to = std::min(source_.Width(), end + disc_.half);
        const auto skip = static_cast<std::size_t>(from - origin);
        for (int row = 0; row < disc_.Side(); ++row) {
            const int line = y - disc_.half + row;
            if (line < 0 || line >= source_.Height() || from >= to) continue;
            const auto group = static_cast<std::size_t>(disc_.First(row));
            TakeRow(Luma(line) + from, static_cast<std::size_t>(to - from),
                    static_cast<std::uint16_t>(row + 1),
                    static_cast<std::uint16_t>(disc_.Side() - row),
                    scratch_.search[group].data() + skip, scratch_.entering[group].data() + skip);
        }
        // Columns nearer to the centre have more rows.
        for (std::size_t g = 1; g < groups; ++g)
            MaxKeys(scratch_.search[g - 1].data(), count, scratch_.search[g].data());
        SearchAll(static_cast<std::size_t>(end - begin), count);
        MergeEntering(static_cast<std::size_t>(end - begin));
    }

    // best[x] becomes the largest key of the disc around column begin + x.
    void SearchAll(std::size_t pixels, std::size_t count) const {
        const auto cut = static_cast<std::size_t>(cut_);
        const auto side = static_cast<std::size_t>(disc_.Side());
        const std::size_t full = side - 2 * cut;  // columns with all of their rows
        std::uint32_t* keys = scratch_.best.data();
        std::uint32_t* other = scratch_.next.data();
        AddPlaces(scratch_.search[cut].data(), count, keys);
        std::size_t span = 1;  // keys[x] covers the columns x to x + span - 1
        for (; 2 * span <= full; span *= 2) {
            MaxOfTwo(keys, span, count - 2 * span + 1, other);
            std::swap(keys, other);
        }
        // The one span begins at the first full column, the other ends at the last.
        MaxOfTwo(keys + cut, full - span, pixels, other);
        if (other != scratch_.best.data()) std::copy_n(other, pixels, scratch_.best.data());
        for (std::size_t g = 0; g < cut; ++g)
            TakeColumns(scratch_.search[g].data(), g, side - 1 - g, pixels, scratch_.best.data());
    }

    // entering[0][x + 2 * half] becomes the largest key of all cells that enter with that pixel.
    void MergeEntering(std::size_t pixels) const {
        const auto reach = static_cast<std::size_t>(2 * disc_.half);
        for (std::size_t g = 1; g <= static_cast<std::size_t>(cut_); ++g)
            MaxKeys(scratch_.entering[g].data() + reach - g, pixels,
                    scratch_.entering[0].data() + reach);
    }

    void SearchStretch(int y, int begin, int end, Held& held, std::uint8_t* out) const {
        const int origin = begin - disc_.half;
        const std::uint16_t* entering = scratch_.entering[0].data() + 2 * disc_.half;
        Held now = held;
        for (int x = begin; x < end; ++x) {
            const auto i = static_cast<std::size_t>(x - begin);
            const std::uint32_t found = scratch_.best[i];
            if (x == now.leaves) {
                Hold(now, y, found >> 24, static_cast<int>((found >> 16) & 0xFF) - 1,
                     origin + static_cast<int>(found & 0xFFFF));
            } else if ((found >> 24) > now.bright) {
                // The best of the disc has become better: by a pixel that has just entered.
                const int row = disc_.Side() - (entering[i] & 0xFF);
                Hold(now, y, entering[i] >> 8, row, x + disc_.half - disc_.First(row));
            }
            if (x >= 0) std::memcpy(out + static_cast<std::size_t>(x) * kChannels, now.pixel, 3);
        }
        held = now;
    }

    ConstImageView source_;
    const Disc& disc_;
    std::uint8_t flip_;
    std::size_t width_;
    std::uint8_t* ring_;  // brightness of the rows that the disc covers
    Scratch& scratch_;
    int cut_ = 0;  // columns on each side that miss some rows
};

}  // namespace

bool FilterExtremum(ConstImageView source, ImageView target, const Disc& disc, Extremum extremum) {
    std::atomic<bool> ok{true};
    imaging::ForRows(source.Height(), 8 * source.Stride(), [&](int first, int last) {
        const PixelBuffer ring = PixelBuffer::TryAllocate(static_cast<std::size_t>(source.Width()) *
                                                          static_cast<std::size_t>(disc.Side()));
        const PixelBuffer scratch = PixelBuffer::TryAllocate(sizeof(Scratch));
        if (ring && scratch) {
            RowSearch(source, disc, extremum, ring.Data(), *new (scratch.Data()) Scratch)
                .Run(target, first, last);
        } else {
            ok = false;
        }
    });
    return ok;
}

}  // namespace lumo::ops::filters

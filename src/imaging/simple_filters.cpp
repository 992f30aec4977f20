#include "imaging/simple_filters.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/pixel_buffer.h"
#include "imaging/simd.h"

namespace lumo::imaging {
namespace {

constexpr std::size_t kStep = kChannels;

// The rows above, at and below y; beyond the edges the edge row.
struct ThreeRows {
    ThreeRows(ConstImageView image, int y)
        : above(image.Row(std::max(y - 1, 0))),
          here(image.Row(y)),
          below(image.Row(std::min(y + 1, image.Height() - 1))) {}
    ThreeRows(const std::uint8_t* a, const std::uint8_t* h, const std::uint8_t* b)
        : above(a), here(h), below(b) {}

    const std::uint8_t* above;
    const std::uint8_t* here;
    const std::uint8_t* below;
};

int ColumnSum(const ThreeRows& rows, std::size_t i) {
    return rows.above[i] + rows.here[i] + rows.below[i];
}

// Nine times a mean, moved by `weight` thousand-eight-hundredths of its difference from the pixel.
// out = pixel + weight * (9 * pixel - sum) / 900, rounded half up: the weight is -100 for a full
// blur and 200 for a full sharpening.
constexpr int kScale = 900;
inline std::uint8_t Moved(int pixel, int sum, int weight) {
    const int scaled = pixel * kScale + weight * (9 * pixel - sum) + kScale / 2;
    return static_cast<std::uint8_t>(std::clamp(scaled, 0, 256 * kScale - 1) / kScale);
}

LUMO_SIMD_CLONES
void MoveInside(const std::uint8_t* __restrict above, const std::uint8_t* __restrict here,
                const std::uint8_t* __restrict below, std::size_t begin, std::size_t end,
                int weight, std::uint8_t* __restrict out) {
    for (std::size_t i = begin; i < end; ++i) {
        const int sum = above[i - kStep] + above[i] + above[i + kStep] + here[i - kStep] + here[i] +
                        here[i + kStep] + below[i - kStep] + below[i] + below[i + kStep];
        out[i] = Moved(here[i], sum, weight);
    }
}

void MoveRow(const ThreeRows& rows, std::size_t stride, int weight, std::uint8_t* out) {
    const std::size_t last = stride - kStep;
    for (std::size_t c = 0; c < kStep; ++c)
        for (const std::size_t i : {c, last + c}) {
            const std::size_t left = i < kStep ? i : i - kStep;
            const std::size_t right = i < last ? i + kStep : i;
            out[i] =
                Moved(rows.here[i],
                      ColumnSum(rows, left) + ColumnSum(rows, i) + ColumnSum(rows, right), weight);
        }
    if (stride > 2 * kStep) MoveInside(rows.above, rows.here, rows.below, kStep, last, weight, out);
}

bool RefuseEmpty(ConstImageView image) {
    if (image.IsEmpty()) SetLastError("the picture is empty");
    return image.IsEmpty();
}

bool MoveImage(ConstImageView source, ImageView target, int weight) {
    if (RefuseEmpty(source)) return false;
    if (source.Extent() != target.Extent()) {
        SetLastError("the target of the filter has another size than the picture");
        return false;
    }
    ForRows(source.Height(), 4 * source.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y)
            MoveRow(ThreeRows(source, y), source.Stride(), weight, target.Row(y));
    });
    return true;
}

// The sum of the eight pixels around a pixel, by channel.
std::array<int, kChannels> SumAround(const ThreeRows& rows, int x, int width) {
    std::array<int, kChannels> sums{};
    const auto at = static_cast<std::size_t>(x) * kStep;
    const std::size_t left = x > 0 ? at - kStep : at;
    const std::size_t right = x + 1 < width ? at + kStep : at;
    for (std::size_t c = 0; c < kStep; ++c)
        sums[c] = ColumnSum(rows, left + c) + ColumnSum(rows, at + c) + ColumnSum(rows, right + c) -
                  rows.here[at + c];
    return sums;
}

// Eight times the colour change of each pixel of a row, with a 0 before and behind.
void ChangesOfRow(const ThreeRows& rows, int width, std::int32_t* changes) {
    changes[0] = changes[width + 1] = 0;
    for (int x = 0; x < width; ++x) {
        const std::array<int, kChannels> around = SumAround(rows, x, width);
        int change = 0;
        for (std::size_t c = 0; c < kStep; ++c)
            change += std::abs(8 * rows.here[static_cast<std::size_t>(x) * kStep + c] - around[c]);
        changes[x + 1] = change;
    }
}

bool IsGreatest(const std::array<const std::int32_t*, 3>& changes, int x) {
    const std::int32_t own = changes[1][x + 1];
    for (int i = x; i <= x + 2; ++i)
        if (changes[0][i] >= own || changes[2][i] >= own) return false;
    return changes[1][x] < own && changes[1][x + 2] < own;
}

}  // namespace

bool BlurImage(ConstImageView source, ImageView target, int strength) {
    return MoveImage(source, target, -std::clamp(strength, 0, 100));
}

bool SharpenImage(ConstImageView source, ImageView target, int amount) {
    return MoveImage(source, target, 2 * std::clamp(amount, 0, 100));
}

bool DespeckleImage(ImageView image) {
    const int width = image.Width(), height = image.Height();
    if (RefuseEmpty(image)) return false;
    const std::size_t stride = image.Stride();
    const std::size_t changeCount = static_cast<std::size_t>(width) + 2;
    // Rows as they stood, and their changes: four of each go round.
    const PixelBuffer memory =
        PixelBuffer::TryAllocate(4 * changeCount * sizeof(std::int32_t) + 4 * stride);
    if (!memory) return false;
    auto* changes = reinterpret_cast<std::int32_t*>(memory.Data());
    std::fill_n(changes, 4 * changeCount, 0);
    std::uint8_t* copies = memory.Data() + 4 * changeCount * sizeof(std::int32_t);
    const auto changesOf = [&](int y) {
        return changes + static_cast<std::size_t>(y + 4) % 4 * changeCount;
    };
    const auto copyOf = [&](int y) {
        return copies + static_cast<std::size_t>(std::clamp(y, 0, height - 1)) % 4 * stride;
    };
    const auto rowsOf = [&](int y) { return ThreeRows(copyOf(y - 1), copyOf(y), copyOf(y + 1)); };

    std::memcpy(copyOf(0), image.Row(0), stride);
    for (int y = -1; y < height; ++y) {
        // Row y + 1 gets its changes, for which row y + 2 is needed; then row y can be filtered.
        if (y + 2 < height) std::memcpy(copyOf(y + 2), image.Row(y + 2), stride);
        if (y == -1 && height > 1) std::memcpy(copyOf(1), image.Row(1), stride);
        if (y + 1 < height) {
            ChangesOfRow(rowsOf(y + 1), width, changesOf(y + 1));
        } else {
            std::fill_n(changesOf(y + 1), changeCount, 0);
        }
        if (y < 0) continue;
        const std::array<const std::int32_t*, 3> near{changesOf(y - 1), changesOf(y),
                                                      changesOf(y + 1)};
        for (int x = 0; x < width; ++x) {
            if (!IsGreatest(near, x)) continue;
            const std::array<int, kChannels> around = SumAround(rowsOf(y), x, width);
            for (std::size_t c = 0; c < kStep; ++c)
                image.At(x, y)[c] = static_cast<std::uint8_t>((around[c] + 4) / 8);
        }
    }
    return true;
}

}  // namespace lumo::imaging

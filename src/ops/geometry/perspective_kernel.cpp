#include <algorithm>
#include <array>
#include <cstring>

#include "imaging/parallel.h"
#include "ops/geometry/perspective.h"

namespace lumo::ops::geometry {
namespace {

using imaging::ConstImageView;
using imaging::ImageView;
using imaging::kChannels;

constexpr int kStripWidth = 256;

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

void SqueezeRow(const std::uint8_t* source, int width, Squeezed row, std::uint8_t* target) {
    std::uint8_t* out = target + row.offset * kChannels;
    for (std::int64_t i = 0; i < row.left; ++i, out += kChannels)
        std::memcpy(out, source + i * width / row.left * kChannels, kChannels);
}

void SqueezeColumns(ConstImageView source, int percent, int first, int last, int top, int bottom,
                    ImageView target) {
    std::array<Squeezed, kStripWidth> columns;
    for (int x = first; x < last; ++x)
        columns[static_cast<std::size_t>(x - first)] =
            SqueezedAt(percent, x, source.Width(), source.Height());
    for (int y = top; y < bottom; ++y)
        for (int x = first; x < last; ++x) {
            const Squeezed column = columns[static_cast<std::size_t>(x - first)];
            const std::int64_t i = y - column.offset;
            if (i < 0 || i >= column.left) continue;
            const auto from = static_cast<int>(i * source.Height() / column.left);
            std::memcpy(target.At(x, y), source.At(x, from), kChannels);
        }
}

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
            for (int first = 0; first < source.Width(); first += kStripWidth)
                SqueezeColumns(source, percent, first,
                               std::min(first + kStripWidth, source.Width()), top, bottom, target);
            return;
        }
        for (int y = top; y < bottom; ++y)
            SqueezeRow(source.Row(y), source.Width(),
                       SqueezedAt(percent, y, source.Height(), source.Width()), target.Row(y));
    });
}

}  // namespace lumo::ops::geometry

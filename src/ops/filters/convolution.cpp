#include "ops/filters/convolution.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "imaging/pixel_buffer.h"
#include "imaging/simd.h"

namespace lumo::ops::filters {
namespace {

using imaging::ImageView;
using imaging::kChannels;
using imaging::PixelBuffer;

constexpr int kSide = 5;
constexpr std::size_t kStep = kChannels;
constexpr std::size_t kMargin = 2 * kStep;
// Where the weights are small, sums fit in 16 bits and every possible one has its byte in a table.
constexpr std::int64_t kMostSmallSum = 32767;
constexpr std::size_t kTableSize = 65536;

// sums += five weighted columns of a row. Unsigned, so that sums of absurd weights wrap.
LUMO_SIMD_CLONES
void AddRow16(const std::uint8_t* __restrict row, const int* weights, std::size_t count,
              std::uint16_t* __restrict sums) {
    const auto w0 = static_cast<std::uint16_t>(weights[0]);
    const auto w1 = static_cast<std::uint16_t>(weights[1]);
    const auto w2 = static_cast<std::uint16_t>(weights[2]);
    const auto w3 = static_cast<std::uint16_t>(weights[3]);
    const auto w4 = static_cast<std::uint16_t>(weights[4]);
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = static_cast<std::uint16_t>(sums[i] + static_cast<std::uint16_t>(w0 * row[i]) +
                                             static_cast<std::uint16_t>(w1 * row[i + kStep]) +
                                             static_cast<std::uint16_t>(w2 * row[i + 2 * kStep]) +
                                             static_cast<std::uint16_t>(w3 * row[i + 3 * kStep]) +
                                             static_cast<std::uint16_t>(w4 * row[i + 4 * kStep]));
}

LUMO_SIMD_CLONES
void AddRow32(const std::uint8_t* __restrict row, const int* weights, std::size_t count,
              std::uint32_t* __restrict sums) {
    const auto w0 = static_cast<std::uint32_t>(weights[0]);
    const auto w1 = static_cast<std::uint32_t>(weights[1]);
    const auto w2 = static_cast<std::uint32_t>(weights[2]);
    const auto w3 = static_cast<std::uint32_t>(weights[3]);
    const auto w4 = static_cast<std::uint32_t>(weights[4]);
    for (std::size_t i = 0; i < count; ++i)
        sums[i] += w0 * row[i] + w1 * row[i + kStep] + w2 * row[i + 2 * kStep] +
                   w3 * row[i + 3 * kStep] + w4 * row[i + 4 * kStep];
}

inline std::uint8_t Cut(double value) {
    value = value > 255.0 ? 255.0 : value;
    value = value < 0.0 ? 0.0 : value;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(value));
}

LUMO_SIMD_CLONES
void StoreSums(const std::uint32_t* __restrict sums, std::size_t count, double scale, double offset,
               std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < count; ++i)
        out[i] =
            Cut(static_cast<double>(static_cast<std::int32_t>(sums[i])) / scale + offset + 0.4);
}

// Copies of the rows around the one in hand, with the edge pixels repeated at both ends.
class RowWindow {
  public:
    RowWindow(ImageView image, std::uint8_t* rows) : image_(image), rows_(rows) {
        for (int y = 0; y < 2; ++y) Read(y);
    }
    static std::size_t Size(ImageView image) { return kSide * RowSize(image); }

    void Read(int y) const {
        if (y >= image_.Height()) return;
        std::uint8_t* row = At(y);
        const std::size_t stride = image_.Stride();
        std::memcpy(row + kMargin, image_.Row(y), stride);
        for (std::size_t k = 0; k < 2; ++k) {
            std::memcpy(row + k * kStep, row + kMargin, kStep);
            std::memcpy(row + kMargin + stride + k * kStep, row + stride + kStep, kStep);
        }
    }
    /// The row that stands for row y, which may lie outside of the picture.
    const std::uint8_t* Row(int y) const { return At(std::clamp(y, 0, image_.Height() - 1)); }

  private:
    static std::size_t RowSize(ImageView image) { return image.Stride() + 2 * kMargin; }
    std::uint8_t* At(int y) const {
        return rows_ + static_cast<std::size_t>(y % kSide) * RowSize(image_);
    }
    ImageView image_;
    std::uint8_t* rows_;
};

// The range of possible sums; true if it fits in 16 bits.
struct SumRange {
    explicit SumRange(const Convolution& convolution) {
        for (const int weight : convolution.weights) (weight < 0 ? low : high) += 255LL * weight;
    }
    bool IsSmall() const { return low >= -kMostSmallSum && high <= kMostSmallSum; }
    std::int64_t low = 0, high = 0;
};

template <typename Sum, typename AddRow, typename Store>
void ConvolveRows(ImageView image, const RowWindow& window, const Convolution& convolution,
                  Sum* sums, const AddRow& addRow, const Store& store) {
    const std::size_t stride = image.Stride();
    for (int y = 0; y < image.Height(); ++y) {
        window.Read(y + 2);
        std::fill_n(sums, stride, Sum{0});
        for (int k = 0; k < kSide; ++k) {
            const int* weights = convolution.weights.data() + k * kSide;
            if (std::any_of(weights, weights + kSide, [](int w) { return w != 0; }))
                addRow(window.Row(y - 2 + k), weights, stride, sums);
        }
        store(sums, image.Row(y));
    }
}

}  // namespace

std::uint8_t ByteOfSum(std::int32_t sum, const Convolution& convolution) {
    if (convolution.scale == 0)
        return static_cast<std::uint8_t>(std::clamp(convolution.offset, 0, 255));
    return Cut(static_cast<double>(sum) / convolution.scale + convolution.offset + 0.4);
}

std::optional<int> Convolve(ImageView image, const Convolution& convolution) {
    const std::size_t stride = image.Stride();
    const PixelBuffer rows = PixelBuffer::TryAllocate(RowWindow::Size(image));
    if (!rows) return 1;
    const PixelBuffer sums = PixelBuffer::TryAllocate(stride * sizeof(std::uint32_t));
    if (!sums) return 2;
    const PixelBuffer table = PixelBuffer::TryAllocate(kTableSize);
    if (!table) return 3;
    if (convolution.scale == 0) {
        std::memset(image.Row(0), ByteOfSum(0, convolution), image.Bytes().size());
        return {};
    }
    const RowWindow window(image, rows.Data());
    const SumRange range(convolution);
    if (range.IsSmall()) {
        std::uint8_t* byteOf = table.Data();  // by the sum's low 16 bits
        for (std::int64_t sum = range.low; sum <= range.high; ++sum)
            byteOf[sum & 0xFFFF] = ByteOfSum(static_cast<std::int32_t>(sum), convolution);
        ConvolveRows(image, window, convolution, reinterpret_cast<std::uint16_t*>(sums.Data()),
                     AddRow16, [&](const std::uint16_t* all, std::uint8_t* out) {
                         for (std::size_t i = 0; i < stride; ++i) out[i] = byteOf[all[i]];
                     });
    } else {
        ConvolveRows(image, window, convolution, reinterpret_cast<std::uint32_t*>(sums.Data()),
                     AddRow32, [&](const std::uint32_t* all, std::uint8_t* out) {
                         StoreSums(all, stride, convolution.scale, convolution.offset, out);
                     });
    }
    return {};
}

}  // namespace lumo::ops::filters

#include "imaging/codecs/tiff_samples.h"

#include <bit>
#include <cstring>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/lab.h"

namespace lumo::imaging::codecs {
namespace {

template <class T>
T Load(const std::uint8_t* row, std::size_t index) {
    T value;
    std::memcpy(&value, row + index * sizeof(T), sizeof(T));
    return value;
}

/// Any number of bits, the topmost first; three whole bytes come in the machine's order instead.
std::uint32_t BitsAt(const std::uint8_t* row, int bits, std::size_t index) {
    if (bits == 24) {
        std::uint32_t value = 0;
        const bool little = std::endian::native == std::endian::little;
        std::memcpy(reinterpret_cast<std::uint8_t*>(&value) + (little ? 0 : 1), row + index * 3, 3);
        return value;
    }
    const std::size_t first = index * static_cast<std::size_t>(bits);
    const std::uint8_t* byte = row + first / 8;
    const int skipped = static_cast<int>(first % 8);
    std::uint64_t window = 0;
    for (int have = 0; have < skipped + bits; have += 8) window = window << 8 | *byte++;
    const int surplus = (8 - (skipped + bits) % 8) % 8;
    return static_cast<std::uint32_t>(window >> surplus & ((std::uint64_t{1} << bits) - 1));
}

std::uint8_t FromFloat(double value) {
    if (!(value > 0)) return 0;  // not a number either
    return value >= 1 ? 255 : static_cast<std::uint8_t>(value * 255 + 0.5);
}

/// IEEE 754 half precision.
double HalfToDouble(std::uint16_t half) {
    const std::uint32_t exponent = half >> 10 & 0x1FU, fraction = half & 0x3FFU;
    double value = 0;
    if (exponent == 0)
        value = fraction / 16777216.0;
    else if (exponent == 31)
        value = fraction == 0 ? 1 : 0;  // infinity is white, not a number is black
    else
        value = std::bit_cast<float>((exponent + 112) << 23 | fraction << 13);
    return (half & 0x8000U) != 0 ? -value : value;
}

/// 32 bits to 8, rounded: 2^32 - 1 is 255 times 16843009.
std::uint8_t Round32To8(std::uint32_t value) {
    return static_cast<std::uint8_t>((std::uint64_t{value} + 8421504U) / 16843009U);
}

/// Any other width to 8 bits.
std::uint8_t RoundTo8(std::uint32_t value, int bits) {
    const std::uint64_t top = (std::uint64_t{1} << bits) - 1;
    return static_cast<std::uint8_t>((std::uint64_t{value} * 255U + top / 2) / top);
}

template <class Convert>
void ForEachSample(std::size_t first, std::size_t step, int count, std::uint8_t* out,
                   std::size_t outStep, const Convert& convert) {
    for (int i = 0; i < count; ++i, first += step, out += outStep) *out = convert(first);
}

}  // namespace

void UnpackSamples(const std::uint8_t* row, SampleType type, std::size_t first, std::size_t step,
                   int count, std::uint8_t* out, std::size_t outStep) {
    const auto all = [&](const auto& convert) {
        ForEachSample(first, step, count, out, outStep, convert);
    };
    if (type.kind == SampleKind::Float) {
        if (type.bits == 16)
            all([row](std::size_t i) {
                return FromFloat(HalfToDouble(Load<std::uint16_t>(row, i)));
            });
        else if (type.bits == 32)
            all([row](std::size_t i) { return FromFloat(Load<float>(row, i)); });
        else
            all([row](std::size_t i) { return FromFloat(Load<double>(row, i)); });
        return;
    }
    // In two's complement, turning the sign bit over moves the value up by half of the range.
    const std::uint32_t sign = type.kind == SampleKind::Signed ? 1U << (type.bits - 1) : 0;
    if (type.bits == 8)
        all([=](std::size_t i) { return static_cast<std::uint8_t>(row[i] ^ sign); });
    else if (type.bits == 16)
        all([=](std::size_t i) {
            return Round16To8(static_cast<std::uint16_t>(Load<std::uint16_t>(row, i) ^ sign));
        });
    else if (type.bits == 32)
        all([=](std::size_t i) { return Round32To8(Load<std::uint32_t>(row, i) ^ sign); });
    else
        all([=](std::size_t i) { return RoundTo8(BitsAt(row, type.bits, i) ^ sign, type.bits); });
}

std::uint16_t IndexAt(const std::uint8_t* row, int bits, std::size_t index) {
    if (bits == 8) return row[index];
    if (bits == 16) return Load<std::uint16_t>(row, index);
    return static_cast<std::uint16_t>(BitsAt(row, bits, index));
}

namespace {

Rgb ColourOf(const std::uint8_t* p, SampleColours colours) {
    switch (colours) {
        case SampleColours::Grey:
            return {p[0], p[0], p[0]};
        case SampleColours::InvertedGrey: {
            const auto grey = static_cast<std::uint8_t>(255 - p[0]);
            return {grey, grey, grey};
        }
        case SampleColours::Cmyk:
            return CmykToRgb(p[0], p[1], p[2], p[3]);
        case SampleColours::Lab:
            return LabToRgb(p[0] * 100 / 255.0, p[1] - 128.0, p[2] - 128.0);
        case SampleColours::Rgb:
            break;
    }
    return {p[0], p[1], p[2]};
}

/// Over white: a premultiplied value only lacks the white that shines through.
std::uint8_t Over(std::uint8_t value, std::uint8_t alpha, AlphaKind kind) {
    if (kind == AlphaKind::Straight) return OverWhite(value, alpha);
    const int sum = value + 255 - alpha;
    return static_cast<std::uint8_t>(sum > 255 ? 255 : sum);
}

template <SampleColours kColours>
void RowToRgb(const std::uint8_t* p, const PixelLayout& layout, int count, std::uint8_t* rgb) {
    for (int i = 0; i < count; ++i, p += layout.channels, rgb += kChannels) {
        Rgb colour = ColourOf(p, kColours);
        if (layout.alpha != AlphaKind::None) {
            const std::uint8_t alpha = p[layout.alphaChannel];
            colour = {Over(colour.red, alpha, layout.alpha),
                      Over(colour.green, alpha, layout.alpha),
                      Over(colour.blue, alpha, layout.alpha)};
        }
        rgb[0] = colour.red;
        rgb[1] = colour.green;
        rgb[2] = colour.blue;
    }
}

}  // namespace

void PixelsToRgb(const std::uint8_t* pixels, const PixelLayout& layout, int count,
                 std::uint8_t* rgb) {
    using enum SampleColours;
    switch (layout.colours) {
        case Grey:
            return RowToRgb<Grey>(pixels, layout, count, rgb);
        case InvertedGrey:
            return RowToRgb<InvertedGrey>(pixels, layout, count, rgb);
        case SampleColours::Rgb:
            return RowToRgb<SampleColours::Rgb>(pixels, layout, count, rgb);
        case Cmyk:
            return RowToRgb<Cmyk>(pixels, layout, count, rgb);
        case Lab:
            return RowToRgb<Lab>(pixels, layout, count, rgb);
    }
}

}  // namespace lumo::imaging::codecs

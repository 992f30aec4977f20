#include "imaging/codecs/png_rows.h"

#include <cstring>

#include "imaging/codecs/decoders.h"
#include "imaging/simd.h"

namespace lumo::imaging::codecs {
namespace {

// Every pixel needs the one before it, so the channels are what can be done side by side: four
// words, of which RGB ignores the last.
typedef std::uint8_t Bytes4 __attribute__((vector_size(4)));
typedef std::int16_t Words4 __attribute__((vector_size(8)));

inline Words4 Load(const std::uint8_t* pixel) {
    Bytes4 bytes;
    std::memcpy(&bytes, pixel, sizeof bytes);
    return __builtin_convertvector(bytes, Words4);
}

/// Keeps the low byte of each word, in the file and in what the next pixel sees.
template <int kPixel>
inline Words4 Store(Words4 value, std::uint8_t* pixel) {
    const Bytes4 bytes = __builtin_convertvector(value, Bytes4);
    std::memcpy(pixel, &bytes, kPixel);
    return value & Words4{255, 255, 255, 255};
}

inline Words4 Absolute(Words4 value) {
    const Words4 negative = value < 0;
    return (value ^ negative) - negative;
}

template <int kPixel>
inline void UndoSub(const std::uint8_t* filtered, int width, std::uint8_t* row) {
    Words4 left{};
    for (int x = 0; x < width; ++x, filtered += kPixel, row += kPixel)
        left = Store<kPixel>(Load(filtered) + left, row);
}

inline void UndoUp(const std::uint8_t* filtered, const std::uint8_t* above, std::size_t count,
                   std::uint8_t* row) {
    for (std::size_t i = 0; i < count; ++i)
        row[i] = static_cast<std::uint8_t>(filtered[i] + above[i]);
}

template <int kPixel>
inline void UndoAverage(const std::uint8_t* filtered, const std::uint8_t* above, int width,
                        std::uint8_t* row) {
    Words4 left{};
    for (int x = 0; x < width; ++x, filtered += kPixel, row += kPixel) {
        Words4 upper{};
        if (above != nullptr) upper = Load(above + x * kPixel);
        left = Store<kPixel>(Load(filtered) + ((left + upper) >> 1), row);
    }
}

template <int kPixel>
inline void UndoPaeth(const std::uint8_t* filtered, const std::uint8_t* above, int width,
                      std::uint8_t* row) {
    Words4 left{}, corner{};
    for (int x = 0; x < width; ++x, filtered += kPixel, above += kPixel, row += kPixel) {
        const Words4 upper = Load(above);
        const Words4 fromLeft = Absolute(upper - corner);
        const Words4 fromUpper = Absolute(left - corner);
        const Words4 fromCorner = Absolute(left + upper - corner - corner);
        const Words4 takeLeft = (fromLeft <= fromUpper) & (fromLeft <= fromCorner);
        const Words4 takeUpper = fromUpper <= fromCorner;
        const Words4 guess =
            (takeLeft & left) | (~takeLeft & ((takeUpper & upper) | (~takeUpper & corner)));
        corner = upper;
        left = Store<kPixel>(Load(filtered) + guess, row);
    }
}

template <int kPixel>
inline bool Unfilter(int filter, const std::uint8_t* filtered, const std::uint8_t* above, int width,
                     std::uint8_t* row) {
    const std::size_t count = static_cast<std::size_t>(width) * kPixel;
    // Above the first row all is black, where Up does nothing and Paeth is Sub.
    if (above == nullptr && filter == 2) filter = 0;
    if (above == nullptr && filter == 4) filter = 1;
    switch (filter) {
        case 0:
            std::memmove(row, filtered, count);
            return true;
        case 1:
            UndoSub<kPixel>(filtered, width, row);
            return true;
        case 2:
            UndoUp(filtered, above, count, row);
            return true;
        case 3:
            UndoAverage<kPixel>(filtered, above, width, row);
            return true;
        case 4:
            UndoPaeth<kPixel>(filtered, above, width, row);
            return true;
        default:
            return false;
    }
}

}  // namespace

LUMO_SIMD_CLONES bool UnfilterRgb(int filter, const std::uint8_t* filtered,
                                  const std::uint8_t* above, int width, std::uint8_t* row) {
    return Unfilter<3>(filter, filtered, above, width, row);
}

LUMO_SIMD_CLONES bool UnfilterRgba(int filter, const std::uint8_t* filtered,
                                   const std::uint8_t* above, int width, std::uint8_t* row) {
    return Unfilter<4>(filter, filtered, above, width, row);
}

LUMO_SIMD_CLONES void RgbaOverWhite(const std::uint8_t* rgba, std::uint8_t* rgb, int width) {
    for (int x = 0; x < width; ++x, rgba += 4, rgb += kChannels)
        for (int c = 0; c < kChannels; ++c) rgb[c] = OverWhite(rgba[c], rgba[3]);
}

}  // namespace lumo::imaging::codecs

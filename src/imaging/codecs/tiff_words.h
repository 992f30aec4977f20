#pragma once

// Numbers inside a block of tagged tables, as EXIF and the index of further pictures have them.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Reads and writes the numbers of one byte order. Callers see to it that the places are inside.
class TiffWords {
  public:
    /// By the "II*\0" or "MM\0*" that a block begins with; none for other blocks.
    static std::optional<TiffWords> Of(ByteView block) {
        if (block.size() < 8) return std::nullopt;
        if (block[0] == 'I' && block[1] == 'I' && block[2] == 42 && block[3] == 0)
            return TiffWords(false);
        if (block[0] == 'M' && block[1] == 'M' && block[2] == 0 && block[3] == 42)
            return TiffWords(true);
        return std::nullopt;
    }
    explicit TiffWords(bool highFirst) : highFirst_(highFirst) {}

    std::uint16_t Get16(const std::uint8_t* at) const {
        return static_cast<std::uint16_t>(Get(at, 2));
    }
    std::uint32_t Get32(const std::uint8_t* at) const { return Get(at, 4); }
    void Put16(std::uint8_t* at, std::uint16_t value) const { Put(at, value, 2); }
    void Put32(std::uint8_t* at, std::uint32_t value) const { Put(at, value, 4); }

  private:
    std::uint32_t Get(const std::uint8_t* at, int count) const {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i) value |= std::uint32_t{at[i]} << Shift(i, count);
        return value;
    }
    void Put(std::uint8_t* at, std::uint32_t value, int count) const {
        for (int i = 0; i < count; ++i) at[i] = static_cast<std::uint8_t>(value >> Shift(i, count));
    }
    int Shift(int i, int count) const { return 8 * (highFirst_ ? count - 1 - i : i); }

    bool highFirst_;
};

/// Of one entry of a table: tag, type, number of values, and the values themselves or their place.
inline constexpr std::size_t kTiffEntryBytes = 12;

}  // namespace lumo::imaging::codecs

#pragma once

// Eight bytes of a run-length coder at a time.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lumo::imaging::codecs {

inline constexpr std::size_t kWordBytes = 8;

/// Whether words count their bytes from the low end, as the functions below expect.
inline constexpr bool kUseWords = std::endian::native == std::endian::little;

inline std::uint64_t LoadWord(const std::uint8_t* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, kWordBytes);
    return word;
}

/// The lowest bit that is set belongs to the first byte that is zero; higher ones may be wrong.
constexpr std::uint64_t ZeroBytes(std::uint64_t word) {
    return (word - 0x0101010101010101U) & ~word & 0x8080808080808080U;
}

/// Bytes before the first one with a bit; 8 if there is none.
constexpr std::size_t BytesBeforeBit(std::uint64_t bits) {
    return static_cast<std::size_t>(std::countr_zero(bits)) / 8;
}

/// Bytes from `first` on, itself included, that are the same; at most `limit`, which lies inside
/// the memory.
inline std::size_t CountEqual(const std::uint8_t* first, std::size_t limit) {
    std::size_t count = 1;
    if constexpr (kUseWords) {
        const std::uint64_t pattern = *first * 0x0101010101010101U;
        while (count + kWordBytes <= limit) {
            const std::size_t same = BytesBeforeBit(LoadWord(first + count) ^ pattern);
            count += same;
            if (same < kWordBytes) return count;
        }
    }
    while (count < limit && first[count] == *first) ++count;
    return count;
}

}  // namespace lumo::imaging::codecs

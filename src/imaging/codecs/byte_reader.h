#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Reads numbers out of a file in memory, never behind its end: such a read gives 0 and is
/// remembered, so that a header is read in one go and `Failed` asked once.
class ByteReader {
  public:
    explicit ByteReader(ByteView bytes, std::size_t position = 0)
        : bytes_(bytes), position_(position < bytes.size() ? position : bytes.size()) {}

    std::size_t Position() const { return position_; }
    std::size_t Left() const { return bytes_.size() - position_; }
    /// True once anything was asked for that the file does not hold.
    bool Failed() const { return failed_; }

    void Skip(std::uint64_t count) {
        if (count > Left()) failed_ = true;
        position_ += count > Left() ? Left() : static_cast<std::size_t>(count);
    }
    /// The next `count` bytes, or as many of them as there are.
    ByteView Take(std::uint64_t count) {
        const std::size_t from = position_;
        Skip(count);
        return bytes_.subspan(from, position_ - from);
    }

    std::uint8_t U8() { return static_cast<std::uint8_t>(LittleEndian(1)); }
    std::uint16_t U16Le() { return static_cast<std::uint16_t>(LittleEndian(2)); }
    std::uint32_t U32Le() { return static_cast<std::uint32_t>(LittleEndian(4)); }
    std::int32_t I32Le() { return static_cast<std::int32_t>(U32Le()); }
    std::uint16_t U16Be() { return static_cast<std::uint16_t>(BigEndian(2)); }
    std::uint32_t U32Be() { return static_cast<std::uint32_t>(BigEndian(4)); }
    std::uint64_t U64Be() { return BigEndian(8); }

  private:
    bool Has(std::size_t count) {
        if (count <= Left()) return true;
        failed_ = true;
        position_ = bytes_.size();
        return false;
    }
    std::uint64_t LittleEndian(std::size_t count) {
        if (!Has(count)) return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value |= std::uint64_t{bytes_[position_ + i]} << (8 * i);
        position_ += count;
        return value;
    }
    std::uint64_t BigEndian(std::size_t count) {
        if (!Has(count)) return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i) value = value << 8 | bytes_[position_ + i];
        position_ += count;
        return value;
    }

    ByteView bytes_;
    std::size_t position_;
    bool failed_ = false;
};

}  // namespace lumo::imaging::codecs

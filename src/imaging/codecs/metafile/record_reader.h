#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs::metafile {

/// Reads little-endian values from a run of bytes, one behind the other. A read past the end gives
/// zero and makes the reader bad for good, so that a record is checked once, behind its last field.
class RecordReader {
  public:
    RecordReader() = default;
    explicit RecordReader(ByteView bytes) : bytes_(bytes) {}

    bool IsGood() const { return good_; }
    std::size_t Position() const { return position_; }
    std::size_t Left() const { return bytes_.size() - position_; }
    /// All bytes, those already read included.
    ByteView All() const { return bytes_; }

    void Skip(std::size_t count) { Take(count); }
    /// Goes to a place counted from the first byte.
    void Seek(std::size_t position) {
        if (position > bytes_.size())
            Fail();
        else
            position_ = position;
    }
    /// The next `count` bytes; an empty view if there are fewer.
    ByteView Take(std::size_t count) {
        if (count > Left()) {
            Fail();
            return {};
        }
        const ByteView part = bytes_.subspan(position_, count);
        position_ += count;
        return part;
    }
    /// All bytes that are left.
    ByteView Rest() { return Take(Left()); }

    std::uint8_t U8() { return static_cast<std::uint8_t>(Little(1)); }
    std::uint16_t U16() { return static_cast<std::uint16_t>(Little(2)); }
    std::int16_t I16() { return static_cast<std::int16_t>(Little(2)); }
    std::uint32_t U32() { return Little(4); }
    std::int32_t I32() { return static_cast<std::int32_t>(Little(4)); }
    float F32() { return std::bit_cast<float>(Little(4)); }

  private:
    std::uint32_t Little(std::size_t count) {
        std::uint32_t value = 0;
        std::size_t shift = 0;
        for (const std::uint8_t byte : Take(count)) {
            value |= std::uint32_t{byte} << shift;
            shift += 8;
        }
        return value;
    }
    void Fail() {
        good_ = false;
        position_ = bytes_.size();
    }

    ByteView bytes_;
    std::size_t position_ = 0;
    bool good_ = true;
};

}  // namespace lumo::imaging::codecs::metafile

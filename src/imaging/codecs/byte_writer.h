#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>
#include <utility>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Builds a file in memory, from its first byte to its last.
class ByteWriter {
  public:
    /// `expected` is only a hint at the size of the whole file.
    explicit ByteWriter(std::size_t expected);

    void U8(unsigned value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }
    void U16Le(unsigned value) { LittleEndian(value, 2); }
    void U32Le(std::uint32_t value) { LittleEndian(value, 4); }
    void U16Be(unsigned value) { BigEndian(value, 2); }
    void U32Be(std::uint32_t value) { BigEndian(value, 4); }
    void Zeros(std::size_t count) { bytes_.resize(bytes_.size() + count); }
    /// `count` zeros, to be filled before anything else is written.
    std::uint8_t* Room(std::size_t count) {
        Zeros(count);
        return bytes_.data() + bytes_.size() - count;
    }
    void Text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
    void Append(ByteView bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

    std::size_t Size() const { return bytes_.size(); }
    Bytes Finish() { return std::move(bytes_); }

  private:
    void LittleEndian(std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i) U8(value >> (8 * i) & 0xFF);
    }
    void BigEndian(std::uint32_t value, int count) {
        for (int i = count - 1; i >= 0; --i) U8(value >> (8 * i) & 0xFF);
    }

    Bytes bytes_;
};

/// The file that `write` puts into the writer, or a refusal where memory is spent.
template <class Write>
Result<Bytes> BuildFile(std::size_t expected, const Write& write) {
    try {
        ByteWriter out(expected);
        write(out);
        return out.Finish();
    } catch (const std::bad_alloc&) {
        return platform::Error{"not enough memory"};
    }
}

}  // namespace lumo::imaging::codecs

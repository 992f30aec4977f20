#pragma once

// LZW (Welch, "A technique for high-performance data compression", 1984) as GIF and TIF write it:
// bytes in, codes of 9 to 12 bits out, a clear code first and an end code last.

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace lumo::imaging::codecs {

/// In which bits of a byte a code begins, and when codes grow.
enum class LzwDialect : std::uint8_t {
    Gif,   // low bits first
    Tiff,  // high bits first, one code earlier than needed
};

template <LzwDialect kDialect>
class LzwEncoder {
  public:
    /// Codes are appended to `target`, which must outlive the object.
    explicit LzwEncoder(std::vector<std::uint8_t>& target) : target_(target) {
        StartTable();
        Reserve(2);
        Put(kClear);
    }

    void Add(std::span<const std::uint8_t> bytes) {
        if (bytes.empty()) return;
        Reserve(bytes.size());
        auto byte = bytes.begin();
        if (prefix_ < 0) prefix_ = *byte++;
        for (; byte != bytes.end(); ++byte) {
            const std::uint32_t key = static_cast<std::uint32_t>(prefix_) << 8 | *byte;
            std::uint32_t slot = key * 0x9E3779B1U >> (32 - kSlotBits);
            while (slots_[slot] != kFree && slots_[slot] >> kCodeBits != key)
                slot = (slot + 1) % kSlots;
            if (slots_[slot] != kFree) {
                prefix_ = static_cast<int>(slots_[slot] & kCodeMask);
                continue;
            }
            Put(static_cast<std::uint32_t>(prefix_));
            slots_[slot] = key << kCodeBits | next_;
            prefix_ = *byte;
            CountEntry();
        }
    }

    /// Ends the codes; nothing may follow.
    void Finish() {
        Reserve(4);
        if (prefix_ >= 0) {
            Put(static_cast<std::uint32_t>(prefix_));
            CountEntry();  // the reader makes one for this code too
        }
        Put(kEnd);
        for (; bits_ > 0; bits_ -= 8) PutByte();
        target_.resize(size_);
    }

  private:
    static constexpr std::uint32_t kClear = 256, kEnd = 257, kFirst = 258;
    static constexpr int kCodeBits = 12;
    static constexpr std::uint32_t kCodeMask = (1U << kCodeBits) - 1;
    // TIF codes would grow to 13 bits behind entry 4094.
    static constexpr std::uint32_t kLast = kDialect == LzwDialect::Gif ? 4096 : 4095;
    static constexpr std::uint32_t kEarly = kDialect == LzwDialect::Gif ? 0 : 1;
    static constexpr int kSlotBits = 13;  // twice as many slots as codes
    static constexpr std::uint32_t kSlots = 1U << kSlotBits;
    static constexpr std::uint32_t kFree = std::numeric_limits<std::uint32_t>::max();

    void StartTable() {
        slots_.fill(kFree);
        next_ = kFirst;
        width_ = 9;
    }
    void CountEntry() {
        ++next_;
        if (next_ == kLast) {
            Put(kClear);
            StartTable();
        } else if (next_ + kEarly > 1U << width_) {
            ++width_;
        }
    }
    /// A byte may cost a code of 12 bits, and every 3800th another one to clear.
    void Reserve(std::size_t bytes) {
        const std::size_t wanted = size_ + bytes * 2 + 16;
        if (target_.size() >= wanted) return;
        target_.resize(wanted + target_.size() / 2);
    }
    void Put(std::uint32_t code) {
        if constexpr (kDialect == LzwDialect::Gif)
            window_ |= std::uint64_t{code} << bits_;
        else
            window_ |= std::uint64_t{code} << (64 - width_ - bits_);
        for (bits_ += width_; bits_ >= 8; bits_ -= 8) PutByte();
    }
    void PutByte() {
        if constexpr (kDialect == LzwDialect::Gif) {
            target_[size_++] = static_cast<std::uint8_t>(window_);
            window_ >>= 8;
        } else {
            target_[size_++] = static_cast<std::uint8_t>(window_ >> 56);
            window_ <<= 8;
        }
    }

    std::vector<std::uint8_t>& target_;
    std::size_t size_ = target_.size();        // what is written; the vector is longer in between
    std::array<std::uint32_t, kSlots> slots_;  // key and code, or kFree
    std::uint32_t next_ = kFirst;
    int width_ = 9;
    int prefix_ = -1;  // the code of what has been read but not written
    std::uint64_t window_ = 0;
    int bits_ = 0;
};

}  // namespace lumo::imaging::codecs

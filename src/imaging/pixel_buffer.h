#pragma once

// Memory of pixels: taken from a pool that recycles, and never more than a budget.
//
// A fresh block of 36 MB costs eight times its own copy in page faults, so blocks that are given
// back are kept and handed out again. All functions may be called from any thread.

#include <cstddef>
#include <cstdint>
#include <utility>

namespace lumo::imaging {

/// A block of bytes out of the pool, owned; contents undefined.
class PixelBuffer {
  public:
    PixelBuffer() = default;
    PixelBuffer(PixelBuffer&& other) noexcept
        : data_(std::exchange(other.data_, nullptr)),
          capacity_(std::exchange(other.capacity_, 0)) {}
    PixelBuffer& operator=(PixelBuffer&& other) noexcept {
        if (this != &other) {
            Release();
            data_ = std::exchange(other.data_, nullptr);
            capacity_ = std::exchange(other.capacity_, 0);
        }
        return *this;
    }
    ~PixelBuffer() { Release(); }

    /// At least `bytes` bytes, aligned to 64; an empty buffer, with LastError() set, if the budget
    /// is spent or the system refuses.
    [[nodiscard]] static PixelBuffer TryAllocate(std::size_t bytes);

    explicit operator bool() const { return data_ != nullptr; }
    std::uint8_t* Data() const { return data_; }

  private:
    void Release();

    std::uint8_t* data_ = nullptr;
    std::size_t capacity_ = 0;
};

/// Bytes that all live buffers together may hold. Default: half of the machine's memory.
std::size_t MemoryBudget();
void SetMemoryBudget(std::size_t bytes);

/// Bytes of the live buffers now, without those that wait in the pool.
std::size_t MemoryInUse();

/// Gives the waiting blocks back to the system.
void TrimPixelPool();

}  // namespace lumo::imaging

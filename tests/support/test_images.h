#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "imaging/image.h"

namespace lumo::test {

/// Pixel (x, y) is x, y, 7, each modulo 256, counted from `origin`.
imaging::Image CoordinateImage(imaging::Size size, imaging::Size origin = {0, 0});
imaging::Image FlatImage(imaging::Size size, imaging::Rgb colour);
/// Uniform random bytes; the same for the same seed on every machine.
imaging::Image RandomImage(imaging::Size size, std::uint32_t seed);
/// A smooth picture with edges, as photographs have; the same for the same seed.
imaging::Image PhotoLikeImage(imaging::Size size, std::uint32_t seed = 1);
imaging::Image Copy(imaging::ConstImageView view);

/// True if sizes and all bytes agree; else names the first difference.
testing::AssertionResult SamePixels(imaging::ConstImageView actual,
                                    imaging::ConstImageView expected);
inline testing::AssertionResult SamePixels(const imaging::Image& a, const imaging::Image& b) {
    return SamePixels(a.View(), b.View());
}
/// As SamePixels, but each byte may differ by `tolerance`.
testing::AssertionResult NearPixels(imaging::ConstImageView actual,
                                    imaging::ConstImageView expected, int tolerance);

/// Sets the memory budget for the life of the object.
class ScopedMemoryBudget {
  public:
    explicit ScopedMemoryBudget(std::size_t bytes) : before_(imaging::MemoryBudget()) {
        imaging::SetMemoryBudget(bytes);
    }
    ~ScopedMemoryBudget() { imaging::SetMemoryBudget(before_); }
    ScopedMemoryBudget(const ScopedMemoryBudget&) = delete;
    ScopedMemoryBudget& operator=(const ScopedMemoryBudget&) = delete;

  private:
    std::size_t before_;
};

}  // namespace lumo::test

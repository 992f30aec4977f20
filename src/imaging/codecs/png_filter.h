#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo::imaging::codecs {

/// Rewrites rows of 8-bit RGB the way PNG compresses them: a byte that names the filter, then the
/// differences to neighbours (ISO/IEC 15948:2004, clause 9).
class PngRowFilter {
  public:
    enum class Choice : std::uint8_t {
        None,      // for pictures of few colours, which repeat themselves
        Adaptive,  // each row with the filter of the least sum of absolute differences
    };
    PngRowFilter(std::size_t rowBytes, Choice choice);

    std::size_t FilteredBytes() const { return rowBytes_ + 1; }

    /// The next row goes without the one above it, as at the start of a pass.
    void StartPass();
    /// Writes FilteredBytes() bytes.
    void Filter(const std::uint8_t* row, std::uint8_t* out);

  private:
    std::size_t rowBytes_;
    Choice choice_;
    // Both with a black pixel in front, so that the first pixel has neighbours as well.
    std::vector<std::uint8_t> current_, above_;
    std::vector<std::uint8_t> trial_, best_;
};

}  // namespace lumo::imaging::codecs

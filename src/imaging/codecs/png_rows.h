#pragma once

#include <cstddef>
#include <cstdint>

namespace lumo::imaging::codecs {

/// Bytes behind the end of a filtered row that may be read, though not used.
inline constexpr std::size_t kUnfilterSlack = 4;

/// Undoes one of PNG's five filters (ISO/IEC 15948:2004, clause 9). `filtered` and
/// `above` are followed by kUnfilterSlack readable bytes; `above` is null for the first row. `row`
/// may be `filtered`. False for a filter that does not exist.
bool UnfilterRgb(int filter, const std::uint8_t* filtered, const std::uint8_t* above, int width,
                 std::uint8_t* row);
/// The same for pixels of four bytes.
bool UnfilterRgba(int filter, const std::uint8_t* filtered, const std::uint8_t* above, int width,
                  std::uint8_t* row);

/// Lays a row of pixels with coverage over white.
void RgbaOverWhite(const std::uint8_t* rgba, std::uint8_t* rgb, int width);

}  // namespace lumo::imaging::codecs

#pragma once

// Custom filter files (.acf): 27 signed 16-bit numbers, high byte first, and nothing else: the 25
// weights row by row, the scale, the offset.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace lumo::ops::filters {

inline constexpr std::size_t kAcfWeights = 25;
inline constexpr std::size_t kAcfNumbers = kAcfWeights + 2;
inline constexpr std::size_t kAcfBytes = 2 * kAcfNumbers;

/// Texts of the dialog's cells: the weights, the scale, the offset.
using CustomFilterCells = std::array<std::string, kAcfNumbers>;

inline constexpr std::string_view kLoadCustomFilterTitle =
    "Load (PhotoShop style custom filter file)";
inline constexpr std::string_view kLoadCustomFilterTypes =
    "Custom filter (*.acf)|*.acf|All files (*.*)|*.*||";
inline constexpr std::string_view kSaveCustomFilterTitle =
    "SaveAs (PhotoShop style custom filter file)";
inline constexpr std::string_view kSaveCustomFilterTypes = "Custom filter file (*.acf)|*.acf||";
/// The name to save under that is offered while none is known.
inline constexpr std::string_view kSaveCustomFilterName = "*.acf";
inline constexpr std::string_view kCustomFilterExtension = "acf";
inline constexpr std::string_view kLoadCustomFilterFailure =
    "Unable to find or open named Custom filter file?";

/// The cells of a file's bytes; a weight of 0 is a blank cell, scale and offset keep their "0".
/// None unless there are exactly 54 bytes.
std::optional<CustomFilterCells> ParseCustomFilter(std::span<const std::uint8_t> bytes);

/// The bytes of a file. A blank cell gives 0, any other its integer, of which 16 bits are kept.
std::array<std::uint8_t, kAcfBytes> EncodeCustomFilter(const CustomFilterCells& cells);

/// Reads a file; fails with kLoadCustomFilterFailure if it cannot be read, is shorter or longer
/// than 54 bytes, or is no plain file.
platform::Result<CustomFilterCells> LoadCustomFilter(const std::string& path);

/// Writes a file, whole or not at all.
platform::Status SaveCustomFilter(const std::string& path, const CustomFilterCells& cells);

/// What the dialog calls the filter of a file that was loaded or saved: the file's name without
/// its folder and extension, the last 22 characters of it.
std::string CustomFilterName(const std::string& path);

}  // namespace lumo::ops::filters

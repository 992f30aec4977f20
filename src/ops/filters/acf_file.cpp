#include "ops/filters/acf_file.h"

#include <utility>

#include "platform/files.h"
#include "platform/paths.h"
#include "script/numbers.h"

namespace lumo::ops::filters {
namespace {

constexpr std::size_t kLongestName = 22;

}  // namespace

std::optional<CustomFilterCells> ParseCustomFilter(std::span<const std::uint8_t> bytes) {
    if (bytes.size() != kAcfBytes) return std::nullopt;
    CustomFilterCells cells;
    for (std::size_t i = 0; i < kAcfNumbers; ++i) {
        const auto value = static_cast<std::int16_t>(
            static_cast<std::uint16_t>((bytes[2 * i] << 8) | bytes[2 * i + 1]));
        if (value != 0 || i >= kAcfWeights) cells[i] = script::IntegerToString(value);
    }
    return cells;
}

std::array<std::uint8_t, kAcfBytes> EncodeCustomFilter(const CustomFilterCells& cells) {
    std::array<std::uint8_t, kAcfBytes> bytes{};
    for (std::size_t i = 0; i < kAcfNumbers; ++i) {
        const auto value = static_cast<std::uint32_t>(script::ParseInteger(cells[i]));
        bytes[2 * i] = static_cast<std::uint8_t>(value >> 8);
        bytes[2 * i + 1] = static_cast<std::uint8_t>(value);
    }
    return bytes;
}

platform::Result<CustomFilterCells> LoadCustomFilter(const std::string& path) {
    const auto bytes = platform::ReadFile(path, kAcfBytes);
    if (bytes)
        if (auto cells = ParseCustomFilter(*bytes)) return std::move(*cells);
    return platform::Error{std::string(kLoadCustomFilterFailure)};
}

platform::Status SaveCustomFilter(const std::string& path, const CustomFilterCells& cells) {
    return platform::WriteFile(path, EncodeCustomFilter(cells));
}

std::string CustomFilterName(const std::string& path) {
    std::string name = platform::GetFileTitle(path);
    if (name.size() > kLongestName) name.erase(0, name.size() - kLongestName);
    return name;
}

}  // namespace lumo::ops::filters

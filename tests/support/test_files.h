#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace lumo::test {

/// The root of the source tree.
std::filesystem::path SourceRoot();

/// tests/data.
std::filesystem::path DataFolder();

/// The bytes of a file below tests/data; the test program ends if there is none.
std::vector<std::uint8_t> ReadTestFile(std::string_view name);

/// The picture files of a folder below tests/data, sorted by name; SOURCES.md is left out, and
/// so are folders inside it. The test program ends if there is none.
std::vector<std::filesystem::path> TestFilesIn(std::string_view folder);
std::vector<std::uint8_t> ReadWholeFile(const std::filesystem::path& path);

}  // namespace lumo::test

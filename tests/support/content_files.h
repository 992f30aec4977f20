#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "support/test_files.h"

namespace lumo::test {

/// The shipped content: share/ of the source tree.
inline std::filesystem::path ShareFolder() {
    return SourceRoot() / "share";
}

/// All bytes of a file; empty if it cannot be read.
inline std::string FileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Plain files of one folder below share/ with this extension, in order of their names.
inline std::vector<std::filesystem::path> ShippedFiles(std::string_view folder,
                                                       std::string_view extension) {
    std::vector<std::filesystem::path> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(ShareFolder() / folder, error))
        if (entry.is_regular_file() && entry.path().extension() == extension)
            found.push_back(entry.path());
    std::ranges::sort(found);
    return found;
}

}  // namespace lumo::test

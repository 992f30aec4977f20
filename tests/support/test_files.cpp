#include "support/test_files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace lumo::test {

namespace fs = std::filesystem;

std::vector<std::uint8_t> ReadWholeFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "no test file %s\n", path.c_str());
        std::abort();
    }
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

fs::path SourceRoot() {
    return LUMO_SOURCE_ROOT;
}

fs::path DataFolder() {
    return SourceRoot() / "tests" / "data";
}

std::vector<std::uint8_t> ReadTestFile(std::string_view name) {
    return ReadWholeFile(DataFolder() / name);
}

std::vector<fs::path> TestFilesIn(std::string_view folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(DataFolder() / folder, error))
        if (entry.is_regular_file() && entry.path().extension() != ".md")
            files.push_back(entry.path());
    if (files.empty()) {
        std::fprintf(stderr, "no test files in %.*s\n", static_cast<int>(folder.size()),
                     folder.data());
        std::abort();
    }
    std::ranges::sort(files);
    return files;
}

}  // namespace lumo::test

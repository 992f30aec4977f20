// Runs a fuzz target without a fuzzer: on every file of the folders given as arguments (those that
// exist), then on seeded damages of them, the same ones every time.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "support/mutate.h"
#include "support/test_files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kDamages = 500;

std::vector<fs::path> FilesOf(int count, char** folders) {
    std::vector<fs::path> files;
    for (int i = 1; i < count; ++i) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(folders[i], error))
            if (entry.is_regular_file() && entry.path().extension() != ".md")
                files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

}  // namespace

int main(int count, char** folders) {
    std::vector<std::vector<std::uint8_t>> inputs{{}};
    for (const fs::path& file : FilesOf(count, folders))
        inputs.push_back(lumo::test::ReadWholeFile(file));
    for (const auto& input : inputs) LLVMFuzzerTestOneInput(input.data(), input.size());
    for (std::uint32_t seed = 0; seed < kDamages; ++seed) {
        const auto damaged = lumo::test::Mutate(inputs[seed % inputs.size()], seed);
        LLVMFuzzerTestOneInput(damaged.data(), damaged.size());
    }
    std::printf("%zu files, %u damages\n", inputs.size() - 1, kDamages);
    return 0;
}

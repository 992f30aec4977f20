#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace lumo::test {

namespace fs = std::filesystem;

TempFolder::TempFolder() {
    path_ = (fs::temp_directory_path() / "lumo-test-XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr) {
        ADD_FAILURE() << "no folder " << path_;
        std::abort();  // a test without its folder would write elsewhere
    }
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

ScopedVariable::ScopedVariable(const char* name, const char* value) : name_(name) {
    const char* before = std::getenv(name);
    wasSet_ = before != nullptr;
    if (wasSet_) before_ = before;
    if (value != nullptr) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
}

ScopedVariable::~ScopedVariable() {
    if (wasSet_) {
        setenv(name_.c_str(), before_.c_str(), 1);
    } else {
        unsetenv(name_.c_str());
    }
}

void PutFile(const std::string& path, std::string_view text) {
    std::error_code ignored;
    fs::create_directories(fs::path(path).parent_path(), ignored);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    ASSERT_TRUE(file.good()) << path;
}

std::string FileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return "<missing>";
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code failed;
    for (const auto& entry : fs::directory_iterator(folder, failed)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace lumo::test

#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace lumo::test {

namespace fs = std::filesystem;

TempFolder::TempFolder() : TempFolder(fs::temp_directory_path().string()) {}

TempFolder::TempFolder(const std::string& parent) : path_(parent + "/lumo-test-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) {
        ADD_FAILURE() << "no folder " << path_;
        std::abort();  // a test without its folder would write elsewhere
    }
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string OtherFileSystem() {
    struct stat own{};
    if (stat(fs::temp_directory_path().c_str(), &own) != 0) return {};
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    const char* const home = std::getenv("HOME");
    for (const char* folder : {"/dev/shm", "/run/shm", runtime, "/tmp", "/var/tmp", home}) {
        struct stat other{};
        if (folder != nullptr && stat(folder, &other) == 0 && other.st_dev != own.st_dev &&
            access(folder, W_OK | X_OK) == 0)
            return folder;
    }
    return {};
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

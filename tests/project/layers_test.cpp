// Includes point down only: see the picture of the layers in docs/architecture.md.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "support/test_files.h"

namespace lumo {
namespace {

namespace fs = std::filesystem;

/// The state headers, which commands may see, stand in one folder with the driver, which they may
/// not.
const std::set<std::string> kStateHeaders{"view.h", "command.h", "user_interface.h", "sample.h"};

/// Folder of a source below src, "engine" split in two, ops families apart.
std::string LayerOf(const fs::path& relative) {
    auto part = relative.begin();
    const std::string folder = part->string();
    if (relative.parent_path() == "cli" && relative.filename().string().starts_with("main_"))
        return "program";
    if (folder == "engine")
        return kStateHeaders.count(relative.filename().string()) != 0 ? "state" : "driver";
    if (folder == "ops" && std::distance(relative.begin(), relative.end()) > 2)
        return "ops/" + std::next(part)->string();
    return folder;
}

const std::map<std::string, std::set<std::string>>& Allowed() {
    static const std::map<std::string, std::set<std::string>> allowed = [] {
        std::map<std::string, std::set<std::string>> map;
        map["platform"] = {"platform"};
        map["imaging"] = {"imaging", "platform"};
        map["script"] = {"script", "platform"};
        map["settings"] = {"settings", "script", "platform"};
        map["state"] = {"state", "settings", "script", "imaging", "platform"};
        map["io"] = {"io", "state", "settings", "script", "imaging", "platform"};
        for (const char* family : {"colour", "files", "geometry", "filters", "overlays"})
            map[std::string("ops/") + family] = {std::string("ops/") + family,
                                                 "ops",
                                                 "io",
                                                 "state",
                                                 "settings",
                                                 "script",
                                                 "imaging",
                                                 "platform"};
        map["ops"] = {"ops", "io", "state", "settings", "script", "imaging", "platform"};
        map["driver"] = {"driver",    "state",        "io",          "ops",          "ops/colour",
                         "ops/files", "ops/geometry", "ops/filters", "ops/overlays", "settings",
                         "script",    "imaging",      "platform"};
        map["cli"] = map["driver"];
        map["cli"].insert({"cli", "generated"});
        map["ui"] = map["driver"];
        map["ui"].insert({"cli", "ui"});
        map["program"] = map["ui"];
        return map;
    }();
    return allowed;
}

TEST(Layers, IncludesPointDownOnly) {
    const fs::path root = test::SourceRoot() / "src";
    int read = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp") continue;
        const fs::path relative = fs::relative(entry.path(), root);
        const std::string layer = LayerOf(relative);
        ASSERT_TRUE(Allowed().count(layer)) << relative << " stands in no known layer";
        ++read;
        std::ifstream file(entry.path());
        std::string line;
        for (int number = 1; std::getline(file, line); ++number) {
            if (line.rfind("#include \"", 0) != 0) continue;
            const std::string path = line.substr(10, line.find('"', 10) - 10);
            const std::string target = LayerOf(path);
            EXPECT_TRUE(Allowed().at(layer).count(target))
                << relative.string() << ":" << number << ": " << layer << " may not include "
                << path;
        }
    }
    EXPECT_GT(read, 30);
}

TEST(Layers, PictureLibrariesStayInTheCodecs) {
    const fs::path root = test::SourceRoot() / "src";
    const std::set<std::string> libraries{"<jpeglib.h>", "<png.h>", "<tiffio.h>", "<gif_lib.h>",
                                          "<libraw/libraw.h>"};
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file()) continue;
        const fs::path relative = fs::relative(entry.path(), root);
        if (relative.string().rfind("imaging/codecs/", 0) == 0) continue;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);) {
            if (line.rfind("#include <", 0) != 0) continue;
            EXPECT_FALSE(libraries.count(line.substr(9, line.find('>') - 8))) << relative << line;
        }
    }
}

}  // namespace
}  // namespace lumo

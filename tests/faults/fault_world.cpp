#include "fault_world.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "support/test_images.h"

namespace lumo::test {
namespace {

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer wants to be the first library; behind this one it works as well. A second program
// that dies half-way has nothing to say about leaks.
constexpr const char* kSanitizer = "verify_asan_link_order=0:detect_leaks=0";
#endif

std::string Picture(int number) {
    const auto picture = RandomImage({40, 30}, static_cast<unsigned>(number));
    const auto bytes = imaging::codecs::EncodeJpeg(picture.View(), {.quality = 90});
    if (!bytes) std::abort();
    return {bytes->begin(), bytes->end()};
}

std::string Replaced(std::string text, std::string_view what, const std::string& with) {
    for (std::size_t at; (at = text.find(what)) != std::string::npos;)
        text.replace(at, what.size(), with);
    return text;
}

/// Names that the program gives to files which are not finished.
bool IsUnfinished(const std::string& name) {
    return platform::IsTemporaryName(name) || name.starts_with("temp83S04L51");
}

/// What "Output setup" calls the picture of an original.
std::string OutputName(const std::string& original) {
    return original.substr(0, original.rfind('.')) + ".png";
}

/// A JPG from the start of its scan on: what no change of its header may touch.
std::string_view ScanOf(std::string_view bytes) {
    if (!bytes.starts_with("\xFF\xD8") || !bytes.ends_with("\xFF\xD9")) return {};
    std::size_t at = 2;
    while (at + 4 <= bytes.size() && bytes[at] == '\xFF') {
        if (bytes[at + 1] == '\xDA') return bytes.substr(at);
        at += 2 + static_cast<unsigned char>(bytes[at + 2]) * 256U +
              static_cast<unsigned char>(bytes[at + 3]);
    }
    return {};
}

void Empty(const std::string& folder) {
    fs::remove_all(folder);
    fs::create_directories(folder);
}

}  // namespace

World::World(const Scenario& scenario, int files) : scenario_(scenario) {
    if (scenario.otherFileSystem) other_.emplace(OtherFileSystem());
    in_ = folder_ / "in";
    target_ = (other_ ? *other_ : folder_) / "out";
    home_ = folder_ / "home";
    script_ = folder_ / "test.whs";
    for (int i = 0; i < files; ++i) {
        const std::string name = "photo-" + std::to_string(i) + ".jpg";
        originals_[name] = Picture(i);
        const std::string target = scenario.writesPictures ? OutputName(name) : name;
        if (scenario.olderFiles) older_[target] = "older " + target;
    }
    PutFile(script_,
            "BEGIN\r\nSTART image loop (setup)\r\n32,2,,\"" + in_ +
                "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,"
                "\r\n" +
                Replaced(scenario.commands, "{out}", target_) + "END image loop\r\n0\r\nEND\r\n");
    Reset();
    if (!scenario.writesPictures) return;
    EXPECT_EQ(Run().exitStatus, 0);
    for (const std::string& name : NamesIn(target_))
        outputs_[name] = FileText(target_ + "/" + name);
    EXPECT_EQ(outputs_.size(), originals_.size());
    Reset();
}

void World::Reset() {
    for (const std::string& folder : {in_, target_, home_}) Empty(folder);
    for (const auto& [name, bytes] : originals_) PutFile(in_ + "/" + name, bytes);
    for (const auto& [name, bytes] : older_) PutFile(target_ + "/" + name, bytes);
}

ProgramResult World::Run(const std::function<void(int process)>& meanwhile) {
    const ScopedVariable home("HOME", home_);
    const ScopedVariable data("XDG_DATA_HOME", home_ + "/share");
    const ScopedVariable config("XDG_CONFIG_HOME", home_ + "/config");
    const ScopedVariable bus("DBUS_SESSION_BUS_ADDRESS", nullptr);
    return RunProgram({LUMO_BATCH_PROGRAM, script_}, meanwhile);
}

ProgramResult World::Run(const Fault& fault) {
#if defined(__SANITIZE_ADDRESS__)
    const ScopedVariable sanitizer("ASAN_OPTIONS", kSanitizer);
#endif
    const ScopedVariable shim("LD_PRELOAD", LUMO_FAULT_SHIM);
    const ScopedVariable roots("LUMO_FAULT_ROOTS",
                               folder_.Path() + (other_ ? ":" + other_->Path() : ""));
    const ScopedVariable at("LUMO_FAULT_AT", std::to_string(fault.at));
    const ScopedVariable error("LUMO_FAULT_ERROR", std::to_string(fault.error));
    const ScopedVariable onwards("LUMO_FAULT_ONWARDS", fault.onwards ? "1" : nullptr);
    return Run([](int) {});
}

long World::CountCalls(int error) {
    const std::string path = folder_ / "count";
    const ScopedVariable count("LUMO_FAULT_COUNT", path);
    const ProgramResult result = Run({.error = error});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    return std::atol(FileText(path).c_str());
}

bool World::IsWhole(const std::string& name, const std::string& bytes) const {
    const auto original = originals_.find(name);
    if (original == originals_.end()) return false;
    if (bytes == original->second) return true;
    return scenario_.rewritesHeaders && !ScanOf(bytes).empty() &&
           ScanOf(bytes) == ScanOf(original->second);
}

bool World::MayStandInTarget(const std::string& name, const std::string& bytes) const {
    for (const Files* files : {&older_, &outputs_}) {
        const auto found = files->find(name);
        if (found != files->end() && found->second == bytes) return true;
    }
    return false;
}

std::string World::TroubleIn(const std::string& folder) const {
    if (!fs::exists(folder)) return {};
    std::string trouble;
    for (const std::string& name : NamesIn(folder)) {
        if (IsUnfinished(name)) continue;
        const std::string bytes = FileText(folder + "/" + name);
        if (IsWhole(name, bytes)) continue;
        if (folder == target_ && MayStandInTarget(name, bytes)) continue;
        trouble +=
            folder + "/" + name + " of " + std::to_string(bytes.size()) + " bytes is not whole\n";
    }
    return trouble;
}

World::Files World::Trashed() const {
    Files trashed;
    if (!fs::exists(TrashFolder())) return trashed;
    for (const std::string& name : NamesIn(TrashFolder())) {
        // A name that the trash has once kept for a file is not given again: "photo.2.jpg".
        const std::string given = name.substr(0, name.find('.')) + name.substr(name.rfind('.'));
        const auto [at, added] = trashed.emplace(given, FileText(TrashFolder() + "/" + name));
        if (!added && IsWhole(given, at->second)) at->second = FileText(TrashFolder() + "/" + name);
    }
    return trashed;
}

bool World::Check(const std::string& what) const {
    std::string trouble = TroubleIn(in_) + TroubleIn(target_);
    const Files trashed = Trashed();
    for (const auto& [name, bytes] : trashed)
        if (!IsWhole(name, bytes)) trouble += name + " in the trash is not whole\n";
    for (const auto& original : originals_) {
        const std::string& name = original.first;
        const auto inTrash = trashed.find(name);
        bool found = inTrash != trashed.end() && IsWhole(name, inTrash->second);
        for (const std::string& folder : {in_, target_})
            found = found || IsWhole(name, FileText(folder + "/" + name));
        if (!found) trouble += name + " is lost\n";
    }
    EXPECT_EQ(trouble, "") << scenario_.name << ", " << what;
    return trouble.empty();
}

bool World::CheckArrived(const std::string& what) const {
    const std::string& place = scenario_.rewritesHeaders ? in_ : target_;
    Files trashed = Trashed();
    std::string trouble;
    for (const auto& [name, bytes] : outputs_)
        if (FileText(target_ + "/" + name) != bytes) trouble += name + " was not written\n";
    for (const auto& original : originals_) {
        if (scenario_.writesPictures) break;
        const std::string& name = original.first;
        const std::string bytes = scenario_.trashes ? trashed[name] : FileText(place + "/" + name);
        if (!IsWhole(name, bytes)) trouble += name + " did not arrive\n";
        if (scenario_.rewritesHeaders && bytes == original.second)
            trouble += name + " has its old header\n";
    }
    EXPECT_EQ(trouble, "") << scenario_.name << ", " << what;
    return trouble.empty();
}

int World::Temporaries() const {
    int count = 0;
    for (const std::string& folder : {in_, target_})
        for (const std::string& name : NamesIn(folder)) count += IsUnfinished(name) ? 1 : 0;
    return count;
}

}  // namespace lumo::test

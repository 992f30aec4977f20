#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "engine/run_batch.h"
#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::engine {

namespace names = script::names;

/// Lets a test act in the middle of a run: `atImage` is called with the number of each image that
/// is about to be opened.
class ActingInterface : public test::RecordingInterface {
  public:
    void ShowCounts(const RunCounts& counts) override {
        RecordingInterface::ShowCounts(counts);
        if (atImage && counts.current > last_) atImage(last_ = counts.current);
    }
    std::function<void(int number)> atImage;

  private:
    int last_ = 0;
};

/// A view with folders of its own, an input folder with pictures, and a Script to be filled.
class RunFixture : public testing::Test {
  protected:
    /// The fields of START behind its folder; all tests of the pictures are off.
    static inline const std::string kFilters =
        "1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,";

    RunFixture() : view(ui) {
        std::filesystem::create_directories(folder / "in");
        std::filesystem::create_directories(folder / "install");
        settings::Settings& settings = view.settings;
        settings.installFolder = folder / "install";
        settings.folders.logs = folder / "logs";
        settings.folders.temp = folder / "temp";
        settings.folders.scripts = folder / "scripts";
        settings.folders.subroutines = folder / "subroutines";
    }

    void PutPicture(const std::string& name, imaging::Size size) {
        const imaging::Image image = test::CoordinateImage(size);
        const auto bytes = imaging::codecs::EncodePng(image.View(), {});
        ASSERT_TRUE(bytes);
        ASSERT_TRUE(platform::WriteFile(folder / name, *bytes));
    }
    void AddPicture(const std::string& name, imaging::Size size = {40, 30}) {
        PutPicture("in/" + name, size);
    }
    void Add(std::string_view name, std::string_view params = "0") {
        view.script.commands.Add(name, params);
    }
    void AddStart(const std::string& filters = kFilters) {
        Add(names::kStartImageLoop, "32,2,,\"" + (folder / "in") + "\"," + filters);
    }
    void AddOutput(std::string_view rest = "png,0,0,,,0,0,1,") {
        Add(names::kOutputSetup, "11,0,\"" + (folder / "out") + "\",0," + std::string(rest));
    }
    /// START, the given commands, output and END.
    void MakeScript(std::initializer_list<std::string_view> loopCommands = {}) {
        AddStart();
        for (const auto name : loopCommands) Add(name);
        AddOutput();
        Add(names::kEndImageLoop);
    }
    void Unattended() { view.run.noPrompts = view.run.autoExit = true; }
    /// Runs on this thread; false if the run was refused.
    bool RunHere() {
        if (!PrepareBatch(view)) return false;
        RunThreadEntry(view);
        return true;
    }
    std::string BatchLog() { return test::FileText(folder / "logs/Batch.log"); }
    std::string ErrorLog() { return test::FileText(folder / "logs/Error.log"); }
    std::vector<std::string> Out() { return test::NamesIn(folder / "out"); }

    test::TempFolder folder;
    ActingInterface ui;
    CLumoscriptView view;
};

}  // namespace lumo::engine

#pragma once

#include <gtest/gtest.h>

#include <filesystem>
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

inline const std::string kAllFilters =
    "1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,";

/// A view with folders of its own, an input folder with pictures, and a Script to be filled.
class Run : public testing::Test {
  protected:
    Run() : view(ui) {
        std::filesystem::create_directories(folder / "in");
        std::filesystem::create_directories(folder / "install");
        settings::Settings& settings = view.settings;
        settings.installFolder = folder / "install";
        settings.folders.logs = folder / "logs";
        settings.folders.temp = folder / "temp";
        settings.folders.scripts = folder / "scripts";
        settings.folders.subroutines = folder / "subroutines";
    }

    void AddPicture(const std::string& name, imaging::Size size = {40, 30}) {
        const imaging::Image image = test::CoordinateImage(size);
        const auto bytes = imaging::codecs::EncodePng(image.View(), {});
        ASSERT_TRUE(bytes);
        ASSERT_TRUE(platform::WriteFile(folder / ("in/" + name), *bytes));
    }
    void Add(std::string_view name, std::string_view params = "0") {
        view.script.commands.Add(name, params);
    }
    void AddStart() {
        Add(script::names::kStartImageLoop, "32,2,,\"" + (folder / "in") + "\"," + kAllFilters);
    }
    void AddOutput(std::string_view rest = "png,0,0,,,0,0,1,") {
        Add(script::names::kOutputSetup,
            "11,0,\"" + (folder / "out") + "\",0," + std::string(rest));
    }
    /// START, the given commands, output and END.
    void MakeScript(std::initializer_list<std::string_view> loopCommands = {}) {
        AddStart();
        for (const auto name : loopCommands) Add(name);
        AddOutput();
        Add(script::names::kEndImageLoop);
    }
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
    test::RecordingInterface ui;
    CLumoscriptView view;
};

}  // namespace lumo::engine

#pragma once

// The programs as a user starts them.

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "support/program.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo {

inline const std::string kBatch = LUMO_BATCH_PROGRAM;
inline const std::string kDesktop = LUMO_DESKTOP_PROGRAM;

/// A home of its own, an input folder and a Script.
class Unattended : public testing::Test {
  protected:
    Unattended() { std::filesystem::create_directories(folder / "in"); }

    void AddPictures(int count) {
        const imaging::Image image = test::CoordinateImage({64, 48});
        const auto bytes = imaging::codecs::EncodePng(image.View(), {});
        ASSERT_TRUE(bytes);
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(platform::WriteFile(folder / ("in/" + std::to_string(i) + ".png"), *bytes));
    }
    std::string MakeScript(const std::string& commands, const std::string& outputs = "") {
        const std::string start =
            "START image loop (setup)\r\n32,2,,\"" + (folder / "in") +
            "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,\r\n";
        const std::string output = outputs.empty() ? "Output setup\r\n11,0,\"" + (folder / "out") +
                                                         "\",0,png,0,0,,,0,0,1,\r\n"
                                                   : outputs;
        const std::string path = folder / "test.whs";
        test::PutFile(path,
                      "BEGIN\r\n" + start + commands + output + "END image loop\r\n0\r\nEND\r\n");
        return path;
    }
    std::string Log(const std::string& name) {
        return test::FileText(folder / ("home/Documents/Lumoscript/Logs/" + name));
    }

    /// Waits until a program that keeps Debug.log has gone so far as to write `text` there.
    void WaitForDebugLog(const std::string& text) {
        EXPECT_TRUE(
            test::WaitForProgram([&] { return Log("Debug.log").find(text) != std::string::npos; }));
    }

    test::TempFolder folder;
    test::ScopedVariable home{"HOME", folder / "home"};
    test::ScopedVariable config{"XDG_CONFIG_HOME", folder / "config"};
    test::ScopedVariable display{"DISPLAY", nullptr};
    test::ScopedVariable bus{"DBUS_SESSION_BUS_ADDRESS", nullptr};
};

/// A Script that never ends, which is its author's right, and what Debug.log says of it.
inline constexpr const char* kEndless =
    "DO_WHILE (condition)\r\n5,4,2,0,0,0,\r\nCounter (reset or increment)\r\n3,1,1,1,\r\n"
    "DO_END\r\n0\r\n";
inline constexpr const char* kEndlessLogged = "endless loop?";

}  // namespace lumo

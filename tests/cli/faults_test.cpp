// Unattended runs in a world that fails them: what is left on disk, and the exit status.

#include <algorithm>
#include <csignal>
#include <random>
#include <thread>

#include "unattended_fixture.h"

namespace lumo {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Faults = Unattended;

std::string OutputTo(const std::string& path, const std::string& extension = "png") {
    return "Output setup\r\n11,0,\"" + path + "\",0," + extension + ",0,0,,,0,0,1,\r\n";
}

TEST_F(Faults, AFileThatIsNoPictureGivesOneAndTheRestIsDone) {
    AddPictures(2);
    test::PutFile(folder / "in/0.png", "no picture at all");
    const auto result = test::RunProgram({kBatch, MakeScript("")});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.out, HasSubstr("2 images read, 1 file written, 1 error, 0 warnings,"));
    EXPECT_THAT(result.err, HasSubstr((folder / "in/0.png") + ": Error:1073 - Unable to open "));
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("1.png"));
}

TEST_F(Faults, AVanishedFileGivesOneAndTheRestIsDone) {
    AddPictures(1);
    test::PutFile(folder / "a.lst", "START\r\n" + (folder / "in/gone.png") + "\r\n" +
                                        (folder / "in/0.png") + "\r\nEND\r\n");
    const std::string script = folder / "list.whs";
    test::PutFile(script, "BEGIN\r\nSTART image loop (setup)\r\n32,1,\"" + (folder / "a.lst") +
                              "\",,0,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,"
                              "0,0,0,0.0,4.0,0,\r\n" +
                              OutputTo(folder / "out") + "END image loop\r\n0\r\nEND\r\n");
    const auto result = test::RunProgram({kBatch, script});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.err, HasSubstr("in/gone.png: Error:1093 - File not found?"));
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("0.png"));
}

TEST_F(Faults, AListThatIsNoneIsSaidToBeSo) {
    test::PutFile(folder / "a.lst", "BEGIN\r\n");
    const std::string script = folder / "list.whs";
    test::PutFile(script, "BEGIN\r\nSTART image loop (setup)\r\n32,1,\"" + (folder / "a.lst") +
                              "\",,\r\n" + OutputTo(folder / "out") +
                              "END image loop\r\n0\r\nEND\r\n");
    const auto result = test::RunProgram({kBatch, script});
    EXPECT_THAT(result.err, HasSubstr("Not a valid Lumoscript image list!"));
    EXPECT_THAT(result.out, HasSubstr("0 images read, 0 files written"));
}

TEST_F(Faults, AFolderThatNobodyMayWriteGivesOneAndNothingWaits) {
    AddPictures(2);
    for (const std::string path : {"/proc", "/proc/none"}) {
        const auto result = test::RunProgram({kBatch, MakeScript("", OutputTo(path))});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.out, HasSubstr("2 images read, 0 files written, 2 errors,"));
        EXPECT_THAT(result.err, HasSubstr("Unable to open file."));
        EXPECT_THAT(result.err, HasSubstr("Error:1004 Cmd_63 - Save file failure"));
        EXPECT_THAT(Log("Batch.log"), HasSubstr("Unable to open file."));
        EXPECT_THAT(Log("Batch.log"), HasSubstr("2 :  errors"));
    }
}

TEST_F(Faults, AFullDiskIsAnErrorOfTheFilesThatDoNotFit) {
    AddPictures(2);
    const imaging::Image noise = test::RandomImage({200, 200}, 1);
    ASSERT_TRUE(
        platform::WriteFile(folder / "in/1.png", *imaging::codecs::EncodePng(noise.View(), {})));
    test::PutFile(folder / "out/1.bmp", "old");
    const std::string script = MakeScript("", OutputTo(folder / "out", "bmp"));
    const auto result = test::RunProgram(
        {"/bin/sh", "-c", "ulimit -f 100; exec \"$@\"", "sh", kBatch, script});  // of 512 bytes
    EXPECT_EQ(result.exitStatus, 1) << result.err;
    EXPECT_THAT(result.out, HasSubstr("2 images read, 1 file written, 1 error,"));
    EXPECT_THAT(result.err, HasSubstr("1.bmp: Error:1004 Cmd_63 - Save file failure"));
    EXPECT_EQ(test::FileText(folder / "out/1.bmp"), "old");
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("0.bmp", "1.bmp"));
}

TEST_F(Faults, ARefusedFolderGivesThree) {
    AddPictures(1);
    test::PutFile(folder / "config/lumoscript/settings.toml",
                  "[\"1.0\"]\nbFirstBoot = \"No\"\nbFoldWarn = \"Yes\"\nLogPath = \"" +
                      (folder / "logs") + "\"\n");
    const auto result = test::RunProgram({kBatch, MakeScript("")});
    EXPECT_EQ(result.exitStatus, 3);
    const std::string words = (folder / "out") + "/ :does not exist. Create now?";
    EXPECT_THAT(result.err, HasSubstr(words));
    EXPECT_THAT(test::FileText(folder / "logs/Batch.log"), HasSubstr(words));
    EXPECT_THAT(test::FileText(folder / "logs/Error.log"), HasSubstr(words));
    EXPECT_FALSE(fs::exists(folder / "out"));
    fs::create_directory(folder / "out");
    EXPECT_EQ(test::RunProgram({kBatch, MakeScript("")}).exitStatus, 0);
}

TEST_F(Faults, AFatalErrorGivesFour) {
    AddPictures(300);
    // Leaves its subroutine without a return for each image, until the stack is full.
    const std::string script = folder / "deep.whs";
    const std::string whole = test::FileText(MakeScript("SUBROUTINE Execute\r\n1,\"S\",\r\n"));
    const std::string tail =
        "SUBROUTINE_START\r\n1,\"S\",\r\nLoop Start (by number)\r\n1,1000,\r\n"
        "SUBROUTINE Execute\r\n1,\"T\",\r\nLoop End (by number)\r\n0\r\nSUBROUTINE_END\r\n0\r\n"
        "SUBROUTINE_START\r\n1,\"T\",\r\nExit (get next image)\r\n0\r\nSUBROUTINE_END\r\n0\r\n";
    test::PutFile(script, whole.substr(0, whole.rfind("END\r\n")) + tail + "END\r\n");
    const auto result = test::RunProgram({kBatch, script, "/e"});
    EXPECT_EQ(result.exitStatus, 4) << result.err;
    EXPECT_THAT(result.err, HasSubstr("Fatal error:8080 Subroutine stack overlow"));
    EXPECT_THAT(Log("Error.log"), HasSubstr("Fatal error:8080 Subroutine stack overlow"));
}

/// Every file under a name of its own is a whole picture.
void ExpectWholePictures(const std::string& path) {
    for (const std::string& name : test::NamesIn(path)) {
        if (platform::IsTemporaryName(name)) continue;
        const auto bytes = platform::ReadFile(path + "/" + name);
        ASSERT_TRUE(bytes) << name;
        const auto decoded = imaging::codecs::Decode(*bytes, imaging::codecs::Format::Unknown);
        ASSERT_TRUE(decoded) << name << ": " << decoded.Message();
        EXPECT_EQ(decoded->warning, "") << name;
    }
}

fs::file_time_type WrittenAt(const std::string& path) {
    std::error_code missing;
    const auto time = fs::last_write_time(path, missing);
    return missing ? fs::file_time_type::min() : time;
}

TEST_F(Faults, AKillInTheMiddleLeavesWholeFilesAndTheNextRunDoesTheRest) {
    AddPictures(60);
    const std::string script = MakeScript("Scale: change image size\r\n6,0,0,640,480,3,0,\r\n");
    std::mt19937 random(1);
    for (int round = 0; round < 5; ++round) {
        const auto start = fs::file_time_type::clock::now();
        const auto result = test::RunProgram({kBatch, script}, [&](int process) {
            const std::string chosen = folder / ("out/" + std::to_string(random() % 50) + ".png");
            test::WaitForProgram([&] { return WrittenAt(chosen) > start; });
            kill(process, SIGKILL);
        });
        EXPECT_THAT(result.exitStatus, AnyOf(128 + SIGKILL, 0));
        if (fs::exists(folder / "out")) ExpectWholePictures(folder / "out");
    }
    const auto last = test::RunProgram({kBatch, script});
    EXPECT_EQ(last.exitStatus, 0) << last.err;
    EXPECT_THAT(last.out, HasSubstr("60 images read, 60 files written"));
    ExpectWholePictures(folder / "out");
}

TEST_F(Faults, AfterACrashDebugLogEndsWithTheCommandInHandAndThereIsNoBatchLog) {
    AddPictures(1);
    const auto result =
        test::RunProgram({kBatch, MakeScript(kEndless), "--debug-log"}, [&](int process) {
            WaitForDebugLog(kEndlessLogged);
            kill(process, SIGKILL);
        });
    EXPECT_EQ(result.exitStatus, 128 + SIGKILL);
    EXPECT_EQ(Log("Batch.log"), "<missing>");
    EXPECT_EQ(Log("Error.log"), "<missing>");
    const std::string debug = Log("Debug.log");
    EXPECT_THAT(debug, HasSubstr("Current Image File with last command executed:\r\n" +
                                 (folder / "in/0.png") + "\r\nDO_WHILE (condition)\r\n"));
    EXPECT_THAT(debug, HasSubstr("100 cmd executions - stopped logging, endless loop?\r\n"));
    // 99 pairs, and the parameters of the hundredth command behind the words.
    EXPECT_EQ(std::count(debug.begin(), debug.end(), '\n'), 3 + 2 * 100);
}

}  // namespace
}  // namespace lumo

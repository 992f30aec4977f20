// The programs as a user starts them.

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "support/test_files.h"
#include "unattended_fixture.h"

namespace lumo {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST_F(Unattended, ARunFromFolderToFolder) {
    AddPictures(3);
    const auto result = test::RunProgram({kBatch, MakeScript("")});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_THAT(result.out, StartsWith("3 images read, 3 files written, 0 errors, 0 warnings, "));
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("0.png", "1.png", "2.png"));
    EXPECT_THAT(Log("Batch.log"), HasSubstr("---- done ----"));
    EXPECT_FALSE(fs::exists(folder / "config/lumoscript")) << "a server keeps no settings";
}

TEST_F(Unattended, TheDesktopProgramNeedsNoDisplayForIt) {
    AddPictures(1);
    const auto result = test::RunProgram({kDesktop, MakeScript(""), "/r", "/x", "/s", "/e"});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("0.png"));
}

TEST_F(Unattended, AFailedCommandGivesOne) {
    AddPictures(1);
    const auto result = test::RunProgram({kBatch, MakeScript("No such command\r\n0\r\n")});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("0.png"));
}

TEST_F(Unattended, AWarningLeavesZero) {
    AddPictures(1);
    const std::string script =
        MakeScript("", "Output setup\r\n11,0,\"" + (folder / "out") + "\",0,png,0,0,,,0,0,0,\r\n");
    EXPECT_EQ(test::RunProgram({kBatch, script}).exitStatus, 0);
    const auto again = test::RunProgram({kBatch, script});
    EXPECT_EQ(again.exitStatus, 0);
    EXPECT_THAT(again.out, HasSubstr("0 files written, 0 errors, 1 warning,"));
    EXPECT_THAT(Log("Batch.log"), HasSubstr("Warning:101 - Output file exists, Output setup "
                                            "command set for no overwrite"));
}

TEST_F(Unattended, AMissingScriptGivesThree) {
    const auto result = test::RunProgram({kBatch, folder / "none.whs"});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.err, HasSubstr("Unable to find or open named Lumoscript script file (.whs), "
                                      "check file path?"));
    EXPECT_THAT(result.out, IsEmpty());
}

TEST_F(Unattended, AFileThatIsNoScriptTouchesNothing) {
    AddPictures(1);
    test::PutFile(folder / "bad.whs", "GARBAGE that is long enough\r\n");
    const auto result = test::RunProgram({kBatch, folder / "bad.whs"});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.err, HasSubstr("Not a valid script or subroutine file!"));
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(Unattended, AScriptThatIsNotOpenedIsNamedWithTheReason) {
    const auto said = [](const std::string& path) { return test::RunProgram({kBatch, path}).err; };
    EXPECT_THAT(said(folder / "none.whs"),
                HasSubstr((folder / "none.whs") + ": No such file or directory\n"));
    EXPECT_THAT(said(folder / "in"), HasSubstr((folder / "in") + ": "));
    test::PutFile(folder / "lf.whs", "BEGIN\nFlip - vertical\n0\nEND\n");
    EXPECT_THAT(said(folder / "lf.whs"),
                HasSubstr((folder / "lf.whs") +
                          ": its lines end in LF alone, those of a Script end in CR LF\n"));
    test::PutFile(folder / "open.whs", "BEGIN\r\nFlip - vertical\r\n0\r\n");
    EXPECT_THAT(said(folder / "open.whs"),
                HasSubstr((folder / "open.whs") + ": no line \"END\"\n"));
}

TEST_F(Unattended, AShippedScriptNeedsNoMoreThanItsName) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    const auto result = test::RunProgram({kBatch, "Thumbnails"});
    fs::current_path(before);
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_THAT(test::NamesIn(folder / "out/Thumbnails"), testing::SizeIs(9));
}

TEST_F(Unattended, AnotherInputMayBeNamedForTheSameScript) {
    AddPictures(2);
    const std::string script = MakeScript("");
    fs::rename(folder / "in", folder / "it's, other");
    const auto run = test::RunProgram({kBatch, "--input", folder / "it's, other", script});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("0.png", "1.png"));

    test::PutFile(folder / "one.lst", "START\r\n" + (folder / "it's, other/1.png") + "\r\nEND\r\n");
    fs::remove_all(folder / "out");
    const auto list = test::RunProgram({kBatch, script, "--input=" + (folder / "one.lst")});
    EXPECT_EQ(list.exitStatus, 0) << list.err;
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("1.png"));

    const auto none = test::RunProgram({kBatch, script, "--input", folder / "none"});
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_EQ(none.err, "Input folder " + (folder / "none") + ": No such file or directory\n");
}

TEST_F(Unattended, AnInputThatIsNotThereIsNamedAndGivesOne) {
    AddPictures(1);
    const std::string script = MakeScript("");
    fs::remove_all(folder / "in");
    const auto folderGone = test::RunProgram({kBatch, "--quiet", script});
    EXPECT_EQ(folderGone.exitStatus, 1);
    EXPECT_EQ(folderGone.err, "Input folder " + (folder / "in") + ": No such file or directory\n");

    std::string text = test::FileText(script);
    text.replace(text.find("32,2,,"), 6, "32,1,\"" + (folder / "no.lst") + "\",");
    test::PutFile(script, text);
    const auto listGone = test::RunProgram({kBatch, script});
    EXPECT_EQ(listGone.exitStatus, 1);
    EXPECT_EQ(listGone.err, "Image list " + (folder / "no.lst") + ": No such file or directory\n");
}

TEST_F(Unattended, AFolderWithoutPicturesIsNoMistake) {
    const auto result = test::RunProgram({kBatch, MakeScript("")});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.out, StartsWith("0 images read, 0 files written, 0 errors, 0 warnings, "));
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Unattended, TheInputMayBeMadeAboveStart) {
    fs::remove_all(folder / "in");
    std::string text = test::FileText(MakeScript(""));
    const std::string canvas = "New (canvas)\r\n6,64,48,0,0,0,0,\r\nOutput setup\r\n11,0,\"" +
                               (folder / "in") + "\",0,png,0,3,,made,0,0,1,\r\n";
    text.insert(text.find("START"), canvas);
    test::PutFile(folder / "test.whs", text);
    const auto result = test::RunProgram({kBatch, folder / "test.whs"});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("made.png"));
}

TEST_F(Unattended, ANameThatIsNoCommandIsToldOnceWithTheOneThatIsMeant) {
    AddPictures(2);
    const auto run = test::RunProgram({kBatch, MakeScript("Flip - horizontal\r\n0\r\n")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, StartsWith("\"Flip - horizontal\" is no command; is \"Flip - horizonal\" "
                                    "meant?\n"));
    const auto refused = test::RunProgram(
        {kBatch, MakeScript("Loop Start (by number)\r\n1,3,\r\nLoop End\r\n0\r\n")});
    EXPECT_EQ(refused.exitStatus, 3);
    EXPECT_THAT(refused.err,
                HasSubstr("\"Loop End\" is no command; is \"Loop End (by number)\" meant?\n"));
}

TEST_F(Unattended, AnOutputFolderThatCannotBeMadeIsNamedWithTheReason) {
    AddPictures(1);
    const auto result = test::RunProgram(
        {kBatch, MakeScript("", "Output setup\r\n11,0,\"" + (folder / "in/0.png/out") +
                                    "\",0,png,0,0,,,0,0,1,\r\n")});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.err, HasSubstr("invalid_handle2\n" + (folder / "in/0.png")));
    EXPECT_THAT(result.err, HasSubstr(": Not a directory\n"));
}

TEST_F(Unattended, WithoutADisplayTheWindowIsRefusedInOneLine) {
    const test::ScopedVariable wayland("WAYLAND_DISPLAY", nullptr);
    const test::ScopedVariable platform("QT_QPA_PLATFORM", nullptr);
    const auto result = test::RunProgram({kDesktop, MakeScript("")});
    EXPECT_EQ(result.exitStatus, 2);
    EXPECT_THAT(result.err, StartsWith("lumoscript: no display for the window."));
}

TEST_F(Unattended, AFolderLeftOpenGivesThreeAndWords) {
    const auto result = test::RunProgram(
        {kBatch, MakeScript("", "Output setup\r\n11,0,,0,jpg,0,0,,,0,0,0,\r\n"), "/e"});
    EXPECT_EQ(result.exitStatus, 3);
    const std::string words =
        "In 'Output setup' command(s) you must uncheck 'Set at runtime' and set output folder. "
        "Then run again";
    EXPECT_THAT(result.err, HasSubstr(words));
    EXPECT_THAT(Log("Error.log"), HasSubstr(words));
}

TEST_F(Unattended, StructureFaultsGiveThree) {
    const auto result = test::RunProgram({kBatch, MakeScript("IF_END\r\n0\r\n"), "/e"});
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_THAT(result.err, HasSubstr("Preprocessing error: IF_END before IF_START in Image loop"));
}

TEST_F(Unattended, WrongUseGivesTwo) {
    EXPECT_EQ(test::RunProgram({kBatch}).exitStatus, 2);
    EXPECT_EQ(test::RunProgram({kBatch, "a", "b"}).exitStatus, 2);
}

TEST_F(Unattended, HelpGoesToStandardOutput) {
    const auto result = test::RunProgram({kBatch, "--help"});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(result.out, HasSubstr("Exit status"));
    EXPECT_THAT(result.err, IsEmpty());
}

TEST_F(Unattended, SigintEndsAnEndlessRunWithItsLogs) {
    AddPictures(2);
    const auto result =
        test::RunProgram({kBatch, MakeScript(kEndless), "/e", "--debug-log"}, [&](int process) {
            WaitForDebugLog(kEndlessLogged);
            kill(process, SIGINT);
        });
    EXPECT_EQ(result.exitStatus, 130);
    EXPECT_THAT(result.out, testing::EndsWith(" s, ended before all was done\n"));
    EXPECT_THAT(Log("Error.log"), HasSubstr("User aborted."));
    EXPECT_THAT(Log("Batch.log"), HasSubstr("Elapsed processing time"));
    EXPECT_FALSE(fs::exists(folder / "out/0.png"));
}

TEST_F(Unattended, SigtermGives143) {
    AddPictures(1);
    const auto result =
        test::RunProgram({kBatch, MakeScript(kEndless), "--debug-log"}, [&](int process) {
            WaitForDebugLog(kEndlessLogged);
            kill(process, SIGTERM);
        });
    EXPECT_EQ(result.exitStatus, 143);
}

TEST_F(Unattended, RunsWithoutAWritableHome) {
    AddPictures(1);
    const test::ScopedVariable noHome("HOME", "/proc/nowhere");
    const test::ScopedVariable noConfig("XDG_CONFIG_HOME", "/proc/nowhere/config");
    for (const std::string& program : {kBatch, kDesktop}) {
        fs::remove_all(folder / "out");
        const auto result = test::RunProgram({program, MakeScript(""), "/r", "/x", "/s"});
        EXPECT_EQ(result.exitStatus, 0) << result.err;
        EXPECT_THAT(test::NamesIn(folder / "out"), ElementsAre("0.png"));
    }
}

TEST_F(Unattended, ASecondSignalEndsAtOnce) {
    AddPictures(1);
    // Colours of so large a picture are counted for seconds, and no command is interrupted.
    const std::string script =
        MakeScript("Scale: change image size\r\n6,0,0,4000,4000,3,0,\r\n",
                   "Output setup\r\n11,0,\"" + (folder / "out") + "\",0,gif,0,0,,,0,0,1,\r\n");
    const auto result = test::RunProgram({kBatch, script, "/e", "--debug-log"}, [&](int process) {
        WaitForDebugLog("Output setup");
        kill(process, SIGINT);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        kill(process, SIGTERM);
    });
    // Where both wait at once, either may come first.
    EXPECT_THAT(result.exitStatus, AnyOf(130, 143));
    EXPECT_EQ(Log("Error.log"), "<missing>");
    EXPECT_FALSE(fs::exists(folder / "out/0.gif"));
}

TEST_F(Unattended, OnlyTheDesktopProgramKeepsWhatAScriptSets) {
    AddPictures(1);
    const std::string settings = folder / "config/lumoscript/settings.toml";
    EXPECT_EQ(test::RunProgram({kDesktop, MakeScript(""), "/r", "/x", "/s"}).exitStatus, 0);
    EXPECT_THAT(test::FileText(settings), HasSubstr("JPGcomp = \"85\""));
    const std::string changed =
        MakeScript("Writer preferences\r\n24,300,72,33,0,0,,,,11811,0,0,0,,,,,,,,,1,1,0,0,\r\n");
    EXPECT_EQ(test::RunProgram({kBatch, changed}).exitStatus, 0);
    EXPECT_THAT(test::FileText(settings), HasSubstr("JPGcomp = \"85\""));
    EXPECT_EQ(test::RunProgram({kDesktop, changed, "/r", "/x", "/s"}).exitStatus, 0);
    EXPECT_THAT(test::FileText(settings), HasSubstr("JPGcomp = \"33\""));
}

TEST_F(Unattended, DebugLogNamesTheLastCommands) {
    AddPictures(1);
    const auto result = test::RunProgram({kBatch, MakeScript(""), "--debug-log"});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_THAT(Log("Debug.log"), HasSubstr("Current Image File with last command executed:\r\n" +
                                            (folder / "in/0.png") + "\r\nOutput setup\r\n"));
}

TEST_F(Unattended, ProgressIsForTerminalsOnly) {
    AddPictures(2);
    const auto result = test::RunProgram({kBatch, MakeScript("")});
    EXPECT_THAT(result.err, Not(HasSubstr("%")));
    EXPECT_THAT(test::RunProgram({kBatch, MakeScript(""), "--quiet"}).out, IsEmpty());
}

// docs/flow.md explains this Script.
TEST_F(Unattended, TheShippedScriptThatDecidesTreatsEachPhotographByWhatItIs) {
    const std::string share = (test::SourceRoot() / "share").string();
    fs::create_directories(folder / "work");
    const fs::path before = fs::current_path();
    fs::current_path(folder / "work");  // it writes below the working folder
    const auto result = test::RunProgram({kBatch, share + "/Scripts/Sharpen-for-web.whs"});
    fs::current_path(before);
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("9 images read, 9 files written, 0 errors"));
    const std::string out = folder / "work/out/Sharpened/";
    ASSERT_EQ(test::NamesIn(out).size(), 9U);
    for (const std::string& name : test::NamesIn(out)) {
        const auto file = platform::ReadFile(out + name);
        ASSERT_TRUE(file);
        const auto picture = imaging::codecs::Decode(*file, imaging::codecs::Format::Jpeg);
        ASSERT_TRUE(picture) << name;
        // All are larger than 1,200,000 pixels, so the subroutine has fitted each.
        EXPECT_EQ(std::max(picture->image.Width(), picture->image.Height()), 1280) << name;
    }
}

TEST_F(Unattended, MemoryStaysFlatOverTwoThousandFiles) {
    const std::string script = MakeScript("Counter (reset or increment)\r\n3,1,1,0,\r\n");
    AddPictures(20);
    const auto few = test::RunProgram({kBatch, script});
    EXPECT_EQ(few.exitStatus, 0);
    AddPictures(2000);
    const auto many = test::RunProgram({kBatch, script});
    EXPECT_EQ(many.exitStatus, 0);
    EXPECT_THAT(many.out, HasSubstr("2000 images read, 2000 files written"));
#ifndef LUMO_SANITIZED  // a sanitizer keeps freed memory in quarantine
    EXPECT_LT(many.peakKilobytes, few.peakKilobytes * 12 / 10);
#endif
}

}  // namespace
}  // namespace lumo

#include "cli/command_line.h"

#include <gmock/gmock.h>

#include "engine/command_reference.h"

namespace lumo::cli {
namespace {

using testing::HasSubstr;

CommandLine Desktop(const std::vector<std::string>& arguments) {
    return ParseCommandLine(arguments, Program::Desktop);
}
CommandLine Batch(const std::vector<std::string>& arguments) {
    return ParseCommandLine(arguments, Program::Batch);
}

TEST(CommandLine, SwitchesAreWholeArgumentsInAnyCase) {
    for (const auto& switches : std::vector<std::vector<std::string>>{
             {"/r", "/x", "/s", "/e"}, {"-R", "-X", "-S", "-E"}, {"/R", "-x", "/S", "-e"}}) {
        std::vector<std::string> arguments{"a.whs"};
        arguments.insert(arguments.end(), switches.begin(), switches.end());
        const CommandLine line = Desktop(arguments);
        EXPECT_FALSE(line.stop) << line.text;
        EXPECT_EQ(line.scriptPath, "a.whs");
        EXPECT_TRUE(line.autoRun && line.autoExit && line.noPrompts && line.forceErrorLog);
        EXPECT_TRUE(line.Unattended());
    }
}

TEST(CommandLine, APathMayBeginLikeASwitch) {
    for (const char* path : {"/root/a.whs", "/r.whs", "/srv/x", "/e/s", "./-r.whs"}) {
        const CommandLine line = Desktop({path, "/r", "/x", "/s"});
        EXPECT_FALSE(line.stop) << line.text;
        EXPECT_EQ(line.scriptPath, path);
    }
}

TEST(CommandLine, AScriptMayBeginWithADash) {
    for (const char* path : {"-web.whs", "-r.whs", "-rx", "-sex", "-", "/rx", "-q"}) {
        const CommandLine line = Desktop({"/r", path, "/x", "/s"});
        EXPECT_FALSE(line.stop) << line.text;
        EXPECT_EQ(line.scriptPath, path);
        EXPECT_FALSE(line.forceErrorLog) << path;
    }
}

TEST(CommandLine, BehindTwoDashesEverythingIsTheScript) {
    for (const char* path : {"--odd.whs", "/r", "-h", "--"}) {
        const CommandLine line = Batch({"--quiet", "--", path});
        EXPECT_FALSE(line.stop) << line.text;
        EXPECT_EQ(line.scriptPath, path);
        EXPECT_TRUE(line.quiet);
    }
}

TEST(CommandLine, OptionsAreOurs) {
    const CommandLine line = Batch({"a.whs", "--debug-log", "--quiet"});
    EXPECT_TRUE(line.debugLog);
    EXPECT_TRUE(line.quiet);
    EXPECT_FALSE(Batch({"a.whs"}).debugLog);
    EXPECT_FALSE(Batch({"a.whs"}).quiet);
    EXPECT_EQ(Batch({"-h"}).text, Batch({"--help"}).text);
}

TEST(CommandLine, SwitchesMayStandBeforeTheScript) {
    const CommandLine line = Desktop({"/x", "/r", "a b.whs", "/s"});
    EXPECT_EQ(line.scriptPath, "a b.whs");
    EXPECT_TRUE(line.Unattended());
}

TEST(CommandLine, ExitAloneMeansNothing) {
    const CommandLine line = Desktop({"a.whs", "/x", "/s"});
    EXPECT_FALSE(line.autoExit);
    EXPECT_FALSE(line.Unattended());
    EXPECT_FALSE(line.stop);
}

TEST(CommandLine, TheBatchProgramIsAlwaysUnattended) {
    const CommandLine line = Batch({"a.whs"});
    EXPECT_FALSE(line.stop);
    EXPECT_TRUE(line.Unattended());
    EXPECT_FALSE(line.forceErrorLog);
}

TEST(CommandLine, WrongUseEndsWithTwo) {
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{}, {"a.whs", "b.whs"}, {"a.whs", "--nonsense"}}) {
        const CommandLine line = Batch(arguments);
        EXPECT_TRUE(line.stop);
        EXPECT_EQ(line.exitCode, 2);
        EXPECT_FALSE(line.text.empty());
    }
    EXPECT_EQ(Desktop({"/r", "/x", "/s"}).exitCode, 2);
    EXPECT_EQ(Batch({""}).exitCode, 2);
    EXPECT_FALSE(Desktop({}).stop);  // just the window
    EXPECT_EQ(
        Batch({"a.whs", "b.whs"}).text,
        "lumoscript-batch: one Script at a time, not \"a.whs\" and \"b.whs\". Each switch stands "
        "alone. See lumoscript-batch --help.\n");
    EXPECT_EQ(Batch({"a.whs", "--debuglog"}).text,
              "lumoscript-batch: \"--debuglog\" is no option. See lumoscript-batch --help.\n");
    EXPECT_EQ(Desktop({"/r", "/x", "/s"}).text,
              "lumoscript: which Script is to run? See lumoscript --help.\n");
}

TEST(CommandLine, HelpTellsSwitchesAndExitStatus) {
    const CommandLine line = Batch({"--help"});
    EXPECT_TRUE(line.stop);
    EXPECT_EQ(line.exitCode, 0);
    EXPECT_THAT(line.text, HasSubstr("Usage: lumoscript-batch"));
    EXPECT_THAT(line.text, HasSubstr("SCRIPT"));
    EXPECT_THAT(line.text, HasSubstr("130"));
}

TEST(CommandLine, HelpIsOfTheProgramThatWasAsked) {
    const std::string batch = Batch({"--help"}).text, desktop = Desktop({"--help"}).text;
    EXPECT_THAT(batch, HasSubstr("\n  lumoscript-batch Thumbnails.whs\n"));
    EXPECT_THAT(batch, testing::Not(HasSubstr("/x"))) << "switches that it takes for granted";
    EXPECT_THAT(desktop, HasSubstr("\n  lumoscript Thumbnails.whs /r /x /s /e\n"));
    EXPECT_THAT(desktop, HasSubstr("-x "));
    for (const std::string& text : {batch, desktop}) {
        EXPECT_THAT(text, HasSubstr("Error.log in ~/Documents/Lumoscript/Logs"));
        EXPECT_THAT(text, HasSubstr("settings.toml"));
    }
    EXPECT_EQ(Batch({"/?"}).text, batch);
    EXPECT_EQ(Batch({"-?"}).text, batch);
}

TEST(CommandLine, TheInputIsWhatStandsBehindIt) {
    const CommandLine line = Batch({"--input", "/x", "a.whs"});
    EXPECT_FALSE(line.stop) << line.text;
    EXPECT_EQ(line.inputPath, "/x");
    EXPECT_EQ(line.scriptPath, "a.whs");
    EXPECT_EQ(Batch({"a.whs", "--input=b c"}).inputPath, "b c");
    EXPECT_EQ(Batch({"a.whs", "--input"}).exitCode, 2);
    EXPECT_EQ(Desktop({"a.whs", "--input", "b"}).exitCode, 2) << "the window asks for it";
    EXPECT_FALSE(Desktop({"a.whs", "/r", "/x", "/s", "--input", "b"}).stop);
}

TEST(CommandLine, CommandsAreListed) {
    const CommandLine line = Batch({"--commands"});
    EXPECT_TRUE(line.stop);
    EXPECT_EQ(line.exitCode, 0);
    EXPECT_EQ(line.text, engine::CommandReference());
}

TEST(CommandLine, VersionIsOneLine) {
    const CommandLine line = Desktop({"--version"});
    EXPECT_TRUE(line.stop);
    EXPECT_EQ(line.exitCode, 0);
    EXPECT_THAT(line.text, testing::MatchesRegex("lumoscript [0-9.]+\n"));
}

}  // namespace
}  // namespace lumo::cli

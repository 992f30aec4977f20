#include "engine/script_structure.h"

#include <gmock/gmock.h>

#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string_view>;

class Structure : public testing::Test {
  protected:
    bool Check(const Names& commands) {
        view.script.commands.Clear();
        for (const auto name : commands) view.script.commands.Add(name, "0");
        ui.messages.clear();
        return CheckScriptStructure(view);
    }
    void ExpectFault(const Names& commands, const std::string& words) {
        EXPECT_FALSE(Check(commands));
        EXPECT_THAT(ui.messages,
                    ElementsAre(words + "This may cause unpreditable results. Please correct!"));
    }

    test::TempFolder folder;
    test::RecordingInterface ui;
    CLumoscriptView view{ui};
};

TEST_F(Structure, WellFormedScriptsPass) {
    EXPECT_TRUE(Check({}));
    EXPECT_TRUE(Check({names::kIfFirstFile, names::kIfLastFile, names::kIfEnd, names::kIfEnd,
                       names::kElseStart, names::kElseEnd, names::kLoopStart, names::kLoopEnd,
                       names::kDoWhile, names::kDoEnd, names::kSubroutineStart,
                       names::kSubroutineEnd, names::kSubroutineStart, names::kSubroutineEnd}));
    EXPECT_THAT(ui.messages, IsEmpty());
}

TEST_F(Structure, EachFaultHasItsWords) {
    ExpectFault({names::kIfCondition}, "IF_START cmd without IF_END cmd. ");
    ExpectFault({names::kIfEnd}, "IF_END cmd without IF_START cmd. ");
    ExpectFault({names::kIfEnd, names::kIfCondition}, "IF_END cmd before any IF_xxxxx cmd. ");
    ExpectFault({names::kElseStart}, "ELSE_START cmd without ELSE_END cmd. ");
    ExpectFault({names::kElseEnd}, "ELSE_END cmd without ELSE_START cmd. ");
    ExpectFault({names::kLoopStart}, "Loop Start cmd without Loop End cmd. ");
    ExpectFault({names::kLoopEnd}, "Loop End cmd without Loop Start cmd. ");
    ExpectFault({names::kDoWhile}, "DO_WHILE cmd without DO_END cmd. ");
    ExpectFault({names::kDoEnd}, "DO_END cmd without DO_WHILE (condition) cmd. ");
    ExpectFault({names::kSubroutineStart}, "SUBROUTINE_START cmd without SUBROUTINE_END cmd. ");
    ExpectFault({names::kSubroutineStart, names::kSubroutineStart, names::kSubroutineEnd,
                 names::kSubroutineEnd},
                "SUBROUTINE_START cmd without SUBROUTINE_END cmd. ");
    ExpectFault({names::kSubroutineEnd}, "SUBROUTINE_END cmd without SUBROUTINE_START cmd. ");
    ExpectFault({names::kSubroutineEnd, names::kSubroutineStart},
                "SUBROUTINE_END cmd without SUBROUTINE_START cmd. ");
}

TEST_F(Structure, TheFirstFaultOfTheChainIsTold) {
    ExpectFault({names::kDoEnd, names::kLoopEnd, names::kIfCondition},
                "IF_START cmd without IF_END cmd. ");
}

TEST_F(Structure, AnOutputInALoopWantsIncrementalNames) {
    const auto check = [&](std::string_view starter, std::string_view ender,
                           std::string_view params) {
        view.script.commands.Clear();
        view.script.commands.Add(starter, "0");
        view.script.commands.Add(names::kOutputSetup, params);
        view.script.commands.Add(ender, "0");
        ui.messages.clear();
        return CheckScriptStructure(view);
    };
    constexpr auto kPlain = "11,0,,0,jpg,0,0,,,0,0,0,";
    constexpr auto kNumbered = "11,0,,0,jpg,0,0,,,1,0,0,";
    EXPECT_FALSE(check(names::kLoopStart, names::kLoopEnd, kPlain));
    EXPECT_THAT(ui.messages,
                ElementsAre("Output loop warning: 'Output setup' command within a loop without "
                            "incremental naming set. This could cause output name collisons "
                            "(files with the same name)."));
    EXPECT_FALSE(check(names::kDoWhile, names::kDoEnd, kPlain));
    EXPECT_TRUE(check(names::kLoopStart, names::kLoopEnd, kNumbered));
    EXPECT_TRUE(check(names::kIfCondition, names::kIfEnd, kPlain));
    view.settings.warnOfNameCollision = false;
    EXPECT_TRUE(check(names::kLoopStart, names::kLoopEnd, kPlain));
}

TEST_F(Structure, AMissingSubroutineIsLoadedOnceFromItsFolder) {
    view.settings.folders.subroutines = folder.Path();
    test::PutFile(folder / "There.sbr", "SUBRT\r\nBlur\r\n1,25,\r\nEND\r\n");
    script::Script& script = view.script.commands;
    script.Add(names::kSubroutineExecute, "1,\"There\",");
    script.Add(names::kSubroutineExecute, "1,\"There\",");
    EXPECT_TRUE(CheckScriptStructure(view));
    EXPECT_THAT(script.names, ElementsAre(names::kSubroutineExecute, names::kSubroutineExecute,
                                          names::kSubroutineStart, "Blur", names::kSubroutineEnd));
    script.Add(names::kSubroutineExecute, "1,\"Nowhere\",");
    EXPECT_FALSE(CheckScriptStructure(view));
    EXPECT_THAT(ui.messages,
                ElementsAre("Nowhere SUBROUTINE not present. Unable to find to load."));
}

TEST_F(Structure, ACallWithoutANameIsMissingToo) {
    view.settings.folders.subroutines = folder.Path();
    EXPECT_FALSE(Check({names::kSubroutineExecute}));
    EXPECT_THAT(ui.messages, ElementsAre(" SUBROUTINE not present. Unable to find to load."));
}

TEST_F(Structure, AFileThatNeverDefinesWhatItIsCalledIsNotAppendedForEver) {
    view.settings.folders.subroutines = folder.Path();
    const std::string name(45, 'n');  // recorded under its first 40 characters
    test::PutFile(folder / (name + ".sbr"),
                  "SUBRT\r\nSUBROUTINE Execute\r\n1,\"" + name + "\",\r\nEND\r\n");
    view.script.commands.Add(names::kSubroutineExecute, "1,\"" + name + "\",");
    CheckScriptStructure(view);
    EXPECT_LT(view.script.commands.Count(), 3 * kMaxRunCommands);
}

}  // namespace
}  // namespace lumo::engine

#include "engine/preprocess.h"

#include <gmock/gmock.h>

#include "engine/branch_tables.h"
#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class Preprocess : public testing::Test {
  protected:
    Preprocess() { view.settings.folders.subroutines = folder.Path(); }

    void PutSubroutine(std::string_view name, std::string_view commands) {
        test::PutFile(folder / (std::string(name) + ".sbr"),
                      "SUBRT\r\n" + std::string(commands) + "END\r\n");
    }
    void Call(std::string_view name) {
        view.script.commands.Add(names::kSubroutineExecute, "1,\"" + std::string(name) + "\",");
    }
    /// The run list with its subroutines; false if one is missing.
    bool Load() {
        FillRunList(view);
        return LoadCalledSubroutines(view);
    }

    test::TempFolder folder;
    test::RecordingInterface ui;
    CLumoscriptView view{ui};
};

TEST_F(Preprocess, TheRunListIsTheScriptWithoutItsComments) {
    script::Script& script = view.script.commands;
    for (const auto name :
         {names::kScriptInfo, names::kBlur, names::kStartImageLoop, names::kScriptInfo,
          names::kCrop, names::kEndImageLoop, names::kScriptInfo})
        script.Add(name, "p " + std::string(name));
    view.run.list.Add("of the run before", "0");
    FillRunList(view);
    EXPECT_THAT(view.run.list.names, ElementsAre(names::kBlur, names::kStartImageLoop, names::kCrop,
                                                 names::kEndImageLoop));
    EXPECT_EQ(view.run.list.ParamsAt(2), "p Crop");
    EXPECT_EQ(view.run.startIdx, 1);
    EXPECT_EQ(view.run.endIdx, 3);
    EXPECT_EQ(view.run.startIdxBefore, 1);
    EXPECT_EQ(view.run.endIdxBefore, 3);
    EXPECT_EQ(view.run.runCount, 4);
    EXPECT_EQ(script.Count(), 7);  // the Script keeps them
}

TEST_F(Preprocess, ASubroutineIsLoadedOnce) {
    PutSubroutine("S", "Blur\r\n1,25,\r\n");
    Call("S");
    Call("S");
    EXPECT_TRUE(Load());
    EXPECT_THAT(view.run.list.names,
                ElementsAre(names::kSubroutineExecute, names::kSubroutineExecute,
                            names::kSubroutineStart, "Blur", names::kSubroutineEnd));
    EXPECT_EQ(view.script.commands.Count(), 2);  // the Script does not grow
}

TEST_F(Preprocess, ASubroutineOfTheScriptIsNotLookedForInFiles) {
    PutSubroutine("S", "Blur\r\n1,25,\r\n");
    Call("S");
    view.script.commands.Add(names::kSubroutineStart, "1,\"S\",");
    view.script.commands.Add(names::kSubroutineEnd, "0");
    EXPECT_TRUE(Load());
    EXPECT_EQ(view.run.list.Count(), 3);
}

TEST_F(Preprocess, CommentsOfSubroutinesAreLeftOutToo) {
    PutSubroutine("S",
                  "Script info\r\n7,a,b,c,d,e,f,g,\r\nIF_START (condition)\r\n5,0,0,1,2,0,\r\n"
                  "IF_END\r\n0\r\nScript info\r\n7,a,b,c,d,e,f,g,\r\nELSE_START\r\n0\r\n"
                  "ELSE_END\r\n0\r\n");
    Call("S");
    EXPECT_TRUE(Load());
    EXPECT_THAT(
        view.run.list.names,
        ElementsAre(names::kSubroutineExecute, names::kSubroutineStart, names::kIfCondition,
                    names::kIfEnd, names::kElseStart, names::kElseEnd, names::kSubroutineEnd));
}

TEST_F(Preprocess, SubroutinesMayCallOneAnother) {
    PutSubroutine("A", "SUBROUTINE Execute\r\n1,\"B\",\r\n");
    PutSubroutine("B", "SUBROUTINE Execute\r\n1,\"A\",\r\n");
    Call("A");
    EXPECT_TRUE(Load());
    EXPECT_EQ(view.run.list.Count(), 7);
}

TEST_F(Preprocess, ANameMayHoldAFolder) {
    PutSubroutine("sub/S", "Blur\r\n1,25,\r\n");
    Call("sub\\S");
    EXPECT_TRUE(Load());
    EXPECT_THAT(view.run.list.names, Contains("Blur"));
}

TEST_F(Preprocess, LoadingStopsWhereTheTablesEnd) {
    // The definition has another name than the call, so each call loads the file again.
    PutSubroutine("sub/S", "SUBROUTINE Execute\r\n1,\"sub/S\",\r\nBlur\r\n1,25,\r\n");
    Call("sub/S");
    EXPECT_TRUE(Load());
    EXPECT_GT(view.run.list.Count(), kMaxRunCommands);
    EXPECT_LT(view.run.list.Count(), kMaxRunCommands + 10);
}

TEST_F(Preprocess, AMissingSubroutineIsALineOfTheErrorLogWhereItIsKept) {
    Call("Nowhere");
    Call("");
    EXPECT_FALSE(Load());
    EXPECT_THAT(view.logs.error,
                ElementsAre("Preprocessing error: Unable to load called subroutine; Nowhere",
                            "Preprocessing error: Unable to load called subroutine; "));
    EXPECT_THAT(view.logs.batch, IsEmpty());
    EXPECT_THAT(ui.notices, IsEmpty());
    view.logs.error.clear();
    view.settings.logs.errorLog = false;
    EXPECT_FALSE(Load());
    EXPECT_THAT(view.logs.error, IsEmpty());
}

TEST_F(Preprocess, OutputsAreLookedAtUnlessTheRunIsOverTheSample) {
    view.run.list.Add(names::kOutputSetup, "11,0,,0,jpg,0,0,,,0,0,0,");
    EXPECT_TRUE(SubroutineOutputLeftOpen(view));
    view.run.onLeftImage = true;
    EXPECT_FALSE(SubroutineOutputLeftOpen(view));
    view.run.onLeftImage = false;
    for (const char* named :
         {"11,0,\"/out\",0,jpg,0,0,,,0,0,0,", "11,0,,1,jpg,0,0,,,0,0,0,",
          "11,1,,0,jpg,0,0,,,0,1,0,"}) {  // a folder; the input's folder; set to be skipped
        view.run.list.params = {named};
        EXPECT_FALSE(SubroutineOutputLeftOpen(view)) << named;
    }
    view.run.list.params = {"11,1,\"/out\",1,jpg,0,0,,,0,0,0,"};  // at run time
    EXPECT_TRUE(SubroutineOutputLeftOpen(view));
}

TEST_F(Preprocess, TheFirstOfThreeFoldersGives) {
    view.settings.folders.subroutines = folder / "own";
    view.settings.folders.scripts = folder / "scripts";
    view.settings.installFolder = folder / "install";
    Call("S");
    const auto given = [&] {
        EXPECT_TRUE(Load());
        return view.run.list.NameAt(2);
    };
    PutSubroutine("install/Subroutines/S", "Despeckle\r\n0\r\n");
    EXPECT_EQ(given(), "Despeckle");
    PutSubroutine("scripts/S", "Blur_more\r\n1,75,\r\n");
    EXPECT_EQ(given(), "Blur_more");
    PutSubroutine("own/S", "Blur\r\n1,25,\r\n");
    EXPECT_EQ(given(), "Blur");
}

TEST_F(Preprocess, NamesAreComparedExactlyAndAllThatAreMissingAreListed) {
    PutSubroutine("There", "");
    for (const char* name : {"Nowhere", "There", "there", "Neither"}) Call(name);
    EXPECT_FALSE(Load());
    EXPECT_THAT(view.logs.error,
                ElementsAre("Preprocessing error: Unable to load called subroutine; Nowhere",
                            "Preprocessing error: Unable to load called subroutine; there",
                            "Preprocessing error: Unable to load called subroutine; Neither"));
}

TEST_F(Preprocess, AFileThatEndsEarlyIsNoSubroutine) {
    test::PutFile(folder / "S.sbr", "SUBRT\r\nBlur\r\n1,25,\r\n");
    Call("S");
    EXPECT_FALSE(Load());
    test::PutFile(folder / "S.sbr", "no Subroutine at all");
    EXPECT_FALSE(Load());
}

TEST_F(Preprocess, TwoThousandCommandsAreTaken) {
    script::Script& script = view.script.commands;
    script.Add(names::kStartImageLoop, "0");
    for (int i = 0; i < kMaxRunCommands - 2; ++i) script.Add(names::kCounter, "3,1,1,0,");
    script.Add(names::kEndImageLoop, "0");
    FillRunList(view);
    EXPECT_TRUE(PreprocessRun(view));
    EXPECT_EQ(view.run.nextPc[1999], 0);  // END goes to START
    script.Add(names::kCounter, "3,1,1,0,");
    FillRunList(view);
    EXPECT_FALSE(PreprocessRun(view));
}

TEST_F(Preprocess, MarkersAreNotedAnewAndTheStackIsEmpty) {
    PutSubroutine("S", "Blur\r\n1,25,\r\n");
    script::Script& script = view.script.commands;
    script.Add(names::kStartImageLoop, "0");
    script.Add(names::kLoopStart, "1,3,");
    Call("S");
    script.Add(names::kLoopEnd, "0");
    script.Add(names::kEndImageLoop, "0");
    FillRunList(view);
    view.run.stackIndex = 77;
    view.run.stack[0] = 5;
    ASSERT_TRUE(PreprocessRun(view));
    EXPECT_EQ(view.run.runCount, 8);
    EXPECT_EQ(view.run.stackIndex, 0);
    EXPECT_EQ(view.run.stack[0], -1);
    EXPECT_EQ(view.run.nextPc[2], 6);
    EXPECT_THAT(view.run.loopsAround[2], ElementsAre(3));
    EXPECT_THAT(view.run.loopsAround[1], IsEmpty());
}

TEST(LoopsAroundCalls, AreThoseThatCloseBetweenTheCallAndTheEndOfItsSubroutine) {
    script::Script list;
    for (const auto name : {names::kLoopStart, names::kSubroutineExecute, names::kLoopStart,
                            names::kLoopEnd, names::kLoopEnd, names::kSubroutineExecute,
                            names::kLoopEnd, names::kSubroutineEnd, names::kLoopEnd})
        list.Add(name, "0");
    const auto loops = LoopsAroundCalls(list);
    EXPECT_THAT(loops[1], ElementsAre(4, 6));
    EXPECT_THAT(loops[5], ElementsAre(6));
    EXPECT_THAT(loops[0], IsEmpty());
}

}  // namespace
}  // namespace lumo::engine

#include "engine/preprocess.h"

#include <gmock/gmock.h>

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

}  // namespace
}  // namespace lumo::engine

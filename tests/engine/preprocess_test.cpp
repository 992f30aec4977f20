// From the Script to a run list with all its subroutines.

#include "engine/preprocess.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "engine/branch_tables.h"
#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using testing::ElementsAre;
using testing::IsEmpty;

class Preprocess : public Run {
  protected:
    Preprocess() { view.run.noPrompts = true; }

    void PutSubroutine(const std::string& path, std::string_view commands,
                       std::string_view end = "END\r\n") {
        test::PutFile(folder / (path + ".sbr"),
                      "SUBRT\r\n" + std::string(commands) + std::string(end));
    }
    /// Calls between the markers, as a run list.
    bool LoadCalls(const std::vector<std::string>& calls) {
        view.script.commands.Clear();
        AddStart();
        for (const std::string& name : calls) Add(names::kSubroutineExecute, "1,\"" + name + "\",");
        Add(names::kEndImageLoop);
        FillRunList(view);
        ui.notices.clear();
        return LoadCalledSubroutines(view);
    }
    /// What stands behind END.
    std::vector<std::string> Loaded() const {
        const auto& all = view.run.list.names;
        return {std::ranges::find(all, names::kEndImageLoop) + 1, all.end()};
    }
};

TEST_F(Preprocess, TheRunListLeavesTheCommentsOut) {
    Add(names::kScriptInfo);
    Add(names::kCounter);
    AddStart();
    Add(names::kScriptInfo);
    Add(names::kEndImageLoop);
    FillRunList(view);
    EXPECT_THAT(view.run.list.names,
                ElementsAre(names::kCounter, names::kStartImageLoop, names::kEndImageLoop));
    EXPECT_EQ(view.run.startIdx, 1);
    EXPECT_EQ(view.run.endIdx, 2);
    EXPECT_EQ(view.run.startIdxBefore, 1);
    EXPECT_EQ(view.run.endIdxBefore, 2);
    EXPECT_EQ(view.run.runCount, 3);
}

TEST_F(Preprocess, AFileIsLoadedOnceForAllItsCalls) {
    PutSubroutine("subroutines/S", "Blur\r\n1,25,\r\n");
    EXPECT_TRUE(LoadCalls({"S", "S"}));
    EXPECT_THAT(Loaded(), ElementsAre("SUBROUTINE_START", "Blur", "SUBROUTINE_END"));
}

TEST_F(Preprocess, ADefinitionInTheScriptNeedsNoFile) {
    AddStart();
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kEndImageLoop);
    Add(names::kSubroutineStart, "1,\"S\",");
    Add(names::kSubroutineEnd);
    FillRunList(view);
    EXPECT_TRUE(LoadCalledSubroutines(view));
    EXPECT_EQ(view.run.list.Count(), 5);
}

TEST_F(Preprocess, TheFirstOfThreeFoldersGives) {
    PutSubroutine("install/Subroutines/S", "Despeckle\r\n0\r\n");
    EXPECT_TRUE(LoadCalls({"S"}));
    EXPECT_THAT(Loaded(), ElementsAre("SUBROUTINE_START", "Despeckle", "SUBROUTINE_END"));
    PutSubroutine("scripts/S", "Blur_more\r\n1,75,\r\n");
    EXPECT_TRUE(LoadCalls({"S"}));
    EXPECT_THAT(Loaded(), ElementsAre("SUBROUTINE_START", "Blur_more", "SUBROUTINE_END"));
    PutSubroutine("subroutines/S", "Blur\r\n1,25,\r\n");
    EXPECT_TRUE(LoadCalls({"S"}));
    EXPECT_THAT(Loaded(), ElementsAre("SUBROUTINE_START", "Blur", "SUBROUTINE_END"));
}

TEST_F(Preprocess, SubroutinesMayCallOthersAndThemselves) {
    PutSubroutine("subroutines/A", "SUBROUTINE Execute\r\n1,\"B\",\r\n");
    PutSubroutine("subroutines/B", "SUBROUTINE Execute\r\n1,\"A\",\r\n");
    EXPECT_TRUE(LoadCalls({"A"}));
    EXPECT_EQ(view.run.list.Count(), 3 + 3 + 3);
}

TEST_F(Preprocess, AllThatAreMissingAreListed) {
    PutSubroutine("subroutines/There", "");
    EXPECT_FALSE(LoadCalls({"Nowhere", "There", "there", "Neither"}));
    EXPECT_THAT(ui.notices,
                ElementsAre("Preprocessing error: Unable to load called subroutine; Nowhere",
                            "Preprocessing error: Unable to load called subroutine; there",
                            "Preprocessing error: Unable to load called subroutine; Neither"));
}

TEST_F(Preprocess, ANameMayHoldFoldersInTheMannerOfScripts) {
    PutSubroutine("subroutines/set/Deep", "Blur\r\n1,25,\r\n");
    EXPECT_TRUE(LoadCalls({"set\\Deep"}));
    EXPECT_EQ(Loaded().size(), 3U);
}

TEST_F(Preprocess, AFileThatEndsEarlyIsNoSubroutine) {
    PutSubroutine("subroutines/S", "Blur\r\n1,25,\r\n", "");
    EXPECT_FALSE(LoadCalls({"S"}));
    test::PutFile(folder / "subroutines/T.sbr", "no Subroutine at all");
    EXPECT_FALSE(LoadCalls({"T"}));
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Preprocess, NamesThatAreCutAreLoadedNoFurtherThanTheListReaches) {
    // A definition keeps forty characters of the title, so that the call never finds it.
    const std::string name(41, 'n');
    PutSubroutine("subroutines/" + name, "SUBROUTINE Execute\r\n1,\"" + name + "\",\r\n");
    EXPECT_TRUE(LoadCalls({name}));
    EXPECT_GT(view.run.list.Count(), kMaxRunCommands);
    EXPECT_LT(view.run.list.Count(), kMaxRunCommands + 10);
    EXPECT_FALSE(PreprocessRun(view));
    EXPECT_EQ(ui.notices.back(),
              "Preprocessing error: more than 2000 commands in script and subroutines");
}

TEST_F(Preprocess, TwoThousandCommandsAreTaken) {
    AddStart();
    for (int i = 0; i < kMaxRunCommands - 2; ++i) Add(names::kCounter, "3,1,1,0,");
    Add(names::kEndImageLoop);
    FillRunList(view);
    EXPECT_TRUE(PreprocessRun(view));
    EXPECT_EQ(view.run.nextPc[1999], 0);  // END goes to START
}

TEST_F(Preprocess, MarkersAreNotedAnewAndTheStackIsEmpty) {
    PutSubroutine("subroutines/S", "Blur\r\n1,25,\r\n");
    AddStart();
    Add(names::kLoopStart, "1,3,");
    Add(names::kSubroutineExecute, "1,\"S\",");
    Add(names::kLoopEnd);
    Add(names::kEndImageLoop);
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

TEST_F(Preprocess, AnOutputOfASubroutineIsOpenIfItWouldWriteAndNamesNoFolder) {
    const auto isOpen = [&](std::string_view params) {
        view.run.list.Clear();
        view.run.list.Add(names::kOutputSetup, params);
        return SubroutineOutputLeftOpen(view);
    };
    EXPECT_TRUE(isOpen("11,0,,0,jpg,0,0,,,0,0,0,"));   // no folder, not the original's
    EXPECT_FALSE(isOpen("11,0,,1,jpg,0,0,,,0,0,0,"));  // the original's
    EXPECT_FALSE(isOpen("11,0,out,0,jpg,0,0,,,0,0,0,"));
    EXPECT_TRUE(isOpen("11,1,out,1,jpg,0,0,,,0,0,0,"));  // at run time
    EXPECT_FALSE(isOpen("11,1,,0,jpg,0,0,,,0,1,0,"));    // skipped
    view.run.onLeftImage = true;
    EXPECT_FALSE(isOpen("11,0,,0,jpg,0,0,,,0,0,0,"));
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

#include "script/templates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "script/catalogue.h"
#include "script/names.h"

namespace lumo::script {
namespace {

using testing::ElementsAre;

TEST(NewScript, HoldsTheMarkersAndOneOutput) {
    const Script script = NewScript("32,start,", "11,output,");
    EXPECT_THAT(script.names,
                ElementsAre("START image loop (setup)", "Output setup", "END image loop"));
    EXPECT_THAT(script.params, ElementsAre("32,start,", "11,output,", "0"));
}

TEST(NewSubroutine, SaysWhatASubroutineIs) {
    const Script script = NewSubroutine();
    EXPECT_THAT(script.names, ElementsAre("Script info"));
    EXPECT_THAT(script.params,
                ElementsAre("7,\"This is a script for use as\",\"a subroutine. It has no\","
                            "\"START image loop or\",\"END image loop\",\"It cannot be batch\","
                            "\"processed by itself.\",\"\","));
}

TEST(EnsureMarkers, AddsWhatIsMissing) {
    Script script;
    script.Add("Crop", "c");
    EnsureMarkers(script, "32,start,");
    EXPECT_THAT(script.names, ElementsAre(names::kStartImageLoop, "Crop", names::kEndImageLoop));
    EXPECT_THAT(script.params, ElementsAre("32,start,", "c", "0"));

    const Script complete = script;
    EnsureMarkers(script, "32,other,");
    EXPECT_EQ(script, complete);
}

TEST(EnsureMarkers, AddsOnlyTheOneThatIsMissing) {
    Script withStart;
    withStart.Add("Crop", "c");
    withStart.Add(names::kStartImageLoop, "32,own,");
    EnsureMarkers(withStart, "32,start,");
    EXPECT_THAT(withStart.params, ElementsAre("c", "32,own,", "0"));

    Script withEnd;
    withEnd.Add(names::kEndImageLoop, "e");
    withEnd.Add("Crop", "c");
    EnsureMarkers(withEnd, "32,start,");
    EXPECT_THAT(withEnd.params, ElementsAre("32,start,", "e", "c"));
}

TEST(EnsureMarkers, KeepsParametersWithTheirNamesInAnOddScript) {
    Script script{.names = {"Crop"}, .params = {}};
    EnsureMarkers(script, "32,start,");
    EXPECT_THAT(script.names, ElementsAre(names::kStartImageLoop, "Crop", names::kEndImageLoop));
    EXPECT_THAT(script.params, ElementsAre("32,start,", "", "0"));
}

TEST(RemoveMarkers, RemovesAllOfThem) {
    Script script;
    for (const auto& name : {names::kStartImageLoop, names::kStartImageLoop, names::kCrop,
                             names::kEndImageLoop, names::kBlur, names::kEndImageLoop})
        script.Add(name, "p " + std::string(name));
    RemoveMarkers(script);
    EXPECT_THAT(script.names, ElementsAre("Crop", "Blur"));
    EXPECT_THAT(script.params, ElementsAre("p Crop", "p Blur"));
}

TEST(RemoveMarkers, UndoesEnsureMarkers) {
    const Script before = NewSubroutine();
    Script script = before;
    EnsureMarkers(script, FactoryParams(names::kStartImageLoop));
    ASSERT_EQ(script.Count(), 3);
    RemoveMarkers(script);
    EXPECT_EQ(script, before);
}

TEST(ScriptCaption, IsTheTitleAloneBeyondThirtyCharacters) {
    EXPECT_EQ(ScriptCaption("holiday"), "Script name: holiday");
    EXPECT_EQ(ScriptCaption("seventeen letters"), "Script name: seventeen letters");  // 30
    EXPECT_EQ(ScriptCaption("eighteen letters!!"), "eighteen letters!!");
    // Letters count, not bytes.
    std::string umlauts;
    for (int i = 0; i < 17; ++i) umlauts += "\xc3\xa4";
    EXPECT_EQ(ScriptCaption(umlauts), "Script name: " + umlauts);
}

}  // namespace
}  // namespace lumo::script

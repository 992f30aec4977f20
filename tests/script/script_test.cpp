#include "script/script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumo::script {
namespace {

using testing::ElementsAre;

TEST(Script, KeepsNamesAndParametersInStep) {
    Script script;
    script.Add("Crop", "c");
    script.Add("Blur", "b");
    script.Insert(1, "Skew", "s");
    EXPECT_THAT(script.names, ElementsAre("Crop", "Skew", "Blur"));
    EXPECT_THAT(script.params, ElementsAre("c", "s", "b"));
    script.Remove(0);
    EXPECT_THAT(script.names, ElementsAre("Skew", "Blur"));
    EXPECT_THAT(script.params, ElementsAre("s", "b"));
    script.Clear();
    EXPECT_EQ(script, Script{});
    EXPECT_EQ(script.Count(), 0);
}

TEST(Script, FindsTheFirstOfAName) {
    Script script;
    for (const char* name : {"Crop", "Blur", "Blur"}) script.Add(name, "");
    EXPECT_EQ(script.Find("Blur"), 1);
    EXPECT_EQ(script.Find("blur"), -1);
    EXPECT_EQ(script.Find("Blur "), -1);
    EXPECT_EQ(Script{}.Find(""), -1);
}

TEST(Script, GivesNoParametersWhereTheListIsShorter) {
    const Script script{.names = {"Crop", "Blur"}, .params = {"c"}};
    EXPECT_EQ(script.ParamsAt(0), "c");
    EXPECT_EQ(script.ParamsAt(1), "");
}

TEST(Script, FillsUpAShorterListBeforeItGrows) {
    Script script{.names = {"Crop", "Blur"}, .params = {"c"}};
    Script inserted = script;
    script.Add("Skew", "s");
    EXPECT_THAT(script.params, ElementsAre("c", "", "s"));
    inserted.Insert(0, "Skew", "s");
    EXPECT_THAT(inserted.params, ElementsAre("s", "c", ""));
}

TEST(Script, RemovesANameWithoutParameters) {
    Script script{.names = {"Crop", "Blur"}, .params = {"c"}};
    script.Remove(1);
    EXPECT_THAT(script.names, ElementsAre("Crop"));
    EXPECT_THAT(script.params, ElementsAre("c"));
}

}  // namespace
}  // namespace lumo::script

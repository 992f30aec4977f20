#include "engine/branch_tables.h"

#include <gmock/gmock.h>

#include <array>
#include <vector>

#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using script::Script;

struct Tables {
    std::array<std::int32_t, 64> next{};
    std::array<std::int32_t, 64> branch{};
};

Script ListOf(const std::vector<std::pair<std::string_view, std::string_view>>& commands) {
    Script script;
    for (const auto& [name, params] : commands) script.Add(name, params);
    return script;
}

Tables Build(const Script& list, int startIdx = 0, int endIdx = 0) {
    Tables tables;
    BuildTables({list, startIdx, endIdx}, tables.next, tables.branch);
    return tables;
}

TEST(BranchTables, PlainCommandsStepForward) {
    const Tables t = Build(ListOf({{"Blur", "1,25,"}, {"Blur", "1,25,"}}));
    EXPECT_EQ(t.next[0], 1);
    EXPECT_EQ(t.next[1], 2);
    EXPECT_EQ(t.branch[0], 0);
}

TEST(BranchTables, MarkersUseThePlacesFromBeforeLoading) {
    const Script list = ListOf(
        {{"Blur", "0"}, {names::kStartImageLoop, "0"}, {"Blur", "0"}, {names::kEndImageLoop, "0"}});
    const Tables t = Build(list, 1, 3);
    EXPECT_EQ(t.next[1], 2);
    EXPECT_EQ(t.branch[1], 4);
    EXPECT_EQ(t.next[3], 1);
}

TEST(BranchTables, ConditionsAreTiedByNesting) {
    const Script list = ListOf({{names::kIfCondition, "0"},
                                {names::kIfFirstFile, "0"},
                                {names::kIfEnd, "0"},
                                {names::kIfEnd, "0"},
                                {names::kDoWhile, "0"},
                                {names::kDoWhile, "0"},
                                {names::kDoEnd, "0"},
                                {names::kDoEnd, "0"}});
    const Tables t = Build(list);
    EXPECT_EQ(t.branch[0], 4);
    EXPECT_EQ(t.branch[1], 3);
    EXPECT_EQ(t.branch[4], 8);
    EXPECT_EQ(t.branch[5], 7);
    EXPECT_EQ(t.next[6], 5);
    EXPECT_EQ(t.next[7], 4);
}

TEST(BranchTables, IfEndStepsOverAnElseThatFollowsAtOnce) {
    const Script list = ListOf({{names::kIfCondition, "0"},
                                {names::kIfEnd, "0"},
                                {names::kElseStart, "0"},
                                {"Blur", "0"},
                                {names::kElseEnd, "0"},
                                {"Blur", "0"}});
    const Tables t = Build(list);
    EXPECT_EQ(t.branch[0], 2);  // the ELSE_START, which steps into its body
    EXPECT_EQ(t.next[1], 5);
}

TEST(BranchTables, NumberedLoopsDoNotNest) {
    const Script list = ListOf({{names::kLoopStart, "1,2,"},
                                {names::kLoopStart, "1,3,"},
                                {names::kLoopEnd, "0"},
                                {names::kLoopEnd, "0"}});
    const Tables t = Build(list);
    EXPECT_EQ(t.branch[0], 2);
    EXPECT_EQ(t.branch[1], 2);
    EXPECT_EQ(t.next[2], 2);  // behind the inner start
    EXPECT_EQ(t.next[3], 2);  // the outer end belongs to the nearest start above, too
}

TEST(BranchTables, SubroutinesAreSoughtDownwardsOnly) {
    const Script list = ListOf({{names::kSubroutineStart, "1,\"Up\","},
                                {names::kSubroutineEnd, "0"},
                                {names::kSubroutineExecute, "1,\"Up\","},
                                {names::kSubroutineExecute, "1,\"Down\","},
                                {names::kSubroutineStart, "1,\"Down\","},
                                {names::kSubroutineEnd, "0"}});
    const Tables t = Build(list);
    EXPECT_EQ(t.next[0], 2);
    EXPECT_EQ(t.next[2], 3);  // not found: falls through
    EXPECT_EQ(t.next[3], 5);
    EXPECT_EQ(t.next[4], 6);
}

TEST(BranchTables, ExitGoesToTheNextImageOrToTheEnd) {
    const Script list = ListOf({{names::kStartImageLoop, "0"},
                                {names::kExit, "0"},
                                {names::kEndImageLoop, "0"},
                                {names::kExit, "0"}});
    const Tables t = Build(list, 0, 2);
    EXPECT_EQ(t.next[1], 0);
    EXPECT_EQ(t.next[3], 4);
}

TEST(BranchTables, SearchFailuresArriveAsNumbers) {
    EXPECT_EQ(Build(ListOf({{names::kIfCondition, "0"}})).branch[0], 8030);
    EXPECT_EQ(Build(ListOf({{names::kIfEnd, "0"}, {names::kElseStart, "0"}})).next[0], 8011);
    EXPECT_EQ(Build(ListOf({{names::kSubroutineStart, "0"}})).next[0], 8021);
    EXPECT_EQ(Build(ListOf({{names::kLoopStart, "0"}})).branch[0], 8040);
    EXPECT_EQ(Build(ListOf({{names::kLoopEnd, "0"}})).next[0], 8050);
    EXPECT_EQ(Build(ListOf({{names::kDoWhile, "0"}})).branch[0], 8061);
    EXPECT_EQ(Build(ListOf({{names::kDoEnd, "0"}})).next[0], 8070);
}

}  // namespace
}  // namespace lumo::engine

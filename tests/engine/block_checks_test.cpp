#include "engine/block_checks.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string_view>;
using Check = bool (*)(const RunList&, const FaultSink&);

struct Verdict {
    bool ok = false;
    std::vector<std::string> lines;
};

/// Runs a check over a list of three sections with their markers between.
Verdict Examine(Check check, const Names& pre, const Names& image, const Names& post) {
    script::Script list;
    for (const auto name : pre) list.Add(name, "0");
    const int start = list.Count();
    list.Add(names::kStartImageLoop, "0");
    for (const auto name : image) list.Add(name, "0");
    const int end = list.Count();
    list.Add(names::kEndImageLoop, "0");
    for (const auto name : post) list.Add(name, "0");
    Verdict verdict;
    verdict.ok =
        check({list, start, end}, [&](std::string_view line) { verdict.lines.emplace_back(line); });
    return verdict;
}

struct Words {
    Check check;
    std::string_view starter, ender;
    std::vector<std::string> order, count;  // pre-Image, Image, post-Image
};

std::vector<Words> AllWords() {
    const std::string p = "Preprocessing error: ";
    return {
        {CheckLoops,
         names::kLoopStart,
         names::kLoopEnd,
         {p + "Loop End before Loop Start in pre-Image loop",
          p + "Loop End before Loop Start in Image loop",
          p + "Loop End before Loop Start in post-Image loop"},
         {p + "Loop Start - Loop End count mismatch pre-Image loop",
          p + "Loop Start - Loop End count mismatch Image loop",
          p + "Loop Start - Loop End count mismatch post-Image loop"}},
        {CheckDoWhile,
         names::kDoWhile,
         names::kDoEnd,
         {p + "DO_END before DO_WHILE (condition) in pre-Image loop",
          p + "DO_END before DO_WHILE (condition) in Image loop",
          p + "DO_END before DO_WHILE (condition) in post-Image loop"},
         {p + "DO_WHILE - DO_END count mismatch pre-Image loop",
          p + "DO_WHILE - DO_END count mismatch Image loop",
          p + "DO_WHILE - DO_END count mismatch post-Image loop"}},
        {CheckIf,
         names::kIfCondition,
         names::kIfEnd,
         {p + "IF_END before IF_START in pre-Image loop",
          p + "IF_END before IF_START in Image loop",
          p + "IF_END before IF_START in post-Image loop"},
         {p + "IF_START  IF_END count mismatch in pre-Image loop",
          p + "IF_START  IF_END count mismatch in Image loop",
          p + "IF_START  IF_END count mismatch in post-Image loop"}},
        {CheckSubroutines,
         names::kSubroutineStart,
         names::kSubroutineEnd,
         {p + "SUBROUTINE_END before SUBROUTINE_START in pre-Image loop",
          p + "SUBROUTINE_END before SUBROUTINE_START in Image loop",
          p + "SUBROUTINE_END before SUBROUTINE_START in post-Image loop"},
         {p + "SUBROUTINE_START  SUBROUTINE_END count mismatch pre-Image loop",
          p + "SUBROUTINE_START  SUBROUTINE_END count mismatch in Image loop",
          p + "SUBROUTINE_START  SUBROUTINE_END count mismatch post-Image loop"}},
    };
}

TEST(BlockChecks, PairsInEachSectionPass) {
    for (const Words& w : AllWords()) {
        const Names pair{w.starter, w.ender};
        const Verdict verdict = Examine(w.check, pair, pair, pair);
        EXPECT_TRUE(verdict.ok) << w.starter;
        EXPECT_THAT(verdict.lines, IsEmpty());
    }
}

TEST(BlockChecks, ReversedPairsAreOrderingFaultsOnly) {
    for (const Words& w : AllWords()) {
        const Names reversed{w.ender, w.starter};
        EXPECT_THAT(Examine(w.check, reversed, {}, {}).lines, ElementsAre(w.order[0]));
        EXPECT_THAT(Examine(w.check, {}, reversed, {}).lines, ElementsAre(w.order[1]));
        EXPECT_THAT(Examine(w.check, {}, {}, reversed).lines, ElementsAre(w.order[2]));
        EXPECT_FALSE(Examine(w.check, {}, {}, reversed).ok);
    }
}

TEST(BlockChecks, UnclosedBlocksAreCountFaults) {
    for (const Words& w : AllWords()) {
        const Names open{w.starter};
        EXPECT_THAT(Examine(w.check, open, {}, {}).lines, ElementsAre(w.count[0]));
        EXPECT_THAT(Examine(w.check, {}, open, {}).lines, ElementsAre(w.count[1]));
        EXPECT_THAT(Examine(w.check, {}, {}, open).lines, ElementsAre(w.count[2]));
        EXPECT_FALSE(Examine(w.check, {}, {}, open).ok);
    }
}

TEST(BlockChecks, ABlockAcrossTheStartMarkerFailsInBothSections) {
    const Verdict verdict = Examine(CheckLoops, {names::kLoopStart}, {names::kLoopEnd}, {});
    EXPECT_FALSE(verdict.ok);
    EXPECT_THAT(
        verdict.lines,
        ElementsAre("Preprocessing error: Loop Start - Loop End count mismatch pre-Image loop",
                    "Preprocessing error: Loop End before Loop Start in Image loop",
                    "Preprocessing error: Loop Start - Loop End count mismatch Image loop"));
}

TEST(BlockChecks, FileConditionsBelongToTheImageLoop) {
    EXPECT_TRUE(Examine(CheckIf, {}, {names::kIfFirstFile, names::kIfEnd}, {}).ok);
    EXPECT_TRUE(Examine(CheckIf, {}, {names::kIfLastFile, names::kIfEnd}, {}).ok);
    for (const auto name : {names::kIfFirstFile, names::kIfLastFile}) {
        const Verdict before = Examine(CheckIf, {name}, {}, {});
        EXPECT_FALSE(before.ok);
        EXPECT_THAT(before.lines, IsEmpty());
        const Verdict behind = Examine(CheckIf, {}, {}, {name});
        EXPECT_FALSE(behind.ok);
        EXPECT_THAT(behind.lines, IsEmpty());
    }
}

TEST(BlockChecks, ElseStandsDirectlyBehindIfEnd) {
    const Names good{names::kIfCondition, names::kIfEnd, names::kElseStart, names::kElseEnd};
    const Names late{names::kIfCondition, names::kIfEnd, "Blur", names::kElseStart,
                     names::kElseEnd};
    EXPECT_TRUE(Examine(CheckElse, good, good, good).ok);
    const Verdict pre = Examine(CheckElse, late, {}, {});
    EXPECT_FALSE(pre.ok);
    EXPECT_THAT(
        pre.lines,
        ElementsAre("Preprocessing error: ELSE_START not preceded by IF_END in pre-Image loop"));
    const Verdict image = Examine(CheckElse, {}, late, {});
    EXPECT_FALSE(image.ok);
    EXPECT_THAT(image.lines, IsEmpty());
    EXPECT_TRUE(Examine(CheckElse, {}, {}, late).ok);
}

TEST(BlockChecks, ElseWords) {
    const Names reversed{names::kIfEnd, names::kElseStart, names::kElseEnd, names::kElseEnd};
    EXPECT_THAT(
        Examine(CheckElse, reversed, reversed, reversed).lines,
        ElementsAre("Preprocessing error: ELSE_END before ELSE_START in pre-Image loop",
                    "Preprocessing error: ELSE_START  ELSE_END count mismatch in pre-Image loop",
                    "Preprocessing error: ELSE_END before ELSE_START in Image loop",
                    "Preprocessing error: ELSE_START  ELSE_END count mismatch in Image loop",
                    "Preprocessing error: ELSE_END before ELSE_START in post-Image loop",
                    "Preprocessing error: ELSE_START  ELSE_END count post-mismatch in Image loop"));
}

}  // namespace
}  // namespace lumo::engine

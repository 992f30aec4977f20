// Block commands in a batch run, where the tables move them.

#include <gmock/gmock.h>

#include <random>

#include "engine/flow/flow_commands.h"
#include "support/flow_runner.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using test::CommandList;
using test::FlowRunner;
using testing::ElementsAre;

const std::string kTrueIf = "5,1,3,640,0,0,";   // width >= 640
const std::string kFalseIf = "5,1,0,640,0,0,";  // width > 640
const std::string kAddOneToA = "3,1,1,0,";
std::string Named(std::string_view name) {
    return std::string(name);
}
std::string AddOne(int counter) {
    return "3,1,1," + std::to_string(counter) + ",";
}

TEST(FlowRun, ATrueIfRunsItsBodyAndStepsOverItsElse) {
    FlowRunner flow({{Named(names::kIfCondition), kTrueIf},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kIfEnd), "0"},
                     {Named(names::kElseStart), "0"},
                     {Named(names::kCounter), AddOne(1)},
                     {Named(names::kElseEnd), "0"},
                     {Named(names::kCounter), AddOne(2)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 1, 2, 6));
}

TEST(FlowRun, AFalseIfRunsItsElse) {
    FlowRunner flow({{Named(names::kIfCondition), kFalseIf},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kIfEnd), "0"},
                     {Named(names::kElseStart), "0"},
                     {Named(names::kCounter), AddOne(1)},
                     {Named(names::kElseEnd), "0"},
                     {Named(names::kCounter), AddOne(2)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 3, 4, 5, 6));
}

TEST(FlowRun, FileIfsLookAtThePlaceInTheList) {
    const CommandList list{{Named(names::kIfFirstFile), "0"},   {Named(names::kCounter), AddOne(0)},
                           {Named(names::kIfEnd), "0"},         {Named(names::kIfLastFile), "0"},
                           {Named(names::kCounter), AddOne(1)}, {Named(names::kIfEnd), "0"}};
    const auto counts = [&](int index) {
        FlowRunner flow(list);
        flow.Run().imageCount = 3;
        flow.Run().imageIndex = index;
        flow.Walk();
        EXPECT_EQ(flow.View().test.ifFlag, 1);  // untouched
        return std::pair(flow.Counter('A'), flow.Counter('B'));
    };
    EXPECT_EQ(counts(0), std::pair(1, 0));
    EXPECT_EQ(counts(1), std::pair(0, 0));
    EXPECT_EQ(counts(2), std::pair(0, 1));
}

TEST(FlowRun, DoWhileRepeatsWhileItsConditionHolds) {
    FlowRunner flow({{Named(names::kDoWhile), "5,4,1,3.0,0,0,"},  // counter A < 3
                     {Named(names::kCounter), kAddOneToA},
                     {Named(names::kDoEnd), "0"}});
    flow.Walk();
    EXPECT_EQ(flow.Counter('A'), 3);
    EXPECT_EQ(flow.Count(1), 3);
    EXPECT_EQ(flow.Count(0), 4);
}

TEST(FlowRun, DoWhileThatIsFalseAtFirstSkipsItsBody) {
    FlowRunner flow({{Named(names::kDoWhile), "5,4,0,3.0,0,0,"},
                     {Named(names::kCounter), kAddOneToA},
                     {Named(names::kDoEnd), "0"},
                     {Named(names::kCounter), AddOne(1)}});
    flow.Walk();
    EXPECT_THAT(flow.trace, ElementsAre(0, 3));
}

TEST(FlowRun, NumberedLoopsRunOnceAtLeast) {
    for (const auto& [field, passes] : std::vector<std::pair<std::string, int>>{
             {"3", 3}, {"1", 1}, {"0", 1}, {"-5", 1}, {"x", 1}, {"", 1}}) {
        FlowRunner flow({{Named(names::kLoopStart), "1," + field + ","},
                         {Named(names::kCounter), kAddOneToA},
                         {Named(names::kLoopEnd), "0"}});
        flow.Walk();
        EXPECT_EQ(flow.Counter('A'), passes) << field;
        flow.Walk();  // the start sets the count anew
        EXPECT_EQ(flow.Counter('A'), 2 * passes) << field;
    }
}

TEST(FlowRun, AnOuterNumberedLoopGoesBackToTheInnerStart) {
    FlowRunner flow({{Named(names::kLoopStart), "1,3,"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kLoopStart), "1,2,"},
                     {Named(names::kCounter), AddOne(1)},
                     {Named(names::kLoopEnd), "0"},
                     {Named(names::kCounter), AddOne(2)},
                     {Named(names::kLoopEnd), "0"}});
    flow.Walk();
    EXPECT_EQ(flow.Counter('A'), 1);  // the outer loop runs once
    EXPECT_EQ(flow.Counter('B'), 2);
    EXPECT_EQ(flow.Counter('C'), 1);
}

TEST(FlowRun, MeasuredItemsOfAnIfRangeGoToTheOtherFlag) {
    // "Colors used" in range form: false, yet the branch follows the old ifFlag.
    FlowRunner flow({{Named(names::kIfCondition), "5,11,0,1.0,2.0,1,"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kIfEnd), "0"}});
    flow.Walk();
    EXPECT_EQ(flow.View().test.doFlag, 0);
    EXPECT_EQ(flow.View().test.ifFlag, 1);
    EXPECT_EQ(flow.Counter('A'), 1);
}

TEST(FlowRun, MeasuredItemsOfADoTestGoToTheOtherFlag) {
    FlowRunner flow({{Named(names::kDoWhile), "5,9,0,300.0,0,0,"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kDoEnd), "0"}});
    flow.View().test.doFlag = 0;
    flow.View().test.ifFlag = 1;
    flow.Walk();
    EXPECT_EQ(flow.View().test.ifFlag, 0);
    EXPECT_EQ(flow.View().test.doFlag, 0);
    EXPECT_EQ(flow.Counter('A'), 0);
}

TEST(FlowRun, UnknownConditionLeavesTheFlag) {
    FlowRunner flow(
        {{Named(names::kIfCondition), "5,99,0,1.0,2.0,0,"}, {Named(names::kIfEnd), "0"}});
    flow.View().test.ifFlag = 0;
    flow.Walk();
    EXPECT_EQ(flow.View().test.ifFlag, 0);
}

CommandList WithSubroutine(const CommandList& caller, const CommandList& body) {
    CommandList list{{Named(names::kStartImageLoop), "0"}};
    list.insert(list.begin(), caller.begin(), caller.end());
    list.push_back({Named(names::kEndImageLoop), "0"});
    list.push_back({Named(names::kSubroutineStart), "1,\"S\","});
    list.insert(list.end(), body.begin(), body.end());
    list.push_back({Named(names::kSubroutineEnd), "0"});
    return list;
}

TEST(FlowRun, CountersAreLocalToASubroutineButForFAndG) {
    CommandList body;
    for (int counter = 0; counter < 10; ++counter)
        body.push_back({Named(names::kCounter), "3,1,100," + std::to_string(counter) + ","});
    FlowRunner flow(WithSubroutine({{Named(names::kSubroutineExecute), "1,\"S\","}}, body));
    for (int counter = 0; counter < 10; ++counter)
        flow.View().counters[static_cast<std::size_t>(counter)] = counter + 1;
    flow.Walk();
    EXPECT_THAT(flow.View().counters, ElementsAre(1, 2, 3, 4, 5, 106, 6, 8, 9, 10));
    EXPECT_EQ(flow.Run().stackIndex, 0);
}

TEST(FlowRun, ALoopSurvivesTheCallOfASubroutineWithALoop) {
    FlowRunner flow(WithSubroutine({{Named(names::kLoopStart), "1,3,"},
                                    {Named(names::kSubroutineExecute), "1,\"S\","},
                                    {Named(names::kLoopEnd), "0"}},
                                   {{Named(names::kLoopStart), "1,2,"},
                                    {Named(names::kCounter), AddOne(5)},
                                    {Named(names::kLoopEnd), "0"}}));
    flow.Walk();
    EXPECT_EQ(flow.Counter('F'), 6);
    EXPECT_EQ(flow.Run().stackIndex, 0);
}

TEST(FlowRun, EndlessRecursionOverflows) {
    FlowRunner flow(WithSubroutine({{Named(names::kSubroutineExecute), "1,\"S\","}},
                                   {{Named(names::kSubroutineExecute), "1,\"T\","}}));
    // A subroutine is sought downwards only, so a second one closes the circle by its own table.
    RunState& run = flow.Run();
    const int inner = run.list.Find(names::kSubroutineStart) + 1;
    run.nextPc[static_cast<std::size_t>(inner)] = inner;
    flow.Walk();
    EXPECT_EQ(run.pc, 8080);
    EXPECT_EQ(run.stackIndex, 0);
    EXPECT_EQ(flow.Count(inner), 196);  // 12 words a frame, the 197th call passes 2360
}

TEST(FlowRun, ReturnWithoutACallEndsTheRun) {
    FlowRunner flow({{Named(names::kSubroutineEnd), "0"}});
    flow.Run().stack[0] = -1;
    flow.Walk();
    EXPECT_EQ(flow.Run().pc, -1);
}

TEST(FlowRun, ExitLeavesTheRestOfTheImage) {
    FlowRunner flow({{Named(names::kStartImageLoop), "0"},
                     {Named(names::kExit), "0"},
                     {Named(names::kCounter), AddOne(0)},
                     {Named(names::kEndImageLoop), "0"}});
    flow.Run().pc = 1;
    flow.Run().inRun = true;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(flow.Run().pc, 0);
}

TEST(FlowRun, ExitInASubroutineTakesTheNextImageWhileTheLoopLasts) {
    FlowRunner flow({{Named(names::kStartImageLoop), "0"},
                     {Named(names::kEndImageLoop), "0"},
                     {Named(names::kExit), "0"}});
    RunState& run = flow.Run();
    run.inRun = true;
    run.pc = 2;
    run.stackIndex = 12;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(run.pc, 0);
    run.pc = 2;
    run.imageLoopOver = true;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(run.pc, 3);
    run.pc = 2;
    run.imageLoopOver = false;
    run.stackIndex = 0;
    ExecuteCommand(flow.View(), names::kExit, "0");
    EXPECT_EQ(run.pc, 3);
}

TEST(Counter, ResetsAndAdds) {
    test::CommandRunner runner{imaging::Image()};
    auto& counters = runner.view.counters;
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,0,5,2,"));
    EXPECT_EQ(counters[2], 5);
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,1,-7,2,"));
    EXPECT_EQ(counters[2], -2);
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,0,9,10,"));
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,0,9,,"));
    EXPECT_THAT(counters, ElementsAre(0, 0, -2, 0, 0, 0, 0, 0, 0, 0));
    counters[0] = 2147483647;
    EXPECT_TRUE(runner.Run(flow::kCounterCommand, "3,1,1,0,"));
    EXPECT_EQ(counters[0], -2147483648);
}

/// A random nesting of blocks, and a plain interpreter of it beside the tables.
class Nesting {
  public:
    explicit Nesting(std::uint32_t seed) : random_(seed) { Block(0, false); }

    CommandList list;

    /// Places of the commands in the order in which plain recursion runs them.
    std::vector<int> Expected() {
        counters_.fill(0);
        expected_.clear();
        Interpret(0, static_cast<int>(list.size()));
        return expected_;
    }

  private:
    int Add(std::string_view name, const std::string& params = "0") {
        list.emplace_back(std::string(name), params);
        return static_cast<int>(list.size()) - 1;
    }
    int Roll(int sides) { return static_cast<int>(random_() % static_cast<unsigned>(sides)); }

    void Block(int depth, bool inNumberedLoop) {
        const int commands = 1 + Roll(4);
        for (int i = 0; i < commands; ++i) {
            const int kind = depth >= 4 ? 0 : Roll(5);
            // Counter J is the loops' own; A to E are played with.
            if (kind <= 1) {
                Add(names::kCounter,
                    "3,1," + std::to_string(1 + Roll(3)) + "," + std::to_string(Roll(5)) + ",");
            } else if (kind == 2) {
                Add(names::kIfCondition, Condition());
                Block(depth + 1, inNumberedLoop);
                Add(names::kIfEnd);
                // An ELSE body ends at the next ELSE_END, so it holds no other ELSE.
                if (Roll(2) == 0) {
                    Add(names::kElseStart);
                    Add(names::kCounter, AddOne(Roll(5)));
                    Add(names::kElseEnd);
                }
            } else if (kind == 3) {
                // A loop that ends: while counter J of this depth is below a bound.
                Add(names::kCounter, "3,0,0," + std::to_string(6 + depth % 4) + ",");
                Add(names::kDoWhile, "5," + std::to_string(13 + depth % 4) + ",1," +
                                         std::to_string(Roll(3)) + ".0,0,0,");
                Block(depth + 1, inNumberedLoop);
                Add(names::kCounter, AddOne(6 + depth % 4));
                Add(names::kDoEnd);
            } else if (!inNumberedLoop) {
                Add(names::kLoopStart, "1," + std::to_string(Roll(4)) + ",");
                Block(depth + 1, true);
                Add(names::kLoopEnd);
            }
        }
    }

    std::string Condition() {
        return "5," + std::to_string(4 + Roll(5)) + "," + std::to_string(Roll(5)) + "," +
               std::to_string(Roll(8)) + ".5,0,0,";
    }

    bool Holds(const std::string& params) const {
        const auto f = script::ParseParams(params);
        const int item = f.Integer(0);
        const int counter = item <= 8 ? item - 4 : item - 7;
        const int x = counters_[static_cast<std::size_t>(counter)];
        const int value = static_cast<int>(f.Real(2));
        switch (f.Integer(1)) {
            case 0:
                return x > value;
            case 1:
                return x < value;
            case 2:
                return x == value;
            case 3:
                return x >= value;
            default:
                return x <= value;
        }
    }

    /// The end of the block that begins at `begin`.
    int EndOf(int begin, std::string_view starter, std::string_view ender) const {
        int level = 0;
        for (int i = begin;; ++i) {
            const std::string& name = list[static_cast<std::size_t>(i)].first;
            if (name == starter) ++level;
            if (name == ender && --level == 0) return i;
        }
    }

    void Interpret(int from, int to) {
        for (int i = from; i < to; ++i) {
            const auto& [name, params] = list[static_cast<std::size_t>(i)];
            expected_.push_back(i);
            if (name == names::kCounter) {
                const auto f = script::ParseParams(params);
                auto& counter = counters_[static_cast<std::size_t>(f.Integer(2))];
                counter = (f.Is(0, "0") ? 0 : counter) + f.Integer(1);
            } else if (name == names::kIfCondition) {
                const int end = EndOf(i, names::kIfCondition, names::kIfEnd);
                const bool hasElse =
                    end + 1 < to &&
                    list[static_cast<std::size_t>(end) + 1].first == names::kElseStart;
                const int elseEnd =
                    hasElse ? EndOf(end + 1, names::kElseStart, names::kElseEnd) : end;
                if (Holds(params)) {
                    Interpret(i + 1, end);
                    expected_.push_back(end);
                } else if (hasElse) {
                    expected_.push_back(end + 1);
                    Interpret(end + 2, elseEnd);
                    expected_.push_back(elseEnd);
                }
                i = elseEnd;
            } else if (name == names::kDoWhile) {
                const int end = EndOf(i, names::kDoWhile, names::kDoEnd);
                while (Holds(params)) {
                    Interpret(i + 1, end);
                    expected_.push_back(end);
                    expected_.push_back(i);
                }
                i = end;
            } else if (name == names::kLoopStart) {
                const int end = EndOf(i, names::kLoopStart, names::kLoopEnd);
                const int passes = std::max(1, script::ParseParams(params).Integer(0));
                for (int pass = 0; pass < passes; ++pass) {
                    Interpret(i + 1, end);
                    expected_.push_back(end);
                }
                i = end;
            }
        }
    }

    std::mt19937 random_;
    std::array<int, 10> counters_{};
    std::vector<int> expected_;
};

TEST(FlowRun, RandomNestingsRunAsPlainRecursionWould) {
    int longest = 0;
    for (std::uint32_t seed = 1; seed <= 500; ++seed) {
        Nesting nesting(seed);
        if (nesting.list.size() > 400) continue;
        const std::vector<int> expected = nesting.Expected();
        if (expected.size() > 50'000) continue;
        FlowRunner flow(nesting.list);
        flow.Walk(200'000);
        ASSERT_EQ(flow.trace, expected) << "seed " << seed;
        longest = std::max(longest, static_cast<int>(expected.size()));
    }
    EXPECT_GT(longest, 200);
}

}  // namespace
}  // namespace lumo::engine

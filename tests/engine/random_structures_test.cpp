// Structures that nobody would write, by the thousand: refused with words, or ended in order.

#include <gmock/gmock.h>

#include <chrono>
#include <random>
#include <thread>

#include "engine/run_loop.h"
#include "run_fixture.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Structure = std::vector<std::string_view>;

long Roll(std::mt19937& random, std::size_t sides) {
    return static_cast<long>(random() % sides);
}

/// Pairs of block commands at random places inside of the image loop, two subroutines behind it,
/// and then, in two of three cases, a few commands lost, moved or doubled.
Structure NearlyWellFormed(std::mt19937& random) {
    const auto roll = [&](std::size_t sides) { return Roll(random, sides); };
    const std::pair<std::string_view, std::string_view> pairs[] = {
        {names::kIfCondition, names::kIfEnd}, {names::kIfFirstFile, names::kIfEnd},
        {names::kIfLastFile, names::kIfEnd},  {names::kDoWhile, names::kDoEnd},
        {names::kLoopStart, names::kLoopEnd}, {names::kElseStart, names::kElseEnd}};
    Structure body;
    for (long i = roll(5); i >= 0; --i) {
        const auto& [starter, ender] = pairs[roll(std::size(pairs))];
        const long from = roll(body.size() + 1);
        body.insert(body.begin() + from, starter);
        const long to = from + 1 + roll(body.size() - static_cast<std::size_t>(from));
        body.insert(body.begin() + to, ender);
    }
    for (const auto name : {names::kCounter, names::kSubroutineExecute, names::kExit})
        if (roll(2) == 0) body.insert(body.begin() + roll(body.size() + 1), name);
    Structure all{names::kStartImageLoop};
    all.insert(all.end(), body.begin(), body.end());
    all.push_back(names::kEndImageLoop);
    for (const auto inner : {names::kSubroutineExecute, names::kCounter}) {
        all.push_back(names::kSubroutineStart);
        all.push_back(inner);
        all.push_back(names::kSubroutineEnd);
    }
    for (long i = roll(3); i > 0; --i) {
        const long at = roll(all.size()), other = roll(all.size());
        switch (roll(3)) {
            case 0:
                all.erase(all.begin() + at);
                break;
            case 1:
                std::swap(all[static_cast<std::size_t>(at)], all[static_cast<std::size_t>(other)]);
                break;
            default:
                all.insert(all.begin() + at, all[static_cast<std::size_t>(other)]);
                break;
        }
    }
    return all;
}

/// Commands of the flow as they come, between the markers and around them.
Structure WithoutAnyOrder(std::mt19937& random) {
    constexpr std::string_view kNames[] = {names::kIfCondition,       names::kIfFirstFile,
                                           names::kIfLastFile,        names::kIfEnd,
                                           names::kElseStart,         names::kElseEnd,
                                           names::kDoWhile,           names::kDoEnd,
                                           names::kLoopStart,         names::kLoopEnd,
                                           names::kSubroutineExecute, names::kSubroutineStart,
                                           names::kSubroutineEnd,     names::kExit,
                                           names::kCounter,           names::kStartImageLoop,
                                           names::kEndImageLoop,      names::kScriptInfo};
    const auto some = [&](Structure& all, std::size_t most) {
        for (long i = Roll(random, most); i > 0; --i)
            all.push_back(kNames[Roll(random, std::size(kNames))]);
    };
    Structure all;
    some(all, 3);
    all.push_back(names::kStartImageLoop);
    some(all, 8);
    all.push_back(names::kEndImageLoop);
    some(all, 6);
    return all;
}

class RandomStructures : public RunFixture {
  protected:
    void Fill(const Structure& structure, std::mt19937& random) {
        const auto either = [&] { return random() % 2 == 0; };
        view.script.commands.Clear();
        for (const auto name : structure) {
            if (name == names::kStartImageLoop)
                AddStart();
            else if (name == names::kSubroutineStart || name == names::kSubroutineExecute)
                Add(name, either() ? "1,S," : "1,T,");
            else
                Add(name, name == names::kCounter ? "3,1,1,0," : "5,4,1,3,2,0,");
        }
    }

    /// Some structures never end, which is their right: they are stopped. The rest end behind the
    /// list, or with a number that is reported.
    void RunToItsEnd() {
        {
            std::jthread stopper([&] {
                std::this_thread::sleep_for(std::chrono::microseconds(300));
                view.run.keepRunning = 0;
            });
            RunLoop(view);
        }
        const RunState& run = view.run;
        if (run.pc == run.runCount || (run.pc >= 0 && run.pc < run.runCount && run.aborted)) {
            EXPECT_EQ(run.fatalCode, 0);
        } else {
            EXPECT_EQ(run.fatalCode, run.pc);
            EXPECT_THAT(ui.notices, Contains(StartsWith("Fatal error:")));
        }
        view.run.batchRunning = false;
        view.run.mode = RunMode::Idle;
    }

    int ran = 0, refused = 0;
};

TEST_F(RandomStructures, AreRefusedWithWordsOrEnd) {
    AddPicture("1.png", {1, 1});
    view.settings.logs.batchLog = view.settings.logs.errorLog = false;
    std::mt19937 random(7);
    for (int round = 0; round < 10'000; ++round) {
        Fill(round % 3 == 2 ? WithoutAnyOrder(random) : NearlyWellFormed(random), random);
        ui.notices.clear();
        view.run.noPrompts = true;  // a refusal takes it back
        if (PrepareBatch(view)) {
            ++ran;
            RunToItsEnd();
            continue;
        }
        ++refused;
        ASSERT_THAT(ui.notices, Not(IsEmpty())) << "round " << round;
        EXPECT_THAT(
            ui.notices,
            Each(AnyOf(StartsWith("Preprocessing error: "), StartsWith("No 'START"),
                       StartsWith("No commands except"), StartsWith("The Script was refused: "))));
    }
    EXPECT_GT(ran, 1000);
    EXPECT_GT(refused, 1000);
}

}  // namespace
}  // namespace lumo::engine

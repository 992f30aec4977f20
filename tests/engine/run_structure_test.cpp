// Runs of Scripts with any block structure, sound or not.

#include <gmock/gmock.h>

#include <chrono>
#include <random>
#include <thread>

#include "engine/run_loop.h"
#include "run_fixture.h"

namespace lumo::engine {
namespace {

class StructureRun : public RunFixture {};

using Structure = std::vector<std::string_view>;

/// Pairs of block commands at random places inside of the image loop, two subroutines behind it,
/// and then, in two of three cases, a few commands lost, moved or doubled.
Structure RandomStructure(std::mt19937& random) {
    const auto roll = [&](std::size_t sides) { return static_cast<long>(random() % sides); };
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

TEST_F(StructureRun, RandomStructuresAreRefusedOrEnd) {
    AddPicture("1.png", {1, 1});
    view.settings.logs.batchLog = view.settings.logs.errorLog = false;
    std::mt19937 random(7);
    int ran = 0, refused = 0, subroutines = 0;
    for (int round = 0; round < 10'000; ++round) {
        view.script.commands.Clear();
        for (const auto name : RandomStructure(random)) {
            if (name == names::kStartImageLoop)
                AddStart();
            else if (name == names::kSubroutineStart)
                Add(name, subroutines++ % 2 == 0 ? "1,S," : "1,T,");
            else if (name == names::kSubroutineExecute)
                Add(name, random() % 2 != 0 ? "1,S," : "1,T,");
            else
                Add(name, name == names::kCounter ? "3,1,1,0," : "5,4,1,3,2,0,");
        }
        if (!PrepareBatch(view)) {
            ++refused;
            continue;
        }
        ++ran;
        // Some of them never end, which is their right.
        std::jthread stopper([&] {
            std::this_thread::sleep_for(std::chrono::microseconds(300));
            view.run.keepRunning = 0;
        });
        RunLoop(view);
        stopper.join();
        view.run.batchRunning = false;
        view.run.mode = RunMode::Idle;
    }
    EXPECT_GT(ran, 1000);
    EXPECT_GT(refused, 1000);
}

}  // namespace
}  // namespace lumo::engine

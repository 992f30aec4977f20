#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/branch_tables.h"
#include "engine/dispatch.h"
#include "script/names.h"
#include "support/command_runner.h"

namespace lumo::test {

using CommandList = std::vector<std::pair<std::string, std::string>>;

/// Walks a run list by its tables, as a batch does between two pictures, and notes the places of
/// all commands in the order in which they ran.
class FlowRunner {
  public:
    explicit FlowRunner(const CommandList& commands) {
        engine::RunState& run = runner.view.run;
        for (const auto& [name, params] : commands) run.list.Add(name, params);
        run.runCount = run.list.Count();
        run.startIdx = run.list.Find(script::names::kStartImageLoop);
        run.endIdx = run.list.Find(script::names::kEndImageLoop);
        if (run.endIdx < 0) run.endIdx = run.runCount;  // a list that is all inside the loop
        if (run.startIdx < 0) run.startIdx = run.runCount;
        engine::BuildTables({run.list, run.startIdx, run.endIdx}, run.nextPc, run.branchPc);
        run.loopsAround = engine::LoopsAroundCalls(run.list);
        run.imageIndex = 0;
        run.imageCount = 1;
    }

    /// Runs from the first command; stops behind the list, at a marker, or after so many steps.
    void Walk(int maxSteps = 10'000) {
        engine::RunState& run = runner.view.run;
        run.inRun = true;
        run.batchRunning = true;
        run.pc = 0;
        while (maxSteps-- > 0 && run.pc >= 0 && run.pc < run.runCount) {
            const std::string& name = run.list.NameAt(run.pc);
            trace.push_back(run.pc);
            if (name == script::names::kStartImageLoop || name == script::names::kEndImageLoop)
                break;
            engine::ExecuteCommand(runner.view, name, run.list.ParamsAt(run.pc));
        }
        run.inRun = false;
        run.batchRunning = false;
    }

    /// How often the command at that place ran.
    int Count(int place) const {
        int count = 0;
        for (const int pc : trace) count += pc == place ? 1 : 0;
        return count;
    }

    engine::CLumoscriptView& View() { return runner.view; }
    engine::RunState& Run() { return runner.view.run; }
    std::int32_t& Counter(char letter) {
        return runner.view.counters[static_cast<std::size_t>(letter - 'A')];
    }

    CommandRunner runner{CoordinateImage({640, 480})};
    std::vector<int> trace;
};

}  // namespace lumo::test

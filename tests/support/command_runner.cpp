#include "support/command_runner.h"

#include "engine/branch_tables.h"
#include "engine/dispatch.h"

namespace lumo::test {

engine::Outcome CommandRunner::Execute(const engine::Command& command, std::string_view params) {
    return engine::ExecuteCommand(view, &command, command.spec.name, params);
}

engine::Outcome CommandRunner::ExecuteInRun(const engine::Command& command,
                                            std::string_view params) {
    engine::RunState& run = view.run;
    run.list.Clear();
    run.list.Add(command.spec.name, params);
    run.runCount = 1;
    run.nextPc[0] = 1;
    run.loopsAround = engine::LoopsAroundCalls(run.list);
    run.pc = 0;
    run.mode = engine::RunMode::Batch;
    run.inRun = true;
    run.batchRunning = true;
    const engine::Outcome outcome = Execute(command, params);
    run.inRun = false;
    run.batchRunning = false;
    return outcome;
}

}  // namespace lumo::test

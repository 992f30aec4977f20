#pragma once

// Block commands. In a batch run they move `pc` by the tables and keep nothing in memory; in a test
// run the walk over the Script is linear, and they raise and lower the flags of TestWalk instead.

#include <cstddef>
#include <cstdint>

#include "engine/command.h"

namespace lumo::engine::flow {

extern const Command kIfConditionCommand;
extern const Command kIfFirstFileCommand;
extern const Command kIfLastFileCommand;
extern const Command kIfEndCommand;
extern const Command kElseStartCommand;
extern const Command kElseEndCommand;
extern const Command kDoWhileCommand;
extern const Command kDoEndCommand;
extern const Command kLoopStartCommand;
extern const Command kLoopEndCommand;
extern const Command kExitCommand;
extern const Command kSubroutineExecuteCommand;
extern const Command kSubroutineStartCommand;
extern const Command kSubroutineEndCommand;
extern const Command kScriptInfoCommand;
extern const Command kCounterCommand;

/// A place of the run list as an index of the tables.
inline std::size_t Index(std::int32_t pc) {
    return static_cast<std::size_t>(pc);
}
/// `pc` takes the table's next place.
void StepNext(RunState& run);
/// `pc` takes the table's other target.
void StepBranch(RunState& run);

}  // namespace lumo::engine::flow

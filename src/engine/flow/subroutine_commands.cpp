// SUBROUTINE Execute, SUBROUTINE_START, SUBROUTINE_END.

#include <array>

#include "engine/branch_tables.h"
#include "engine/flow/flow_commands.h"
#include "engine/subroutines.h"
#include "script/names.h"

namespace lumo::engine::flow {
namespace {

using script::Fields;
namespace names = script::names;

constexpr script::DialogSpec kCallDialog{
    .title = "Call subroutine", .windowState = "WS77", .helpTopic = "subroutines"};
constexpr script::DialogSpec kStartDialog{
    .title = "SUBROUTINE_START", .windowState = "WS78", .helpTopic = "SUBROUTINE_START_END"};
constexpr std::array kNameField{script::Text("Subroutine name", "").Quoted().MaxLength(40)};
constexpr std::array kNamePanel{script::Value(0, "Subroutine: ")};

/// Beyond this index the calls are too deep.
constexpr int kDeepestStackIndex = 2360;

void Push(RunState& run, std::int32_t word) {
    // The depth test follows each frame, so that a frame finds room; a frame with hundreds of
    // enclosing loops may not.
    if (run.stackIndex + 1 < kSubroutineStackWords) ++run.stackIndex;
    run.stack[Index(run.stackIndex)] = word;
}

/// An empty stack gives its bottom word, which ends the run.
std::int32_t Pop(RunState& run) {
    const std::int32_t word = run.stack[Index(run.stackIndex)];
    if (run.stackIndex > 0) --run.stackIndex;
    return word;
}

/// Counters, then the enclosing loops with what remains of them, their number, and the place to
/// return to.
void PushFrame(CLumoscriptView& view) {
    RunState& run = view.run;
    const int caller = run.pc;
    for (const std::int32_t counter : view.counters) Push(run, counter);
    const std::vector<std::int32_t>& loopEnds = run.loopsAround[Index(caller)];
    for (const std::int32_t loopEnd : loopEnds) {
        Push(run, run.branchPc[Index(loopEnd)]);
        Push(run, loopEnd);
    }
    Push(run, static_cast<std::int32_t>(loopEnds.size()));
    Push(run, caller + 1);
}

void PopFrame(CLumoscriptView& view) {
    RunState& run = view.run;
    const std::int32_t returnPc = Pop(run);
    const std::int32_t loops = Pop(run);
    for (std::int32_t i = 0; i < loops && run.stackIndex > 0; ++i) {
        const std::int32_t loopEnd = Pop(run);
        const std::int32_t passes = Pop(run);
        if (loopEnd >= 0 && loopEnd < run.runCount) run.branchPc[Index(loopEnd)] = passes;
    }
    // G is taken twice and F not at all: F keeps what the subroutine left in it, and G ends with
    // the value saved for F. Scripts use F to hand a result back.
    auto& [a, b, c, d, e, f, g, h, i, j] = view.counters;
    for (std::int32_t* counter : {&j, &i, &h, &g, &g, &e, &d, &c, &b, &a}) *counter = Pop(run);
    run.pc = returnPc;
}

Outcome CallInTest(CLumoscriptView& view, const std::string& name) {
    if (view.run.mode == RunMode::OneCommand || SkipTest(view)) return Outcome::Succeeded;
    if (!HasMainImage(view)) return Outcome::Failed;
    TestWalk& test = view.test;
    const script::Script& script = view.script.commands;
    bool found = false;
    for (int i = FindSubroutine(script, name); i >= 0; i = FindSubroutine(script, name, i + 1)) {
        // A name defined twice is entered at its last definition, with two returns.
        found = true;
        test.subReturnList.push_back(test.testPc);
        test.testPc = i;
        ++test.subDepth;
    }
    if (found) return Outcome::Succeeded;
    OnCommandFailure(view, "Cmd_77 Called subroutine not found (need to load first), L4585: ",
                     LibraryError::Omit);
    return Outcome::Failed;
}

Outcome RunExecute(CLumoscriptView& view, const Fields& fields) {
    RunState& run = view.run;
    if (!run.inRun) return CallInTest(view, fields.Text(0));
    const int caller = run.pc;
    PushFrame(view);
    run.pc = run.nextPc[Index(caller)];
    if (run.stackIndex > kDeepestStackIndex) {
        run.pc = kSubroutineOverflow;
        run.stackIndex = 0;
    }
    return Outcome::Succeeded;
}

/// The flow that falls on a definition steps over its body.
Outcome RunSubroutineStart(CLumoscriptView& view, const Fields&) {
    TestWalk& test = view.test;
    if (view.run.inRun)
        StepNext(view.run);
    else if (test.ifFlag != 0 && test.doFlag != 0 && test.exitFlag != 1)
        test.subSkip = 1;
    return Outcome::Succeeded;
}

Outcome RunSubroutineEnd(CLumoscriptView& view, const Fields&) {
    TestWalk& test = view.test;
    if (view.run.inRun) {
        PopFrame(view);
        return Outcome::Succeeded;
    }
    if (test.ifFlag == 0 || test.doFlag == 0 || test.exitFlag == 1) return Outcome::Succeeded;
    if (test.subSkip != 0) {
        test.subSkip = 0;
        return Outcome::Succeeded;
    }
    if (test.subDepth == 0) {
        OnCommandFailure(view, "Cmd_79 Return from Subroutine without entry L4634",
                         LibraryError::Append);
        return Outcome::Failed;
    }
    --test.subDepth;
    if (!test.subReturnList.empty()) {
        // The oldest entry restores nothing: at depth 0 the walk takes up its own place again.
        if (test.subReturnList.size() > 1) test.testPc = test.subReturnList.back();
        test.subReturnList.pop_back();
    }
    return Outcome::Succeeded;
}

}  // namespace

const Command kSubroutineExecuteCommand{.spec = {.name = names::kSubroutineExecute,
                                                 .fields = kNameField,
                                                 .panel = kNamePanel,
                                                 .dialog = &kCallDialog},
                                        .opening = openings::kOwnFlow,
                                        .run = RunExecute};
const Command kSubroutineStartCommand{.spec = {.name = names::kSubroutineStart,
                                               .fields = kNameField,
                                               .panel = kNamePanel,
                                               .dialog = &kStartDialog},
                                      .opening = openings::kOwnFlow,
                                      .run = RunSubroutineStart};
const Command kSubroutineEndCommand{.spec = {.name = names::kSubroutineEnd},
                                    .opening = openings::kOwnFlow,
                                    .run = RunSubroutineEnd};

}  // namespace lumo::engine::flow

// DO_WHILE, DO_END, Loop Start, Loop End, Exit, and the comment command.

#include <array>

#include "engine/flow/condition.h"
#include "engine/flow/flow_commands.h"
#include "script/names.h"

namespace lumo::engine::flow {
namespace {

using script::Fields;
namespace names = script::names;

constexpr script::DialogSpec kDoDialog{.title = "DO_WHILE (condition)",
                                       .helpTopic = "DO_WHILEcondition"};
constexpr script::DialogSpec kLoopDialog{.title = "Loop Start (by number)",
                                         .helpTopic = "LoopStartEndbynumber"};
constexpr script::DialogSpec kInfoDialog{.title = "Script info", .helpTopic = "Scriptinfo"};

constexpr std::array kLoopFields{script::Integer("Number of loops", "1")};
constexpr std::array kLoopPanel{script::Value(0, "Number of loops: ")};

void EvaluateDo(CLumoscriptView& view, const Fields& fields) {
    const auto result = EvaluateCondition(view, fields);
    if (!result) return;
    // In the test form the measured items go to the other command's flag, and the branch follows
    // what doFlag was before. Scripts in use rely on it.
    const bool toIfFlag = fields.Is(kRangeForm, "0") && IsMeasuredItem(fields.Integer(kItem));
    (toIfFlag ? view.test.ifFlag : view.test.doFlag) = *result ? 1 : 0;
}

Outcome RunDoWhile(CLumoscriptView& view, const Fields& fields) {
    RunState& run = view.run;
    TestWalk& test = view.test;
    if (run.inRun) {
        EvaluateDo(view, fields);
        test.doFlag != 0 ? StepNext(run) : StepBranch(run);
    } else if (run.mode != RunMode::OneCommand && test.exitFlag == 0 && test.ifFlag != 0 &&
               test.subSkip == 0) {
        EvaluateDo(view, fields);
        if (test.doFlag == 1) test.doReturn = test.testPc;
    }
    return Outcome::Succeeded;
}

Outcome RunDoEnd(CLumoscriptView& view, const Fields&) {
    RunState& run = view.run;
    TestWalk& test = view.test;
    if (run.inRun) {
        StepNext(run);
        return Outcome::Succeeded;
    }
    if (run.mode == RunMode::OneCommand || test.exitFlag != 0 || test.ifFlag == 0 ||
        test.subSkip != 0)
        return Outcome::Succeeded;
    if (run.batchRunning && run.keepRunning == 0) {
        test.doFlag = 1;
    } else if (test.doFlag == 0) {
        test.doFlag = 1;
        test.doReturn = 0;
    } else if (test.doReturn != 0) {
        test.testPc = test.doReturn - 1;
    }
    return Outcome::Succeeded;
}

Outcome RunLoopStart(CLumoscriptView& view, const Fields& fields) {
    RunState& run = view.run;
    if (run.inRun) {
        const std::int32_t loopEnd = run.branchPc[Index(run.pc)];
        StepNext(run);
        // The passes that remain are kept on the Loop End; a start without one counts nowhere.
        if (loopEnd >= 0 && loopEnd < run.runCount)
            run.branchPc[Index(loopEnd)] = fields.Integer(0);
    } else if (!SkipTest(view)) {
        view.test.loopCount = fields.Integer(0);
        view.test.loopReturn = view.test.testPc;
    }
    return Outcome::Succeeded;
}

Outcome RunLoopEnd(CLumoscriptView& view, const Fields&) {
    RunState& run = view.run;
    TestWalk& test = view.test;
    if (run.inRun) {
        std::int32_t& passes = run.branchPc[Index(run.pc)];
        if (passes <= 1) {
            ++run.pc;
        } else {
            --passes;
            StepNext(run);
        }
    } else if (!SkipTest(view)) {
        if (test.loopCount > 0 && --test.loopCount > 0) test.testPc = test.loopReturn;
    }
    return Outcome::Succeeded;
}

Outcome RunExit(CLumoscriptView& view, const Fields&) {
    RunState& run = view.run;
    TestWalk& test = view.test;
    if (run.inRun) {
        // Behind the loop, in a subroutine that was called, the next picture is still wanted until
        // the list is used up.
        const bool called = run.pc > run.endIdx && run.stackIndex > 0;
        if (called && !run.imageLoopOver)
            run.pc = run.startIdx;
        else
            StepNext(run);
    } else if (run.mode != RunMode::OneCommand && test.ifFlag != 0 && test.doFlag != 0 &&
               test.subSkip == 0) {
        test.exitFlag = 1;
    }
    return Outcome::Succeeded;
}

/// A comment. Run lists leave it out, so this is for a walk on the sample.
Outcome RunScriptInfo(CLumoscriptView& view, const Fields&) {
    if (view.run.inRun) StepNext(view.run);
    return Outcome::Succeeded;
}

constexpr std::array kInfoFields{script::Text("Line 1", "Place your short").Quoted(),
                                 script::Text("Line 2", "comments and text").Quoted(),
                                 script::Text("Line 3", "here.").Quoted(),
                                 script::Text("Line 4", "").Quoted(),
                                 script::Text("Line 5", "").Quoted(),
                                 script::Text("Line 6", "").Quoted(),
                                 script::Text("Line 7", "").Quoted()};
constexpr std::array kInfoPanel{script::Value(0, ""), script::Value(1, ""), script::Value(2, ""),
                                script::Value(3, ""), script::Value(4, ""), script::Value(5, ""),
                                script::Value(6, "")};

}  // namespace

void StepNext(RunState& run) {
    run.pc = run.nextPc[Index(run.pc)];
}
void StepBranch(RunState& run) {
    run.pc = run.branchPc[Index(run.pc)];
}

const Command kDoWhileCommand{.spec = {.name = names::kDoWhile,
                                       .fields = ConditionFields(),
                                       .panelText = ConditionPanel,
                                       .dialog = &kDoDialog},
                              .opening = openings::kOwnFlow,
                              .run = RunDoWhile};
const Command kDoEndCommand{
    .spec = {.name = names::kDoEnd}, .opening = openings::kOwnFlow, .run = RunDoEnd};
const Command kLoopStartCommand{.spec = {.name = names::kLoopStart,
                                         .fields = kLoopFields,
                                         .panel = kLoopPanel,
                                         .dialog = &kLoopDialog},
                                .opening = openings::kOwnFlow,
                                .run = RunLoopStart};
const Command kLoopEndCommand{
    .spec = {.name = names::kLoopEnd}, .opening = openings::kOwnFlow, .run = RunLoopEnd};
const Command kExitCommand{
    .spec = {.name = names::kExit}, .opening = openings::kOwnFlow, .run = RunExit};
const Command kScriptInfoCommand{.spec = {.name = names::kScriptInfo,
                                          .fields = kInfoFields,
                                          .panel = kInfoPanel,
                                          .dialog = &kInfoDialog},
                                 .opening = openings::kOwnFlow,
                                 .run = RunScriptInfo};

}  // namespace lumo::engine::flow

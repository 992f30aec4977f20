// IF_START in three forms, IF_END, ELSE_START, ELSE_END.

#include <algorithm>

#include "engine/flow/condition.h"
#include "engine/flow/flow_commands.h"
#include "script/names.h"

namespace lumo::engine::flow {
namespace {

using script::Fields;
namespace names = script::names;

constexpr script::DialogSpec kDialog{.title = "IF_START (condition)",
                                     .helpTopic = "IF_STARTcondition"};

bool AllTrue(const std::string& letters) {
    return std::ranges::all_of(letters, [](char c) { return c == 'T'; });
}

void DropLast(std::string& letters) {
    if (!letters.empty()) letters.pop_back();
}

/// A test walk passes these commands over while it skips a loop, a subroutine or the rest.
bool Blocked(const CLumoscriptView& view) {
    const TestWalk& test = view.test;
    return view.run.mode == RunMode::OneCommand || test.exitFlag != 0 || test.doFlag == 0 ||
           test.subSkip != 0;
}

/// Result of the condition into the flag that it belongs to.
void EvaluateIf(CLumoscriptView& view, const Fields& fields) {
    const auto result = EvaluateCondition(view, fields);
    if (!result) return;
    // In the range form the measured items go to the other command's flag, and the branch follows
    // what ifFlag was before. Scripts in use rely on it.
    const bool toDoFlag = !fields.Is(kRangeForm, "0") && IsMeasuredItem(fields.Integer(kItem));
    (toDoFlag ? view.test.doFlag : view.test.ifFlag) = *result ? 1 : 0;
}

/// Opens an IF of the test walk; `evaluate` sets ifFlag.
template <class Evaluate>
void OpenTestIf(CLumoscriptView& view, Evaluate evaluate) {
    TestWalk& test = view.test;
    if (test.elseStack.size() > test.ifStack.size()) DropLast(test.elseStack);
    char letter = 'F';  // a nested IF under a false one is false without a test
    if (test.ifFlag != 0) {
        if (view.working.main.IsEmpty())
            test.ifFlag = 0;
        else
            evaluate();
        letter = test.ifFlag != 0 ? 'T' : 'F';
    }
    test.ifStack += letter;
    test.elseStack += letter;
}

Outcome RunIfCondition(CLumoscriptView& view, const Fields& fields) {
    RunState& run = view.run;
    if (run.inRun) {
        EvaluateIf(view, fields);
        view.test.ifFlag != 0 ? StepNext(run) : StepBranch(run);
    } else if (!Blocked(view)) {
        OpenTestIf(view, [&] { EvaluateIf(view, fields); });
    }
    return Outcome::Succeeded;
}

Outcome RunFileIf(CLumoscriptView& view, bool isThatFile) {
    RunState& run = view.run;
    if (run.inRun) {
        isThatFile ? StepNext(run) : StepBranch(run);
        return Outcome::Succeeded;
    }
    const auto evaluate = [&] { view.test.ifFlag = isThatFile ? 1 : 0; };
    if (run.mode == RunMode::OneCommand)
        evaluate();  // alone on the sample it still sets the flag
    else if (!Blocked(view))
        OpenTestIf(view, evaluate);
    return Outcome::Succeeded;
}

Outcome RunIfFirstFile(CLumoscriptView& view, const Fields&) {
    return RunFileIf(view, view.run.imageIndex == 0);
}

Outcome RunIfLastFile(CLumoscriptView& view, const Fields&) {
    return RunFileIf(view, view.run.imageIndex + 1 == view.run.imageCount);
}

Outcome RunIfEnd(CLumoscriptView& view, const Fields&) {
    if (view.run.inRun) {
        StepNext(view.run);
    } else if (!Blocked(view)) {
        TestWalk& test = view.test;
        if (test.ifStack.size() < test.elseStack.size()) DropLast(test.elseStack);
        DropLast(test.ifStack);
        test.ifFlag = AllTrue(test.ifStack) ? 1 : 0;
    }
    return Outcome::Succeeded;
}

Outcome RunElseStart(CLumoscriptView& view, const Fields&) {
    if (view.run.inRun) {
        StepNext(view.run);
        return Outcome::Succeeded;
    }
    if (Blocked(view)) return Outcome::Succeeded;
    TestWalk& test = view.test;
    if (test.ifStack.size() + 1 != test.elseStack.size())
        view.ui.ShowMessage("If - Else count error elsestart!");
    if (test.ifFlag == 0) {
        test.ifStack += 'F';
    } else if (!test.elseStack.empty() && test.elseStack.back() == 'T') {
        test.ifStack += 'F';
        test.ifFlag = 0;
    } else {
        test.ifStack += 'T';
    }
    return Outcome::Succeeded;
}

Outcome RunElseEnd(CLumoscriptView& view, const Fields&) {
    if (view.run.inRun) {
        StepNext(view.run);
        return Outcome::Succeeded;
    }
    if (Blocked(view)) return Outcome::Succeeded;
    TestWalk& test = view.test;
    if (test.ifStack.size() < test.elseStack.size()) DropLast(test.elseStack);
    DropLast(test.ifStack);
    DropLast(test.elseStack);
    if (test.ifStack.size() != test.elseStack.size()) view.ui.ShowMessage("If - Else count error!");
    test.ifFlag = AllTrue(test.ifStack) ? 1 : 0;
    return Outcome::Succeeded;
}

}  // namespace

const Command kIfConditionCommand{.spec = {.name = names::kIfCondition,
                                           .fields = ConditionFields(),
                                           .panelText = ConditionPanel,
                                           .dialog = &kDialog},
                                  .opening = openings::kOwnFlow,
                                  .run = RunIfCondition};
const Command kIfFirstFileCommand{
    .spec = {.name = names::kIfFirstFile}, .opening = openings::kOwnFlow, .run = RunIfFirstFile};
const Command kIfLastFileCommand{
    .spec = {.name = names::kIfLastFile}, .opening = openings::kOwnFlow, .run = RunIfLastFile};
const Command kIfEndCommand{
    .spec = {.name = names::kIfEnd}, .opening = openings::kOwnFlow, .run = RunIfEnd};
const Command kElseStartCommand{
    .spec = {.name = names::kElseStart}, .opening = openings::kOwnFlow, .run = RunElseStart};
const Command kElseEndCommand{
    .spec = {.name = names::kElseEnd}, .opening = openings::kOwnFlow, .run = RunElseEnd};

}  // namespace lumo::engine::flow

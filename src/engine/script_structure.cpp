#include "engine/script_structure.h"

#include <string>
#include <string_view>

#include "engine/subroutines.h"
#include "script/fields.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

constexpr int kIncrementalField = 8;  // of "Output setup"

/// How often each block command stands in a Script, and whether nesting went wrong on the way.
struct BlockCounts {
    int ifStarts = 0, ifEnds = 0, elseStarts = 0, elseEnds = 0;
    int loopStarts = 0, loopEnds = 0, doWhiles = 0, doEnds = 0;
    int subStarts = 0, subEnds = 0;
    bool ifLevelNegative = false, subLevelAboveOne = false, subLevelNegative = false;
    bool outputInLoop = false;  // without incremental naming
};

BlockCounts CountBlocks(const script::Script& script) {
    BlockCounts c;
    int ifLevel = 0, subLevel = 0;
    for (int i = 0; i < script.Count(); ++i) {
        const std::string& name = script.NameAt(i);
        if (name == names::kIfCondition || name == names::kIfFirstFile ||
            name == names::kIfLastFile) {
            ++c.ifStarts;
            ++ifLevel;
        } else if (name == names::kIfEnd) {
            ++c.ifEnds;
            if (--ifLevel < 0) c.ifLevelNegative = true;
        } else if (name == names::kElseStart) {
            ++c.elseStarts;
        } else if (name == names::kElseEnd) {
            ++c.elseEnds;
        } else if (name == names::kLoopStart) {
            ++c.loopStarts;
        } else if (name == names::kLoopEnd) {
            ++c.loopEnds;
        } else if (name == names::kDoWhile) {
            ++c.doWhiles;
        } else if (name == names::kDoEnd) {
            ++c.doEnds;
        } else if (name == names::kSubroutineStart) {
            ++c.subStarts;
            if (++subLevel > 1) c.subLevelAboveOne = true;
        } else if (name == names::kSubroutineEnd) {
            ++c.subEnds;
            if (--subLevel < 0) c.subLevelNegative = true;
        } else if (name == names::kOutputSetup &&
                   (c.loopStarts != c.loopEnds || c.doWhiles != c.doEnds) &&
                   !script::ParseParams(script.ParamsAt(i)).Is(kIncrementalField, "1")) {
            c.outputInLoop = true;
        }
    }
    return c;
}

/// The words of the first fault, or none.
std::string_view FirstFault(const BlockCounts& c) {
    if (c.ifEnds < c.ifStarts) return "IF_START cmd without IF_END cmd. ";
    if (c.ifEnds > c.ifStarts) return "IF_END cmd without IF_START cmd. ";
    if (c.ifLevelNegative) return "IF_END cmd before any IF_xxxxx cmd. ";
    if (c.elseEnds < c.elseStarts) return "ELSE_START cmd without ELSE_END cmd. ";
    if (c.elseEnds > c.elseStarts) return "ELSE_END cmd without ELSE_START cmd. ";
    if (c.loopEnds < c.loopStarts) return "Loop Start cmd without Loop End cmd. ";
    if (c.loopEnds > c.loopStarts) return "Loop End cmd without Loop Start cmd. ";
    if (c.doEnds < c.doWhiles) return "DO_WHILE cmd without DO_END cmd. ";
    if (c.doEnds > c.doWhiles) return "DO_END cmd without DO_WHILE (condition) cmd. ";
    if (c.subEnds < c.subStarts || c.subLevelAboveOne)
        return "SUBROUTINE_START cmd without SUBROUTINE_END cmd. ";
    if (c.subEnds > c.subStarts || c.subLevelNegative)
        return "SUBROUTINE_END cmd without SUBROUTINE_START cmd. ";
    return {};
}

/// The name of the first called subroutine that is nowhere, or none.
std::string FirstMissingSubroutine(CLumoscriptView& view) {
    script::Script& script = view.script.commands;
    for (int i = 0; i < script.Count() && i < kMaxRunCommands; ++i) {
        if (script.NameAt(i) != names::kSubroutineExecute) continue;
        const std::string name = SubroutineNameAt(script, i);
        if (FindSubroutine(script, name) >= 0) continue;
        if (!AppendSubroutineOf(view.settings.folders.subroutines, name, view.settings, script))
            return name;
    }
    return {};
}

}  // namespace

bool CheckScriptStructure(CLumoscriptView& view) {
    const BlockCounts counts = CountBlocks(view.script.commands);
    if (const std::string_view fault = FirstFault(counts); !fault.empty()) {
        view.ui.ShowMessage(std::string(fault) +
                            "This may cause unpreditable results. Please correct!");
        return false;
    }
    if (counts.outputInLoop && view.settings.warnOfNameCollision) {
        view.ui.ShowMessage(
            "Output loop warning: 'Output setup' command within a loop without incremental naming "
            "set. This could cause output name collisons (files with the same name).");
        return false;
    }
    if (const std::string missing = FirstMissingSubroutine(view); !missing.empty()) {
        view.ui.ShowMessage(missing + " SUBROUTINE not present. Unable to find to load.");
        return false;
    }
    return true;
}

}  // namespace lumo::engine

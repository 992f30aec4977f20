#include "engine/sample.h"

#include "engine/command.h"

namespace lumo::engine {

bool CopyLeftToMain(CLumoscriptView& view, Force force) {
    if (view.sample.left.IsEmpty()) return false;
    if (view.run.batchRunning && force == Force::No) return false;
    view.working.main.Reset();  // first, so that two large pictures need not fit beside the sample
    auto copy = imaging::Image::TryCopy(view.sample.left.View());
    if (!copy) return false;
    view.working.main = std::move(*copy);
    // The tag is that of an opened picture again: a grey flag that an earlier trial left behind
    // would keep commands from converting this one.
    SetFullColour(view);
    view.sample.rightDepthLabel = view.sample.leftDepthLabel;
    ShowMainSize(view);
    view.ui.RebuildRightDisplay();
    view.ui.Redraw();
    return true;
}

}  // namespace lumo::engine

#include "engine/sample.h"

#include <string>

namespace lumo::engine {

bool CopyLeftToMain(CLumoscriptView& view, Force force) {
    if (view.sample.left.IsEmpty()) return false;
    if (view.run.batchRunning && force == Force::No) return false;
    auto copy = imaging::Image::TryCopy(view.sample.left.View());
    if (!copy) return false;
    const imaging::Size size = copy->Extent();
    view.working.main = std::move(*copy);
    view.sample.rightDepthLabel = view.sample.leftDepthLabel;
    view.ui.SetSizeText(std::to_string(size.width) + "x" + std::to_string(size.height));
    view.ui.RebuildRightDisplay();
    view.ui.Redraw();
    return true;
}

}  // namespace lumo::engine

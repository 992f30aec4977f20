#pragma once

// The commands that change the frame or the place of pixels.

#include "engine/command.h"

namespace lumo::ops::geometry {

extern const engine::Command kAddBorderCommand;
extern const engine::Command kBorderFindAndCropCommand;
extern const engine::Command kCanvasSizeCommand;
extern const engine::Command kCropCommand;
extern const engine::Command kHorizontalPerspectiveCommand;
extern const engine::Command kNewCanvasCommand;
extern const engine::Command kRotateQuarterCommand;
extern const engine::Command kRotateSpecifyCommand;
extern const engine::Command kShiftImageCommand;
extern const engine::Command kSkewCommand;
extern const engine::Command kVerticalPerspectiveCommand;

}  // namespace lumo::ops::geometry

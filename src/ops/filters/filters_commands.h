#pragma once

// The commands that work on a neighbourhood of pixels, for the command table.

#include "engine/command.h"

namespace lumo::ops::filters {

extern const engine::Command kBlurCommand;
extern const engine::Command kBlurMoreCommand;
extern const engine::Command kBlurGaussianCommand;
extern const engine::Command kBlurOutwardCommand;
extern const engine::Command kCustomFilterCommand;
extern const engine::Command kDespeckleCommand;
extern const engine::Command kDustRemoveCommand;
extern const engine::Command kEmbossCommand;
extern const engine::Command kMaximumFilterCommand;
extern const engine::Command kMedianFilterCommand;
extern const engine::Command kMinimumFilterCommand;
extern const engine::Command kSharpenCommand;
extern const engine::Command kUnsharpMaskCommand;

}  // namespace lumo::ops::filters

#pragma once

// The commands that work on a neighbourhood of pixels, for the command table.

#include "engine/command.h"
#include "ops/handler_steps.h"

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

inline constexpr NewImageFailures kBlurFailures{.memory = "Cmd_08 Blur1: memory failure!",
                                                .operation = "Cmd_08 Blur1 L18535: "};
inline constexpr NewImageFailures kSharpenFailures{.memory = "Sharp L15456: memory failure!",
                                                   .operation = "Cmd_71 Sharp L15462: "};

}  // namespace lumo::ops::filters

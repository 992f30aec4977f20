#pragma once

// The commands that change the colour, the tone or the colour depth of the working image, and the
// one that counts its colours. None changes the size of the picture.

#include "engine/command.h"
#include "ops/handler_steps.h"

namespace lumo::ops::colour {

extern const engine::Command kAdjustColourHslCommand;
extern const engine::Command kAdjustColourRgbCommand;
extern const engine::Command kAdjustContrastBrightnessCommand;
extern const engine::Command kAdjustHistogramLuminanceCommand;
extern const engine::Command kColourCurveAdjustCommand;
extern const engine::Command kConvertBwDitherCommand;
extern const engine::Command kConvertBwThresholdCommand;
extern const engine::Command kConvertGreyscaleCommand;
extern const engine::Command kConvertOneColourToneCommand;
extern const engine::Command kConvertSepiaToneCommand;
extern const engine::Command kCountColoursCommand;
extern const engine::Command kGammaAdjustCommand;
extern const engine::Command kHighlightMidtoneShadowCommand;
extern const engine::Command kHistogramEqualizeCommand;
extern const engine::Command kHistogramStretchCommand;
extern const engine::Command kMedianCutCommand;
extern const engine::Command kNegativeCommand;
extern const engine::Command kReplaceColourCommand;
extern const engine::Command kSolarizeCommand;
extern const engine::Command kSwapGreenBlueCommand;
extern const engine::Command kSwapRedBlueCommand;
extern const engine::Command kSwapRedGreenCommand;

inline constexpr NewImageFailures kMedianCutFailures{
    .memory = "Cmd_57 L3169 Median cut: memory failure", .operation = "Cmd_57 Median cut L3154: "};

}  // namespace lumo::ops::colour

#pragma once

// The commands that combine the working image with another picture or with a pattern.

#include "engine/command.h"

namespace lumo::ops::overlays {

extern const engine::Command kMosaicCommand;
extern const engine::Command kTileImageCommand;
extern const engine::Command kTileGridCommand;
extern const engine::Command kGridCommand;
extern const engine::Command kNoiseAddCommand;

extern const engine::Command kBlendImagesCommand;
extern const engine::Command kWatermarkCommand;
extern const engine::Command kTileOverAbsoluteCommand;
extern const engine::Command kFrameOverlayCommand;
extern const engine::Command kMaskOverlayCommand;
extern const engine::Command kTextOverlayCommand;
extern const engine::Command kTextOverlayAbsoluteCommand;
extern const engine::Command kDropShadowCommand;

}  // namespace lumo::ops::overlays

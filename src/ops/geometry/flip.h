#pragma once

#include "engine/command.h"

namespace lumo::ops::geometry {

extern const engine::Command kFlipHorizontalCommand;
extern const engine::Command kFlipVerticalCommand;

}  // namespace lumo::ops::geometry

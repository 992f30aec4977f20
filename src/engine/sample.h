#pragma once

#include "engine/view.h"

namespace lumo::engine {

enum class Force { No, Yes };

/// Copies the sample into the working image. False without a sample, while a batch runs unless
/// forced, or if the memory cannot be had; then nothing changes.
bool CopyLeftToMain(CLumoscriptView& view, Force force);

}  // namespace lumo::engine

#pragma once

#include "engine/view.h"

namespace lumo::engine {

enum class Force { No, Yes };

/// Copies the sample into the working image, as full colour, and shows it in the right frame. False
/// without a sample, and while a batch runs unless forced: nothing changes. False too if the memory
/// cannot be had: there is no working image then.
bool CopyLeftToMain(CLumoscriptView& view, Force force);

}  // namespace lumo::engine

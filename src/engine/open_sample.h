#pragma once

// The sample image: opening it, and moving it between the two frames. All of it runs on the thread
// of the interface, outside of a batch run.

#include <string>

#include "engine/view.h"

namespace lumo::engine {

/// How the user named the picture. A failure of a dropped file is told in the words of one whose
/// dimensions could not be read, wherever it failed.
enum class SampleFrom { Dialog, Drop };

/// Opens a picture file as the sample: left image, working image and the held copy. False, after a
/// message, if it cannot be opened; the picture held from before is the left image then.
bool OpenSample(CLumoscriptView& view, const std::string& path,
                SampleFrom from = SampleFrom::Dialog);

/// The held image, as the sample was first opened, becomes the left image again. False without one.
bool ReloadLeft(CLumoscriptView& view);

/// The working image becomes the left image. False if there is none.
bool CopyRightToLeft(CLumoscriptView& view);

}  // namespace lumo::engine

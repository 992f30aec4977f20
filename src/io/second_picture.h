#pragma once

// The pictures that overlay commands read from a file while a Script runs.

#include <memory>
#include <string>

#include "engine/view.h"

namespace lumo::io {

/// The picture in the file at that native path, never empty; null, with imaging::LastError() set,
/// if it cannot be opened. In a batch run a picture is kept, so that the next image finds it
/// decoded: as long as the path leads to the same, unchanged file and the kept pictures stay within
/// an eighth of the memory budget. Called by the thread that runs commands only.
std::shared_ptr<const imaging::Image> OpenSecondPicture(engine::CLumoscriptView& view,
                                                        const std::string& path);

/// Gives the kept pictures back: at the end of a run.
void ForgetSecondPictures(engine::CLumoscriptView& view);

}  // namespace lumo::io

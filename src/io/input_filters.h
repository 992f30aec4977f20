#pragma once

// The tests that pass over input files: by type and date before a file is decoded, by size and
// aspect ratio afterwards. A rejected file costs a line in Batch.log for every test that it fails,
// and is neither an error nor a warning. Settings are those of view.inputSettings.

#include <ctime>

#include "engine/view.h"

namespace lumo::io {

/// The tests on view.input; true to go on. Where the file system keeps no birth time of files, the
/// time of the last change stands for it.
bool FilterByFile(engine::CLumoscriptView& view);

/// The tests on the decoded working image; true to go on.
bool FilterByImage(engine::CLumoscriptView& view);

/// The moment at which a day begins in local time. Days and months beyond their range run over
/// into the next ones: 31 February is the third of March, or the second.
std::time_t StartOfDay(int year, int month, int day);

}  // namespace lumo::io

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/command.h"
#include "engine/view.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::test {

/// A view in the middle of a batch run over folders of its own: "In" and "Out" beside "Logs".
/// Unlike CommandRunner it has files, an input list and logs on disk.
class RunBench {
  public:
    RunBench();

    /// A picture file, its format by the extension; missing folders are made.
    void PutPicture(const std::string& path, imaging::Size size = {8, 6});
    /// Makes this the picture and file in hand, as OpenNextImage leaves them.
    void TakeInput(const std::string& path, imaging::Size size = {8, 6});
    /// Runs a command through the common opening, as the run loop does.
    engine::Outcome Execute(const engine::Command& command, std::string_view params);

    std::string In(std::string_view name = {}) const { return folder / "In/" + std::string(name); }
    std::string Out(std::string_view name = {}) const {
        return folder / "Out/" + std::string(name);
    }
    /// Batch.log, Error.log or Debug.log as it is on disk.
    std::string LogFile(std::string_view name) const;

    std::vector<std::string>& BatchLines() { return view.logs.batch; }
    std::vector<std::string>& ErrorLines() { return view.logs.error; }

    TempFolder folder;
    RecordingInterface ui;
    engine::CLumoscriptView view{ui};
};

}  // namespace lumo::test

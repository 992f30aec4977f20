#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/command.h"
#include "support/recording_ui.h"
#include "support/test_images.h"

namespace lumo::test {

/// A view with one picture, on which single commands are run outside of a batch: failures come as
/// messages of the interface.
class CommandRunner {
  public:
    explicit CommandRunner(imaging::Image image) : view(ui) {
        view.working.main = std::move(image);
    }

    /// Runs a command through the common opening, as ExecuteCommand does.
    engine::Outcome Execute(const engine::Command& command, std::string_view params);
    /// True if it did not fail.
    bool Run(const engine::Command& command, std::string_view params) {
        return Execute(command, params) != engine::Outcome::Failed;
    }
    /// The same inside of a batch run whose list holds just this command, so that failures go to
    /// the logs (view.logs) and the tables move `pc`.
    engine::Outcome ExecuteInRun(const engine::Command& command, std::string_view params);

    const imaging::Image& Main() const { return view.working.main; }
    imaging::Image& Main() { return view.working.main; }

    RecordingInterface ui;
    engine::CLumoscriptView view;
    std::vector<std::string>& messages = ui.messages;
};

}  // namespace lumo::test

#pragma once

#include <chrono>
#include <string>

#include "engine/user_interface.h"

namespace lumo::cli {

/// The interface of an unattended run: words go to standard error, progress only to a terminal, and
/// nothing ever waits.
class ConsoleInterface : public engine::UserInterface {
  public:
    explicit ConsoleInterface(bool quiet);
    ~ConsoleInterface() override;

    void ShowMessage(std::string_view text) override;
    bool Ask(std::string_view question) override;
    void Notice(std::string_view text) override;
    void ShowCounts(const engine::RunCounts& counts) override;
    void SetTitle(std::string_view text) override;

  private:
    void EraseProgress();

    bool showProgress_;
    bool progressShown_ = false;
    std::string title_;
    std::chrono::steady_clock::time_point lastDrawn_;
};

}  // namespace lumo::cli

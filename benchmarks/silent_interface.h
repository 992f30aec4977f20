#pragma once

#include "engine/user_interface.h"

namespace lumo::bench {

/// An interface that shows nothing and refuses everything.
class SilentInterface : public engine::UserInterface {
  public:
    void ShowMessage(std::string_view) override {}
    bool Ask(std::string_view) override { return false; }
    void Notice(std::string_view) override {}
};

}  // namespace lumo::bench

#pragma once

#include <QObject>
#include <functional>

namespace lumo::ui {

/// Turns SIGINT and SIGTERM into a call on the window's thread, while it lives. A second signal
/// ends the program at once.
class Termination : public QObject {
  public:
    explicit Termination(std::function<void(int signalNumber)> asked);
    ~Termination() override;

  private:
    int ends_[2] = {-1, -1};
};

}  // namespace lumo::ui

#include "ui/termination.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <atomic>
#include <utility>

namespace lumo::ui {
namespace {

std::atomic<int> writeEnd{-1};
std::atomic<int> caught{0};

// Nothing but a write is safe here; the window reads it when it comes to its events.
extern "C" void NoteSignal(int signalNumber) {
    if (caught.exchange(signalNumber) != 0) _exit(128 + signalNumber);
    const auto byte = static_cast<unsigned char>(signalNumber);
    if (write(writeEnd, &byte, 1) != 1) _exit(128 + signalNumber);
}

void Catch(void (*handler)(int)) {
    struct sigaction action{};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

}  // namespace

Termination::Termination(std::function<void(int)> asked) {
    // Not for the programs that are started from here, and never a wait in a handler.
    if (pipe2(ends_, O_CLOEXEC | O_NONBLOCK) != 0) return;
    writeEnd = ends_[1];
    caught = 0;
    auto* notifier = new QSocketNotifier(ends_[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, asked = std::move(asked)] {
        unsigned char byte = 0;
        if (read(ends_[0], &byte, 1) == 1) asked(byte);
    });
    Catch(NoteSignal);
}

Termination::~Termination() {
    if (ends_[0] < 0) return;
    Catch(SIG_DFL);
    writeEnd = -1;
    close(ends_[0]);
    close(ends_[1]);
}

}  // namespace lumo::ui

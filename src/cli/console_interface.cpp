#include "cli/console_interface.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

#include "platform/paths.h"

namespace lumo::cli {
namespace {

constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

void PrintError(std::string_view text) {
    const std::string line = platform::Printable(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

ConsoleInterface::ConsoleInterface(bool quiet)
    : showProgress_(!quiet && isatty(STDERR_FILENO) != 0) {}

ConsoleInterface::~ConsoleInterface() {
    EraseProgress();
}

void ConsoleInterface::ShowMessage(std::string_view text) {
    EraseProgress();
    PrintError(text);
}

bool ConsoleInterface::Ask(std::string_view question) {
    ShowMessage(question);
    return false;  // nobody is there to say Yes
}

void ConsoleInterface::Notice(std::string_view text) {
    ShowMessage(text);
}

void ConsoleInterface::SetTitle(std::string_view text) {
    title_ = text;
    if (text.empty()) EraseProgress();
}

void ConsoleInterface::ShowCounts(const engine::RunCounts& counts) {
    if (!showProgress_ || title_.empty()) return;
    const auto now = std::chrono::steady_clock::now();
    if (progressShown_ && now - lastDrawn_ < kRedrawInterval) return;
    lastDrawn_ = now;
    const std::string line =
        fmt::format("\r\x1b[K{}  {} of {} images, {} saved, {} errors", title_, counts.current,
                    counts.totalInput, counts.saved, counts.errors);
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
    progressShown_ = true;
}

void ConsoleInterface::EraseProgress() {
    if (!progressShown_) return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    progressShown_ = false;
}

}  // namespace lumo::cli

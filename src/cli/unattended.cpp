#include "cli/unattended.h"

#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <ctime>

#include "cli/console_interface.h"
#include "engine/run_batch.h"
#include "engine/start.h"
#include "engine/view.h"
#include "platform/files.h"
#include "settings/settings_store.h"

namespace lumo::cli {
namespace {

std::atomic<std::atomic<int>*> keepRunning{nullptr};
std::atomic<int> caughtSignal{0};

extern "C" void StopRun(int signalNumber) {
    // A second signal means it: end at once, with the status of the first.
    if (caughtSignal.exchange(signalNumber) != 0) _exit(128 + signalNumber);
    if (std::atomic<int>* flag = keepRunning.load()) flag->store(0);
}

/// Catches SIGINT and SIGTERM while it lives.
class SignalGuard {
  public:
    explicit SignalGuard(std::atomic<int>& flag) {
        keepRunning = &flag;
        struct sigaction action{};
        action.sa_handler = StopRun;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        sigaction(SIGINT, &action, &oldInt_);
        sigaction(SIGTERM, &action, &oldTerm_);
    }
    ~SignalGuard() {
        sigaction(SIGINT, &oldInt_, nullptr);
        sigaction(SIGTERM, &oldTerm_, nullptr);
        keepRunning = nullptr;
    }
    SignalGuard(const SignalGuard&) = delete;
    SignalGuard& operator=(const SignalGuard&) = delete;

  private:
    struct sigaction oldInt_{};
    struct sigaction oldTerm_{};
};

int StatusOf(const engine::RunState& run) {
    if (caughtSignal != 0) return 128 + caughtSignal;
    if (run.refused) return kRefused;
    if (run.fatalCode != 0) return kFatal;
    return run.errorCount > 0 || run.failureReports > 0 ? kSomeFailed : kAllDone;
}

/// The end of the program, as the window's close: what "Writer preferences" changed is kept. Where
/// the first start could not make the file, it said so; a cron job need not hear it twice a run.
void SaveSettings(engine::CLumoscriptView& view) {
    if (!platform::FileExists(settings::SettingsPath())) return;
    for (const std::string& message : settings::SaveSettings(
             view.settings, settings::SaveKind::Normal, std::time(nullptr)))
        view.ui.Notice(message);
}

std::string Count(int number, std::string_view noun) {
    return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

std::string Summary(const engine::RunState& run, double seconds) {
    return fmt::format("{} read, {} written, {}, {}, {:.1f} s\n", Count(run.statInputs, "image"),
                       Count(run.statOutputs, "file"), Count(run.errorCount, "error"),
                       Count(run.warningCount, "warning"), seconds);
}

}  // namespace

int RunUnattended(const CommandLine& line, Program program) {
    std::setlocale(LC_TIME, "");
    // A full disk or a limit on file sizes is an error of one file, not the end of the program.
    signal(SIGXFSZ, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
    const auto begin = std::chrono::steady_clock::now();
    ConsoleInterface console(line.quiet);
    engine::CLumoscriptView view(console);
    engine::RunState& run = view.run;
    run.autoExit = run.noPrompts = true;
    run.forceErrorLog = line.forceErrorLog;
    view.logs.debugOn = line.debugLog;
    // The batch program is made for servers: it leaves no settings behind.
    engine::StartView(view, program == Program::Batch ? engine::SettingsFile::ReadOnly
                                                      : engine::SettingsFile::ReadAndWrite);
    if (!engine::OpenScript(view, line.scriptPath)) return kRefused;

    const SignalGuard guard(run.keepRunning);
    if (engine::PrepareBatch(view)) {
        if (caughtSignal != 0) run.keepRunning = 0;
        engine::RunThreadEntry(view);
        if (!line.quiet) {
            const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
            const std::string text = Summary(run, elapsed.count());
            std::fwrite(text.data(), 1, text.size(), stdout);
        }
    }
    if (program == Program::Desktop) SaveSettings(view);
    return StatusOf(run);
}

}  // namespace lumo::cli

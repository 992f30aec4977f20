#include "cli/unattended.h"

#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "cli/console_interface.h"
#include "cli/remarks.h"
#include "engine/run_batch.h"
#include "engine/start.h"
#include "engine/view.h"
#include "io/start_setup.h"
#include "platform/files.h"
#include "script/names.h"
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

int StatusOf(const engine::RunState& run, bool inputMissing) {
    if (caughtSignal != 0) return 128 + caughtSignal;
    if (run.refused) return kRefused;
    if (run.fatalCode != 0) return kFatal;
    return run.errorCount > 0 || run.failureReports > 0 || inputMissing ? kSomeFailed : kAllDone;
}

/// The end of the program, as the window's close: what "Writer preferences" changed is kept. Where
/// the first start could not make the file, it said so; a cron job need not hear it twice a run.
void SaveSettings(engine::CLumoscriptView& view) {
    if (!platform::FileExists(settings::SettingsPath())) return;
    for (const std::string& message :
         settings::SaveSettings(view.settings, settings::SaveKind::Normal, std::time(nullptr)))
        view.ui.Notice(message);
}

/// START reads from there, whatever the Script says; its filters stay.
void ReadFrom(engine::CLumoscriptView& view, const std::string& stated) {
    namespace start = io::start;
    script::Script& commands = view.script.commands;
    const int at = commands.Find(script::names::kStartImageLoop);
    if (at < 0) return;
    const script::Fields read = io::ParseStartParams(commands.ParamsAt(at));
    std::vector<std::string> texts;
    texts.reserve(start::kFieldCount);
    for (int field = 0; field < start::kFieldCount; ++field) texts.push_back(read.Text(field));
    // A path with a slash is taken as it stands, backslashes and all.
    const std::string path = stated.find('/') == std::string::npos ? "./" + stated : stated;
    const bool list = path.ends_with(".lst") && !platform::FolderExists(path);
    texts[start::kLocation] = list ? start::kFromList : start::kFromFolder;
    texts[list ? start::kListPath : start::kFolderPath] = path;
    const auto index = static_cast<std::size_t>(at);
    if (commands.params.size() <= index) commands.params.resize(index + 1);
    commands.params[index] = io::BuildStartParams(texts);
}

std::string Count(int number, std::string_view noun) {
    return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

std::string Summary(const engine::RunState& run, double seconds, bool aborted) {
    return fmt::format("{} read, {} written, {}, {}, {:.1f} s{}\n", Count(run.statInputs, "image"),
                       Count(run.statOutputs, "file"), Count(run.errorCount, "error"),
                       Count(run.warningCount, "warning"), seconds,
                       aborted ? ", ended before all was done" : "");
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
    if (!line.inputPath.empty()) ReadFrom(view, line.inputPath);

    const SignalGuard guard(run.keepRunning);
    const bool prepared = engine::PrepareBatch(view);
    for (const std::string& remark : RemarkUnknownCommands(view)) console.Notice(remark);
    bool inputMissing = false;
    if (prepared) {
        if (caughtSignal != 0) run.keepRunning = 0;
        const bool aborted = engine::RunThreadEntry(view) != 0;
        if (run.statInputs == 0 && !aborted && run.fatalCode == 0) {
            const std::string remark = RemarkMissingInput(view);
            inputMissing = !remark.empty();
            if (inputMissing) console.Notice(remark);
        }
        if (!line.quiet) {
            const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
            const std::string text = Summary(run, elapsed.count(), aborted);
            std::fwrite(text.data(), 1, text.size(), stdout);
        }
    }
    if (program == Program::Desktop) SaveSettings(view);
    return StatusOf(run, inputMissing);
}

}  // namespace lumo::cli

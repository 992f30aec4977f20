#include "io/run_logs.h"

#include <fmt/format.h>

#include <fstream>
#include <string>
#include <vector>

#include "io/input.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace lumo::io {
namespace {

using platform::Printable;
using std::chrono::system_clock;

constexpr std::string_view kLineEnd = "\r\n";
constexpr int kMaxDebugCommands = 100;  // for one image

std::string NumberAndCommand(const CLumoscriptView& view, int number, int command,
                             std::string_view name) {
    std::string text = fmt::format("Command number: {} {}", command, name);
    if (number >= 1 && number <= view.run.imageCount)
        text = fmt::format("Image number: {}   {}", number, text);
    return text;
}

/// One-based position of the command entered last.
int CommandNumber(const CLumoscriptView& view) {
    return view.run.prevPc + 1;
}

std::string_view CommandName(const CLumoscriptView& view) {
    const int at = view.run.prevPc;
    if (at < 0 || at >= view.run.list.Count()) return {};
    return view.run.list.NameAt(at);
}

/// What a block tells beside its text.
struct Block {
    int number;
    int command;
    std::string_view name;
    std::string_view inputPath;
    std::string_view detail;
};

void AddBatchBlock(CLumoscriptView& view, const Block& block, std::string_view text) {
    auto& lines = view.logs.batch;
    lines.emplace_back();
    lines.push_back(NumberAndCommand(view, block.number, block.command, block.name));
    if (!view.settings.logs.inputName)  // otherwise the path stands above already
        lines.push_back("Input image: " + Printable(block.inputPath));
    lines.push_back("No output from numbered command: " + Printable(block.detail));
    lines.emplace_back(text);
    lines.emplace_back();
}

void AddErrorBlock(CLumoscriptView& view, const Block& block, std::string_view text) {
    auto& lines = view.logs.error;
    lines.push_back(NumberAndCommand(view, block.number, block.command, block.name));
    lines.push_back("Input image: " + Printable(block.inputPath));
    lines.push_back("No output from command named: " + Printable(block.detail));
    lines.emplace_back(text);
    lines.emplace_back();
}

void AddInfo(CLumoscriptView& view, std::vector<std::string>& lines, std::string_view lastLine) {
    lines.emplace_back("-----Info-----");
    lines.push_back(Printable(view.script.caption));
    lines.push_back(platform::FormatTime("%c", system_clock::to_time_t(view.run.startTime)));
    lines.push_back(fmt::format("Total input images: {}", view.run.firstScanCount));
    lines.emplace_back(lastLine);
}

std::string LogPath(const CLumoscriptView& view, std::string_view name) {
    return platform::AddBackSlash(view.settings.folders.logs).append(name);
}

void Save(CLumoscriptView& view, const std::vector<std::string>& lines, std::string_view name) {
    const std::string& folder = view.settings.folders.logs;
    if (folder.empty()) return;
    // Nobody can be told of a log that cannot be written; the run goes on without it.
    if (!platform::FolderExists(folder) && !platform::MakeFolders(folder)) return;
    std::string text;
    for (const std::string& line : lines) text.append(line).append(kLineEnd);
    if (!platform::WriteTextFile(LogPath(view, name), text)) return;
    if (lines.empty()) view.ui.ShowMessage("log is empty - nothing to save!");
}

/// Writes two lines to Debug.log and closes it again, so that nothing is lost in a crash.
void WriteDebug(const CLumoscriptView& view, std::ios::openmode mode, std::string_view text) {
    if (view.settings.folders.logs.empty()) return;
    std::ofstream file(LogPath(view, "Debug.log"), std::ios::binary | mode);
    file << text;
}

}  // namespace

int ImageInHand(const CLumoscriptView& view) {
    if (view.run.imageIndex < 0 || view.input.path == kPathAfterImages) return kNoNumber;
    return view.run.imageIndex + 1;
}

bool BatchLogOn(const CLumoscriptView& view) {
    return view.settings.logs.batchLog;
}

bool BatchErrorsOn(const CLumoscriptView& view) {
    return view.settings.logs.batchLog && view.settings.logs.errors;
}

bool ErrorLogOn(const CLumoscriptView& view) {
    return view.settings.logs.errorLog || view.run.forceErrorLog;
}

void LogBatchInfo(CLumoscriptView& view) {
    AddInfo(view, view.logs.batch, "-----------");
}

void LogErrorInfo(CLumoscriptView& view) {
    AddInfo(view, view.logs.error, "-- Errors and Warnings --");
}

void LogBatchHeader(CLumoscriptView& view) {
    auto& lines = view.logs.batch;
    lines.emplace_back("-----Header begin-----");
    lines.emplace_back("Batch script commands:");
    const script::Script& commands = view.script.commands;
    for (int i = 0; i < commands.Count(); ++i) {
        lines.push_back(fmt::format("{}) {}", i + 1, commands.NameAt(i)));
        lines.push_back(commands.ParamsAt(i));
    }
    lines.emplace_back("-----Header end------");
}

void LogInput(CLumoscriptView& view, int number, std::string_view path) {
    // One entry of two lines: a blank one sets the image apart.
    view.logs.batch.push_back(fmt::format("{}{} Input: {}", kLineEnd, number, Printable(path)));
}

void LogInputSize(CLumoscriptView& view, int number, imaging::Size size) {
    view.logs.batch.push_back(
        fmt::format("{} Input size: {} x {}", number, size.width, size.height));
}

void LogOutput(CLumoscriptView& view, int number, std::string_view path) {
    view.logs.batch.push_back(fmt::format("{} Output: {}", number, Printable(path)));
}

void LogOutputSize(CLumoscriptView& view, int number, imaging::Size size) {
    view.logs.batch.push_back(
        fmt::format("{} Output size: {} x {}", number, size.width, size.height));
}

void LogBatchLine(CLumoscriptView& view, int number, std::string_view text) {
    view.logs.batch.push_back(number == kNoNumber ? std::string(text)
                                                  : fmt::format("{} : {}", number, text));
}

void LogErrorLine(CLumoscriptView& view, int number, std::string_view text) {
    view.logs.error.push_back(number == kNoNumber ? std::string(text)
                                                  : fmt::format("{}{}", number, text));
}

void LogBatchError(CLumoscriptView& view, int number, std::string_view name,
                   std::string_view detail, std::string_view text) {
    AddBatchBlock(view, {number, CommandNumber(view), name, view.input.path, detail}, text);
}

void LogErrorBlock(CLumoscriptView& view, int number, std::string_view name,
                   std::string_view detail, std::string_view text) {
    AddErrorBlock(view, {number, CommandNumber(view), name, view.input.path, detail}, text);
}

void ClearLogs(CLumoscriptView& view) {
    view.logs.batch.clear();
    view.logs.error.clear();
}

void OpenLogs(CLumoscriptView& view) {
    if (BatchLogOn(view)) {
        LogBatchInfo(view);
        if (view.settings.logs.header) LogBatchHeader(view);
    }
    if (ErrorLogOn(view)) LogErrorInfo(view);
}

void LogLine(CLumoscriptView& view, int number, std::string_view text) {
    if (BatchErrorsOn(view)) LogBatchLine(view, number, text);
    if (ErrorLogOn(view)) LogErrorLine(view, number, text);
}

void LogBlock(CLumoscriptView& view, std::string_view name, std::string_view detail,
              std::string_view text) {
    const int number = ImageInHand(view);
    if (BatchErrorsOn(view)) LogBatchError(view, number, name, detail, text);
    if (ErrorLogOn(view)) LogErrorBlock(view, number, name, detail, text);
    if (!view.run.noPrompts) return;
    std::string words;
    if (number != kNoNumber) words = Printable(view.input.path) + ": ";
    if (!detail.empty()) words += Printable(detail) + ": ";
    view.ui.Notice(words.append(text));
}

void LogCommandFailure(CLumoscriptView& view, std::string_view name) {
    LogBlock(view, name, name, "Error:1003 - Command execution failure");
}

void LogEmptyImage(CLumoscriptView& view) {
    LogBlock(view, CommandName(view), "Null buffer", "Error: empty main image buffer");
}

void LogFatalRefusal(CLumoscriptView& view, std::string_view text) {
    // No command has been entered and no image taken up, whatever the last run left behind.
    const Block block{kNoNumber, 0, {}, {}, {}};
    if (BatchErrorsOn(view)) AddBatchBlock(view, block, text);
    if (ErrorLogOn(view)) AddErrorBlock(view, block, text);
    SaveLogs(view);
}

void LogAbort(CLumoscriptView& view) {
    const int number = ImageInHand(view);
    // An abort is no error: it stands in Batch.log without its error lines too.
    if (BatchLogOn(view)) LogBatchError(view, number, {}, "Abort", "User aborted.");
    if (ErrorLogOn(view)) LogErrorBlock(view, number, {}, "Abort", "User aborted.");
    SaveLogs(view);
}

void CloseLogs(CLumoscriptView& view, system_clock::time_point now) {
    if (BatchErrorsOn(view)) {
        LogBatchLine(view, kNoNumber, {});
        LogBatchLine(view, kNoNumber, "---- done ----");
        LogBatchLine(view, view.run.errorCount, " errors");
        LogBatchLine(view, view.run.warningCount, " warnings");
        LogBatchLine(view, kNoNumber, ElapsedText(view, now));
    }
    if (ErrorLogOn(view)) LogErrorLine(view, view.run.errorCount, " errors");
    SaveLogs(view);
    ClearLogs(view);
}

void SaveBatchLog(CLumoscriptView& view) {
    Save(view, view.logs.batch, "Batch.log");
}

void SaveErrorLog(CLumoscriptView& view) {
    Save(view, view.logs.error, "Error.log");
}

void SaveLogs(CLumoscriptView& view) {
    if (BatchLogOn(view)) SaveBatchLog(view);
    if (ErrorLogOn(view)) SaveErrorLog(view);
}

std::string ElapsedText(const CLumoscriptView& view, system_clock::time_point now) {
    using std::chrono::duration_cast, std::chrono::seconds;
    const auto elapsed = duration_cast<seconds>(now - view.run.startTime).count();
    const auto total = elapsed > 0 ? elapsed : 0;  // the clock may have been set back
    return fmt::format("Elapsed processing time - hours: {:02}, mins: {:02}, secs: {:02}",
                       total / 3600, total / 60 % 60, total % 60);
}

void LogDebugStart(CLumoscriptView& view, std::string_view path) {
    if (!view.logs.debugOn) return;
    view.logs.executions = 0;
    const std::string& folder = view.settings.folders.logs;
    if (!folder.empty() && !platform::FolderExists(folder) && !platform::MakeFolders(folder))
        return;
    const std::string now =
        platform::FormatTime("%c", system_clock::to_time_t(system_clock::now()));
    WriteDebug(view, std::ios::trunc,
               fmt::format("{}\r\nCurrent Image File with last command executed:\r\n{}\r\n", now,
                           Printable(path)));
}

void LogDebugCommand(CLumoscriptView& view, std::string_view name, std::string_view params) {
    if (!view.logs.debugOn || !view.run.batchRunning) return;
    int& count = view.logs.executions;
    if (++count > kMaxDebugCommands) {
        count = kMaxDebugCommands + 1;
        return;
    }
    if (count == kMaxDebugCommands) name = "100 cmd executions - stopped logging, endless loop?";
    WriteDebug(view, std::ios::app, fmt::format("{}\r\n{}\r\n", name, params));
}

}  // namespace lumo::io

#include "io/batch_log_comments.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "io/metadata_report.h"
#include "io/parse_line.h"
#include "io/run_logs.h"
#include "platform/environment.h"
#include "platform/paths.h"
#include "script/names.h"

namespace lumo::io {
namespace {

using namespace script;
using engine::CLumoscriptView;
using engine::Outcome;

enum Field { kDisk, kMemory, kTime, kComment, kCamera };

constexpr int kMaxTables = 5;

constexpr std::array kFields{
    Flag("Disk space", "1"), Flag("Memory", "1"), Flag("Elapsed time", "1"),
    Text("Comment", "").Quoted(),
    Integer("Camera info (number of EXIF tables)", "0").Clamp(0, kMaxTables)};

constexpr std::array kPanel{WhenOn(kDisk, "Disk space"), WhenOn(kMemory, "Memory"),
                            WhenOn(kTime, "Elapsed time"), Value(kComment, "Comment: "),
                            Value(kCamera, "Camera info tables: ")};

constexpr DialogSpec kDialog{
    .title = "Batch Log comments", .windowState = "WS06", .helpTopic = "BatchLogcomments"};

void Line(CLumoscriptView& view, std::string_view text) {
    LogBatchLine(view, kNoNumber, text);
}

void Bytes(CLumoscriptView& view, std::string_view words, std::uint64_t bytes) {
    Line(view, std::string(words) + GroupThousands(std::to_string(bytes)));
}

void LogDisk(CLumoscriptView& view) {
    const auto disk = platform::CurrentDisk();
    if (!disk) return;
    // Both numbers are those of 32 bits, as readers of these logs have always had them.
    const auto wrapped = [](std::uint64_t bytes) { return static_cast<std::uint32_t>(bytes); };
    Line(view, "  is current drive.");  // no letter here: a blank stands for it
    Bytes(view, "Total disk space on current drive (bytes): ", wrapped(disk->totalBytes));
    Bytes(view, "Free disk space on current drive (bytes): ", wrapped(disk->freeBytes));
}

void LogMemory(CLumoscriptView& view) {
    const auto memory = platform::Memory();
    if (!memory) return;
    Bytes(view, "Total RAM memory (bytes): ", memory->totalRam);
    Bytes(view, "Available RAM memory (bytes): ", memory->availableRam);
    Line(view, "Memory load (0-100%): " + std::to_string(memory->loadPercent));
    Bytes(view, "Total virtual memory (bytes): ", memory->totalVirtual);
    Bytes(view, "Available virtual memory (bytes): ", memory->availableVirtual);
}

/// The comment with its macros; names in it are shown as names are in logs.
std::string CommentText(const CLumoscriptView& view, const std::string& comment) {
    MacroValues values = MacrosOf(view);
    for (std::string* name : {&values.filePath, &values.fileName, &values.fileTitle})
        *name = platform::Printable(*name);
    return ParseLine(comment, values);
}

void LogCamera(CLumoscriptView& view, int tables) {
    const auto report = ExifReport(view.input.path, tables);
    Line(view, report.empty() ? "No EXIF" : "EXIF information:");
    for (const auto& [title, text] : report) {
        std::string entry;
        for (const char c : title + "\n" + text) {
            if (c == '\n') entry += '\r';
            entry += c;
        }
        entry.resize(entry.size() - 2);  // the log ends the last line itself
        Line(view, entry);
    }
}

Outcome RunBatchLogComments(CLumoscriptView& view, const Fields& fields) {
    if (!view.run.batchRunning || !BatchLogOn(view)) return Outcome::Succeeded;
    const int number = ImageInHand(view);
    LogBatchLine(view, number, "---Comments---");
    if (fields.Is(kDisk, "1")) LogDisk(view);
    if (fields.Is(kMemory, "1")) LogMemory(view);
    if (fields.Is(kTime, "1")) Line(view, ElapsedText(view, std::chrono::system_clock::now()));
    if (!fields.IsEmpty(kComment)) Line(view, CommentText(view, fields.Text(kComment)));
    const int tables = std::clamp(fields.Integer(kCamera), 0, kMaxTables);
    if (tables > 0) LogCamera(view, tables);
    LogBatchLine(view, number, "-------");
    return Outcome::Succeeded;
}

}  // namespace

std::string GroupThousands(std::string_view digits) {
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
        text += digits[i];
    }
    return text;
}

const engine::Command kBatchLogCommentsCommand{.spec = {.name = names::kBatchLogComments,
                                                        .fields = kFields,
                                                        .panel = kPanel,
                                                        .dialog = &kDialog},
                                               .opening = engine::openings::kNoImage,
                                               .run = RunBatchLogComments};

}  // namespace lumo::io

#include "script/script_file.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/files.h"
#include "platform/paths.h"
#include "script/file_words.h"
#include "script/templates.h"

namespace lumo::script {

namespace {

using platform::Done, platform::Error, platform::Result, platform::Status;

/// Far above any Script that can run. Each line becomes an object in memory, so a file of nothing
/// but line ends must not be large.
constexpr std::uint64_t kMaxBytes = 8u << 20;

void Show(const MessageSink& show, std::string_view message) {
    if (show) show(message);
}

Status ToStatus(ReadOutcome outcome, const std::string& path, std::string_view bytes,
                std::string_view wrongKind) {
    switch (outcome) {
        case ReadOutcome::Complete:
            break;
        case ReadOutcome::NoEnd:
            // What many editors make of a Script: all of it is one line.
            if (bytes.find('\r') == std::string_view::npos)
                return Error{platform::Printable(path) +
                             ": its lines end in LF alone, those of a Script end in CR LF"};
            return Error{platform::Printable(path) + ": no line \"END\""};
        case ReadOutcome::TooShort:
            return Error{platform::Printable(path) + ": too short"};
        case ReadOutcome::WrongKind:
            return Error{platform::Printable(path) + ": " + std::string(wrongKind)};
    }
    return Done{};
}

Status LoadBytes(const std::string& bytes, const std::string& path, Script& script,
                 const MessageSink& show) {
    ParsedScript parsed = ParseScriptBytes(bytes);
    script = std::move(parsed.script);
    if (parsed.outcome == ReadOutcome::WrongKind) Show(show, words::kNotAScript);
    return ToStatus(parsed.outcome, path, bytes, words::kNotAScript);
}

}  // namespace

Status SaveScriptChecked(const Script& script, const std::string& path, FileKind kind) {
    return platform::WriteTextFile(path, SerializeScript(script, kind), platform::Durability::Sync);
}

bool SaveScript(const Script& script, const std::string& path, FileKind kind) {
    [[maybe_unused]] const Status status = SaveScriptChecked(script, path, kind);
    return true;
}

FileKind FileKindOf(std::string_view path) {
    constexpr std::string_view kExtension = ".sbr";
    if (path.size() < kExtension.size()) return FileKind::Script;
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(path.substr(path.size() - kExtension.size()), kExtension, {}, lower)
               ? FileKind::Subroutine
               : FileKind::Script;
}

Status LoadScript(const std::string& path, Script& script, const MessageSink& show) {
    script.Clear();
    const Result<std::string> bytes = platform::ReadTextFile(path, kMaxBytes);
    if (!bytes) return Error{bytes.Message()};
    return LoadBytes(*bytes, path, script, show);
}

Status LoadSubroutineForEdit(const std::string& path, Script& script, std::string_view startDefault,
                             const MessageSink& show) {
    script.Clear();
    const Result<std::string> bytes = platform::ReadTextFile(path, kMaxBytes);
    if (!bytes) {
        EnsureMarkers(script, startDefault);
        return Error{bytes.Message()};
    }
    return LoadBytes(*bytes, path, script, show);
}

Status AppendSubroutine(const std::string& path, Script& script, const MessageSink& show) {
    const Result<std::string> bytes = platform::ReadTextFile(path, kMaxBytes);
    if (!bytes) return Error{bytes.Message()};
    const ReadOutcome outcome = AppendSubroutineBytes(script, *bytes, platform::GetFileTitle(path));
    if (outcome == ReadOutcome::WrongKind) Show(show, words::kNotASubroutine);
    return ToStatus(outcome, path, *bytes, words::kNotASubroutine);
}

}  // namespace lumo::script

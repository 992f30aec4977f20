#include "script/script_format.h"

#include <algorithm>
#include <array>
#include <optional>

#include "script/characters.h"
#include "script/names.h"
#include "script/templates.h"

namespace lumo::script {

namespace {

constexpr std::string_view kScriptWord = "BEGIN";
constexpr std::string_view kSubroutineWord = "SUBRT";
constexpr std::string_view kEndWord = "END";
constexpr std::string_view kLineEnd = "\r\n";
constexpr char kCommentMark = ';';
constexpr char kCarriageReturn = '\r';

constexpr std::size_t kWordLength = 5;
constexpr std::size_t kBodyStart = 7;  // behind the word and two bytes that nobody looks at
constexpr std::size_t kShortestScript = 9;
constexpr std::size_t kTitleCharacters = 40;

std::optional<FileKind> KindOf(std::string_view bytes) {
    const std::string_view word = bytes.substr(0, kWordLength);
    if (word == kScriptWord) return FileKind::Script;
    if (word == kSubroutineWord) return FileKind::Subroutine;
    return std::nullopt;
}

/// Hands each line between the first one and "END" to `take`, comments left out. A line ends at a
/// CR, and the byte behind it is skipped without a look; a LF alone is part of its line.
template <class Take>
ReadOutcome ReadLines(std::string_view bytes, Take take) {
    std::string_view rest = bytes.substr(std::min(kBodyStart, bytes.size()));
    for (;;) {
        const std::size_t end = rest.find(kCarriageReturn);
        if (end == std::string_view::npos) return ReadOutcome::NoEnd;
        const std::string_view line = rest.substr(0, end);
        if (line == kEndWord) return ReadOutcome::Complete;
        if (end + 1 == rest.size()) return ReadOutcome::NoEnd;
        if (!line.starts_with(kCommentMark)) take(line);
        rest.remove_prefix(end + kLineEnd.size());
    }
}

/// A name of older Scripts. One line may stand for two commands, and may bring its parameters with
/// it.
struct OldName {
    std::string_view old;
    std::string_view now;
    std::string_view params = {};  // instead of those in the file
    bool closesLoop = false;       // "END image loop" follows
};

constexpr std::array kOldNames{
    OldName{"Exit", names::kExit},
    OldName{"Start: Input setup", names::kStartImageLoop},
    OldName{"Set: Canvas size", names::kCanvasSize},
    OldName{"No final output", names::kExit},  // leaving the image early is how none is written
    OldName{"Output (intermediate)", names::kOutputSetup, "11,0,,0,jpg,0,0,,,1,1,0,"},
    OldName{.old = "End: Output setup", .now = names::kOutputSetup, .closesLoop = true},
};

/// Builds a Script from the data lines of a file: name, parameters, name, parameters ...
class PairReader {
  public:
    explicit PairReader(Script& script) : script_(script) {}

    void Take(std::string_view line) {
        if (atName_) {
            TakeName(line);
        } else {
            TakeParams(line);
        }
        atName_ = !atName_;
    }

  private:
    void TakeName(std::string_view line) {
        const auto found = std::ranges::find(kOldNames, line, &OldName::old);
        old_ = found == kOldNames.end() ? nullptr : &*found;
        script_.names.emplace_back(old_ ? old_->now : line);
        if (old_ && old_->closesLoop) script_.names.emplace_back(names::kEndImageLoop);
    }

    void TakeParams(std::string_view line) {
        script_.params.emplace_back(old_ && !old_->params.empty() ? old_->params : line);
        if (old_ && old_->closesLoop) script_.params.emplace_back("0");
    }

    Script& script_;
    const OldName* old_ = nullptr;  // of the name just read
    bool atName_ = true;
};

void AppendLine(std::string& text, std::string_view line) {
    const std::size_t begin = text.size();
    text += line;
    text.erase(
        std::remove(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end(), kCarriageReturn),
        text.end());
    const std::string_view written = std::string_view(text).substr(begin);
    if (written.starts_with(kCommentMark) || written == kEndWord) text.insert(begin, 1, ' ');
    text += kLineEnd;
}

}  // namespace

ParsedScript ParseScriptBytes(std::string_view bytes) {
    ParsedScript parsed;
    if (bytes.size() < kShortestScript) return parsed;
    const auto kind = KindOf(bytes);
    if (!kind) {
        parsed.outcome = ReadOutcome::WrongKind;
        return parsed;
    }
    parsed.kind = *kind;
    PairReader reader(parsed.script);
    parsed.outcome = ReadLines(bytes, [&](std::string_view line) { reader.Take(line); });
    return parsed;
}

ReadOutcome AppendSubroutineBytes(Script& script, std::string_view bytes, std::string_view title) {
    if (!KindOf(bytes)) return ReadOutcome::WrongKind;
    script.Add(names::kSubroutineStart,
               "1,\"" + std::string(FirstCharacters(title, kTitleCharacters)) + "\",");
    std::optional<std::string_view> name;
    const ReadOutcome outcome = ReadLines(bytes, [&](std::string_view line) {
        if (!name) {
            name = line;
            return;
        }
        if (!IsMarker(*name)) script.Add(*name, line);
        name.reset();
    });
    // A last name without its parameters is kept, as opening the file would keep it.
    if (name && !IsMarker(*name)) script.Add(*name, {});
    if (outcome == ReadOutcome::Complete) script.Add(names::kSubroutineEnd, "0");
    return outcome;
}

std::string SerializeScript(const Script& script, FileKind kind) {
    const bool asSubroutine = kind == FileKind::Subroutine;
    std::string text;
    text.append(asSubroutine ? kSubroutineWord : kScriptWord).append(kLineEnd);
    text += "; ; = Comment. Do not edit. This is a script.\r\n";
    text += "; File must have no format characters.\r\n";
    for (int i = 0; i < script.Count(); ++i) {
        if (asSubroutine && IsMarker(script.NameAt(i))) continue;
        AppendLine(text, script.NameAt(i));
        AppendLine(text, script.ParamsAt(i));
    }
    text.append(kEndWord).append(kLineEnd);
    text += "; Do not edit - Lumoscript script.whs\r\n";
    return text;
}

}  // namespace lumo::script

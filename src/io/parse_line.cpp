#include "io/parse_line.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/environment.h"

namespace lumo::io {
namespace {

constexpr std::string_view kOpen = "$(";
constexpr std::string_view kCounter = "counter";
constexpr std::string_view kDate = "date";

constexpr OfferedMacro kOffered[] = {
    {"$(filename)", "name of the file, with extension"},
    {"$(date)", "date"},
    {"$(filepath)", "path of the file"},
    {"$(filetitle)", "name of the file, without extension"},
    {"$(height)", "height of the image at this step"},
    {"$(width)", "width of the image at this step"},
    {"$(size)", "size of the image at this step"},
    {"$(counterA)", "counter A"},
    {"$(counterB)", "counter B"},
    {"$(counterC)", "counter C"},
    {"$(counterD)", "counter D"},
    {"$(counterE)", "counter E"},
    {"$(counterF)", "counter F"},
    {"$(counterG)", "counter G"},
    {"$(counterH)", "counter H"},
    {"$(counterI)", "counter I"},
    {"$(counterJ)", "counter J"},
};

bool IsSeparator(char c) {
    return c == '/' || c == '\\' || c == '\0';
}

std::optional<std::string> ValueOf(std::string_view macro, const MacroValues& values) {
    if (macro == "filename") return values.fileName;
    if (macro == "filetitle") return values.fileTitle;
    if (macro == "filepath") return values.filePath;
    if (macro == "width") return std::to_string(values.size.width);
    if (macro == "height") return std::to_string(values.size.height);
    if (macro == "size") return fmt::format("{}x{}", values.size.width, values.size.height);
    if (macro == kDate) return platform::FormatTime(values.dateFormat, values.now);
    if (macro.starts_with(kDate)) {
        const std::string_view format = macro.substr(kDate.size());
        if (format.find('%') == std::string_view::npos) return std::nullopt;
        return platform::FormatTime(format, values.now);
    }
    if (macro.starts_with(kCounter) && macro.size() == kCounter.size() + 1) {
        const int letter = macro.back() - 'A';
        if (letter >= 0 && letter < static_cast<int>(values.counters.size()))
            return std::to_string(values.counters[static_cast<std::size_t>(letter)]);
    }
    return std::nullopt;
}

/// Appends `text` to `result`, with what each macro brings in passed through `clean`.
template <class Clean>
void Expand(std::string_view text, const MacroValues& values, std::string& result, Clean clean) {
    while (!text.empty()) {
        const std::size_t open = text.find(kOpen);
        const std::size_t close =
            open == std::string_view::npos ? open : text.find(')', open + kOpen.size());
        if (close == std::string_view::npos) break;
        const std::size_t inside = open + kOpen.size();
        if (auto value = ValueOf(text.substr(inside, close - inside), values)) {
            result.append(text.substr(0, open));
            clean(*value);
            result.append(*value);
            text.remove_prefix(close + 1);
        } else {
            // Only the opening is passed over: a macro may stand inside of what is none.
            result.append(text.substr(0, inside));
            text.remove_prefix(inside);
        }
    }
    result.append(text);
}

}  // namespace

MacroValues MacrosOf(const engine::CLumoscriptView& view) {
    return {.dateFormat = view.settings.dateFormat,
            .filePath = view.input.path,
            .fileName = view.input.name,
            .fileTitle = view.input.title,
            .size = view.working.main.Extent(),
            .counters = view.counters,
            .now = std::time(nullptr)};
}

std::string ParseLine(std::string_view text, const MacroValues& values) {
    std::string result;
    Expand(text, values, result, [](std::string&) {});
    return result;
}

std::span<const OfferedMacro> OfferedMacros() {
    return kOffered;
}

std::optional<std::string> ParseNamePart(std::string_view text, const MacroValues& values) {
    std::string result;
    Expand(text, values, result, [](std::string& value) {
        std::replace_if(value.begin(), value.end(), IsSeparator, '-');
    });
    if (HasSeparator(result)) return std::nullopt;
    return result;
}

bool HasSeparator(std::string_view text) {
    return std::any_of(text.begin(), text.end(), IsSeparator);
}

}  // namespace lumo::io

#include "io/image_list.h"

#include "io/input.h"
#include "platform/files.h"

namespace lumo::io {
namespace {

constexpr std::string_view kStart = "START";
constexpr std::string_view kEnd = "END";
constexpr std::string_view kAlone = " (no subfolders)";
constexpr std::string_view kWithSubfolders = " (include subfolders)";

bool HoldsLineBreak(std::string_view path) {
    return path.find_first_of("\r\n") != std::string_view::npos;
}

bool EndsInSeparator(std::string_view path) {
    return path.ends_with('\\') || path.ends_with('/');
}

}  // namespace

ListEntry ParseListLine(std::string_view line) {
    ListEntry entry;
    if (line.ends_with(kAlone)) line.remove_suffix(kAlone.size());
    if (line.ends_with(kWithSubfolders)) {
        line.remove_suffix(kWithSubfolders.size());
        entry.recursive = true;
    }
    while (line.ends_with(' ')) line.remove_suffix(1);
    entry.path = line;
    entry.isFolder = EndsInSeparator(line);
    return entry;
}

std::optional<std::vector<std::string>> ListLines(std::string_view text) {
    std::vector<std::string> lines;
    if (!text.starts_with(kStart)) return std::nullopt;
    text.remove_prefix(kStart.size());
    if (text.empty()) return lines;
    // A name may hold a line feed where lines end with CR LF, and the other way round.
    const char lineEnd = text.front();
    if (lineEnd != '\r' && lineEnd != '\n') return std::nullopt;

    const auto skipLineEnd = [&] {
        text.remove_prefix(1);
        if (lineEnd == '\r' && text.starts_with('\n')) text.remove_prefix(1);
    };
    skipLineEnd();
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find(lineEnd));
        if (line == kEnd) return lines;
        lines.emplace_back(line);
        text.remove_prefix(line.size());
        if (!text.empty()) skipLineEnd();
    }
    return lines;
}

bool ParseImageList(std::string_view text, std::vector<ListEntry>& entries) {
    const auto lines = ListLines(text);
    if (!lines) return false;
    for (const std::string& line : *lines)
        if (!IsListComment(line)) entries.push_back(ParseListLine(line));
    return true;
}

std::string ListText(const std::vector<std::string>& lines) {
    std::string text(kStart);
    text += "\r\n";
    for (const std::string& line : lines)
        if (!line.empty()) text.append(line).append("\r\n");
    return text.append(kEnd).append("\r\n");
}

std::optional<std::string> ListLineOfFile(std::string_view path) {
    if (path.empty() || HoldsLineBreak(path) || path.ends_with(' ') || IsListComment(path) ||
        EndsInSeparator(path) || path == kEnd)
        return std::nullopt;
    std::string line(path);
    // One marker is cut from the end of a line: a name that ends like one gets another.
    if (path.ends_with(kAlone))
        line += kAlone;
    else if (path.ends_with(kWithSubfolders))
        line += kWithSubfolders;
    return line;
}

std::optional<std::string> ListLineOfFolder(std::string_view path, bool recursive) {
    if (path.empty() || HoldsLineBreak(path) || IsListComment(path)) return std::nullopt;
    std::string line(path);
    if (!EndsInSeparator(path)) line += '/';
    if (recursive) line += kWithSubfolders;
    return line;
}

int ReadListFile(engine::CLumoscriptView& view, const std::string& path) {
    view.run.inputList.clear();
    const auto text = platform::ReadTextFile(path);
    if (!text) return 1;

    std::vector<ListEntry> entries;
    if (!ParseImageList(*text, entries)) {
        view.ui.ShowMessage("Not a valid Lumoscript image list!");
        return 0;
    }
    for (const ListEntry& entry : entries) {
        std::string_view stated = entry.path;
        // Behind a folder the separator is the list's own, whichever it is.
        if (entry.isFolder && stated.size() > 1) stated.remove_suffix(1);
        const std::string native = NativePath(view, stated);
        if (entry.isFolder)
            ScanFolder(view, native, entry.recursive);
        else
            view.run.inputList.push_back(native);
    }
    return 1;
}

}  // namespace lumo::io

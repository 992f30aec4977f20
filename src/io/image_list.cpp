#include "io/image_list.h"

#include "io/input.h"
#include "platform/files.h"

namespace lumo::io {
namespace {

constexpr std::string_view kStart = "START";
constexpr std::string_view kEnd = "END";
constexpr std::string_view kAlone = " (no subfolders)";
constexpr std::string_view kWithSubfolders = " (include subfolders)";

ListEntry ParseEntry(std::string_view line) {
    ListEntry entry;
    if (line.ends_with(kAlone)) line.remove_suffix(kAlone.size());
    if (line.ends_with(kWithSubfolders)) {
        line.remove_suffix(kWithSubfolders.size());
        entry.recursive = true;
    }
    while (line.ends_with(' ')) line.remove_suffix(1);
    entry.path = line;
    entry.isFolder = line.ends_with('\\') || line.ends_with('/');
    return entry;
}

}  // namespace

bool ParseImageList(std::string_view text, std::vector<ListEntry>& entries) {
    if (!text.starts_with(kStart)) return false;
    text.remove_prefix(kStart.size());
    if (text.empty()) return true;
    // A name may hold a line feed where lines end with CR LF, and the other way round.
    const char lineEnd = text.front();
    if (lineEnd != '\r' && lineEnd != '\n') return false;

    const auto skipLineEnd = [&] {
        text.remove_prefix(1);
        if (lineEnd == '\r' && text.starts_with('\n')) text.remove_prefix(1);
    };
    skipLineEnd();
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find(lineEnd));
        if (line == kEnd) return true;
        if (!line.starts_with(';')) entries.push_back(ParseEntry(line));
        text.remove_prefix(line.size());
        if (!text.empty()) skipLineEnd();
    }
    return true;
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

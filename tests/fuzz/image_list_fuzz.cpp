// Any bytes as an image list: entries are pieces of the text, and a list made of them reads the
// same again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "io/image_list.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using lumo::io::ListEntry;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<ListEntry> entries;
    if (!lumo::io::ParseImageList(text, entries)) {
        if (!entries.empty()) std::abort();
        return 0;
    }
    const std::string_view lineEnd = text.size() > 5 && text[5] == '\n' ? "\n" : "\r\n";
    std::string again = "START" + std::string(lineEnd);
    std::size_t characters = 0;
    for (const ListEntry& entry : entries) {
        characters += entry.path.size();
        if (text.find(entry.path) == std::string_view::npos) std::abort();
        if (entry.path.ends_with(' ')) std::abort();
        const bool separator = entry.path.ends_with('/') || entry.path.ends_with('\\');
        if (separator != entry.isFolder) std::abort();
        again += entry.path;
        again += entry.recursive ? " (include subfolders)" : " (no subfolders)";
        again += lineEnd;
    }
    if (characters > size) std::abort();
    again.append("END").append(lineEnd);
    std::vector<ListEntry> read;
    if (!lumo::io::ParseImageList(again, read)) std::abort();
    // A path that itself ends like a marker reads as another one; all others come back.
    if (read.size() > entries.size()) std::abort();
    for (std::size_t i = 0; i < read.size() && read.size() == entries.size(); ++i)
        if (!entries[i].path.ends_with("folders)") && !entries[i].path.starts_with(';') &&
            read[i].path != entries[i].path)
            std::abort();
    return 0;
}

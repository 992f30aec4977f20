#include "cli/remarks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <numeric>
#include <set>

#include "io/input.h"
#include "io/start_setup.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "script/catalogue.h"
#include "script/names.h"

namespace lumo::cli {
namespace {

/// Letters in lower case and digits; blanks and signs are what slips first.
std::string Letters(std::string_view name) {
    std::string letters;
    for (const char c : name)
        if (const auto byte = static_cast<unsigned char>(c); std::isalnum(byte) != 0)
            letters += static_cast<char>(std::tolower(byte));
    return letters;
}

/// Letters to insert, leave out or change to make one of the other.
std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string_view NearestCommand(std::string_view name) {
    constexpr std::size_t kLongestName = 100;  // far above any command
    const std::string letters = Letters(name);
    if (letters.empty() || letters.size() > kLongestName) return {};
    std::string_view nearest, beginning;
    std::size_t least = std::min<std::size_t>(2, letters.size() / 3) + 1;
    int beginnings = 0;
    for (const script::CatalogueRow& row : script::Catalogue()) {
        const std::string other = Letters(row.name);
        if (other.starts_with(letters)) {
            beginning = row.name;
            ++beginnings;
        }
        if (const std::size_t distance = EditDistance(letters, other); distance < least) {
            least = distance;
            nearest = row.name;
        }
    }
    return nearest.empty() && beginnings == 1 ? beginning : nearest;
}

std::vector<std::string> RemarkUnknownCommands(const engine::CLumoscriptView& view) {
    const script::Script& list = view.run.list.Count() > 0 ? view.run.list : view.script.commands;
    std::vector<std::string> remarks;
    std::set<std::string_view> seen;
    for (int i = 0; i < list.Count(); ++i) {
        const std::string& name = list.NameAt(i);
        if (script::FindByName(name) != nullptr || !seen.insert(name).second) continue;
        const std::string_view nearest = NearestCommand(name);
        remarks.push_back(fmt::format(
            "\"{}\" is no command{}", platform::Printable(name),
            nearest.empty() ? std::string(".") : fmt::format("; is \"{}\" meant?", nearest)));
    }
    return remarks;
}

std::string RemarkMissingInput(const engine::CLumoscriptView& view) {
    namespace start = io::start;
    const script::Fields& fields = view.inputSettings;
    const bool list = fields.Is(start::kLocation, start::kFromList);
    const std::string& stated = fields.Text(list ? start::kListPath : start::kFolderPath);
    if (stated.empty()) return {};  // a Script that makes its pictures itself
    const std::string path = io::NativePath(view, stated);
    const bool there = list ? platform::FileExists(path) : platform::FolderExists(path);
    if (there) return {};
    const int reason = platform::GetFileStatus(path) ? (list ? EISDIR : ENOTDIR) : ENOENT;
    return fmt::format("{} {}: {}", list ? "Image list" : "Input folder", platform::Printable(path),
                       std::strerror(reason));
}

}  // namespace lumo::cli

#include "settings/recent.h"

#include <algorithm>

#include "platform/paths.h"
#include "script/characters.h"

namespace lumo::settings {
namespace {

constexpr std::size_t kShortBelow = 27;
constexpr std::size_t kHeadCharacters = 14;
constexpr std::size_t kExtensionCharacters = 4;

std::string_view WithoutExtension(std::string_view path) {
    const std::size_t count = script::CountCharacters(path);
    return script::FirstCharacters(path, count - std::min(count, kExtensionCharacters));
}

// The name with the separator before it; the whole text where there is none.
std::string_view NamePart(std::string_view path) {
    const std::size_t folder = platform::GetFolderPath(path).size();
    const bool bare = folder == 0 && path.front() != '/' && path.front() != '\\';
    return bare ? path : path.substr(folder);
}

}  // namespace

void AddRecent(RecentFiles& files, std::string_view path) {
    if (path.empty()) return;
    const std::string added(path);  // the path may be one of the entries
    auto place = std::find(files.begin(), files.end(), added);
    if (place == files.end()) place = files.end() - 1;
    std::move_backward(files.begin(), place, place + 1);
    files.front() = added;
}

void RemoveRecent(RecentFiles& files, int n) {
    if (n < 1 || n > static_cast<int>(files.size())) return;
    std::move(files.begin() + n, files.end(), files.begin() + n - 1);
    files.back().clear();
}

void AddRecentScript(Settings& settings, std::string_view path) {
    AddRecent(settings.recentScripts, path);
}

void AddRecentPicture(Settings& settings, std::string_view path) {
    AddRecent(settings.recentPictures, path);
}

void AddRecentList(Settings& settings, std::string_view path) {
    AddRecent(settings.recentLists, path);
}

std::string RecentMenuText(int n, std::string_view path) {
    if (path.empty()) return {};
    std::string text = std::to_string(n);
    if (script::CountCharacters(path) < kShortBelow) {
        text.append("  ").append(WithoutExtension(path));
    } else {
        text.append(" ").append(script::FirstCharacters(path, kHeadCharacters));
        text.append("...").append(WithoutExtension(NamePart(path)));
    }
    return platform::Printable(text);
}

std::string_view RecentScriptFailure(int n) {
    return n == 1 ? "Unable to find or read script file?"
                  : "Unable to open or read Lumoscript script file (.whs)?";
}

}  // namespace lumo::settings

#include "platform/environment.h"

#include <pwd.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "platform/files.h"

namespace lumo::platform {
namespace {

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::string WithoutTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::string Absolute(const std::string& path) {
    std::error_code failed;
    const auto absolute = std::filesystem::absolute(path, failed);
    return failed ? path : absolute.string();
}

std::string Below(const std::string& folder, std::string_view name) {
    return folder == "/" ? folder + std::string(name) : folder + "/" + std::string(name);
}

}  // namespace

std::string HomeFolder() {
    const std::string home = Variable("HOME");
    if (!home.empty()) return WithoutTrailingSlash(home);
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr || found->pw_dir == nullptr) {
        return {};
    }
    return WithoutTrailingSlash(found->pw_dir);
}

namespace {

// A relative path in this variable is to be ignored, as the desktop's own rules say.
std::string ConfigHome() {
    const std::string stated = Variable("XDG_CONFIG_HOME");
    if (!stated.empty() && stated.front() == '/') return WithoutTrailingSlash(stated);
    return Below(HomeFolder(), ".config");
}

// <prefix>/share/lumoscript, of a program <prefix>/bin/lumoscript.
std::string InstalledShare() {
    std::error_code failed;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failed);
    if (failed) return "/usr/share/lumoscript";
    return (program.parent_path().parent_path() / "share" / "lumoscript").string();
}

std::string_view TrimStart(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t");
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (text.substr(0, prefix.size()) != prefix) return false;
    text.remove_prefix(prefix.size());
    return true;
}

// One line of the desktop's list of folders: XDG_DOCUMENTS_DIR="$HOME/Documents", quoted as a
// shell would. Only an absolute folder or one below $HOME counts.
std::optional<std::string> DocumentsOfLine(std::string_view line, const std::string& home) {
    line = TrimStart(line);
    if (!TakePrefix(line, "XDG_DOCUMENTS_DIR")) return std::nullopt;
    line = TrimStart(line);
    if (!TakePrefix(line, "=")) return std::nullopt;
    line = TrimStart(line);
    if (!TakePrefix(line, "\"")) return std::nullopt;
    std::string path;
    if (TakePrefix(line, "$HOME")) {
        path = home;
        if (line.empty() || (line.front() != '/' && line.front() != '"')) return std::nullopt;
    } else if (line.empty() || line.front() != '/') {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') return WithoutTrailingSlash(path);
        if (line[i] == '\\' && i + 1 < line.size()) ++i;
        path += line[i];
    }
    return std::nullopt;  // never closed
}

std::uint64_t MemoryLine(std::string_view text, std::string_view name) {
    const std::size_t at = text.find(std::string("\n").append(name).append(":"));
    if (at == std::string_view::npos) return 0;
    const std::string_view rest = TrimStart(text.substr(at + name.size() + 2));
    std::uint64_t kilobytes = 0;
    std::from_chars(rest.data(), rest.data() + rest.size(), kilobytes);
    return kilobytes * 1024;
}

// The format is the user's own: nothing that it holds reads memory, unlike those of printf.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
// strftime gives 0 both for an empty result and for one that does not fit: the blank at the end
// keeps the result from being empty.
std::string FormatPiece(const std::string& format, const std::tm& moment) {
    constexpr std::size_t kLongest = std::size_t{1} << 20;  // "%999999999d" is no date
    const std::string guarded = format + " ";
    for (std::size_t size = 256; size <= kLongest; size *= 4) {
        std::string text(size, '\0');
        const std::size_t length = std::strftime(text.data(), size, guarded.c_str(), &moment);
        if (length > 0) return text.substr(0, length - 1);
    }
    return format;
}
#pragma GCC diagnostic pop

}  // namespace

std::string InstallFolder() {
    const std::string stated = Variable("LUMOSCRIPT_INSTALL_FOLDER");
    if (!stated.empty()) return WithoutTrailingSlash(Absolute(stated));
    const std::string installed = InstalledShare();
#ifdef LUMO_SOURCE_SHARE
    // A program that has been installed from this build uses what was installed with it.
    if (!FolderExists(installed) && FolderExists(LUMO_SOURCE_SHARE)) return LUMO_SOURCE_SHARE;
#endif
    return installed;
}

std::string ConfigFolder() {
    return Below(ConfigHome(), "lumoscript");
}

std::string DocumentsFolder() {
    const std::string home = HomeFolder();
    std::string documents = Below(home, "Documents");
    const auto list = ReadTextFile(Below(ConfigHome(), "user-dirs.dirs"), 1 << 20);
    if (!list) return documents;
    for (std::string_view rest = *list; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        if (auto stated = DocumentsOfLine(rest.substr(0, end), home)) documents = *stated;
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    return documents;
}

std::optional<DiskFigures> CurrentDisk() {
    struct statvfs figures{};
    if (::statvfs(".", &figures) != 0) return std::nullopt;
    const std::uint64_t unit = figures.f_frsize;
    return DiskFigures{figures.f_blocks * unit, figures.f_bavail * unit};
}

std::optional<MemoryFigures> Memory() {
    const auto text = ReadTextFile("/proc/meminfo", 1 << 20);
    if (!text) return std::nullopt;
    const std::string lines = "\n" + *text;
    MemoryFigures figures;
    figures.totalRam = MemoryLine(lines, "MemTotal");
    figures.availableRam = MemoryLine(lines, "MemAvailable");
    figures.totalVirtual = figures.totalRam + MemoryLine(lines, "SwapTotal");
    figures.availableVirtual = figures.availableRam + MemoryLine(lines, "SwapFree");
    if (figures.totalRam == 0) return std::nullopt;
    figures.loadPercent =
        static_cast<int>((figures.totalRam - figures.availableRam) * 100 / figures.totalRam);
    return figures;
}

std::string FormatTime(std::string_view format, std::time_t moment) {
    std::tm local{};
    ::tzset();
    ::localtime_r(&moment, &local);  // a moment beyond all years leaves the zeros
    std::string text;
    while (true) {  // a NUL would end the format for the C library
        const std::size_t end = format.find('\0');
        text += FormatPiece(std::string(format.substr(0, end)), local);
        if (end == std::string_view::npos) return text;
        text += '\0';
        format.remove_prefix(end + 1);
    }
}

}  // namespace lumo::platform

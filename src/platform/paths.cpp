#include "platform/paths.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumo::platform {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr int kRawType = 13;

constexpr std::array<std::pair<std::string_view, int>, 17> kExtensions{{
    {".jpg", 1},
    {".jpeg", 1},
    {"jpeg", 1},
    {".jpe", 1},
    {".jif", 1},
    {".tif", 2},
    {".tiff", 2},
    {"tiff", 2},
    {".bmp", 3},
    {".png", 4},
    {".gif", 5},
    {".pcx", 6},
    {".tga", 7},
    {".psd", 8},
    {".wmf", 9},
    {".emf", 10},
    {".apm", 11},
}};

constexpr std::array<std::string_view, 12> kRawExtensions{
    ".raf", ".crw", ".cr2", ".kdc", ".mrw", ".nef", ".orf", ".dng", ".ptx", ".pef", ".arw", ".x3f"};

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    return lower;
}

// A path with a "/" in it is native, and a "\" is an ordinary character of its names.
bool BackslashSeparates(std::string_view path) {
    return path.find('/') == kNone;
}

std::size_t LastSeparator(std::string_view path) {
    return path.rfind(BackslashSeparates(path) ? '\\' : '/');
}

}  // namespace

int GetExtType(std::string_view extension) {
    if (extension.empty() || extension.size() > 5) return 0;
    const std::string lower = LowerCase(extension);
    for (const auto& [text, type] : kExtensions) {
        if (text == lower) return type;
    }
    return IsRaw(lower) && lower.size() == 4 ? kRawType : 0;
}

bool IsRaw(std::string_view path) {
    if (path.size() < 4) return false;
    const std::string lower = LowerCase(path.substr(path.size() - 4));
    return std::find(kRawExtensions.begin(), kRawExtensions.end(), lower) != kRawExtensions.end();
}

std::string GetFileTitle(std::string_view path) {
    const std::size_t separator = LastSeparator(path);
    const std::string_view name = separator == kNone ? path : path.substr(separator + 1);
    return std::string(name.substr(0, name.rfind('.')));
}

std::string GetFolderPath(std::string_view path) {
    const std::size_t separator = LastSeparator(path);
    return separator == kNone ? std::string() : std::string(path.substr(0, separator));
}

std::string AddBackSlash(std::string_view path) {
    std::string result(path);
    if (path.empty() || path.back() == '/') return result;
    if (path.back() == '\\' && BackslashSeparates(path)) return result;
    return result + '/';
}

std::string ParsePath(std::string_view stated, std::string_view installFolder,
                      std::string_view tempFolder) {
    constexpr std::string_view kInstall = "<INSTALL_FOLDER>";
    constexpr std::string_view kTemp = "<TEMP_FOLDER>";
    std::string native;
    native.reserve(stated.size() + installFolder.size());
    for (std::size_t i = 0; i < stated.size();) {
        const std::string_view rest = stated.substr(i);
        if (rest.substr(0, kInstall.size()) == kInstall) {
            native += installFolder;  // native already: its own "\" stay
            i += kInstall.size();
        } else if (rest.substr(0, kTemp.size()) == kTemp) {
            native += tempFolder;
            i += kTemp.size();
        } else {
            native += rest.front() == '\\' ? '/' : rest.front();
            ++i;
        }
    }
    return native;
}

std::string Printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
        if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {  // the second set, such as CSI, in UTF-8
            shown += '?';
            ++i;
        } else {
            shown += byte < 0x20 || byte == 0x7F ? '?' : text[i];
        }
    }
    return shown;
}

}  // namespace lumo::platform

#pragma once

// The machine and the user's desktop: folders, disk and memory figures, the local time.

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace lumo::platform {

/// The folder that holds Masks, Frames, Overlays, Photos, Scripts, Subroutines: the value of
/// LUMOSCRIPT_INSTALL_FOLDER if set, else share/ of the source tree in a development build, else
/// <prefix>/share/lumoscript beside the running program. No trailing slash.
std::string InstallFolder();

/// $HOME, or what the list of users says; no trailing slash.
std::string HomeFolder();
/// $XDG_CONFIG_HOME/lumoscript, default ~/.config/lumoscript.
std::string ConfigFolder();
/// The user's documents folder; ~/Documents where the desktop names none.
std::string DocumentsFolder();

struct DiskFigures {
    std::uint64_t totalBytes = 0, freeBytes = 0;
};
/// Of the file system of the current folder.
std::optional<DiskFigures> CurrentDisk();

struct MemoryFigures {
    std::uint64_t totalRam = 0, availableRam = 0, totalVirtual = 0, availableVirtual = 0;
    int loadPercent = 0;
};
std::optional<MemoryFigures> Memory();

/// strftime of that moment in local time; never fails, long results are kept whole.
std::string FormatTime(std::string_view format, std::time_t moment);

}  // namespace lumo::platform

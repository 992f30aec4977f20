#include "platform/temp_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/system_error.h"

namespace lumo::platform {
namespace {

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool IsSlot(std::string_view name, TempSlots slots) {
    constexpr std::string_view kEnding = ".bmp";
    if (name.size() <= kEnding.size() || !name.ends_with(kEnding)) return false;
    if (slots == TempSlots::AllBmp) return true;
    name.remove_suffix(kEnding.size());
    return name.size() == 5 && name.starts_with("Temp") && name[4] >= '1' && name[4] <= '7';
}

std::vector<std::string> SlotsIn(DIR* folder, TempSlots slots) {
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(folder)) {
        if (IsSlot(entry->d_name, slots)) names.emplace_back(entry->d_name);
    }
    return names;
}

}  // namespace

Result<int> EmptyTempFolder(const std::string& folder, TempSlots slots,
                            std::span<const std::string> never) {
    std::string bare = folder;  // a slash at the end would look through a link
    while (bare.size() > 1 && bare.back() == '/') bare.pop_back();
    const int descriptor = Uninterrupted(
        [&] { return ::open(bare.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); });
    if (descriptor < 0) return SystemError(folder, errno);
    const std::unique_ptr<DIR, FolderCloser> opened(::fdopendir(descriptor));
    if (!opened) {
        const int reason = errno;
        ::close(descriptor);
        return SystemError(folder, reason);
    }

    // Compared by what was opened, so that nothing can be put in its place in between.
    struct stat own{};
    if (::fstat(descriptor, &own) != 0) return SystemError(folder, errno);
    const std::pair<std::uint64_t, std::uint64_t> identity(own.st_dev, own.st_ino);
    for (const std::string& other : never) {
        if (FolderIdentity(other) == identity) {
            return PathError(folder, "Not emptied: pictures of the user are kept there");
        }
    }

    int removed = 0;
    int reason = 0;
    for (const std::string& name : SlotsIn(opened.get(), slots)) {
        struct stat status{};
        if (::fstatat(descriptor, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        if (!S_ISREG(status.st_mode)) continue;
        if (::unlinkat(descriptor, name.c_str(), 0) == 0) {
            ++removed;
        } else if (errno != ENOENT) {
            reason = errno;
        }
    }
    if (reason != 0) return SystemError(folder, reason);
    return removed;
}

}  // namespace lumo::platform

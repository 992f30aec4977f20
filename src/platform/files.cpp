#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>

#include "platform/system_error.h"

namespace lumo::platform {
namespace {

constexpr std::size_t kReadStep = std::size_t{1} << 20;

struct DescriptorCloser {
    int descriptor;
    ~DescriptorCloser() { ::close(descriptor); }
};

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using FolderHandle = std::unique_ptr<DIR, FolderCloser>;

// O_NONBLOCK: the open of a pipe must not wait for a writer; plain files do not care.
constexpr int kReadFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

template <class Bytes>
Status ReadAll(int descriptor, const std::string& path, std::uint64_t maxBytes,
               std::uint64_t stated, Bytes& bytes) {
    // One byte more than stated shows the end without growing once more.
    bytes.resize(static_cast<std::size_t>(std::min(stated, maxBytes)) + 1);
    std::size_t filled = 0;
    while (true) {
        if (filled == bytes.size()) bytes.resize(filled + std::max(kReadStep, filled / 2));
        const ssize_t got = Uninterrupted(
            [&] { return ::read(descriptor, bytes.data() + filled, bytes.size() - filled); });
        if (got < 0) return SystemError(path, errno);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
        if (filled > maxBytes) return PathError(path, "The file is too large", EFBIG);
    }
    bytes.resize(filled);
    return Done{};
}

template <class Bytes>
Result<Bytes> ReadWhole(const std::string& path, std::uint64_t maxBytes) {
    const int descriptor = Uninterrupted([&] { return ::open(path.c_str(), kReadFlags); });
    if (descriptor < 0) return SystemError(path, errno);
    const DescriptorCloser closer{descriptor};
    struct stat status{};
    if (::fstat(descriptor, &status) != 0) return SystemError(path, errno);
    if (S_ISDIR(status.st_mode)) return SystemError(path, EISDIR);
    if (!S_ISREG(status.st_mode)) return PathError(path, "Not a plain file");
    const auto stated = static_cast<std::uint64_t>(status.st_size);
    if (stated > maxBytes) return PathError(path, "The file is too large", EFBIG);
    try {
        Bytes bytes;
        Status read = ReadAll(descriptor, path, maxBytes, stated, bytes);
        if (!read) return read.Reason();
        return bytes;
    } catch (const std::bad_alloc&) {
        return SystemError(path, ENOMEM);
    }
}

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool NameLess(const FolderEntry& left, const FolderEntry& right) {
    const std::size_t common = std::min(left.name.size(), right.name.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto a = static_cast<unsigned char>(Upper(left.name[i]));
        const auto b = static_cast<unsigned char>(Upper(right.name[i]));
        if (a != b) return a < b;
    }
    if (left.name.size() != right.name.size()) return left.name.size() < right.name.size();
    return left.name.compare(right.name) < 0;  // char_traits compares as unsigned bytes
}

bool IsFolderEntry(int folder, const dirent& entry) {
    if (entry.d_type == DT_DIR) return true;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return false;
    struct stat status{};
    return ::fstatat(folder, entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

std::string SwapAsciiCase(std::string name) {
    for (char& c : name) {
        const char upper = Upper(c);
        if (upper != c) {
            c = upper;
        } else if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return name;
}

bool SameFile(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

}  // namespace

std::optional<FileStatus> GetFileStatus(const std::string& path) {
    struct statx details{};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &details) == 0) {
        FileStatus status;
        status.isFolder = S_ISDIR(details.stx_mode);
        status.size = details.stx_size;
        status.modified = details.stx_mtime.tv_sec;
        const bool born = (details.stx_mask & STATX_BTIME) != 0 && details.stx_btime.tv_sec != 0;
        status.created = born ? details.stx_btime.tv_sec : status.modified;
        return status;
    }
    if (errno != ENOSYS && errno != EPERM) return std::nullopt;
    // Some sandboxes know the older call only.
    struct stat plain{};
    if (::stat(path.c_str(), &plain) != 0) return std::nullopt;
    return FileStatus{S_ISDIR(plain.st_mode), static_cast<std::uint64_t>(plain.st_size),
                      plain.st_mtime, plain.st_mtime};
}

std::optional<FileVersion> GetFileVersion(const std::string& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    const auto nanoseconds = [](const timespec& time) {
        return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    };
    return FileVersion{status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
                       nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

bool FileExists(const std::string& path) {
    const auto status = GetFileStatus(path);
    return status && !status->isFolder;
}

bool FolderExists(const std::string& path) {
    const auto status = GetFileStatus(path);
    return status && status->isFolder;
}

Result<std::vector<std::uint8_t>> ReadFile(const std::string& path, std::uint64_t maxBytes) {
    return ReadWhole<std::vector<std::uint8_t>>(path, maxBytes);
}

Result<std::string> ReadTextFile(const std::string& path, std::uint64_t maxBytes) {
    return ReadWhole<std::string>(path, maxBytes);
}

std::vector<FolderEntry> ListFolder(const std::string& path) {
    std::vector<FolderEntry> entries;
    const FolderHandle folder(::opendir(path.c_str()));
    if (!folder) return entries;
    while (const dirent* entry = ::readdir(folder.get())) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == ".." || IsTemporaryName(name)) continue;
        entries.push_back({std::string(name), IsFolderEntry(::dirfd(folder.get()), *entry)});
    }
    std::sort(entries.begin(), entries.end(), NameLess);
    return entries;
}

Status MakeFolders(const std::string& path) {
    if (path.empty()) return SystemError(path, ENOENT);
    if (FolderExists(path)) return Done{};
    for (std::size_t end = path.find_first_not_of('/'); end != std::string::npos;) {
        end = path.find('/', end);
        const std::string part = path.substr(0, end);
        if (::mkdir(part.c_str(), 0777) != 0) {
            const int reason = errno;
            // A read-only or shut system may answer so for a folder that stands.
            if (!FolderExists(part)) {
                return SystemError(part, reason == EEXIST ? ENOTDIR : reason);
            }
        }
        if (end != std::string::npos) end = path.find_first_not_of('/', end);
    }
    return Done{};
}

Status RemoveFile(const std::string& path) {
    if (::unlink(path.c_str()) != 0) return SystemError(path, errno);
    return Done{};
}

Status RenameNoReplace(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return Done{};
    }
    if (errno != EINVAL && errno != ENOSYS) return SystemError(to, errno);
    // Not every file system knows that step. A second name is never given to what has one, either.
    if (::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), 0) == 0) return RemoveFile(from);
    if (errno == EEXIST || errno == ENOSPC || errno == EIO) return SystemError(to, errno);
    struct stat status{};
    if (::lstat(to.c_str(), &status) == 0) return SystemError(to, EEXIST);
    if (::rename(from.c_str(), to.c_str()) != 0) return SystemError(to, errno);
    return Done{};
}

bool IsSameFile(const std::string& left, const std::string& right) {
    struct stat leftStatus{};
    struct stat rightStatus{};
    return ::stat(left.c_str(), &leftStatus) == 0 && ::stat(right.c_str(), &rightStatus) == 0 &&
           SameFile(leftStatus, rightStatus);
}

std::optional<std::string> TrueName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    std::string name = path.substr(nameStart);
    struct stat own{};
    if (name.empty() || ::stat(path.c_str(), &own) != 0) return std::nullopt;

    // Only a file system that ignores case spells a name in another way than it was asked for;
    // it answers to the name in swapped case too. The scan of the folder is for such ones alone.
    const std::string folder = path.substr(0, nameStart);
    const std::string swapped = SwapAsciiCase(name);
    struct stat other{};
    if (swapped == name || ::stat((folder + swapped).c_str(), &other) != 0 ||
        !SameFile(own, other)) {
        return name;
    }
    std::optional<std::string> spelling;
    for (const FolderEntry& entry : ListFolder(folder.empty() ? "." : folder)) {
        if (entry.name == name) return name;
        if (std::equal(entry.name.begin(), entry.name.end(), name.begin(), name.end(),
                       [](char a, char b) { return Upper(a) == Upper(b); })) {
            spelling = entry.name;
        }
    }
    return spelling ? spelling : name;
}

std::optional<std::pair<std::uint64_t, std::uint64_t>> FolderIdentity(const std::string& path) {
    struct stat status{};
    if (::stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return std::nullopt;
    return std::pair<std::uint64_t, std::uint64_t>(status.st_dev, status.st_ino);
}

}  // namespace lumo::platform

#include "platform/file_transfer.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

#include "platform/file_attributes.h"
#include "platform/paths.h"
#include "platform/system_error.h"

namespace lumo::platform {
namespace {

constexpr std::size_t kKernelStep = std::size_t{1} << 30;
constexpr std::size_t kBufferBytes = std::size_t{1} << 16;  // on the stack

enum class Owner { Keep, Own };  // of the new file: that of the source, or whoever runs the program

/// A source that stays open and can be told from what may take its place.
struct Source {
    std::string path;
    int descriptor = -1;
    struct stat status{};  // as it was before the first byte was read

    explicit Source(std::string from) : path(std::move(from)) {}
    ~Source() {
        if (descriptor >= 0) ::close(descriptor);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    Status Open() {
        // O_NONBLOCK: the open of a pipe must not wait for a writer.
        descriptor = Uninterrupted(
            [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); });
        if (descriptor < 0 || ::fstat(descriptor, &status) != 0) return SystemError(path, errno);
        if (S_ISDIR(status.st_mode)) return SystemError(path, EISDIR);
        if (!S_ISREG(status.st_mode)) return PathError(path, "Not a plain file");
        return Done{};
    }
};

bool SameTime(const timespec& left, const timespec& right) {
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

/// The same file with the same content.
bool IsUnchanged(const struct stat& before, const struct stat& now) {
    return before.st_dev == now.st_dev && before.st_ino == now.st_ino &&
           before.st_size == now.st_size && SameTime(before.st_mtim, now.st_mtim);
}

Error ChangedMeanwhile(const std::string& path) {
    return PathError(path, "The file was changed while it was copied", EBUSY);
}

// The kernel's own copying fails in many ways where a plain copy works: other file systems, old
// kernels, sandboxes. These say that the disk or the file is the matter.
bool IsFinal(int errorNumber) {
    return errorNumber == ENOSPC || errorNumber == EDQUOT || errorNumber == EFBIG ||
           errorNumber == EIO || errorNumber == ENOMEM;
}

/// Copies from the current place of both files as far as the kernel is willing to.
int CopyInKernel(int from, int to) {
    while (true) {
        const ssize_t copied = Uninterrupted(
            [&] { return ::copy_file_range(from, nullptr, to, nullptr, kKernelStep, 0); });
        if (copied > 0) continue;
        return copied < 0 && IsFinal(errno) ? errno : 0;
    }
}

int CopyThroughBuffer(int from, AtomicFile& to) {
    std::array<std::uint8_t, kBufferBytes> buffer;
    while (true) {
        const ssize_t got =
            Uninterrupted([&] { return ::read(from, buffer.data(), buffer.size()); });
        if (got <= 0) return got < 0 ? errno : 0;
        const Status written = to.Write({buffer.data(), static_cast<std::size_t>(got)});
        if (!written) return written.Reason().number;
    }
}

/// 0 or an error number. Shares the blocks where the file system can.
int CopyContent(int from, AtomicFile& to) {
    if (::ioctl(to.Descriptor(), FICLONE, from) == 0) return 0;
    const int reason = CopyInKernel(from, to.Descriptor());
    // Reads on from where the kernel stopped: at the end, this is one empty read.
    return reason != 0 ? reason : CopyThroughBuffer(from, to);
}

// What a file system cannot keep is no failure: the picture is whole without it.
void CopyAttributes(const Source& from, int to, Owner owner) {
    CopyExtendedAttributes(from.descriptor, to, AccessLists::Leave);
    if (owner == Owner::Keep) (void)!::fchown(to, from.status.st_uid, from.status.st_gid);
    (void)::fchmod(to, from.status.st_mode & 0777U);
    const timespec times[] = {from.status.st_atim, from.status.st_mtim};
    (void)::futimens(to, times);
}

Status CheckCopy(const Source& from, const std::string& to, int copy) {
    struct stat source{};
    struct stat target{};
    if (::fstat(from.descriptor, &source) != 0) return SystemError(from.path, errno);
    if (::fstat(copy, &target) != 0) return SystemError(to, errno);
    if (!IsUnchanged(from.status, source)) return ChangedMeanwhile(from.path);
    if (source.st_size != target.st_size) return SystemError(to, EIO);
    return Done{};
}

Status CheckPaths(const std::string& from, const std::string& to) {
    if (IsSameFile(from, to)) return PathError(to, "Source and target are the same file", EEXIST);
    return CheckReplaceable(to);
}

Status CopyOpened(const Source& from, const std::string& to, Existing existing, Owner owner) {
    const auto mode = from.status.st_mode & 0777U;
    auto file = AtomicFile::Create(to, mode);
    if (!file) return file.Reason();
    // The place of a public file may be taken by a private one.
    (void)::fchmod(file->Descriptor(), mode | S_IRUSR | S_IWUSR);
    if (const int reason = CopyContent(from.descriptor, *file); reason != 0)
        return SystemError(to, reason);
    CopyAttributes(from, file->Descriptor(), owner);
    const Status checked = CheckCopy(from, to, file->Descriptor());
    return checked ? file->Commit(Durability::Sync, existing) : checked;
}

/// The folder must let go of the source, or a move would end half-way.
Status CheckRemovable(const std::string& path) {
    const std::string folder = GetFolderPath(path);
    const std::string tested = folder.empty() ? (path.starts_with('/') ? "/" : ".") : folder;
    if (::faccessat(AT_FDCWD, tested.c_str(), W_OK | X_OK, AT_EACCESS) != 0)
        return SystemError(path, errno);
    return Done{};
}

Status RemoveSource(const Source& source) {
    struct stat now{};
    if (::stat(source.path.c_str(), &now) != 0) return SystemError(source.path, errno);
    if (!IsUnchanged(source.status, now)) return ChangedMeanwhile(source.path);
    return RemoveFile(source.path);
}

Status CopyAndRemove(const std::string& from, const std::string& to, Existing existing) {
    if (Status removable = CheckRemovable(from); !removable) return removable;
    Source source(from);
    if (Status opened = source.Open(); !opened) return opened;
    const Status copied = CopyOpened(source, to, existing, Owner::Keep);
    return copied ? RemoveSource(source) : copied;
}

}  // namespace

Status CopyFile(const std::string& from, const std::string& to, Existing existing) {
    if (Status allowed = CheckPaths(from, to); !allowed) return allowed;
    Source source(from);
    const Status opened = source.Open();
    return opened ? CopyOpened(source, to, existing, Owner::Own) : opened;
}

Status MoveFile(const std::string& from, const std::string& to, Existing existing) {
    if (Status allowed = CheckPaths(from, to); !allowed) return allowed;
    struct stat status{};
    if (::lstat(from.c_str(), &status) != 0) return SystemError(from, errno);
    if (S_ISDIR(status.st_mode)) return SystemError(from, EISDIR);
    if (S_ISLNK(status.st_mode)) return CopyAndRemove(from, to, existing);
    if (!S_ISREG(status.st_mode)) return PathError(from, "Not a plain file");

    if (existing == Existing::Keep) {
        const Status renamed = RenameNoReplace(from, to);
        if (renamed || renamed.Reason().number != EXDEV) return renamed;
    } else {
        if (::rename(from.c_str(), to.c_str()) == 0) return Done{};
        if (errno != EXDEV) return SystemError(to, errno);
    }
    return CopyAndRemove(from, to, existing);
}

}  // namespace lumo::platform

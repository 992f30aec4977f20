#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <random>

#include "platform/files.h"
#include "platform/system_error.h"

namespace lumo::platform {
namespace {

constexpr std::string_view kPrefix = ".lumo-";
constexpr std::string_view kSuffix = ".tmp~";
constexpr std::size_t kRandomLetters = 6;
constexpr std::string_view kLetters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
constexpr int kAttempts = 100;
// The kernel moves at most this much in one call.
constexpr std::size_t kWriteStep = std::size_t{1} << 30;

std::string FolderPart(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string RandomName() {
    thread_local std::random_device device;
    std::string name(kPrefix);
    for (std::size_t i = 0; i < kRandomLetters; ++i) name += kLetters[device() % kLetters.size()];
    return name.append(kSuffix);
}

// The mode that the new file takes over, none if it replaces nothing (or a mere link).
Result<std::optional<mode_t>> ModeOfTarget(const std::string& target) {
    const std::size_t slash = target.rfind('/');
    if (target.empty() || slash + 1 == target.size()) return SystemError(target, EISDIR);
    struct stat status{};
    if (::lstat(target.c_str(), &status) != 0) {
        if (errno == ENOENT) return std::optional<mode_t>();
        return SystemError(target, errno);
    }
    if (S_ISLNK(status.st_mode)) {
        struct stat behind{};
        if (::stat(target.c_str(), &behind) == 0 && S_ISDIR(behind.st_mode)) {
            return SystemError(target, EISDIR);
        }
        return std::optional<mode_t>();
    }
    if (S_ISDIR(status.st_mode)) return SystemError(target, EISDIR);
    // A rename would put a file in the place of a device or pipe.
    if (!S_ISREG(status.st_mode)) return PathError(target, "Not a plain file");
    // A file that its owner has shut stays, though the folder would let it be replaced.
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        return SystemError(target, errno);
    }
    return std::optional<mode_t>(status.st_mode & 0777);
}

Status GiveName(const std::string& temporary, const std::string& target, Existing existing) {
    if (existing == Existing::Keep) return RenameNoReplace(temporary, target);
    if (::rename(temporary.c_str(), target.c_str()) != 0) return SystemError(target, errno);
    return Done{};
}

bool CannotSync(int errorNumber) {
    return errorNumber == EINVAL || errorNumber == ENOSYS || errorNumber == ENOTSUP;
}

// A folder that cannot be opened for reading, or a file system without this service, is no
// failure: the file stands under its name.
Status SyncFolderOf(const std::string& target) {
    const std::string folder = FolderPart(target);
    const int descriptor = Uninterrupted([&] {
        return ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    });
    if (descriptor < 0) return Done{};
    const int result = Uninterrupted([&] { return ::fsync(descriptor); });
    const int reason = errno;
    ::close(descriptor);
    if (result != 0 && !CannotSync(reason)) return SystemError(target, reason);
    return Done{};
}

}  // namespace

Status CheckReplaceable(const std::string& target) {
    const auto mode = ModeOfTarget(target);
    return mode ? Status(Done{}) : Status(mode.Reason());
}

bool IsTemporaryName(std::string_view name) {
    return name.size() == kPrefix.size() + kRandomLetters + kSuffix.size() &&
           name.substr(0, kPrefix.size()) == kPrefix &&
           name.substr(name.size() - kSuffix.size()) == kSuffix &&
           name.substr(kPrefix.size(), kRandomLetters).find_first_not_of(kLetters) ==
               std::string_view::npos;
}

AtomicFile::AtomicFile(AtomicFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      target_(std::move(other.target_)),
      temporary_(std::move(other.temporary_)) {}

AtomicFile& AtomicFile::operator=(AtomicFile&& other) noexcept {
    if (this != &other) {
        Discard();
        descriptor_ = std::exchange(other.descriptor_, -1);
        target_ = std::move(other.target_);
        temporary_ = std::move(other.temporary_);
    }
    return *this;
}

AtomicFile::~AtomicFile() {
    Discard();
}

void AtomicFile::Discard() {
    if (descriptor_ < 0) return;
    ::close(std::exchange(descriptor_, -1));
    ::unlink(temporary_.c_str());
}

Result<AtomicFile> AtomicFile::Create(const std::string& target, unsigned newMode) {
    const auto mode = ModeOfTarget(target);
    if (!mode) return mode.Reason();
    AtomicFile file;
    file.target_ = target;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        file.temporary_ = FolderPart(target) + RandomName();
        file.descriptor_ = Uninterrupted([&] {
            return ::open(file.temporary_.c_str(),
                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                          mode->value_or(newMode));
        });
        if (file.descriptor_ >= 0) break;
        if (errno != EEXIST) return SystemError(target, errno);
    }
    if (file.descriptor_ < 0) return SystemError(target, EEXIST);
    // The mask of the process may have taken bits away. Where modes mean nothing, this fails.
    if (*mode) (void)::fchmod(file.descriptor_, **mode);
    return file;
}

Status AtomicFile::Write(std::span<const std::uint8_t> bytes) {
    if (descriptor_ < 0) return SystemError(target_, EBADF);
    while (!bytes.empty()) {
        const ssize_t written = Uninterrupted(
            [&] { return ::write(descriptor_, bytes.data(), std::min(bytes.size(), kWriteStep)); });
        if (written <= 0) {
            const int reason = written < 0 ? errno : ENOSPC;
            Discard();
            return SystemError(target_, reason);
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return Done{};
}

Status AtomicFile::Commit(Durability durability, Existing existing) {
    if (descriptor_ < 0) return SystemError(target_, EBADF);
    const bool sync = durability == Durability::Sync;
    if (sync && Uninterrupted([&] { return ::fsync(descriptor_); }) != 0 && !CannotSync(errno)) {
        const int reason = errno;
        Discard();
        return SystemError(target_, reason);
    }
    // Network file systems report a full disk here. After EINTR the descriptor is gone as well.
    Status named = ::close(std::exchange(descriptor_, -1)) == 0 || errno == EINTR
                       ? GiveName(temporary_, target_, existing)
                       : Status(SystemError(target_, errno));
    if (!named) {
        ::unlink(temporary_.c_str());
        return named;
    }
    return sync ? SyncFolderOf(target_) : Status(Done{});
}

Status WriteFile(const std::string& path, std::span<const std::uint8_t> bytes,
                 Durability durability) {
    auto file = AtomicFile::Create(path);
    if (!file) return file.Reason();
    Status written = file->Write(bytes);
    return written ? file->Commit(durability) : written;
}

Status WriteTextFile(const std::string& path, std::string_view text, Durability durability) {
    return WriteFile(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()},
                     durability);
}

}  // namespace lumo::platform

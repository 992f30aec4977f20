#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <random>

#include "platform/file_attributes.h"
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

struct Rights {
    mode_t mode;
    uid_t owner;
    gid_t group;
};

// What the new file takes over, none if it replaces nothing (or a mere link).
Result<std::optional<Rights>> RightsOfTarget(const std::string& target) {
    const std::size_t slash = target.rfind('/');
    if (target.empty() || slash + 1 == target.size()) return SystemError(target, EISDIR);
    struct stat status{};
    if (::lstat(target.c_str(), &status) != 0) {
        if (errno == ENOENT) return std::optional<Rights>();
        return SystemError(target, errno);
    }
    if (S_ISLNK(status.st_mode)) {
        struct stat behind{};
        if (::stat(target.c_str(), &behind) == 0 && S_ISDIR(behind.st_mode)) {
            return SystemError(target, EISDIR);
        }
        return std::optional<Rights>();
    }
    if (S_ISDIR(status.st_mode)) return SystemError(target, EISDIR);
    // A rename would put a file in the place of a device or pipe.
    if (!S_ISREG(status.st_mode)) return PathError(target, "Not a plain file");
    // A file that its owner has shut stays, though the folder would let it be replaced.
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        return SystemError(target, errno);
    }
    return std::optional<Rights>({status.st_mode & 0777, status.st_uid, status.st_gid});
}

// Only a system's administrator may give files away, and not on every file system; the group is
// what others can keep. A change of owner may take bits of the mode away, so that comes last.
void TakeRights(int descriptor, const Rights& rights) {
    if (::fchown(descriptor, rights.owner, rights.group) != 0)
        (void)!::fchown(descriptor, static_cast<uid_t>(-1), rights.group);
    (void)::fchmod(descriptor, rights.mode);  // the mask of the process may have cut it
}

Status Rename(const std::string& temporary, const std::string& target, Existing existing) {
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
    const auto rights = RightsOfTarget(target);
    return rights ? Status(Done{}) : Status(rights.Reason());
}

bool IsTemporaryName(std::string_view name) {
    if (name == kRewriteName) return true;
    return name.size() == kPrefix.size() + kRandomLetters + kSuffix.size() &&
           name.substr(0, kPrefix.size()) == kPrefix &&
           name.substr(name.size() - kSuffix.size()) == kSuffix &&
           name.substr(kPrefix.size(), kRandomLetters).find_first_not_of(kLetters) ==
               std::string_view::npos;
}

AtomicFile::AtomicFile(AtomicFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      target_(std::move(other.target_)),
      temporary_(std::exchange(other.temporary_, {})) {}

AtomicFile& AtomicFile::operator=(AtomicFile&& other) noexcept {
    if (this != &other) {
        Discard();
        descriptor_ = std::exchange(other.descriptor_, -1);
        target_ = std::move(other.target_);
        temporary_ = std::exchange(other.temporary_, {});
    }
    return *this;
}

AtomicFile::~AtomicFile() {
    Discard();
}

void AtomicFile::Discard() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
    if (!temporary_.empty()) ::unlink(std::exchange(temporary_, {}).c_str());
}

Result<AtomicFile> AtomicFile::Create(const std::string& target, unsigned newMode) {
    return CreateAs(target, RandomName(), newMode);
}

Result<AtomicFile> AtomicFile::CreateAs(const std::string& target, std::string_view temporaryName,
                                        unsigned newMode) {
    const auto rights = RightsOfTarget(target);
    if (!rights) return rights.Reason();
    const std::string folder = FolderPart(target);
    std::string path = folder + std::string(temporaryName);
    for (int attempt = 0; attempt < kAttempts; ++attempt, path = folder + RandomName()) {
        AtomicFile file;
        file.descriptor_ = Uninterrupted([&] {
            return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                          *rights ? (*rights)->mode : newMode);
        });
        if (file.descriptor_ >= 0) {
            file.target_ = target;
            file.temporary_ = path;
            if (*rights) TakeRights(file.descriptor_, **rights);
            return file;
        }
        if (errno != EEXIST) return SystemError(target, errno);
    }
    return SystemError(target, EEXIST);
}

void AtomicFile::TakeAttributes(const std::string& from) {
    const int source = Uninterrupted(
        [&] { return ::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); });
    if (source < 0) return;
    CopyExtendedAttributes(source, descriptor_, AccessLists::Copy);
    ::close(source);
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

Status AtomicFile::Finish(Durability durability) {
    if (descriptor_ < 0) return SystemError(target_, EBADF);
    int reason = 0;
    const bool sync = durability == Durability::Sync;
    if (sync && Uninterrupted([&] { return ::fsync(descriptor_); }) != 0 && !CannotSync(errno))
        reason = errno;
    // Network file systems report a full disk here. After EINTR the descriptor is gone as well.
    if (::close(std::exchange(descriptor_, -1)) != 0 && errno != EINTR && reason == 0)
        reason = errno;
    if (reason == 0) return Done{};
    Discard();
    return SystemError(target_, reason);
}

Status AtomicFile::GiveName(Durability durability, Existing existing) {
    if (descriptor_ >= 0 || temporary_.empty()) return SystemError(target_, EBADF);
    if (Status named = Rename(temporary_, target_, existing); !named) {
        Discard();
        return named;
    }
    temporary_.clear();
    return durability == Durability::Sync ? SyncFolderOf(target_) : Status(Done{});
}

Status AtomicFile::Commit(Durability durability, Existing existing) {
    Status finished = Finish(durability);
    return finished ? GiveName(durability, existing) : finished;
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

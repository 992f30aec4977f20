#pragma once

// Files and folders. Paths are native bytes. Nothing here throws.

#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/result.h"

namespace lumo::platform {

struct FileStatus {
    bool isFolder = false;
    std::uint64_t size = 0;
    std::time_t created = 0;  // birth time where the file system has it, else as modified
    std::time_t modified = 0;
};

/// None if nothing is there (or it cannot be looked at). Follows links.
std::optional<FileStatus> GetFileStatus(const std::string& path);
/// Tells one state of a file from the next: what is at the path, how long it is, and when it was
/// last written and touched, in nanoseconds since 1970.
struct FileVersion {
    std::uint64_t device = 0, inode = 0, size = 0;
    std::int64_t modified = 0, changed = 0;
    friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// None if nothing is there. Follows links.
std::optional<FileVersion> GetFileVersion(const std::string& path);

bool FileExists(const std::string& path);
bool FolderExists(const std::string& path);

/// The whole file; refuses folders, devices and more than `maxBytes`.
Result<std::vector<std::uint8_t>> ReadFile(const std::string& path,
                                           std::uint64_t maxBytes = std::uint64_t{2} << 30);
Result<std::string> ReadTextFile(const std::string& path,
                                 std::uint64_t maxBytes = std::uint64_t{64} << 20);

enum class Durability {
    Rename,  // whole or not at all against a kill of the program
    Sync,    // and against a loss of power
};

/// What becomes of a file that has the name already.
enum class Existing {
    Replace,
    Keep,  // the operation fails with EEXIST, for a dangling link too
};

/// True if both paths lead to one file: over links, hard links, folders of two names, or another
/// spelling where the file system ignores case.
bool IsSameFile(const std::string& left, const std::string& right);

/// Whether a file may take that name: Done if nothing stands there, or a plain file that the user
/// may write, or a link (which is replaced, not followed) that leads to no folder.
Status CheckReplaceable(const std::string& target);

/// A file that is written beside its target under a temporary name and renamed over it by Commit;
/// without Commit nothing is left. The temporary is opened exclusively and never through a link;
/// its name is one that a folder scan never enlists. An existing target keeps its mode, and its
/// owner where the system allows that; one that the user may not write, a folder and a device are
/// refused; a link is replaced, not followed.
class AtomicFile {
  public:
    AtomicFile() = default;
    AtomicFile(AtomicFile&& other) noexcept;
    AtomicFile& operator=(AtomicFile&& other) noexcept;
    ~AtomicFile();

    /// Fails at once where the folder does not exist or cannot be written. `newMode`, less the mask
    /// of the process, is the mode of a file that replaces none.
    static Result<AtomicFile> Create(const std::string& target, unsigned newMode = 0666);
    /// The same; the temporary has that name as long as nothing else in the folder has it.
    static Result<AtomicFile> CreateAs(const std::string& target, std::string_view temporaryName,
                                       unsigned newMode = 0666);
    /// After a failure the temporary is gone, and so is the chance to commit.
    Status Write(std::span<const std::uint8_t> bytes);
    Status Commit(Durability durability, Existing existing = Existing::Replace);
    /// The two steps of Commit, for those who tell their failures apart: the temporary is complete
    /// and closed; then it gets its name.
    Status Finish(Durability durability);
    Status GiveName(Durability durability, Existing existing = Existing::Replace);

    /// Gives the temporary the labels and access lists of a file, as far as the system allows.
    void TakeAttributes(const std::string& from);

    /// Of the temporary, for what Write cannot do; owned by this object.
    int Descriptor() const { return descriptor_; }

  private:
    void Discard();
    int descriptor_ = -1;
    std::string target_;
    std::string temporary_;  // empty: there is none, or no more
};

/// AtomicFile in one call.
Status WriteFile(const std::string& path, std::span<const std::uint8_t> bytes,
                 Durability durability = Durability::Rename);
Status WriteTextFile(const std::string& path, std::string_view text,
                     Durability durability = Durability::Rename);

struct FolderEntry {
    std::string name;
    bool isFolder = false;
};

/// Entries of a folder without "." and "..", in ascending order of their names compared byte by
/// byte after ASCII upper-casing, ties by the bytes as they are. Temporary files of AtomicFile are
/// left out. Empty for a folder that cannot be read.
std::vector<FolderEntry> ListFolder(const std::string& path);

/// The temporary of a picture whose header is rewritten beside it. Users of earlier programs know
/// it, should they ever meet it.
inline constexpr std::string_view kRewriteName = "temp83S04L51.jpg";

/// True for the temporary names of AtomicFile, and for kRewriteName.
bool IsTemporaryName(std::string_view name);

/// Makes all missing folders of a path.
Status MakeFolders(const std::string& path);

Status RemoveFile(const std::string& path);

/// Gives a file another name on its file system; fails where something has that name already, a
/// dangling link too.
Status RenameNoReplace(const std::string& from, const std::string& to);

/// The name of the path's last component as the folder holds it, if the file exists under this
/// very path.
std::optional<std::string> TrueName(const std::string& path);

/// A key that is the same for two paths to one folder, to end loops of links; none if it is gone.
std::optional<std::pair<std::uint64_t, std::uint64_t>> FolderIdentity(const std::string& path);

}  // namespace lumo::platform

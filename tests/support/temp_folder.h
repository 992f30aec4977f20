#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumo::test {

/// An empty folder of its own, removed with all that is in it at the end.
class TempFolder {
  public:
    TempFolder();
    /// In that folder instead of the system's one for temporary files.
    explicit TempFolder(const std::string& parent);
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return path_; }
    /// Path of something in the folder.
    std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

  private:
    std::string path_;
};

/// A folder that can be written and lies on another file system than those of TempFolder; empty
/// where the machine has none.
std::string OtherFileSystem();

/// Sets (or, with a null pointer, removes) a variable of the environment for the life of the
/// object.
class ScopedVariable {
  public:
    ScopedVariable(const char* name, const char* value);
    ScopedVariable(const char* name, const std::string& value)
        : ScopedVariable(name, value.c_str()) {}
    ~ScopedVariable();
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    std::string name_, before_;
    bool wasSet_;
};

/// Writes a file with the C library alone, missing folders too; the test fails if it cannot.
void PutFile(const std::string& path, std::string_view text);
/// The file's bytes, or "<missing>".
std::string FileText(const std::string& path);
/// All names in a folder, hidden and temporary ones too, in order.
std::vector<std::string> NamesIn(const std::string& folder);

}  // namespace lumo::test

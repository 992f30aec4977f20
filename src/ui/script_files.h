#pragma once

// The file of the Script: new, open, save, subroutines.

#include <string>

#include "ui/desk.h"

namespace lumo::ui {

/// The Script as it is on disk, so that only real changes are asked about.
class ScriptFiles {
  public:
    explicit ScriptFiles(Desk desk) : desk_(desk) {}

    /// The Script of the view is the one to compare with from now on.
    void NoteSaved();
    bool HasUnsavedChanges() const;
    /// Offers to save what would be lost; false: the user wants to go on with it instead.
    bool MayLeaveScript();

    void New();
    void NewSubroutine();
    void Open();
    /// Opens without a dialog, but asks about unsaved changes. `failure` is said if that fails.
    bool OpenPath(const std::string& path, std::string_view failure);
    void OpenRecent(int n);
    /// False if nothing was written.
    bool Save();
    bool SaveAs();
    void SaveSubroutineAs();
    void LoadSubroutine();
    void OpenSubroutineToEdit();
    void OpenSubroutineAsScript();

  private:
    bool Load(const std::string& path, std::string_view failure);
    bool Write(const std::string& path, bool asSubroutine);
    void Replace(script::Script commands, bool hasFile, std::string path, std::string caption);
    std::optional<std::string> AskSubroutine() const;
    std::string ScriptFolder() const;

    Desk desk_;
    script::Script saved_;
};

}  // namespace lumo::ui

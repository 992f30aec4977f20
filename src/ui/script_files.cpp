#include "ui/script_files.h"

#include <QMessageBox>
#include <utility>

#include "engine/editing.h"
#include "engine/start.h"
#include "platform/paths.h"
#include "script/file_words.h"
#include "script/names.h"
#include "script/script_file.h"
#include "script/templates.h"
#include "settings/recent.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

namespace words = script::words;

constexpr std::string_view kOpenTitle = "Open (Lumoscript script file)";
constexpr std::string_view kOpenFilter =
    "Lumoscript script file (*.whs)|*.whs|All files (*.*)|*.*||";
constexpr std::string_view kLoadSubroutineTitle = "Load (Lumoscript subroutine script file)";
constexpr std::string_view kSaveSubroutineTitle = "SaveAs (Lumoscript subroutine script file)";
constexpr std::string_view kSubroutineExtension = "sbr";

std::string StartDefault(const engine::CLumoscriptView& view) {
    return engine::DefaultParams(view, script::names::kStartImageLoop);
}

}  // namespace

void ScriptFiles::NoteSaved() {
    saved_ = desk_.view.script.commands;
}

bool ScriptFiles::HasUnsavedChanges() const {
    return desk_.view.script.modified && desk_.view.script.commands != saved_;
}

bool ScriptFiles::MayLeaveScript() {
    if (!HasUnsavedChanges()) return true;
    QMessageBox box(QMessageBox::Question, QStringLiteral("Lumoscript"),
                    QStringLiteral("The script has been changed. Save it?"),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, &desk_.window);
    box.setDefaultButton(QMessageBox::Save);
    const int answer = box.exec();
    if (answer == QMessageBox::Save) return Save();
    return answer == QMessageBox::Discard;
}

/// Another Script in place of the present one, which undo brings back.
void ScriptFiles::Replace(script::Script commands, bool hasFile, std::string path,
                          std::string caption) {
    engine::CLumoscriptView& view = desk_.view;
    engine::TakeUndoCopy(view);
    view.script.commands = std::move(commands);
    view.script.hasFile = hasFile;
    view.script.path = std::move(path);
    view.script.caption = std::move(caption);
    view.script.modified = !hasFile;
    NoteSaved();
    view.ui.ScriptChanged();
    engine::SelectCommand(view, 0);
}

void ScriptFiles::New() {
    if (!MayLeaveScript()) return;
    engine::CLumoscriptView& view = desk_.view;
    Replace(script::NewScript(StartDefault(view),
                              engine::DefaultParams(view, script::names::kOutputSetup)),
            false, "", std::string(words::kUnsavedCaption));
}

void ScriptFiles::NewSubroutine() {
    if (MayLeaveScript())
        Replace(script::NewSubroutine(), false, "", std::string(words::kNewSubroutineCaption));
}

std::string ScriptFiles::ScriptFolder() const {
    const engine::CLumoscriptView& view = desk_.view;
    return view.script.hasFile ? platform::GetFolderPath(view.script.path)
                               : view.settings.folders.scripts;
}

void ScriptFiles::Open() {
    const auto path =
        AskOpenPath(desk_, {.title = kOpenTitle, .filter = kOpenFilter, .folder = ScriptFolder()});
    if (path) OpenPath(*path, words::kCannotOpenScript);
}

bool ScriptFiles::OpenPath(const std::string& path, std::string_view failure) {
    return MayLeaveScript() && Load(path, failure);
}

bool ScriptFiles::Load(const std::string& path, std::string_view failure) {
    engine::CLumoscriptView& view = desk_.view;
    if (!engine::OpenScript(view, path, failure)) return false;
    NoteSaved();
    settings::AddRecentScript(view.settings, path);
    view.ui.ScriptChanged();
    engine::SelectCommand(view, 0);
    return true;
}

void ScriptFiles::OpenRecent(int n) {
    settings::RecentFiles& recent = desk_.view.settings.recentScripts;
    const std::string path = recent[static_cast<std::size_t>(n - 1)];
    if (path.empty() || !MayLeaveScript()) return;
    if (!Load(path, settings::RecentScriptFailure(n))) settings::RemoveRecent(recent, n);
}

bool ScriptFiles::Write(const std::string& path, bool asSubroutine) {
    const auto kind = asSubroutine ? script::FileKind::Subroutine : script::FileKind::Script;
    const auto written = script::SaveScriptChecked(desk_.view.script.commands, path, kind);
    if (!written) Tell(desk_, "Unable to save " + path + ": " + written.Message());
    return static_cast<bool>(written);
}

bool ScriptFiles::Save() {
    engine::ScriptState& state = desk_.view.script;
    if (!state.hasFile || !state.modified) return SaveAs();
    if (!Write(state.path, script::FileKindOf(state.path) == script::FileKind::Subroutine))
        return false;
    state.modified = false;
    NoteSaved();
    desk_.view.ui.SetTitle("");
    return true;
}

bool ScriptFiles::SaveAs() {
    engine::CLumoscriptView& view = desk_.view;
    engine::ScriptState& state = view.script;
    if (state.commands.Count() <= words::kFewCommands &&
        !AskYesNo(desk_, words::kFewCommandsInScript))
        return false;
    const auto path = AskSavePath(desk_, {.title = words::kSaveAsTitle,
                                          .filter = words::kSaveAsFilter,
                                          .folder = ScriptFolder(),
                                          .name = state.hasFile ? platform::GetFileTitle(state.path)
                                                                : std::string(words::kSaveAsName),
                                          .extension = words::kSaveAsExtension});
    if (!path) return false;
    const bool asSubroutine = script::FileKindOf(*path) == script::FileKind::Subroutine;
    if (!Write(*path, asSubroutine)) return false;
    if (!asSubroutine) script::EnsureMarkers(state.commands, StartDefault(view));
    state.path = *path;
    state.hasFile = true;
    state.modified = false;
    state.caption = script::ScriptCaption(platform::GetFileTitle(*path));
    NoteSaved();
    settings::AddRecentScript(view.settings, *path);
    view.ui.ScriptChanged();
    engine::SelectCommand(view, engine::SelectedCommand(view));
    return true;
}

void ScriptFiles::SaveSubroutineAs() {
    engine::ScriptState& state = desk_.view.script;
    if (state.commands.Count() <= words::kFewCommands &&
        !AskYesNo(desk_, words::kFewCommandsInSubroutine))
        return;
    const auto path = AskSavePath(desk_, {.title = kSaveSubroutineTitle,
                                          .filter = words::kSaveSubroutineFilter,
                                          .folder = desk_.view.settings.folders.subroutines,
                                          .name = state.hasFile ? platform::GetFileTitle(state.path)
                                                                : std::string(words::kSaveAsName),
                                          .extension = kSubroutineExtension});
    if (path) Write(*path, true);
}

std::optional<std::string> ScriptFiles::AskSubroutine() const {
    return AskOpenPath(desk_, {.title = words::kOpenSubroutineTitle,
                               .filter = words::kLoadSubroutineFilter,
                               .folder = desk_.view.settings.folders.subroutines});
}

void ScriptFiles::LoadSubroutine() {
    engine::CLumoscriptView& view = desk_.view;
    const auto path = AskOpenPath(desk_, {.title = kLoadSubroutineTitle,
                                          .filter = words::kLoadSubroutineFilter,
                                          .folder = view.settings.folders.subroutines});
    if (!path) return;
    engine::TakeUndoCopy(view);
    const auto loaded = script::AppendSubroutine(
        *path, view.script.commands, [&](std::string_view text) { view.ui.ShowMessage(text); });
    if (!loaded) view.ui.ShowMessage(words::kCannotOpenSubroutine);
    view.script.modified = true;
    view.ui.ScriptChanged();
    engine::SelectCommand(view, engine::SelectedCommand(view));
}

void ScriptFiles::OpenSubroutineToEdit() {
    if (!MayLeaveScript()) return;
    const auto path = AskSubroutine();
    if (!path) return;
    engine::CLumoscriptView& view = desk_.view;
    script::Script loaded;
    const auto status =
        script::LoadSubroutineForEdit(*path, loaded, StartDefault(view),
                                      [&](std::string_view text) { view.ui.ShowMessage(text); });
    if (!status) {
        view.ui.ShowMessage(words::kCannotOpenSubroutine);
        return;
    }
    script::RemoveMarkers(loaded);
    Replace(std::move(loaded), true, *path, script::ScriptCaption(platform::GetFileTitle(*path)));
    settings::AddRecentScript(view.settings, *path);
}

void ScriptFiles::OpenSubroutineAsScript() {
    if (const auto path = AskSubroutine()) OpenPath(*path, words::kCannotOpenSubroutine);
}

}  // namespace lumo::ui

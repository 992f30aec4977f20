#pragma once

#include <QString>
#include <string>

#include "engine/user_interface.h"
#include "ui/display_picture.h"

namespace lumo::ui {

/// The window as QtInterface sees it. Every call comes on the thread of the window.
class Screen {
  public:
    virtual ~Screen() = default;

    virtual void ShowMessageBox(const QString& text, const QString& caption,
                                engine::MessageIcon icon) = 0;
    virtual bool AskYesNo(const QString& question) = 0;
    virtual void ShowNotice(const QString& text) = 0;
    virtual void ShowReport(const QString& title, std::string_view text) = 0;
    virtual bool EditParameters(std::string_view name, std::string& params, bool& makeDefault) = 0;
    virtual bool EditCommandAt(int index) = 0;

    virtual void ShowTitle(const QString& text) = 0;
    virtual void ShowStatus(const QString& text) = 0;
    virtual void ShowRunButton(const QString& text) = 0;
    virtual void ShowSizeText(const QString& text) = 0;
    virtual void ShowCounts(const engine::RunCounts& counts) = 0;
    virtual void CloseControls(engine::Controls controls) = 0;
    virtual void ScriptHasChanged() = 0;
    virtual void ShowSelection(int index) = 0;
    virtual void EmptyPanel() = 0;
    virtual void RebuildLeft() = 0;
    virtual void RebuildRight() = 0;
    virtual void ShowRight(const DisplayPicture& picture) = 0;
    virtual void PlayAsterisk() = 0;
    virtual void StartTimer2(int milliseconds) = 0;
    virtual void RunHasEnded() = 0;
    virtual void QuitProgram() = 0;
};

}  // namespace lumo::ui

#pragma once

// The dialog of a command, made from its schema.

#include <QCheckBox>
#include <QDialog>
#include <QTimer>
#include <memory>
#include <string>

#include "engine/command.h"
#include "ui/form_fields.h"
#include "ui/preview_area.h"
#include "ui/preview_renderer.h"

namespace lumo::ui {

/// The fields of a command on a parameter string, with a live preview where the command has one:
/// on the working image, during a batch run on the left one. Neither may change while the dialog is
/// open.
///
/// A change shows in the preview a moment later, within range whatever is typed; after a second
/// without a change, on leaving an edit and on OK the numbers themselves are put into their ranges.
class CommandForm : public QDialog {
    Q_OBJECT

  public:
    CommandForm(engine::CLumoscriptView& view, const engine::Command& command,
                const std::string& params, QWidget* parent = nullptr);
    ~CommandForm() override;

    /// The string of what the form holds now.
    std::string Params() const;
    /// Whether new commands of this kind are to begin with it.
    bool MakesDefault() const { return default_->isChecked(); }

    FormFields& Fields() { return *fields_; }
    QCheckBox& DefaultBox() { return *default_; }
    /// Null for a command without preview, or without an image to show it on.
    PreviewArea* Preview() { return preview_; }

    void accept() override;

  private:
    QWidget* MakeButtons();
    QWidget* MakeScrolled(QWidget* fields);
    void StartPreview(imaging::ConstImageView sample);
    void RequestPreview();
    void ShowPreview(const PreviewPictures& pictures);

    engine::CLumoscriptView& view_;
    const engine::Command& command_;
    FormFields* fields_ = nullptr;
    QCheckBox* default_ = nullptr;
    PreviewArea* preview_ = nullptr;
    QTimer settleTimer_;
    QTimer previewTimer_;
    std::unique_ptr<PreviewRenderer> renderer_;
};

/// Opens the dialog of the command on `params` and waits for its end. True on OK: `params` is what
/// it holds. With the "Default" box ticked it also becomes what new commands of that name begin
/// with.
bool EditParameters(QWidget* parent, engine::CLumoscriptView& view, const engine::Command& command,
                    std::string& params);
/// The same, but leaves the default to the caller.
bool EditParameters(QWidget* parent, engine::CLumoscriptView& view, const engine::Command& command,
                    std::string& params, bool& makeDefault);

}  // namespace lumo::ui

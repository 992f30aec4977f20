#pragma once

#include <QLineEdit>
#include <QPushButton>

#include "ui/field_control.h"
#include "ui/text_controls.h"

namespace lumo::ui {

/// A file or folder: an edit and a chooser, and an editor for an Image list. Shown as it is stored,
/// also with "\" and <INSTALL_FOLDER> in it; what the chooser gives is native.
class PathControl : public FieldControl {
    Q_OBJECT

  public:
    PathControl(const engine::CLumoscriptView& view, const script::FieldSpec& spec, int field,
                QWidget* parent);

    void Load(const script::Fields& fields) override;
    void Store(std::span<std::string> texts) const override;
    QWidget* Buddy() override { return edit_; }
    void SetAccessibleLabel(const QString& name) override;

    QLineEdit& Edit() { return *edit_; }
    QPushButton& Button() { return *button_; }

  private:
    void Browse();
    void EditList();
    std::string NativePath() const;
    /// Where the chooser opens: the stored path made native, or the folder of pictures.
    QString StartPath() const;

    const engine::CLumoscriptView& view_;
    const script::FieldSpec& spec_;
    QLineEdit* edit_;
    QPushButton* button_;
    LoadedText loaded_;
};

}  // namespace lumo::ui

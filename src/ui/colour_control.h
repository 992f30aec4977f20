#pragma once

#include <QPushButton>
#include <array>

#include "ui/field_control.h"
#include "ui/number_edit.h"

namespace lumo::ui {

/// A button that shows a colour and asks for another one.
class ColourButton : public QPushButton {
    Q_OBJECT

  public:
    explicit ColourButton(QWidget* parent = nullptr);

    QColor Colour() const { return colour_; }
    void SetColour(const QColor& colour);

  Q_SIGNALS:
    /// The user has picked one.
    void Picked(const QColor& colour);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Ask();
    void PaintSwatch();

    QColor colour_ = Qt::black;
};

/// Three fields, red, green, blue: an edit for each and the button.
class ColourControl : public FieldControl {
    Q_OBJECT

  public:
    /// `specs` are those of red, green and blue.
    ColourControl(std::span<const script::FieldSpec> specs, int field, QWidget* parent);

    int FieldCount() const override { return 3; }
    void Load(const script::Fields& fields) override;
    void Store(std::span<std::string> texts) const override;
    void Settle() override;
    QWidget* Buddy() override { return edits_[0]; }
    void SetAccessibleLabel(const QString& name) override;

    NumberEdit& Edit(int channel) { return *edits_[static_cast<std::size_t>(channel)]; }
    ColourButton& Button() { return *button_; }

  private:
    void ShowColour();

    std::array<NumberEdit*, 3> edits_{};
    ColourButton* button_;
};

}  // namespace lumo::ui

#pragma once

#include <QLabel>
#include <QSlider>
#include <string_view>

#include "ui/field_control.h"
#include "ui/number_edit.h"

namespace lumo::ui {

/// An Integer or Real field: an edit, and on a line of its own its range and unit, and a slider
/// where that can hit every number.
class NumberControl : public FieldControl {
    Q_OBJECT

  public:
    NumberControl(const script::FieldSpec& spec, int field, ControlSize size, QWidget* parent);

    void Load(const script::Fields& fields) override;
    void Store(std::span<std::string> texts) const override;
    void Settle() override { edit_->Settle(); }
    void SetRange(double low, double high) override;
    QWidget* Buddy() override { return edit_; }
    void SetAccessibleLabel(const QString& name) override;

    NumberEdit& Edit() { return *edit_; }
    /// Range and unit as shown beside the edit: "0 to 100 %".
    QString Hint() const;

  private:
    void ShowRange();
    void MoveSlider();

    const script::FieldSpec& spec_;
    NumberEdit* edit_;
    QLabel* hint_;
    QSlider* slider_ = nullptr;  // counts steps of the edit
};

/// "0 to 255".
QString RangeText(const NumberEdit& edit);

}  // namespace lumo::ui

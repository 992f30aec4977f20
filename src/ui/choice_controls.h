#pragma once

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>

#include "ui/field_control.h"

namespace lumo::ui {

/// A Flag: a check box that bears the label. A stored text that is neither of the two shows as off
/// and stays until the box is used.
class FlagControl : public FieldControl {
    Q_OBJECT

  public:
    FlagControl(const script::FieldSpec& spec, int field, QWidget* parent);

    void Load(const script::Fields& fields) override;
    void Store(std::span<std::string> texts) const override;
    QWidget* Buddy() override { return box_; }
    bool NeedsLabel() const override { return false; }
    void SetLabel(const QString& label) override { box_->setText(label); }
    void SetAccessibleLabel(const QString& name) override { box_->setAccessibleName(name); }

    QCheckBox& Box() { return *box_; }

  private:
    const script::FieldSpec& spec_;
    QCheckBox* box_;
    std::string loaded_;
    bool loadedOn_ = false;
};

/// A Choice: radio buttons where there are few names, otherwise a list to drop down. A stored text
/// that is none of the values selects none and stays until one is picked.
class ChoiceControl : public FieldControl {
    Q_OBJECT

  public:
    ChoiceControl(const script::FieldSpec& spec, int field, ControlSize size, QWidget* parent);

    void Load(const script::Fields& fields) override;
    void Store(std::span<std::string> texts) const override;
    QWidget* Buddy() override;
    void SetAccessibleLabel(const QString& name) override;

    int Selected() const;  // -1: none
    /// As picked by the user.
    void Select(int index);

  private:
    std::string ValueAt(int index) const;

    const script::FieldSpec& spec_;
    QButtonGroup* radios_ = nullptr;  // one of the two
    QComboBox* list_ = nullptr;
    std::string loaded_;
};

}  // namespace lumo::ui

#pragma once

// What a form shows for a field: one class for each kind of control behind one small interface.

#include <QString>
#include <QWidget>
#include <span>
#include <string>

#include "engine/view.h"
#include "script/schema.h"

namespace lumo::ui {

/// The control of one field, or of the three of a colour.
class FieldControl : public QWidget {
    Q_OBJECT

  public:
    explicit FieldControl(int field, QWidget* parent = nullptr) : QWidget(parent), field_(field) {}

    /// Its first field.
    int Field() const { return field_; }
    virtual int FieldCount() const { return 1; }

    virtual void Load(const script::Fields& fields) = 0;
    /// Puts its fields, fit to be stored, into the texts of all fields. A control that nobody
    /// touched gives what was loaded, byte for byte, but for numbers out of range.
    virtual void Store(std::span<std::string> texts) const = 0;
    /// Shows what Store gives.
    virtual void Settle() {}

    virtual void SetRange(double, double) {}

    /// Takes the keyboard for the label.
    virtual QWidget* Buddy() = 0;
    /// False if the control shows its label itself.
    virtual bool NeedsLabel() const { return true; }
    /// With a mnemonic in it, for a control that shows it itself.
    virtual void SetLabel(const QString&) {}
    /// For those who do not see the label.
    virtual void SetAccessibleLabel(const QString& name) = 0;

  Q_SIGNALS:
    /// The user, or a control that this one follows, has changed it.
    void Changed();

  private:
    int field_;
};

/// How much room a control may take.
enum class ControlSize {
    Line,  // a line of the form: numbers have a slider too
    Cell,  // a cell among others
};

/// The control for the field `field` of these specs; for a colour they are the three from `field`
/// on. None for a field that is never shown. The view knows the folders of the file choosers.
FieldControl* MakeFieldControl(const engine::CLumoscriptView& view,
                               std::span<const script::FieldSpec> specs, int field,
                               ControlSize size, QWidget* parent);

}  // namespace lumo::ui

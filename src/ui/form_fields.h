#pragma once

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QWidget>
#include <string>
#include <vector>

#include "engine/command.h"
#include "ui/field_control.h"
#include "ui/mnemonics.h"

namespace lumo::ui {

/// All fields of a command as its schema describes them: labels, controls, ranges, groups, the box
/// that ties fields to one of them, and the notes. A range that depends on another field follows
/// it at once.
class FormFields : public QWidget {
    Q_OBJECT

  public:
    FormFields(const engine::CLumoscriptView& view, const script::CommandSpec& spec,
               const script::Fields& fields, Mnemonics& mnemonics, QWidget* parent = nullptr);

    /// The text of every field, fit to be stored. Fields that are not shown keep theirs.
    std::vector<std::string> Texts() const;
    /// Shows Texts().
    void Settle();

    /// The control that has this field, or null.
    FieldControl* Control(int field) const;
    /// The label that stands before the control, or null.
    QLabel* LabelOf(int field) const;
    /// Null if the command has none.
    QCheckBox* FollowBox() const { return follow_; }
    /// The line below the notes; null if the command has none.
    QLineEdit* NoteLine() const { return noteLine_; }
    bool IsEmpty() const { return lines_.empty(); }

  Q_SIGNALS:
    void Changed();

  private:
    /// A control and what stands beside it.
    struct Line {
        FieldControl* control = nullptr;
        QLabel* label = nullptr;
    };

    FieldControl* Make(int field, ControlSize size);
    /// The keyboard goes to the buddy, which is another radio button after each choice.
    static void Bind(const Line& line);
    void AddLine(int field);
    void AddGroup(const script::FieldGroup& group);
    void AddSwitchedGroup(const script::FieldGroup& group);
    void AddGrid(const script::FieldGroup& group);
    /// A control with its label, if it needs one, in two columns.
    QLabel* AddCell(QGridLayout& cells, int row, int column, FieldControl* control);
    void AddFollow();
    void AddNotes();
    const script::FieldGroup* GroupOf(int field) const;
    const Line* LineOf(int field) const;
    QString LabelText(int field) const;

    void Update();
    void UpdateRanges(const std::vector<std::string>& texts);
    void UpdateVisible(const std::vector<std::string>& texts);
    void UpdateNotes(const std::vector<std::string>& texts);
    void UpdateFollowers();
    void UpdateSwitched(const std::vector<std::string>& texts);

    const engine::CLumoscriptView& view_;
    const script::CommandSpec& spec_;
    Mnemonics& mnemonics_;  // used while the form is made
    std::vector<std::string> loaded_;
    std::vector<Line> lines_;
    QGridLayout* grid_;
    QWidget* switched_ = nullptr;  // the last box of lines with a switch
    QCheckBox* follow_ = nullptr;
    std::vector<QLabel*> notes_;
    QLineEdit* noteLine_ = nullptr;
    bool updating_ = false;
};

}  // namespace lumo::ui

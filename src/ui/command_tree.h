#pragma once

#include <QTreeView>
#include <string>

class QSortFilterProxyModel;
class QStandardItemModel;

namespace lumo::ui {

/// The commands by categories, cut down to those whose names hold the text of the filter box.
class CommandTree : public QTreeView {
    Q_OBJECT

  public:
    explicit CommandTree(QWidget* parent);

    /// Selects the first command that is left.
    void SetFilter(const QString& text);
    /// The selected name: that of a command or a category; "Null" if nothing is selected.
    std::string SelectedName() const;
    bool CommandIsSelected() const;

  Q_SIGNALS:
    void SelectionChanged();
    /// Enter or a double click on a command.
    void CommandChosen();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    QModelIndex FirstCommand() const;

    QStandardItemModel* commands_;
    QSortFilterProxyModel* filtered_;
};

}  // namespace lumo::ui

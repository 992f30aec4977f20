#pragma once

#include <QAbstractListModel>
#include <QListView>

#include "script/script.h"

namespace lumo::ui {

/// The names of a Script as a list.
class ScriptModel : public QAbstractListModel {
    Q_OBJECT

  public:
    ScriptModel(const script::Script& script, QObject* parent)
        : QAbstractListModel(parent), script_(script) {}

    /// The Script has other commands now.
    void Reload();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

  private:
    const script::Script& script_;
};

/// The commands of the Script; a row can be dragged to another place. Nothing here changes the
/// Script: whoever listens does.
class ScriptList : public QListView {
    Q_OBJECT

  public:
    explicit ScriptList(QWidget* parent);

    void SetScript(const script::Script& script);
    /// The Script has changed; the selection is what it was, as far as there are rows.
    void Reload();
    /// Selects a row without telling that the user did.
    void Select(int row);
    int SelectedRow() const { return currentIndex().row(); }

    /// The end of a drag at this place of the viewport: the row goes above or below the one there.
    void MoveSelectedTo(QPoint place);

  Q_SIGNALS:
    void RowSelected(int row);
    void RowChosen(int row);
    /// The row was dropped so that it is to stand at `to`.
    void RowMoved(int from, int to);

  protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    ScriptModel* rows_ = nullptr;
    bool quiet_ = false;
};

}  // namespace lumo::ui

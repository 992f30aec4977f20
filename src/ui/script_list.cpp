#include "ui/script_list.h"

#include <QDropEvent>
#include <QFont>
#include <QKeyEvent>
#include <algorithm>

#include "script/templates.h"
#include "ui/roomy_rows.h"
#include "ui/text.h"

namespace lumo::ui {

void ScriptModel::Reload() {
    beginResetModel();
    endResetModel();
}

int ScriptModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : script_.Count();
}

QVariant ScriptModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= script_.Count()) return {};
    const std::string& name = script_.NameAt(index.row());
    if (role == Qt::DisplayRole) return ToQt(name);
    if (role == Qt::FontRole && script::IsMarker(name)) {
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    return {};
}

Qt::ItemFlags ScriptModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags usual = QAbstractListModel::flags(index);
    // Rows are dropped between others, never onto one.
    return index.isValid() ? usual | Qt::ItemIsDragEnabled : usual | Qt::ItemIsDropEnabled;
}

ScriptList::ScriptList(QWidget* parent) : QListView(parent) {
    setUniformItemSizes(true);
    setItemDelegate(new RoomyRows(this));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragDropMode(QAbstractItemView::InternalMove);
    setDragDropOverwriteMode(false);
    setDefaultDropAction(Qt::MoveAction);
    setDropIndicatorShown(true);
    setTextElideMode(Qt::ElideRight);
    connect(this, &QListView::doubleClicked, this,
            [this](const QModelIndex& at) { Q_EMIT RowChosen(at.row()); });
}

void ScriptList::SetScript(const script::Script& script) {
    rows_ = new ScriptModel(script, this);
    setModel(rows_);
}

void ScriptList::Reload() {
    const int row = SelectedRow();
    quiet_ = true;
    rows_->Reload();
    quiet_ = false;
    Select(std::min(row, rows_->rowCount() - 1));
}

void ScriptList::Select(int row) {
    quiet_ = true;
    setCurrentIndex(rows_->index(row));
    quiet_ = false;
    if (row >= 0) scrollTo(rows_->index(row));
}

void ScriptList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (!quiet_ && current.isValid()) Q_EMIT RowSelected(current.row());
}

void ScriptList::dropEvent(QDropEvent* event) {
    // The view must not remove the dragged row itself: the engine moves it, or refuses.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    setState(NoState);
    viewport()->update();
    if (event->source() == this) MoveSelectedTo(event->position().toPoint());
}

void ScriptList::MoveSelectedTo(QPoint place) {
    const int from = SelectedRow();
    if (from < 0) return;
    const QModelIndex over = indexAt(place);
    int before = rows_->rowCount();
    if (over.isValid()) before = over.row() + (place.y() > visualRect(over).center().y() ? 1 : 0);
    const int to = before > from ? before - 1 : before;
    if (to != from) Q_EMIT RowMoved(from, to);
}

void ScriptList::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && SelectedRow() >= 0)
        Q_EMIT RowChosen(SelectedRow());
    else
        QListView::keyPressEvent(event);
}

}  // namespace lumo::ui

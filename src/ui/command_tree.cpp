#include "ui/command_tree.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

#include "script/catalogue.h"
#include "ui/roomy_rows.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

QStandardItem* NewItem(std::string_view name) {
    auto* item = new QStandardItem(ToQt(name));
    item->setEditable(false);
    return item;
}

QStandardItem* NodeItem(const script::CategoryNode& node) {
    QStandardItem* item = NewItem(node.name);
    for (const std::string_view command : node.commands) item->appendRow(NewItem(command));
    for (const script::CategoryNode& child : node.children) item->appendRow(NodeItem(child));
    return item;
}

}  // namespace

CommandTree::CommandTree(QWidget* parent)
    : QTreeView(parent),
      commands_(new QStandardItemModel(this)),
      filtered_(new QSortFilterProxyModel(this)) {
    for (const script::CategoryNode& node : script::CategoryTree())
        commands_->appendRow(NodeItem(node));
    filtered_->setSourceModel(commands_);
    filtered_->setRecursiveFilteringEnabled(true);
    filtered_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    setModel(filtered_);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setItemDelegate(new RoomyRows(this));
    setExpandsOnDoubleClick(true);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            &CommandTree::SelectionChanged);
}

void CommandTree::SetFilter(const QString& text) {
    filtered_->setFilterFixedString(text);
    if (text.isEmpty()) {
        collapseAll();
    } else {
        expandAll();
        setCurrentIndex(FirstCommand());
    }
    if (currentIndex().isValid()) scrollTo(currentIndex());
    Q_EMIT SelectionChanged();
}

QModelIndex CommandTree::FirstCommand() const {
    QModelIndex at = filtered_->index(0, 0);
    while (filtered_->hasChildren(at)) at = filtered_->index(0, 0, at);
    return at;
}

std::string CommandTree::SelectedName() const {
    const QModelIndex at = currentIndex();
    return at.isValid() ? FromQt(at.data().toString()) : std::string("Null");
}

bool CommandTree::CommandIsSelected() const {
    return currentIndex().isValid() && script::FieldCountText(SelectedName()) != "D";
}

void CommandTree::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && CommandIsSelected()) {
        Q_EMIT CommandChosen();
        return;
    }
    if (enter && currentIndex().isValid()) {
        setExpanded(currentIndex(), !isExpanded(currentIndex()));
        return;
    }
    QTreeView::keyPressEvent(event);
}

void CommandTree::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton && indexAt(event->pos()).isValid() && CommandIsSelected())
        Q_EMIT CommandChosen();
}

}  // namespace lumo::ui

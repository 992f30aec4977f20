#pragma once

#include <QStyledItemDelegate>

namespace lumo::ui {

/// Rows of a list with some air between them, as much as the font asks for.
class RoomyRows : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(option.fontMetrics.height() * 4 / 3);
        return size;
    }
};

}  // namespace lumo::ui

#include "ui/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace lumo::ui {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
}

bool ElidedLabel::Fits(const QString& text) const {
    return fontMetrics().horizontalAdvance(text) <= contentsRect().width();
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QString shown = text();
    if (!Fits(shown))
        shown = !shortText_.isEmpty() && Fits(shortText_)
                    ? shortText_
                    : fontMetrics().elidedText(shown, Qt::ElideRight, contentsRect().width());
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(),
                          isEnabled(), shown, foregroundRole());
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && !Fits(text())) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

}  // namespace lumo::ui

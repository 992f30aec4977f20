#include "ui/image_frame.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>
#include <utility>

namespace lumo::ui {

ImageFrame::ImageFrame(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
}

void ImageFrame::SetPicture(DisplayPicture picture) {
    picture_ = std::move(picture);
    picture_.pixels.setDevicePixelRatio(devicePixelRatioF());
    update();
}

void ImageFrame::SetEmptyText(const QString& text) {
    emptyText_ = text;
    update();
}

imaging::Size ImageFrame::PixelSize() const {
    const qreal ratio = devicePixelRatioF();
    return {static_cast<int>(std::floor(width() * ratio)),
            static_cast<int>(std::floor(height() * ratio))};
}

void ImageFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QPalette& colours = palette();
    painter.fillRect(rect(), colours.color(QPalette::Window).darker(108));
    painter.setPen(hasFocus() ? colours.color(QPalette::Highlight) : colours.color(QPalette::Mid));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    if (picture_.pixels.isNull()) {
        painter.setPen(colours.color(QPalette::Disabled, QPalette::WindowText));
        painter.drawText(rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
                         emptyText_);
        return;
    }
    // Whole pixels of the screen, so that a picture that was made for this frame stays crisp.
    const qreal ratio = devicePixelRatioF();
    const imaging::Size frame = PixelSize();
    QSize shown = picture_.pixels.size();
    if (picture_.frame != frame) {  // made for another size; a better one is on its way
        const imaging::Size fit = FitIntoFrame(picture_.source, frame);
        shown = {fit.width, fit.height};
    }
    const QPointF corner(std::floor((frame.width - shown.width()) / 2.0) / ratio,
                         std::floor((frame.height - shown.height()) / 2.0) / ratio);
    const QRectF target(corner, QSizeF(shown) / ratio);
    if (shown == picture_.pixels.size()) {
        painter.drawImage(corner, picture_.pixels);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(target, picture_.pixels);
    }
}

void ImageFrame::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Q_EMIT Resized();
}

void ImageFrame::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Q_EMIT Enlarge();
}

void ImageFrame::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Q_EMIT Enlarge();
    else
        QWidget::keyPressEvent(event);
}

}  // namespace lumo::ui

#include "ui/image_window.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/display_picture.h"

namespace lumo::ui {
namespace {

constexpr double kMostZoom = 64, kZoomStep = 1.25;
constexpr double kPanStep = 0.1;     // of the window
constexpr double kSplitStep = 0.02;  // of its width
constexpr double kSplitGrip = 8;     // around the line, in points
const QColor kGround(0x18, 0x18, 0x1a);

imaging::Image CopyOf(imaging::ConstImageView picture) {
    if (picture.IsEmpty()) return {};
    auto copy = imaging::Image::TryCopy(picture);
    return copy ? std::move(*copy) : imaging::Image();
}

}  // namespace

ImageWindow::ImageWindow(QWidget* owner, imaging::ConstImageView before,
                         imaging::ConstImageView after, Show show)
    : QWidget(owner, Qt::Window), mode_(show) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("Enlarged view"));
    setAccessibleDescription(QString::fromUtf8(Keys()));
    before_.picture = CopyOf(before);
    after_.picture = CopyOf(after);
    if (before_.picture.IsEmpty()) mode_ = Show::After;
    if (after_.picture.IsEmpty()) mode_ = Show::Before;
}

imaging::Size ImageWindow::Extent() const {
    return (mode_ == Show::Before ? before_ : after_).picture.Extent();
}

QSizeF ImageWindow::WindowPixels() const {
    return QSizeF(size()) * devicePixelRatioF();
}

double ImageWindow::FittingZoom() const {
    const imaging::Size picture = Extent();
    if (picture.IsEmpty()) return 1;
    const QSizeF window = WindowPixels();
    return std::min({window.width() / picture.width, window.height() / picture.height, kMostZoom});
}

QRectF ImageWindow::PictureRect() const {
    const imaging::Size picture = Extent();
    const QSizeF window = WindowPixels();
    const double width = std::max(1.0, std::round(picture.width * zoom_));
    const double height = std::max(1.0, std::round(picture.height * zoom_));
    return {std::round(window.width() / 2 - centre_.x() * width),
            std::round(window.height() / 2 - centre_.y() * height), width, height};
}

void ImageWindow::KeepInside() {
    // A picture smaller than the window stays in its middle; a larger one leaves no ground bare.
    const QSizeF window = WindowPixels();
    const imaging::Size picture = Extent();
    const auto keep = [](double centre, double side, double room) {
        if (side <= room) return 0.5;
        const double margin = room / 2 / side;
        return std::clamp(centre, margin, 1 - margin);
    };
    centre_ = {keep(centre_.x(), picture.width * zoom_, window.width()),
               keep(centre_.y(), picture.height * zoom_, window.height())};
}

void ImageWindow::SetZoom(double zoom, QPointF around) {
    const QRectF old = PictureRect();
    const QPointF part((around.x() - old.left()) / old.width(),
                       (around.y() - old.top()) / old.height());
    const double least = std::min(FittingZoom(), 1.0);
    zoom_ = std::clamp(zoom, least, kMostZoom);
    fits_ = zoom_ == FittingZoom();
    const imaging::Size picture = Extent();
    const QSizeF window = WindowPixels();
    centre_ = {part.x() + (window.width() / 2 - around.x()) / (picture.width * zoom_),
               part.y() + (window.height() / 2 - around.y()) / (picture.height * zoom_)};
    KeepInside();
    update();
}

void ImageWindow::SetMode(Show mode) {
    if (before_.picture.IsEmpty() || after_.picture.IsEmpty()) return;
    const imaging::Size old = Extent();
    mode_ = mode;
    // The same part of the picture in the same size, even if a command has changed its size.
    if (fits_)
        zoom_ = FittingZoom();
    else
        zoom_ = std::min(zoom_ * old.width / Extent().width, kMostZoom);
    KeepInside();
    update();
}

void ImageWindow::Pan(QPointF by) {
    const QRectF place = PictureRect();
    centre_ -= QPointF(by.x() / place.width(), by.y() / place.height());
    KeepInside();
    update();
}

const char* ImageWindow::Keys() {
    return "+ -\tzoom\n"
           "0\tthe whole picture\n"
           "1\tpixels one to one\n"
           "Arrows\tpan\n"
           "Space\tbefore or after\n"
           "S\tbefore and after, split by a line\n"
           "Shift+Left\tmoves the line to the left\n"
           "Shift+Right\tmoves the line to the right\n"
           "Esc\tcloses the view\n";
}

void ImageWindow::MoveSplit(double to) {
    split_ = std::clamp(to, 0.0, 1.0);
    update();
}

double ImageWindow::SplitX() const {
    return std::round(split_ * WindowPixels().width());
}

void ImageWindow::PaintLayer(QPainter& painter, Layer& layer, const QRectF& place,
                             const QRectF& visible) {
    const QRectF part = place.intersected(visible);
    if (layer.picture.IsEmpty() || part.isEmpty()) return;
    const imaging::Size size = layer.picture.Extent();
    const QSize shown = place.size().toSize();
    if (shown.width() < size.width || shown.height() < size.height) {
        if (layer.scaled.size() != shown)
            layer.scaled = ScaledPicture(layer.picture.View(), {shown.width(), shown.height()});
        painter.drawImage(part, layer.scaled, part.translated(-place.topLeft()));
        return;
    }
    layer.scaled = {};
    // Rows without padding, so the picture itself can be drawn from.
    const QImage pixels(layer.picture.View().Row(0), size.width, size.height,
                        static_cast<qsizetype>(layer.picture.View().Stride()),
                        QImage::Format_RGB888);
    const double across = place.width() / size.width, down = place.height() / size.height;
    const QRectF source((part.left() - place.left()) / across, (part.top() - place.top()) / down,
                        part.width() / across, part.height() / down);
    painter.drawImage(part, pixels, source);
}

void ImageWindow::PaintLegend(QPainter& painter) {
    const auto label = [&](const QString& text, Qt::Alignment where) {
        const QRect box = painter.fontMetrics().boundingRect(text).adjusted(-8, -4, 8, 4);
        QRect place(QPoint(12, 12), box.size());
        if (where & Qt::AlignRight) place.moveRight(width() - 12);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 150));
        painter.drawRoundedRect(place, 4, 4);
        painter.setPen(Qt::white);
        painter.drawText(place, Qt::AlignCenter, text);
    };
    const QString percent = QStringLiteral("  %1 %").arg(std::lround(zoom_ * 100));
    if (mode_ != Show::After) label(QStringLiteral("Before") + percent, Qt::AlignLeft);
    if (mode_ == Show::After) label(QStringLiteral("After") + percent, Qt::AlignLeft);
    if (mode_ == Show::Split) label(QStringLiteral("After"), Qt::AlignRight);
}

void ImageWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), kGround);
    if (Extent().IsEmpty()) return;
    const double ratio = devicePixelRatioF();
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    const QRectF window(QPointF(0, 0), WindowPixels());
    const QRectF place = PictureRect();
    if (mode_ == Show::Split) {
        const double x = SplitX();
        PaintLayer(painter, before_, place, {0, 0, x, window.height()});
        PaintLayer(painter, after_, place, {x, 0, window.width() - x, window.height()});
        painter.fillRect(QRectF(x - ratio / 2, 0, ratio, window.height()), Qt::white);
    } else {
        PaintLayer(painter, mode_ == Show::Before ? before_ : after_, place, window);
    }
    painter.restore();
    PaintLegend(painter);
}

void ImageWindow::resizeEvent(QResizeEvent*) {
    if (fits_) zoom_ = FittingZoom();
    KeepInside();
}

void ImageWindow::wheelEvent(QWheelEvent* event) {
    const double steps = event->angleDelta().y() / 120.0;
    SetZoom(zoom_ * std::pow(kZoomStep, steps), ToPixels(event->position()));
}

void ImageWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    last_ = ToPixels(event->position());
    splitting_ =
        mode_ == Show::Split && std::abs(last_.x() - SplitX()) <= kSplitGrip * devicePixelRatioF();
    panning_ = !splitting_;
}

void ImageWindow::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = ToPixels(event->position());
    const bool overLine =
        mode_ == Show::Split && std::abs(at.x() - SplitX()) <= kSplitGrip * devicePixelRatioF();
    setCursor(overLine || splitting_ ? Qt::SplitHCursor
              : panning_             ? Qt::ClosedHandCursor
                                     : Qt::ArrowCursor);
    if (splitting_) {
        MoveSplit(at.x() / std::max(1.0, WindowPixels().width()));
    } else if (panning_) {
        Pan(at - last_);
    }
    last_ = at;
}

void ImageWindow::mouseReleaseEvent(QMouseEvent*) {
    panning_ = splitting_ = false;
    unsetCursor();
}

void ImageWindow::mouseDoubleClickEvent(QMouseEvent* event) {
    const bool toPixels = zoom_ != 1;
    SetZoom(toPixels ? 1 : FittingZoom(), ToPixels(event->position()));
}

void ImageWindow::keyPressEvent(QKeyEvent* event) {
    const QSizeF window = WindowPixels();
    const QPointF middle(window.width() / 2, window.height() / 2);
    const bool sideways = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    if (mode_ == Show::Split && sideways && event->modifiers() == Qt::ShiftModifier) {
        MoveSplit(split_ + (event->key() == Qt::Key_Left ? -kSplitStep : kSplitStep));
        return;
    }
    switch (event->key()) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            SetZoom(zoom_ * kZoomStep, middle);
            break;
        case Qt::Key_Minus:
            SetZoom(zoom_ / kZoomStep, middle);
            break;
        case Qt::Key_0:
            SetZoom(FittingZoom(), middle);
            break;
        case Qt::Key_1:
            SetZoom(1, middle);
            break;
        case Qt::Key_S:
            SetMode(mode_ == Show::Split ? Show::After : Show::Split);
            break;
        case Qt::Key_Space:
            SetMode(mode_ == Show::Before ? Show::After : Show::Before);
            break;
        case Qt::Key_Left:
            Pan({window.width() * kPanStep, 0});
            break;
        case Qt::Key_Right:
            Pan({-window.width() * kPanStep, 0});
            break;
        case Qt::Key_Up:
            Pan({0, window.height() * kPanStep});
            break;
        case Qt::Key_Down:
            Pan({0, -window.height() * kPanStep});
            break;
        case Qt::Key_Escape:
            close();
            break;
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace lumo::ui

#include "ui/preview_area.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/preview_renderer.h"

namespace lumo::ui {
namespace {

constexpr int kSmallestPane = 96;

QWidget* Labelled(const QString& words, PreviewPane* pane) {
    auto* box = new QWidget;
    auto* lines = new QVBoxLayout(box);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->addWidget(new QLabel(words));
    lines->addWidget(pane, 1);
    pane->setAccessibleName(words);
    return box;
}

}  // namespace

PreviewPane::PreviewPane(QWidget* parent) : QFrame(parent) {
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setMinimumSize(kSmallestPane, kSmallestPane);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PreviewPane::Show(const QImage& picture) {
    picture_ = picture;
    words_.clear();
    update();
}

void PreviewPane::Show(const QString& words) {
    picture_ = {};
    words_ = words;
    update();
}

imaging::Size PreviewPane::FrameSize() const {
    const QSize size = contentsRect().size() * devicePixelRatioF();
    return {size.width(), size.height()};
}

void PreviewPane::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setClipRect(contentsRect());
    if (picture_.isNull()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(contentsRect(), Qt::AlignCenter | Qt::TextWordWrap, words_);
        return;
    }
    // In pixels of the screen: a picture made for this frame is painted without resampling.
    const double ratio = devicePixelRatioF();
    const imaging::Size frame = FrameSize();
    QSize size = picture_.size();
    if (size.width() > frame.width || size.height() > frame.height) {
        size.scale(frame.width, frame.height, Qt::KeepAspectRatio);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
    }
    const int left = (frame.width - size.width()) >> 1, top = (frame.height - size.height()) >> 1;
    painter.drawImage(
        QRectF(contentsRect().left() + left / ratio, contentsRect().top() + top / ratio,
               size.width() / ratio, size.height() / ratio),
        picture_);
}

PreviewArea::PreviewArea(imaging::Size sample, QWidget* parent)
    : QWidget(parent),
      sample_(sample),
      // Until the first size is known: a picture that lies shows larger above the other one.
      layout_(new QBoxLayout(
          sample.width > sample.height ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight, this)),
      before_(new PreviewPane),
      after_(new PreviewPane) {
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->addWidget(Labelled(QStringLiteral("Before"), before_), 1);
    layout_->addWidget(Labelled(QStringLiteral("After"), after_), 1);
    before_->installEventFilter(this);
}

void PreviewArea::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const auto areaOf = [&](int width, int height) {
        return PreviewRenderer::Fit(sample_, {std::max(1, width), std::max(1, height)}).Area();
    };
    const bool beside = areaOf(width() / 2, height()) >= areaOf(width(), height() / 2);
    layout_->setDirection(beside ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

bool PreviewArea::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) Q_EMIT FrameSizeChanged();
    return QWidget::eventFilter(watched, event);
}

}  // namespace lumo::ui

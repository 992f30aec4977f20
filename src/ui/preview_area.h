#pragma once

#include <QBoxLayout>
#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QWidget>

#include "imaging/geometry.h"

namespace lumo::ui {

/// One frame with a picture in its middle, reduced if it is larger, in pixels of the screen.
class PreviewPane : public QFrame {
    Q_OBJECT

  public:
    explicit PreviewPane(QWidget* parent = nullptr);

    void Show(const QImage& picture);
    /// Words instead of a picture.
    void Show(const QString& words);
    const QImage& Picture() const { return picture_; }
    /// In pixels of the screen, without the frame's lines.
    imaging::Size FrameSize() const;

    QSize sizeHint() const override { return {320, 240}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QImage picture_;
    QString words_;
};

/// The frames "Before" and "After": side by side or one above the other, whichever shows the
/// sample larger.
class PreviewArea : public QWidget {
    Q_OBJECT

  public:
    explicit PreviewArea(imaging::Size sample, QWidget* parent = nullptr);

    PreviewPane& Before() { return *before_; }
    PreviewPane& After() { return *after_; }

  Q_SIGNALS:
    void FrameSizeChanged();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    imaging::Size sample_;
    QBoxLayout* layout_;
    PreviewPane* before_;
    PreviewPane* after_;
};

}  // namespace lumo::ui

#pragma once

#include <QWidget>

#include "ui/display_picture.h"

namespace lumo::ui {

/// One of the two frames of the sample image: paints the picture that it is given, asks for an
/// enlarged view by double click or Enter, and takes the keyboard's focus.
class ImageFrame : public QWidget {
    Q_OBJECT

  public:
    explicit ImageFrame(QWidget* parent);

    void SetPicture(DisplayPicture picture);
    const DisplayPicture& Picture() const { return picture_; }
    /// Said in the middle of an empty frame.
    void SetEmptyText(const QString& text);

    /// Inner size in pixels of the screen, for which pictures are made.
    imaging::Size PixelSize() const;

  Q_SIGNALS:
    void Enlarge();
    /// The frame has another size now: a picture made for it is wanted.
    void Resized();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    DisplayPicture picture_;
    QString emptyText_;
};

}  // namespace lumo::ui

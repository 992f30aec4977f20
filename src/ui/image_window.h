#pragma once

#include <QImage>
#include <QWidget>

#include "imaging/image.h"

namespace lumo::ui {

/// The sample enlarged, in a window of its own: before, after, or both on either side of a line
/// that can be dragged. The wheel and + - zoom around the pointer, dragging and the arrow keys pan,
/// 0 fits the picture into the window, 1 shows its pixels one to one, S splits, Shift with the left
/// and right arrow keys moves the line, Space changes between before and after, Escape closes.
class ImageWindow : public QWidget {
    Q_OBJECT

  public:
    enum class Show { Before, After, Split };

    /// Takes copies of both pictures; either may be empty.
    ImageWindow(QWidget* owner, imaging::ConstImageView before, imaging::ConstImageView after,
                Show show);

    /// Its keys in lines of key and meaning, parted by a tab.
    static const char* Keys();

    double Zoom() const { return zoom_; }
    Show Mode() const { return mode_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    struct Layer {
        imaging::Image picture;
        QImage scaled;  // the whole picture, where it is shown smaller than it is
    };

    imaging::Size Extent() const;  // of the picture that gives the shape
    QSizeF WindowPixels() const;
    double FittingZoom() const;
    QRectF PictureRect() const;
    QPointF ToPixels(QPointF place) const { return place * devicePixelRatioF(); }
    void SetZoom(double zoom, QPointF around);
    void SetMode(Show mode);
    void Pan(QPointF by);
    void KeepInside();
    double SplitX() const;
    void MoveSplit(double to);
    static void PaintLayer(QPainter& painter, Layer& layer, const QRectF& place,
                           const QRectF& visible);
    void PaintLegend(QPainter& painter);

    // All places are in pixels of the screen.
    Layer before_, after_;
    Show mode_;
    double zoom_ = 1;  // pixels of the screen for one of the picture
    bool fits_ = true;
    QPointF centre_{0.5, 0.5};  // what stands in the middle of the window, in parts of the picture
    double split_ = 0.5;        // in parts of the window's width
    bool panning_ = false, splitting_ = false;
    QPointF last_;
};

}  // namespace lumo::ui

#pragma once

#include <QLabel>

namespace lumo::ui {

/// One line of text that ends in "..." where there is no room; the whole text shows as a tool tip
/// then.
class ElidedLabel : public QLabel {
    Q_OBJECT

  public:
    explicit ElidedLabel(QWidget* parent = nullptr, Qt::TextElideMode mode = Qt::ElideRight);

    QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }
    QSize sizeHint() const override { return {0, QLabel::sizeHint().height()}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    Qt::TextElideMode mode_;
};

}  // namespace lumo::ui

#pragma once

#include <QLabel>

namespace lumo::ui {

/// One line of text that ends in "..." where there is no room; the whole text shows as a tool tip
/// then.
class ElidedLabel : public QLabel {
    Q_OBJECT

  public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    /// What is shown instead where the whole text has no room, if that fits.
    void SetShortText(const QString& text) { shortText_ = text; }

    QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }
    QSize sizeHint() const override { return {0, QLabel::sizeHint().height()}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    bool Fits(const QString& text) const;

    QString shortText_;
};

}  // namespace lumo::ui

#pragma once

#include <QAbstractSpinBox>
#include <QElapsedTimer>
#include <string>

namespace lumo::ui {

/// An edit for one number of a parameter string, with arrows. What is typed stands as typed until
/// it is settled: then it is a number inside the range. A text that nobody touched stays as it was
/// loaded, byte for byte, if its number is in range.
class NumberEdit : public QAbstractSpinBox {
    Q_OBJECT

  public:
    enum class Kind { Integer, Real };

    explicit NumberEdit(Kind kind, QWidget* parent = nullptr);

    void SetText(const std::string& text);
    /// The text as it would be stored now: settled.
    std::string Text() const;
    /// Shows Text().
    void Settle();

    double Value() const;
    /// As typed by the user: signals Edited.
    void SetValue(double value);

    /// Equal limits: no range.
    void SetRange(double low, double high);
    double Low() const { return low_; }
    double High() const { return high_; }
    bool HasRange() const { return low_ != high_; }
    /// Of one press of an arrow: 1, and 0.1 of a real number.
    double Step() const { return kind_ == Kind::Integer ? 1.0 : 0.1; }
    void SetMaxLength(int characters);

    void stepBy(int steps) override;
    QValidator::State validate(QString& input, int& position) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  Q_SIGNALS:
    /// The text has changed, by whatever hand.
    void Edited();

  protected:
    StepEnabled stepEnabled() const override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    std::string Format(double value) const;
    bool InRange(double value) const { return !HasRange() || (value >= low_ && value <= high_); }

    Kind kind_;
    double low_ = 0, high_ = 0;
    std::string loaded_;  // the stored text behind loadedText_
    QString loadedText_;
    QElapsedTimer stepping_, lastStep_;
};

}  // namespace lumo::ui

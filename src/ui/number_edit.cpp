#include "ui/number_edit.h"

#include <fmt/format.h>

#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "script/numbers.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr int kFastAfterMilliseconds = 2000;
constexpr int kSameHoldMilliseconds = 400;  // a pause that long ends a series of steps
constexpr int kFastSteps = 2;
constexpr int kFewestDigits = 4, kMostDigits = 8;  // that an edit has room for

}  // namespace

NumberEdit::NumberEdit(Kind kind, QWidget* parent) : QAbstractSpinBox(parent), kind_(kind) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    lineEdit()->setAlignment(Qt::AlignRight);
    connect(lineEdit(), &QLineEdit::textChanged, this, &NumberEdit::Edited);
    connect(this, &QAbstractSpinBox::editingFinished, this, &NumberEdit::Settle);
}

void NumberEdit::SetText(const std::string& text) {
    loaded_ = text;
    loadedText_ = ToQt(text);
    lineEdit()->setText(loadedText_);
}

std::string NumberEdit::Text() const {
    const QString shown = lineEdit()->text();
    const bool untouched = shown == loadedText_;
    const std::string text = untouched ? loaded_ : FromQt(shown);
    const double value =
        kind_ == Kind::Integer ? script::ParseInteger(text) : script::ConvertStringToDouble(text);
    if (!InRange(value)) return Format(std::clamp(value, low_, high_));
    if (untouched) return text;
    return kind_ == Kind::Integer ? Format(value) : script::GetFloatValue(text);
}

void NumberEdit::Settle() {
    const std::string settled = Text();
    if (ToQt(settled) != lineEdit()->text()) SetText(settled);
}

double NumberEdit::Value() const {
    return script::ConvertStringToDouble(Text());
}

void NumberEdit::SetValue(double value) {
    if (HasRange()) value = std::clamp(value, low_, high_);
    lineEdit()->setText(ToQt(Format(value)));
}

void NumberEdit::SetRange(double low, double high) {
    low_ = low;
    high_ = high;
    update();  // the arrows
}

void NumberEdit::SetMaxLength(int characters) {
    // Never shorter than what was loaded, which would be cut by the edit.
    lineEdit()->setMaxLength(std::max(characters, static_cast<int>(loadedText_.size())));
}

void NumberEdit::stepBy(int steps) {
    const bool held = lastStep_.isValid() && lastStep_.elapsed() < kSameHoldMilliseconds;
    if (!held) stepping_.start();
    lastStep_.start();
    if (held && stepping_.elapsed() > kFastAfterMilliseconds) steps *= kFastSteps;
    // In whole steps, so that tenths stay tenths.
    const double next = std::round(Value() / Step() + steps) * Step();
    SetValue(std::abs(next) < Step() / 2 ? 0.0 : next);
    lineEdit()->selectAll();
}

QValidator::State NumberEdit::validate(QString& input, int&) const {
    // On keyboards of many countries the decimal key gives a comma.
    if (kind_ == Kind::Real) input.replace(QLatin1Char(','), QLatin1Char('.'));
    const bool negative = !HasRange() || low_ < 0;
    for (qsizetype i = 0; i < input.size(); ++i) {
        const QChar c = input[i];
        const bool digit = c >= QLatin1Char('0') && c <= QLatin1Char('9');
        const bool sign = i == 0 && ((c == QLatin1Char('-') && negative) || c == QLatin1Char('+'));
        const bool point =
            kind_ == Kind::Real && c == QLatin1Char('.') && input.indexOf(QLatin1Char('.')) == i;
        if (!digit && !sign && !point) return QValidator::Invalid;
    }
    return QValidator::Acceptable;
}

QSize NumberEdit::sizeHint() const {
    const QFontMetrics metrics(font());
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const std::size_t digits =
        HasRange() ? std::max(Format(low_).size(), Format(high_).size()) : kMostDigits;
    const int shown = std::clamp(static_cast<int>(digits) + 1, kFewestDigits, kMostDigits);
    const QSize content(metrics.horizontalAdvance(QString(shown, QLatin1Char('8'))),
                        lineEdit()->sizeHint().height());
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option, content, this);
}

QAbstractSpinBox::StepEnabled NumberEdit::stepEnabled() const {
    const double value = Value();
    StepEnabled enabled = StepNone;
    if (!HasRange() || value < high_) enabled |= StepUpEnabled;
    if (!HasRange() || value > low_) enabled |= StepDownEnabled;
    return enabled;
}

void NumberEdit::wheelEvent(QWheelEvent* event) {
    // A form that scrolls under the pointer must not change the numbers that pass by.
    if (hasFocus())
        QAbstractSpinBox::wheelEvent(event);
    else
        event->ignore();
}

std::string NumberEdit::Format(double value) const {
    if (kind_ == Kind::Integer) return script::IntegerToString(std::llround(value));
    return script::GetFloatValue(fmt::format("{:.10g}", value));
}

}  // namespace lumo::ui

#include "ui/number_control.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <cmath>

#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr double kMostSliderSteps = 512;  // beyond that it is too coarse to hit a number
constexpr int kShortestSlider = 120;
constexpr char kUsualHint[] = "-100 to 100 %";

}  // namespace

NumberControl::NumberControl(const script::FieldSpec& spec, int field, ControlSize size,
                             QWidget* parent)
    : FieldControl(field, parent),
      spec_(spec),
      edit_(new NumberEdit(spec.kind == script::FieldKind::Integer ? NumberEdit::Kind::Integer
                                                                   : NumberEdit::Kind::Real)),
      hint_(new QLabel) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(edit_);
    line->addWidget(hint_);
    hint_->setForegroundRole(QPalette::PlaceholderText);
    hint_->setVisible(size == ControlSize::Line);
    if (size == ControlSize::Line) {
        // Sliders begin below one another, whatever stands before them.
        hint_->setMinimumWidth(hint_->fontMetrics().horizontalAdvance(QLatin1String(kUsualHint)));
        slider_ = new QSlider(Qt::Horizontal);
        slider_->setMinimumWidth(kShortestSlider);
        slider_->setFocusPolicy(Qt::ClickFocus);  // the edit beside it has the keyboard
        line->addWidget(slider_, 1);
        connect(slider_, &QSlider::valueChanged, this,
                [this](int steps) { edit_->SetValue(steps * edit_->Step()); });
    }
    line->addStretch();
    connect(edit_, &NumberEdit::Edited, this, [this] {
        MoveSlider();
        Q_EMIT Changed();
    });
    edit_->SetRange(spec.low, spec.high);
    ShowRange();
}

void NumberControl::Load(const script::Fields& fields) {
    edit_->SetText(fields.Text(Field()));
    if (spec_.maxLength > 0) edit_->SetMaxLength(spec_.maxLength);
    MoveSlider();
}

void NumberControl::Store(std::span<std::string> texts) const {
    texts[static_cast<std::size_t>(Field())] = edit_->Text();
}

void NumberControl::SetRange(double low, double high) {
    if (edit_->Low() == low && edit_->High() == high) return;
    edit_->SetRange(low, high);
    ShowRange();
}

QString NumberControl::Hint() const {
    const QString range = RangeText(*edit_), unit = ToQt(spec_.unit);
    return range.isEmpty() || unit.isEmpty() ? range + unit : range + QLatin1Char(' ') + unit;
}

void NumberControl::SetAccessibleLabel(const QString& name) {
    edit_->setAccessibleName(name);
    if (slider_) slider_->setAccessibleName(name);
}

void NumberControl::ShowRange() {
    hint_->setText(Hint());
    edit_->setToolTip(Hint());
    edit_->setAccessibleDescription(Hint());
    if (!slider_) return;
    const double steps = (edit_->High() - edit_->Low()) / edit_->Step();
    slider_->setVisible(steps > 0 && steps <= kMostSliderSteps);
    const QSignalBlocker quiet(slider_);
    slider_->setRange(static_cast<int>(std::lround(edit_->Low() / edit_->Step())),
                      static_cast<int>(std::lround(edit_->High() / edit_->Step())));
    slider_->setPageStep(std::max(1, static_cast<int>(steps / 10)));
    MoveSlider();
}

void NumberControl::MoveSlider() {
    if (!slider_) return;
    const QSignalBlocker quiet(slider_);
    slider_->setValue(static_cast<int>(std::lround(edit_->Value() / edit_->Step())));
}

QString RangeText(const NumberEdit& edit) {
    if (!edit.HasRange()) return {};
    return QStringLiteral("%1 to %2").arg(edit.Low()).arg(edit.High());
}

}  // namespace lumo::ui

#include "ui/choice_controls.h"

#include <QBoxLayout>
#include <QRadioButton>
#include <QWheelEvent>

#include "script/numbers.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr std::size_t kMostRadios = 4;
constexpr std::size_t kLettersOnALine = 36;

/// A choice without words of its own stands for what another field says.
QString ShownName(std::string_view name) {
    return name.empty() ? QStringLiteral("(other)") : ToQt(name);
}

/// A form that scrolls under the pointer must not change the lists that pass by.
class CalmComboBox : public QComboBox {
  protected:
    void wheelEvent(QWheelEvent* event) override {
        if (hasFocus())
            QComboBox::wheelEvent(event);
        else
            event->ignore();
    }
};

}  // namespace

FlagControl::FlagControl(const script::FieldSpec& spec, int field, QWidget* parent)
    : FieldControl(field, parent), spec_(spec), box_(new QCheckBox) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(box_);
    connect(box_, &QCheckBox::toggled, this, &FieldControl::Changed);
}

void FlagControl::Load(const script::Fields& fields) {
    loaded_ = fields.Text(Field());
    loadedOn_ = loaded_ == spec_.on;
    box_->setChecked(loadedOn_);
}

void FlagControl::Store(std::span<std::string> texts) const {
    std::string& text = texts[static_cast<std::size_t>(Field())];
    if (box_->isChecked() == loadedOn_)
        text = loaded_;
    else
        text = box_->isChecked() ? spec_.on : spec_.off;
}

ChoiceControl::ChoiceControl(const script::FieldSpec& spec, int field, ControlSize size,
                             QWidget* parent)
    : FieldControl(field, parent), spec_(spec) {
    std::size_t letters = 0;
    for (const std::string_view name : spec.names) letters += name.size();
    auto* box = new QBoxLayout(
        letters <= kLettersOnALine ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    box->setContentsMargins(0, 0, 0, 0);
    if (spec.names.size() <= kMostRadios && size == ControlSize::Line) {
        radios_ = new QButtonGroup(this);
        for (std::size_t i = 0; i < spec.names.size(); ++i) {
            auto* radio = new QRadioButton(Literally(ShownName(spec.names[i])));
            radios_->addButton(radio, static_cast<int>(i));
            box->addWidget(radio);
        }
        connect(radios_, &QButtonGroup::idToggled, this, [this](int, bool on) {
            if (on) Q_EMIT Changed();
        });
    } else {
        list_ = new CalmComboBox;
        for (const std::string_view name : spec.names) list_->addItem(ShownName(name));
        list_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        list_->setFocusPolicy(Qt::StrongFocus);
        box->addWidget(list_);
        connect(list_, &QComboBox::currentIndexChanged, this, &FieldControl::Changed);
    }
    if (box->direction() == QBoxLayout::LeftToRight) box->addStretch();
}

void ChoiceControl::Load(const script::Fields& fields) {
    loaded_ = fields.Text(Field());
    if (list_) list_->setCurrentIndex(-1);
    for (int i = 0; i < static_cast<int>(spec_.names.size()); ++i)
        if (ValueAt(i) == loaded_) Select(i);
}

void ChoiceControl::Store(std::span<std::string> texts) const {
    const int selected = Selected();
    texts[static_cast<std::size_t>(Field())] = selected < 0 ? loaded_ : ValueAt(selected);
}

QWidget* ChoiceControl::Buddy() {
    if (list_) return list_;
    // The keyboard goes to the one that is on.
    QAbstractButton* on = radios_->checkedButton();
    return on ? on : radios_->button(0);
}

void ChoiceControl::SetAccessibleLabel(const QString& name) {
    if (list_) {
        list_->setAccessibleName(name);
        return;
    }
    for (QAbstractButton* radio : radios_->buttons())
        radio->setAccessibleName(name + QStringLiteral(": ") + VisibleText(radio->text()));
}

int ChoiceControl::Selected() const {
    return list_ ? list_->currentIndex() : radios_->checkedId();
}

void ChoiceControl::Select(int index) {
    if (list_)
        list_->setCurrentIndex(index);
    else if (QAbstractButton* radio = radios_->button(index))
        radio->setChecked(true);
}

std::string ChoiceControl::ValueAt(int index) const {
    return spec_.values.empty() ? script::IntegerToString(index)
                                : std::string(spec_.values[static_cast<std::size_t>(index)]);
}

}  // namespace lumo::ui

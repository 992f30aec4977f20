#include "ui/colour_control.h"

#include <QColorDialog>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPixmap>
#include <QSignalBlocker>

#include "ui/number_control.h"

namespace lumo::ui {
namespace {

constexpr std::array kChannelNames{"red", "green", "blue"};

}  // namespace

ColourButton::ColourButton(QWidget* parent) : QPushButton(QStringLiteral("Color..."), parent) {
    setAutoDefault(false);
    connect(this, &QPushButton::clicked, this, &ColourButton::Ask);
    PaintSwatch();
}

void ColourButton::SetColour(const QColor& colour) {
    if (colour == colour_) return;
    colour_ = colour;
    PaintSwatch();
}

void ColourButton::changeEvent(QEvent* event) {
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        PaintSwatch();
}

void ColourButton::Ask() {
    const QColor picked = QColorDialog::getColor(colour_, this, accessibleName());
    if (!picked.isValid()) return;
    SetColour(picked);
    Q_EMIT Picked(picked);
}

void ColourButton::PaintSwatch() {
    const int height = fontMetrics().height();
    const QSize size(2 * height, height);
    QPixmap swatch(size * devicePixelRatioF());
    swatch.setDevicePixelRatio(devicePixelRatioF());
    swatch.fill(colour_);
    QPainter painter(&swatch);
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawRect(0, 0, size.width() - 1, size.height() - 1);
    painter.end();
    setIconSize(size);
    setIcon(QIcon(swatch));
}

ColourControl::ColourControl(std::span<const script::FieldSpec> specs, int field, QWidget* parent)
    : FieldControl(field, parent), button_(new ColourButton) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        edits_[i] = new NumberEdit(NumberEdit::Kind::Integer);
        edits_[i]->SetRange(specs[i].low, specs[i].high);
        line->addWidget(edits_[i]);
        connect(edits_[i], &NumberEdit::Edited, this, [this] {
            ShowColour();
            Q_EMIT Changed();
        });
    }
    line->addWidget(button_);
    line->addStretch();
    connect(button_, &ColourButton::Picked, this, [this](const QColor& colour) {
        {
            // One change, not three.
            const QSignalBlocker quiet(this);
            edits_[0]->SetValue(colour.red());
            edits_[1]->SetValue(colour.green());
            edits_[2]->SetValue(colour.blue());
        }
        Q_EMIT Changed();
    });
}

void ColourControl::Load(const script::Fields& fields) {
    for (int i = 0; i < 3; ++i) Edit(i).SetText(fields.Text(Field() + i));
    ShowColour();
}

void ColourControl::Store(std::span<std::string> texts) const {
    for (std::size_t i = 0; i < edits_.size(); ++i)
        texts[static_cast<std::size_t>(Field()) + i] = edits_[i]->Text();
}

void ColourControl::Settle() {
    for (NumberEdit* edit : edits_) edit->Settle();
}

void ColourControl::SetAccessibleLabel(const QString& name) {
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        edits_[i]->setAccessibleName(name + QLatin1Char(' ') + QLatin1String(kChannelNames[i]));
        edits_[i]->setAccessibleDescription(RangeText(*edits_[i]));
        edits_[i]->setToolTip(QLatin1String(kChannelNames[i]));
    }
    button_->setAccessibleName(name);
}

void ColourControl::ShowColour() {
    const auto channel = [this](int i) { return static_cast<int>(Edit(i).Value()); };
    button_->SetColour(QColor(channel(0), channel(1), channel(2)));
}

}  // namespace lumo::ui

#include "ui/parameter_panel.h"

#include <QEvent>
#include <QStringList>
#include <QVBoxLayout>

namespace lumo::ui {

ParameterPanel::ParameterPanel(QWidget* parent)
    : QGroupBox(QStringLiteral("Selected Cmd info"), parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 2, 6, 2);
    column->setSpacing(0);
    for (ElidedLabel*& line : lines_) {
        line = new ElidedLabel(this);
        column->addWidget(line, 1);
    }
    column->addStretch(0);
    LimitLines();
}

/// Lines share a low panel and stand together at the top of a high one.
void ParameterPanel::LimitLines() {
    const int most = fontMetrics().height() * 3 / 2;
    for (ElidedLabel* line : lines_) {
        line->setMinimumHeight(1);
        line->setMaximumHeight(most);
    }
}

void ParameterPanel::changeEvent(QEvent* event) {
    QGroupBox::changeEvent(event);
    if (event->type() == QEvent::FontChange && lines_[0]) LimitLines();
}

void ParameterPanel::SetText(const QString& text) {
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    if (lines.size() > kLines) {
        lines[kLines - 1] = lines.mid(kLines - 1).join(QStringLiteral(", "));
        lines.resize(kLines);
    }
    for (int i = 0; i < kLines; ++i)
        lines_[static_cast<std::size_t>(i)]->setText(i < lines.size() ? lines[i] : QString());
    setAccessibleDescription(lines.join(QStringLiteral(", ")));
}

QString ParameterPanel::Text() const {
    QStringList lines;
    for (const ElidedLabel* line : lines_) lines += line->text();
    while (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    return lines.join(QLatin1Char('\n'));
}

}  // namespace lumo::ui

#include "ui/progress_panel.h"

#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <algorithm>

#include "ui/elided_label.h"

namespace lumo::ui {
namespace {

constexpr int kTickMilliseconds = 500;
constexpr int kStatusRow = 5;
constexpr char kCaptionProperty[] = "caption";

/// The value is spoken with its caption.
void ShowValue(QLabel* value, const QString& text) {
    value->setText(text);
    value->setAccessibleName(value->property(kCaptionProperty).toString() + QLatin1Char(' ') +
                             text);
}

QString TimeText(qint64 milliseconds) {
    const qint64 seconds = milliseconds / 1000;
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

}  // namespace

ProgressPanel::ProgressPanel(QWidget* parent) : QGroupBox(QStringLiteral("Progress"), parent) {
    auto* grid = new QGridLayout(this);
    bar_ = new QProgressBar(this);
    bar_->setAccessibleName(QStringLiteral("Progress of the run"));
    bar_->setRange(0, 1);
    bar_->setValue(0);
    bar_->setTextVisible(false);
    bar_->setMinimumHeight(4);
    bar_->setMaximumHeight(14);
    bar_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    grid->addWidget(bar_, 0, 0, 1, 4);
    total_ = AddCount(QStringLiteral("Total input:"), 1, 0);
    current_ = AddCount(QStringLiteral("Current:"), 1, 2);
    saved_ = AddCount(QStringLiteral("Saved:"), 2, 0);
    errors_ = AddCount(QStringLiteral("Errors:"), 2, 2);
    elapsed_ = AddCount(QStringLiteral("Elapsed:"), 3, 0);
    remaining_ = AddCount(QStringLiteral("Remaining:"), 3, 2);
    remainingCaption_ = static_cast<QLabel*>(grid->itemAtPosition(3, 2)->widget());
    status_ = new ElidedLabel(this);
    status_->setProperty(kCaptionProperty, QStringLiteral("Status:"));
    grid->addWidget(status_, kStatusRow, 0, 1, 4);
    grid->setRowStretch(kStatusRow + 1, 1);
    SetNarrow(false);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    tick_.setInterval(kTickMilliseconds);
    connect(&tick_, &QTimer::timeout, this, &ProgressPanel::ShowTimes);
    ShowCounts({});
}

QLabel* ProgressPanel::AddCount(const QString& caption, int row, int column) {
    auto* grid = static_cast<QGridLayout*>(layout());
    auto* label = new QLabel(caption, this);
    auto* value = new QLabel(this);
    label->setMinimumSize(1, 1);
    value->setMinimumSize(1, 1);
    value->setProperty(kCaptionProperty, caption);
    value->setTextFormat(Qt::PlainText);
    grid->addWidget(label, row, column);
    grid->addWidget(value, row, column + 1);
    return value;
}

void ProgressPanel::SetNarrow(bool narrow) {
    auto* grid = static_cast<QGridLayout*>(layout());
    grid->setContentsMargins(narrow ? 5 : 9, 3, narrow ? 5 : 9, 2);
    grid->setVerticalSpacing(narrow ? 1 : 5);
    grid->setHorizontalSpacing(narrow ? 3 : 6);
    grid->addWidget(remainingCaption_, narrow ? 4 : 3, narrow ? 0 : 2);
    grid->addWidget(remaining_, narrow ? 4 : 3, narrow ? 1 : 3);
}

void ProgressPanel::Begin() {
    setTitle(QStringLiteral("Processing.."));
    clock_.start();
    tick_.start();
    ShowCounts({});
    bar_->setRange(0, 0);  // how much there is to do is not known yet
    ShowTimes();
}

void ProgressPanel::End() {
    setTitle(QStringLiteral("Progress"));
    tick_.stop();
    bar_->setRange(0, std::max(1, counts_.totalInput));
    bar_->setValue(counts_.current);
    ShowTimes();
    ShowValue(remaining_, {});
}

void ProgressPanel::ShowCounts(const engine::RunCounts& counts) {
    counts_ = counts;
    ShowValue(total_, QString::number(counts.totalInput));
    ShowValue(current_, QString::number(counts.current));
    ShowValue(saved_, QString::number(counts.saved));
    ShowValue(errors_, QString::number(counts.errors));
    if (counts.totalInput > 0) {
        bar_->setRange(0, counts.totalInput);
        bar_->setValue(std::max(0, counts.current - 1));
    }
}

void ProgressPanel::ShowTimes() {
    const qint64 elapsed = clock_.isValid() ? clock_.elapsed() : 0;
    ShowValue(elapsed_, TimeText(elapsed));
    const int done = counts_.current - 1;
    if (done <= 0 || counts_.totalInput <= done) {
        ShowValue(remaining_, {});
        return;
    }
    ShowValue(remaining_, TimeText(elapsed / done * (counts_.totalInput - done)));
}

void ProgressPanel::SetStatus(const QString& text) {
    ShowValue(status_, text);
}
QString ProgressPanel::Status() const {
    return status_->text();
}

}  // namespace lumo::ui

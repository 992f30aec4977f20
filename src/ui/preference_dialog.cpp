#include "ui/preference_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <ctime>

#include "settings/settings_store.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

script::Fields FieldsOf(const std::vector<std::string>& texts) {
    script::Fields fields;
    for (std::size_t i = 0; i < texts.size(); ++i) fields.Set(static_cast<int>(i), texts[i]);
    return fields;
}

}  // namespace

PreferenceDialog::PreferenceDialog(engine::CLumoscriptView& view, const PreferenceSheet& sheet,
                                   QWidget* parent)
    : QDialog(parent), view_(view), sheet_(sheet), tabs_(new QTabWidget) {
    setWindowTitle(ToQt(sheet.title));
    auto* lines = new QVBoxLayout(this);
    lines->addWidget(tabs_, 1);
    for (const PreferencePage& page : sheet.pages) AddPage(page);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("&Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferenceDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PreferenceDialog::reject);
    lines->addWidget(buttons);
}

void PreferenceDialog::AddPage(const PreferencePage& page) {
    Mnemonics mnemonics(QStringLiteral("oc"));
    script::Fields stored = page.read(view_.settings);
    auto* fields = new FormFields(view_, page.spec, stored, mnemonics);
    opened_.push_back({std::move(stored), fields->Texts()});
    auto* tab = new QWidget;
    auto* lines = new QVBoxLayout(tab);
    if (!page.heading.empty()) {
        auto* heading = new QLabel(ToQt(page.heading));
        QFont bold = heading->font();
        bold.setBold(true);
        heading->setFont(bold);
        lines->addWidget(heading);
    }
    lines->addWidget(fields, 1);
    QLabel* note = nullptr;
    if (page.note) {
        note = new QLabel;
        note->setTextFormat(Qt::PlainText);
        lines->addWidget(note);
        const auto follow = [fields, note, &page] {
            note->setText(ToQt(page.note(FieldsOf(fields->Texts()))));
        };
        connect(fields, &FormFields::Changed, note, follow);
        follow();
    }
    for (std::size_t i = 0; i < page.chooserTitles.size(); ++i)
        if (FieldControl* control = fields->Control(static_cast<int>(i)))
            control->SetAccessibleLabel(ToQt(page.chooserTitles[i]));
    tabs_->addTab(tab, Literally(ToQt(page.tab)));
    pages_.push_back(fields);
    notes_.push_back(note);
}

/// What nobody changed stays as it is stored, though a control would write it in another way.
script::Fields PreferenceDialog::FieldsNow(std::size_t page) const {
    std::vector<std::string> texts = pages_[page]->Texts();
    const Opened& opened = opened_[page];
    for (std::size_t i = 0; i < texts.size(); ++i)
        if (texts[i] == opened.texts[i]) texts[i] = opened.fields.Text(static_cast<int>(i));
    return FieldsOf(texts);
}

void PreferenceDialog::accept() {
    settings::Settings changed = view_.settings;
    for (std::size_t i = 0; i < pages_.size(); ++i) {
        pages_[i]->Settle();
        sheet_.pages[i].write(changed, FieldsNow(i));
    }
    view_.settings = std::move(changed);
    QDialog::accept();
}

bool EditPreferences(QWidget* parent, engine::CLumoscriptView& view, const PreferenceSheet& sheet) {
    PreferenceDialog dialog(view, sheet, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    for (const std::string& message :
         settings::SaveSettings(view.settings, settings::SaveKind::Normal, std::time(nullptr)))
        view.ui.Notice(message);
    return true;
}

}  // namespace lumo::ui

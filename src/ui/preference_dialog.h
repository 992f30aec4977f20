#pragma once

#include <QDialog>
#include <vector>

#include "settings/settings.h"
#include "ui/form_fields.h"
#include "ui/preference_pages.h"

class QTabWidget;

namespace lumo::ui {

/// A sheet of preferences: one tab for each page. The settings change when it is accepted, and not
/// before.
class PreferenceDialog : public QDialog {
    Q_OBJECT

  public:
    PreferenceDialog(engine::CLumoscriptView& view, const PreferenceSheet& sheet,
                     QWidget* parent = nullptr);

    FormFields& Page(int index) { return *pages_[static_cast<std::size_t>(index)]; }
    QTabWidget& Tabs() { return *tabs_; }
    /// The line below the fields of a page; null: none.
    QLabel* Note(int index) { return notes_[static_cast<std::size_t>(index)]; }

    void accept() override;

  private:
    /// A page as it was opened.
    struct Opened {
        script::Fields fields;
        std::vector<std::string> texts;
    };
    void AddPage(const PreferencePage& page);
    script::Fields FieldsNow(std::size_t page) const;

    engine::CLumoscriptView& view_;
    const PreferenceSheet& sheet_;
    QTabWidget* tabs_;
    std::vector<FormFields*> pages_;
    std::vector<QLabel*> notes_;
    std::vector<Opened> opened_;
};

/// Shows the sheet; true if it was accepted. The settings are saved then.
bool EditPreferences(QWidget* parent, engine::CLumoscriptView& view, const PreferenceSheet& sheet);

}  // namespace lumo::ui

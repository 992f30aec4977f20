// The sheets of preferences.

#include "ui/preference_dialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "settings/settings_store.h"
#include "ui/number_control.h"
#include "ui/path_control.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

using testing::ElementsAre, testing::HasSubstr;

class Preferences : public test::WindowTest {
  protected:
    Preferences() { Start(); }

    PreferenceDialog& Open(const PreferenceSheet& sheet) {
        dialog_ = std::make_unique<PreferenceDialog>(View(), sheet);
        dialog_->show();
        return *dialog_;
    }
    FieldControl& Control(int page, int field) { return *dialog_->Page(page).Control(field); }
    void Toggle(int page, int field) { Control(page, field).findChild<QCheckBox*>()->toggle(); }
    void Type(int page, int field, const std::string& text) {
        if (auto* number = Control(page, field).findChild<NumberEdit*>()) {
            number->selectAll();
            QTest::keyClicks(number, ToQt(text));
            return;
        }
        auto* edit = Control(page, field).findChild<QLineEdit*>();
        ASSERT_NE(edit, nullptr) << page << " " << field;
        edit->selectAll();
        QTest::keyClicks(edit, ToQt(text));
    }
    void Choose(int page, int field, const std::string& text) {
        for (QAbstractButton* radio : Control(page, field).findChildren<QAbstractButton*>())
            if (FromQt(VisibleText(radio->text())) == text) return radio->click();
        ADD_FAILURE() << "no choice " << text;
    }
    std::vector<std::string> TabNames() {
        std::vector<std::string> names;
        for (int i = 0; i < dialog_->Tabs().count(); ++i)
            names.push_back(FromQt(dialog_->Tabs().tabText(i)));
        return names;
    }
    std::string NoteOf(int page) { return FromQt(dialog_->Note(page)->text()); }

    std::unique_ptr<PreferenceDialog> dialog_;
};

TEST_F(Preferences, AcceptedWithoutAChangeTheyChangeNothing) {
    View().settings.writer.pngDotsPerMetre = "11810";  // no whole number of dots an inch
    View().settings.writer.jpgDpi = "72.5";
    View().settings.incrementalStart = "07";
    View().settings.writer.jpgQuality = "300";
    View().settings.writer.pngTexts[2] = "so \"called\", and";
    View().settings.folders.logs = "/a \"folder\"/with, all";
    View().settings.dateFormat = "%d, \"%Y\"";
    const settings::Settings before = View().settings;
    for (const PreferenceSheet* sheet : {&kGeneralSheet, &kWriterSheet, &kReaderSheet}) {
        Open(*sheet).accept();
        EXPECT_EQ(View().settings, before) << sheet->title;
    }
}

TEST_F(Preferences, CancelledTheyChangeNothing) {
    const settings::Settings before = View().settings;
    Open(kGeneralSheet);
    Toggle(0, 0);
    Type(1, 0, "/elsewhere");
    dialog_->reject();
    EXPECT_EQ(View().settings, before);
}

TEST_F(Preferences, General) {
    Open(kGeneralSheet);
    EXPECT_THAT(TabNames(), ElementsAre("General", "Folders", "Logs"));
    Toggle(0, 0);
    Toggle(0, 1);
    Toggle(0, 2);
    Type(0, 3, "000001");
    Type(0, 4, "%Y");
    EXPECT_EQ(NoteOf(0).size(), std::string("Date: 2026").size());
    for (int digit = 0; digit < 4; ++digit) Type(0, 5 + digit, std::to_string(4 - digit));
    Type(0, 8, "77");  // one character has room
    dialog_->accept();
    const settings::Settings& settings = View().settings;
    EXPECT_TRUE(settings.warnBeforeMakingFolder);
    EXPECT_FALSE(settings.warnOfNameCollision);
    EXPECT_TRUE(settings.showEachImage);
    EXPECT_EQ(settings.autoPad, "000001");
    EXPECT_EQ(settings.dateFormat, "%Y");
    EXPECT_EQ(settings.incrementalStart, "4327");
}

TEST_F(Preferences, FoldersAreMadeNativeAndNeverEmptied) {
    Open(kGeneralSheet);
    Type(1, 0, "<INSTALL_FOLDER>\\Scripts\\");
    Control(1, 1).findChild<QLineEdit*>()->clear();
    Type(1, 4, "/var/log/pictures");
    EXPECT_EQ(FromQt(static_cast<PathControl&>(Control(1, 4)).Edit().accessibleName()),
              "Choose folder for default (logs)");
    const std::string lists = View().settings.folders.lists;
    dialog_->accept();
    EXPECT_EQ(View().settings.folders.scripts, View().settings.installFolder + "/Scripts");
    EXPECT_EQ(View().settings.folders.lists, lists);
    EXPECT_EQ(View().settings.folders.logs, "/var/log/pictures");
}

TEST_F(Preferences, EachBoxOfTheLogsIsItsSetting) {
    bool settings::LogSettings::* const settingsInOrder[] = {
        &settings::LogSettings::errorLog,   &settings::LogSettings::batchLog,
        &settings::LogSettings::header,     &settings::LogSettings::inputName,
        &settings::LogSettings::inputSize,  &settings::LogSettings::outputName,
        &settings::LogSettings::outputSize, &settings::LogSettings::errors};
    for (int i = 0; i < 8; ++i) {
        settings::LogSettings expected = View().settings.logs;
        expected.*settingsInOrder[i] = !(expected.*settingsInOrder[i]);
        Open(kGeneralSheet);
        Toggle(2, i);
        dialog_->accept();
        EXPECT_EQ(View().settings.logs, expected) << i;
    }
}

TEST_F(Preferences, Writer) {
    Open(kWriterSheet);
    EXPECT_THAT(TabNames(), ElementsAre("TIF", "JPG", "GIF", "PNG"));
    Type(0, 0, "150");
    Choose(0, 1, "Compress (Macintosh PackBits)");
    Type(1, 0, "96");
    Choose(1, 1, "Progressive");
    Type(1, 2, "300");  // out of range
    Type(1, 3, "40");
    Toggle(2, 0);
    Toggle(2, 1);
    Choose(2, 2, "Optimized palette (octree)");
    Choose(3, 0, "Do not save");
    Toggle(3, 2);
    Toggle(3, 3);
    EXPECT_EQ(NoteOf(3), "DPM: 11811");
    Type(3, 4, "72");
    EXPECT_EQ(NoteOf(3), "DPM: 2835");
    Toggle(3, 5);
    Type(3, 6, "Title");
    Type(3, 7, "A, \"quoted\" text");
    dialog_->accept();
    const settings::WriterSettings& writer = View().settings.writer;
    EXPECT_EQ(writer.tifDpi, "150");
    EXPECT_EQ(writer.tifCompression, 32773);
    EXPECT_EQ(writer.jpgDpi, "96");
    EXPECT_EQ(writer.jpgEncoding, "1");
    EXPECT_EQ(writer.jpgQuality, "100");
    EXPECT_EQ(writer.jpgSmoothing, "40");
    EXPECT_TRUE(writer.gifInterlaced);
    EXPECT_TRUE(writer.gifDither);
    EXPECT_EQ(writer.gifPalette, 2);
    EXPECT_EQ(writer.pngGamma, 0);
    EXPECT_TRUE(writer.pngInterlaced);
    EXPECT_TRUE(writer.pngCopyText);
    EXPECT_EQ(writer.pngDotsPerMetre, "2835");
    EXPECT_TRUE(writer.pngAddText);
    EXPECT_THAT(writer.pngKeys, ElementsAre("Title", "", "", ""));
    EXPECT_THAT(writer.pngTexts, ElementsAre("A, 'quoted' text", "", "", ""));
}

TEST_F(Preferences, Reader) {
    Open(kReaderSheet);
    EXPECT_THAT(TabNames(), ElementsAre("WMF", "EMF", "PNG"));
    Type(0, 0, "640");
    Type(0, 1, "480");
    Type(1, 0, "320");
    Type(1, 1, "240");
    Toggle(2, 0);
    Type(2, 1, "1.8");
    dialog_->accept();
    const settings::ReaderSettings& reader = View().settings.reader;
    EXPECT_EQ(reader.wmfWidth + "x" + reader.wmfHeight, "640x480");
    EXPECT_EQ(reader.emfWidth + "x" + reader.emfHeight, "320x240");
    EXPECT_TRUE(reader.pngAllowGamma);
    EXPECT_EQ(View().settings.writer.pngGamma, 1.8);
}

TEST_F(Preferences, TheMenuOpensThemAndTheyLast) {
    answers.Do([](QWidget* widget) {
        auto* dialog = qobject_cast<PreferenceDialog*>(widget);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(FromQt(dialog->windowTitle()), "Preferences");
        dialog->Page(2).Control(0)->findChild<QCheckBox*>()->toggle();
        dialog->accept();
    });
    Trigger(Act::Preferences);
    EXPECT_FALSE(View().settings.logs.errorLog);
    EXPECT_FALSE(Action(Act::KeepErrorLog)->isChecked());
    settings::Settings again;
    settings::LoadSettings(again, settings::StoreAccess::ReadOnly, 0);
    EXPECT_FALSE(again.logs.errorLog);
    for (const auto& [act, title] : {std::pair{Act::Writer, "Writer preferences"},
                                     std::pair{Act::Reader, "Reader preferences"}}) {
        answers.Cancel();
        Trigger(act);
        EXPECT_EQ(answers.shown.back(), title);
    }
}

TEST_F(Preferences, RenamingWithoutItsProgramSaysWhereItWasLookedFor) {
    answers.Expect("Unable to find Namewright.exe at:" + View().settings.installFolder,
                   QMessageBox::Ok);
    Trigger(Act::RenameFiles);
}

}  // namespace
}  // namespace lumo::ui

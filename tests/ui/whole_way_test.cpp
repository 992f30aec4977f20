// The way of a newcomer, by clicks and keys from an empty start: a Script for thumbnails is built,
// tried on the sample, saved, opened again and run; the program without a window makes the same
// files of it, byte for byte.

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <filesystem>

#include "io/output.h"
#include "io/start_setup.h"
#include "script/names.h"
#include "support/content_files.h"
#include "support/program.h"
#include "ui/command_form.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

namespace names = script::names;
using testing::ElementsAre;

/// Fills one field of a form as a user does.
void Fill(CommandForm& form, int field, const std::string& text) {
    FieldControl* control = form.Fields().Control(field);
    ASSERT_NE(control, nullptr) << field;
    if (auto* box = control->findChild<QCheckBox*>()) {
        if (box->isChecked() != (text == "on")) QTest::keyClick(box, Qt::Key_Space);
        return;
    }
    for (QRadioButton* radio : control->findChildren<QRadioButton*>())
        if (FromQt(VisibleText(radio->text())) == text) {
            QTest::mouseClick(radio, Qt::LeftButton);
            radio->setChecked(true);
            return;
        }
    if (auto* list = control->findChild<QComboBox*>()) {
        QTest::keyClick(list, Qt::Key_Home);
        for (int i = 0; i < list->count() && FromQt(list->currentText()) != text; ++i)
            QTest::keyClick(list, Qt::Key_Down);
        ASSERT_EQ(FromQt(list->currentText()), text);
        return;
    }
    auto* edit = control->findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr) << field;
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, ToQt(text));
    ASSERT_EQ(FromQt(edit->text()), text);
}

class WholeWay : public test::WindowTest {
  protected:
    /// The next dialog is the form of a command: these fields are filled, then OK is pressed.
    void ExpectForm(std::vector<std::pair<int, std::string>> fields) {
        answers.Do([fields](QWidget* dialog) {
            auto* form = qobject_cast<CommandForm*>(dialog);
            ASSERT_NE(form, nullptr) << FromQt(dialog->windowTitle());
            for (const auto& [field, text] : fields) Fill(*form, field, text);
            auto* buttons = form->findChild<QDialogButtonBox*>();
            ASSERT_NE(buttons, nullptr);
            QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        });
    }
};

TEST_F(WholeWay, ThumbnailsFromAnEmptyStart) {
    std::filesystem::create_directory(*this / "in");
    for (const char* photo : {"Dragonfly.jpg", "Fig.jpg", "Wall-clock.jpg"})
        std::filesystem::copy(test::ShareFolder() / "Photos" / photo, *this / "in");
    Start();

    ExpectForm({{io::start::kLocation, "Get from folder (directory)"},
                {io::start::kFolderPath, *this / "in"}});
    ClickRow(0);
    Press(Form().scriptList, Qt::Key_F2);
    ExpectForm({{io::output::kFolder, *this / "out"},
                {io::output::kSuffix, "_thumb"},
                {io::output::kOverwrite, "on"}});
    ClickRow(1);
    Click(Form().edit);
    ClickRow(0);
    constexpr int kWidth = 2, kHeight = 3;
    ExpectForm({{kWidth, "240"}, {kHeight, "240"}});
    AddByKeys(std::string(names::kScale));
    ExpectForm({});
    AddByKeys(std::string(names::kUnsharpMask));
    ASSERT_THAT(Rows(), ElementsAre(names::kStartImageLoop, names::kScale, names::kUnsharpMask,
                                    names::kOutputSetup, names::kEndImageLoop));

    // On the sample.
    answers.Pick(*this / "in/Dragonfly.jpg");
    Click(Form().open);
    ClickRow(1);
    Click(Form().testOne);
    EXPECT_EQ(View().working.main.Width(), 240);
    Click(Form().testOne);
    EXPECT_EQ(Form().scriptList->SelectedRow(), 3);

    // Saved, and opened again.
    answers.Pick(*this / "thumbs");
    Press(Form().scriptList, Qt::Key_S, Qt::ControlModifier);
    const script::Script built = View().script.commands;
    Press(Form().scriptList, Qt::Key_N, Qt::ControlModifier);
    ASSERT_EQ(Rows().size(), 3U);
    answers.Pick(*this / "thumbs.whs");
    Press(Form().scriptList, Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(View().script.commands, built);

    // Run, here and without a window.
    Press(Form().scriptList, Qt::Key_F5);
    ASSERT_TRUE(Window().IsRunning());
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Status(), "Done!");
    const std::vector<std::string> outputs = test::NamesIn(*this / "out");
    EXPECT_THAT(outputs,
                ElementsAre("Dragonfly_thumb.jpg", "Fig_thumb.jpg", "Wall-clock_thumb.jpg"));
    std::filesystem::rename(*this / "out", *this / "window");
    const auto batch = test::RunProgram({LUMO_BATCH_PROGRAM, *this / "thumbs.whs"});
    EXPECT_EQ(batch.exitStatus, 0) << batch.err;
    for (const std::string& name : outputs)
        EXPECT_EQ(test::FileText(*this / ("out/" + name)),
                  test::FileText(*this / ("window/" + name)))
            << name;
}

}  // namespace
}  // namespace lumo::ui

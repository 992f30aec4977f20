#include "ui/command_form.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QToolButton>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "engine/command_table.h"
#include "engine/editing.h"
#include "script/catalogue.h"
#include "script/names.h"
#include "script/numbers.h"
#include "settings/settings_store.h"
#include "support/command_runner.h"
#include "support/temp_folder.h"
#include "support/test_files.h"
#include "ui/choice_controls.h"
#include "ui/colour_control.h"
#include "ui/number_control.h"
#include "ui/path_control.h"
#include "ui/qt_application.h"
#include "ui/text_controls.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

namespace names = script::names;
using engine::Command;
using script::FieldKind;
using script::Fields;
using script::FieldSpec;
using testing::IsEmpty, testing::Not;

/// Every command with a form.
std::vector<const Command*> CommandsWithForm() {
    std::vector<const Command*> commands;
    for (const engine::CommandRow& row : engine::CommandTable())
        if (row.command && (row.command->spec.dialog || !row.command->spec.fields.empty()))
            commands.push_back(row.command);
    return commands;
}

class Form : public testing::Test {
  protected:
    Form() { test::TestApplication(); }

    CommandForm& Open(std::string_view name, std::string params = {}) {
        const Command* command = engine::FindCommand(name);
        if (params.empty()) params = engine::DefaultParams(view, name);
        form = std::make_unique<CommandForm>(view, *command, params);
        return *form;
    }
    CommandForm& Show(std::string_view name, std::string params = {}) {
        Open(name, std::move(params));
        form->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(form.get()));
        return *form;
    }

    template <class Control>
    Control& At(int field) {
        return dynamic_cast<Control&>(*form->Fields().Control(field));
    }
    NumberEdit& Number(int field) { return At<NumberControl>(field).Edit(); }

    /// Types into an edit as a user does, in place of what stands there.
    void Type(NumberEdit& edit, const char* keys) {
        edit.setFocus();
        edit.selectAll();
        QTest::keyClicks(&edit, QLatin1String(keys));
    }

    /// OK, and Yes to what the command may ask then.
    void Accept() {
        QTimer::singleShot(0, form.get(), [] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
                box->button(QMessageBox::Yes)->click();
        });
        form->accept();
    }

    QAbstractButton* Button(QDialogButtonBox::StandardButton which) {
        return form->findChild<QDialogButtonBox*>()->button(which);
    }

    test::TempFolder config;
    test::ScopedVariable configHome{"XDG_CONFIG_HOME", config.Path()};
    test::CommandRunner runner{test::CoordinateImage({60, 40})};
    engine::CLumoscriptView& view = runner.view;
    std::unique_ptr<CommandForm> form;
};

// ---- Every command ----

TEST_F(Form, UnchangedOkReproducesTheFieldsOfEveryCommand) {
    int seen = 0;
    for (const Command* command : CommandsWithForm()) {
        SCOPED_TRACE(command->spec.name);
        const std::string factory = engine::DefaultParams(view, command->spec.name);
        Open(command->spec.name, factory);
        Accept();
        const std::string params = form->Params();
        const Fields before = ReadParams(command->spec, factory);
        const Fields after = ReadParams(command->spec, params);
        for (int i = 0; i < static_cast<int>(command->spec.fields.size()); ++i) {
            std::string text = before.Text(i);
            const FieldSpec& spec = command->spec.fields[static_cast<std::size_t>(i)];
            if (spec.kind == FieldKind::Text) {
                text = WithStoredBreaks(spec, text);
                std::erase(text, '\r');  // a Script cannot hold it
            }
            EXPECT_EQ(after.Text(i), text) << "field " << i;
        }
        EXPECT_EQ(params.find('\r'), std::string::npos);
        // What the form has written it writes again, to the byte.
        Open(command->spec.name, params);
        Accept();
        EXPECT_EQ(form->Params(), params);
        ++seen;
    }
    EXPECT_GT(seen, 50);
}

TEST_F(Form, StringsOfShippedDefaultsWithoutTextsComeBackToTheByte) {
    for (const std::string_view name :
         {names::kCrop, names::kAddBorder, names::kScale, names::kUnsharpMask,
          names::kColourCurveAdjust, names::kReplaceColour, names::kMosaic, names::kBlur,
          names::kBlurMore, names::kBlurGaussian, names::kRotate90, names::kNoiseAdd,
          names::kBlendImages}) {
        Open(name);
        Accept();
        EXPECT_EQ(form->Params(), engine::DefaultParams(view, name));
    }
}

TEST_F(Form, EveryShownFieldHasALabelAndAnAccessibleName) {
    for (const Command* command : CommandsWithForm()) {
        SCOPED_TRACE(command->spec.name);
        Open(command->spec.name);
        std::set<QString> heard;
        for (int i = 0; i < static_cast<int>(command->spec.fields.size()); ++i) {
            const FieldSpec& spec = command->spec.fields[static_cast<std::size_t>(i)];
            FieldControl* control = form->Fields().Control(i);
            ASSERT_EQ(control == nullptr, spec.kind == FieldKind::Reserved) << i;
            if (!control || control->Field() != i) continue;
            const QString name = control->Buddy()->accessibleName();
            EXPECT_FALSE(name.isEmpty()) << i;
            EXPECT_TRUE(heard.insert(name).second) << FromQt(name) << " names two controls";
            if (QLabel* label = form->Fields().LabelOf(i)) {
                EXPECT_EQ(label->buddy(), control->Buddy()) << i;
                EXPECT_EQ(VisibleText(label->text()), ToQt(spec.label)) << i;
            } else if (const auto* flag = dynamic_cast<FlagControl*>(control)) {
                EXPECT_FALSE(const_cast<FlagControl*>(flag)->Box().text().isEmpty()) << i;
            } else {
                EXPECT_TRUE(spec.label.empty()) << i;  // a cell of a grid
            }
        }
    }
}

TEST_F(Form, UnderlinedLettersOfAFormAreAllDifferent) {
    for (const Command* command : CommandsWithForm()) {
        SCOPED_TRACE(command->spec.name);
        Open(command->spec.name);
        std::set<QString> letters;
        const auto add = [&](QString text) {
            text.remove(QLatin1String("&&"));
            const qsizetype at = text.indexOf(QLatin1Char('&'));
            if (at < 0) return;
            EXPECT_TRUE(letters.insert(text.mid(at + 1, 1).toLower()).second) << FromQt(text);
        };
        for (const QLabel* label : form->findChildren<QLabel*>()) add(label->text());
        for (const QAbstractButton* button : form->findChildren<QAbstractButton*>())
            add(button->text());
        EXPECT_GE(letters.size(), 2U);
    }
}

TEST_F(Form, NumbersOutOfRangeAreClampedInEveryCommand) {
    int clamped = 0;
    for (const Command* command : CommandsWithForm()) {
        SCOPED_TRACE(command->spec.name);
        Open(command->spec.name);
        const Fields before = ReadParams(command->spec, form->Params());
        std::vector<const FieldSpec*> specs;
        for (const FieldSpec& spec : command->spec.fields) specs.push_back(&spec);
        for (const bool above : {true, false}) {
            Open(command->spec.name);
            for (int i = 0; i < static_cast<int>(specs.size()); ++i) {
                auto* number = dynamic_cast<NumberControl*>(form->Fields().Control(i));
                if (!number) continue;
                const int most = specs[static_cast<std::size_t>(i)]->maxLength;
                number->Edit().findChild<QLineEdit*>()->setText(
                    QLatin1String(above ? "99999999" : "-9999999").left(most > 0 ? most : 8));
            }
            Accept();
            const Fields after = ReadParams(command->spec, form->Params());
            for (int i = 0; i < static_cast<int>(specs.size()); ++i) {
                const FieldSpec& spec = *specs[static_cast<std::size_t>(i)];
                if (spec.kind != FieldKind::Integer && spec.kind != FieldKind::Real) continue;
                const bool other = spec.whenField >= 0 && before.Is(spec.whenField, spec.whenText);
                const double low = other ? spec.whenLow : spec.low;
                const double high = other ? spec.whenHigh : spec.high;
                if (low == high) continue;
                EXPECT_EQ(after.Real(i), above ? high : low) << "field " << i;
                ++clamped;
            }
        }
    }
    EXPECT_GT(clamped, 100);
}

TEST_F(Form, RandomFieldsOfStoredStringsSurviveUntouched) {
    // Texts that no form would write: they are kept, but for numbers out of range.
    for (const Command* command : CommandsWithForm()) {
        SCOPED_TRACE(command->spec.name);
        std::vector<std::string> texts;
        for (const FieldSpec& spec : command->spec.fields) {
            const bool number = spec.kind == FieldKind::Integer || spec.kind == FieldKind::Real ||
                                (spec.kind >= FieldKind::Red && spec.kind <= FieldKind::Blue);
            texts.emplace_back(number                           ? script::GetFloatValue("1")
                               : spec.kind == FieldKind::Text   ? "a\xff"
                                                                  "b"
                               : spec.kind == FieldKind::Folder ? "C:\\x\\y"
                                                                : "odd");
        }
        if (command->spec.build) continue;  // START has its own rules
        const std::string params = script::BuildParams(command->spec.fields, texts);
        Open(command->spec.name, params);
        Accept();
        const Fields after = script::ParseParams(form->Params());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const FieldSpec& spec = command->spec.fields[i];
            if (spec.low != spec.high && (spec.low > 1 || spec.high < 1)) continue;
            if (spec.whenField >= 0) continue;
            EXPECT_EQ(after.Text(static_cast<int>(i)), texts[i]) << "field " << i;
        }
    }
}

TEST_F(Form, CaptionAndNotesAreThoseOfTheCommand) {
    EXPECT_EQ(Open(names::kAddBorder).windowTitle(), QStringLiteral("Add border "));
    EXPECT_EQ(Open(names::kDustRemove).windowTitle(), QStringLiteral("Median filter"));
    Open(names::kConvertBwDither);
    QStringList texts;
    for (const QLabel* label : form->findChildren<QLabel*>()) texts << label->text();
    EXPECT_TRUE(
        texts.contains(QStringLiteral("1 bit black and white using dithered error diffusion ")));
}

TEST_F(Form, TheLineBelowTheNotesFollowsTheFields) {
    for (const auto name : {names::kOutputTemporary, names::kInputTemporary}) {
        Show(name, "2,0,,");
        QLineEdit* line = form->Fields().NoteLine();
        ASSERT_TRUE(line);
        EXPECT_TRUE(line->isReadOnly());
        EXPECT_EQ(line->text(), QStringLiteral("<TEMP_FOLDER>\\Temp1.bmp"));
        At<TextControl>(1).Edit().setText(QStringLiteral("sky"));
        EXPECT_EQ(line->text(), QStringLiteral("<TEMP_FOLDER>\\Temp1.bmp"));
        At<ChoiceControl>(0).Select(7);
        EXPECT_EQ(script::ParseParams(form->Params()).Text(0), "7");
        At<TextControl>(1).Edit().setText(QStringLiteral("sea"));
        EXPECT_EQ(line->text(), QStringLiteral("<TEMP_FOLDER>\\sea.bmp"));
    }
    EXPECT_FALSE(Show(names::kCrop).Fields().NoteLine());
}

TEST_F(Form, ClearTextEmptiesTheComment) {
    constexpr int kComment = 7;
    Show(names::kJpgFileHeader);
    EXPECT_NE(script::ParseParams(form->Params()).Text(kComment), "");
    QPushButton* clear = nullptr;
    for (QPushButton* button : form->findChildren<QPushButton*>())
        if (button->text() == QStringLiteral("Clear text")) clear = button;
    ASSERT_TRUE(clear);
    clear->click();
    EXPECT_EQ(script::ParseParams(form->Params()).Text(kComment), "");
    EXPECT_EQ(At<MultiLineControl>(kComment).Edit().toPlainText(), QString());
}

// ---- Numbers ----

TEST_F(Form, TypedNumberIsClampedASecondLater) {
    Show(names::kSolarize, "1,100,");
    Type(Number(0), "300");
    EXPECT_EQ(Number(0).text(), QStringLiteral("300"));
    EXPECT_TRUE(test::WaitUntil([&] { return Number(0).text() == QStringLiteral("255"); }));
}

TEST_F(Form, OkWithinThatSecondClampsToo) {
    Show(names::kSolarize, "1,100,");
    Type(Number(0), "300");
    QTest::keyClick(form.get(), Qt::Key_Return);
    EXPECT_EQ(form->result(), QDialog::Accepted);
    EXPECT_EQ(form->Params(), "1,255,");
}

TEST_F(Form, LeavingAnEditClampsAtOnce) {
    Show(names::kCrop);
    Type(Number(0), "20000");
    QTest::keyClick(&Number(0), Qt::Key_Tab);
    EXPECT_EQ(Number(0).text(), QStringLiteral("10000"));
}

TEST_F(Form, RangesFollowTheFieldTheyDependOn) {
    Show(names::kCrop, "6,500,10,10,10,0,0,");
    EXPECT_EQ(At<NumberControl>(0).Hint(), QStringLiteral("0 to 10000"));
    At<ChoiceControl>(4).Select(1);
    EXPECT_EQ(At<NumberControl>(0).Hint(), QStringLiteral("0 to 100"));
    EXPECT_EQ(form->Params(), "6,100,10,10,10,1,0,");
    At<ChoiceControl>(4).Select(0);
    EXPECT_EQ(form->Params(), "6,500,10,10,10,0,0,");  // nothing was settled in between
}

TEST_F(Form, ArrowsStepAndStopAtTheEnds) {
    Show(names::kSolarize, "1,254,");
    QTest::keyClick(&Number(0), Qt::Key_Up);
    QTest::keyClick(&Number(0), Qt::Key_Up);
    EXPECT_EQ(form->Params(), "1,255,");
    Show(names::kBlurGaussian, "1,1.0,");
    for (int i = 0; i < 3; ++i) QTest::keyClick(&Number(0), Qt::Key_Up);
    EXPECT_EQ(form->Params(), "1,1.3,");
    for (int i = 0; i < 3; ++i) QTest::keyClick(&Number(0), Qt::Key_Down);
    EXPECT_EQ(form->Params(), "1,1.0,");
}

TEST_F(Form, SliderAndEditMoveTogether) {
    Show(names::kSolarize, "1,100,");
    auto* slider = form->findChild<QSlider*>();
    ASSERT_TRUE(slider);
    EXPECT_EQ(slider->value(), 100);
    slider->setValue(42);
    EXPECT_EQ(form->Params(), "1,42,");
    Type(Number(0), "77");
    EXPECT_EQ(slider->value(), 77);
}

TEST_F(Form, RealNumbersAreWrittenWithAPoint) {
    Show(names::kUnsharpMask);
    Type(Number(0), "2,5");  // the comma of a keyboard
    EXPECT_EQ(Number(0).text(), QStringLiteral("2.5"));
    Type(Number(0), "3");
    EXPECT_EQ(form->Params(), "4,3.0,100,0,1,");
}

TEST_F(Form, LettersCannotBeTypedIntoNumbers) {
    Show(names::kSolarize, "1,100,");
    Type(Number(0), "1x-2");
    EXPECT_EQ(form->Params(), "1,12,");
    Type(Number(0), "");
    QTest::keyClick(&Number(0), Qt::Key_Delete);
    EXPECT_EQ(form->Params(), "1,0,");
}

TEST_F(Form, NumberThatIsOutOfRangeInTheScriptIsPutRight) {
    Open(names::kAdjustColourRgb, "3,500,0,-101,");
    Accept();
    EXPECT_EQ(form->Params(), "3,100,0,-100,");
}

// ---- Other controls ----

TEST_F(Form, CheckBoxesWriteTheirTwoTexts) {
    Open(names::kBorderFindAndCrop);  // "0" is on here
    auto& flag = At<FlagControl>(4);
    const std::string before = form->Params();
    const bool on = flag.Box().isChecked();
    flag.Box().setChecked(!on);
    EXPECT_NE(form->Params(), before);
    EXPECT_EQ(script::ParseParams(form->Params()).Text(4),
              script::ParseParams(before).Text(4) == "0" ? "1" : "0");
    flag.Box().setChecked(on);
    EXPECT_EQ(form->Params(), before);
}

TEST_F(Form, ChoicesWriteTheirValues) {
    Open(names::kRotate90);
    At<ChoiceControl>(0).Select(2);
    EXPECT_EQ(form->Params(), "1,270,");
    Open(names::kBlendImages);
    At<ChoiceControl>(0).Select(4);
    EXPECT_EQ(script::ParseParams(form->Params()).Text(0), "Multiply");
}

TEST_F(Form, ColourButtonFillsTheThreeEdits) {
    Show(names::kSkew, "5,0,0,1,2,3,");
    auto& colour = At<ColourControl>(2);
    EXPECT_EQ(colour.Button().Colour(), QColor(1, 2, 3));
    QSignalSpy changes(&form->Fields(), &FormFields::Changed);
    QTimer::singleShot(0, form.get(), [] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        dialog->setCurrentColor(QColor(200, 100, 50));
        dialog->accept();
    });
    colour.Button().click();
    EXPECT_EQ(form->Params(), "5,0,0,200,100,50,");
    EXPECT_EQ(colour.Button().Colour(), QColor(200, 100, 50));
    EXPECT_EQ(changes.size(), 1);
    Type(colour.Edit(0), "400");
    EXPECT_EQ(colour.Button().Colour(), QColor(255, 100, 50));
}

TEST_F(Form, QuotesAndCommasInTextsKeepTheFieldsApart) {
    Open(names::kScriptInfo);
    At<TextControl>(0).Edit().setText(QStringLiteral("\"Hello, \"world\""));
    At<TextControl>(1).Edit().setText(QStringLiteral("\""));
    At<TextControl>(2).Edit().setText(QStringLiteral("three"));
    const Fields fields = script::ParseParams(form->Params());
    EXPECT_EQ(fields.Text(0), "'Hello, 'world'");
    EXPECT_EQ(fields.Text(1), "'");
    EXPECT_EQ(fields.Text(2), "three");
    EXPECT_EQ(fields.Text(6), "");
}

TEST_F(Form, LineBreaksAreStoredAsTheFieldWantsThem) {
    Open(names::kJpgFileHeader);
    auto& comments = At<MultiLineControl>(7);
    comments.Edit().setPlainText(QStringLiteral("one\ntwo, \"three\""));
    const std::string params = form->Params();
    EXPECT_EQ(script::ParseParams(params).Text(7), "one$xtwo, 'three'");
    Open(names::kJpgFileHeader, params);
    EXPECT_EQ(At<MultiLineControl>(7).Edit().toPlainText(), QStringLiteral("one\ntwo, 'three'"));
    EXPECT_EQ(form->Params(), params);
    EXPECT_EQ(WithStoredBreaks(script::Text("", "").MultiLine("$x"), "a\r\nb\nc\rd"), "a$xb$xc$xd");
    EXPECT_EQ(WithStoredBreaks(script::Text("", "").MultiLine(), "a\nb"), "a\nb");
}

TEST_F(Form, UnquotedTextsLoseWhatWouldPartFields) {
    const FieldSpec plain = script::Text("x", "");
    EXPECT_EQ(Storable(plain, "a,b\"c\r\nd"), "abcd");
    EXPECT_EQ(Storable(plain.Quoted(), "a,b\"c"), "a,b'c");
}

TEST_F(Form, TextsOfBytesThatAreNoUtf8SurviveUntilTheyAreEdited) {
    Open(names::kScriptInfo, "7,\"\xfcmlaut\",,,,,,,");
    EXPECT_EQ(script::ParseParams(form->Params()).Text(0), "\xfcmlaut");
    At<TextControl>(0).Edit().setText(QStringLiteral("plain"));
    EXPECT_EQ(script::ParseParams(form->Params()).Text(0), "plain");
}

TEST_F(Form, MaximumLengthHoldsForTypingOnly) {
    const std::string longName(60, 'n');
    Open(names::kSubroutineExecute, "1,\"" + longName + "\",");
    EXPECT_EQ(script::ParseParams(form->Params()).Text(0), longName);
    Open(names::kSubroutineExecute, "1,\"\",");
    QTest::keyClicks(&At<TextControl>(0).Edit(), ToQt(longName));
    EXPECT_EQ(script::ParseParams(form->Params()).Text(0).size(), 40U);
}

TEST_F(Form, InsertInfoPutsAMacroWhereTheCursorStands) {
    const auto pick = [&](FieldControl& control, const QString& macro) {
        auto* button = control.findChild<QToolButton*>();
        ASSERT_TRUE(button && button->text() == QLatin1String("Insert info"));
        for (QAction* action : button->menu()->actions())
            if (action->text().startsWith(macro)) action->trigger();
    };
    Open(names::kTextOverlay);
    QLineEdit& line = At<TextControl>(2).Edit();
    line.setText(QStringLiteral("on  at"));
    line.setCursorPosition(3);
    pick(At<TextControl>(2), QStringLiteral("$(date)"));
    pick(At<TextControl>(2), QStringLiteral("$(counterJ)"));
    EXPECT_EQ(line.text(), QStringLiteral("on $(date)$(counterJ) at"));
    EXPECT_EQ(script::ParseParams(form->Params()).Text(2), "on $(date)$(counterJ) at");
    // A face is no text with macros.
    EXPECT_FALSE(At<TextControl>(14).findChild<QToolButton*>());

    Open(names::kTextOverlayAbsolute);
    QPlainTextEdit& lines = At<MultiLineControl>(15).Edit();
    lines.setPlainText(QStringLiteral("one\ntwo "));
    lines.moveCursor(QTextCursor::End);
    pick(At<MultiLineControl>(15), QStringLiteral("$(filepath)"));
    EXPECT_EQ(script::ParseParams(form->Params()).Text(15), "one\ntwo $(filepath)");
}

TEST_F(Form, AnUnusedInsertInfoChangesNothing) {
    Open(names::kTextOverlay);
    form->accept();
    EXPECT_EQ(script::ParseParams(form->Params()).Text(2), "Put message here");
    EXPECT_EQ(script::ParseParams(form->Params()).Text(10), "700");
    // A weight of 0 is the normal one, not the lightest.
    Open(names::kTextOverlay, "20,1,1,x,0,0,0,0,10,0,-24,0,F,F,F,arial,0,0,0,0,0,");
    form->accept();
    EXPECT_EQ(script::ParseParams(form->Params()).Text(10), "0");
}

TEST_F(Form, FollowersFollowWhileTheBoxIsOn) {
    Show(names::kCrop, "6,10,20,30,40,0,0,");
    ASSERT_TRUE(form->Fields().FollowBox());
    EXPECT_FALSE(form->Fields().FollowBox()->isChecked());
    form->Fields().FollowBox()->setChecked(true);
    EXPECT_EQ(form->Params(), "6,10,10,10,10,0,0,");
    EXPECT_FALSE(Number(1).isEnabled());
    Type(Number(0), "55");
    EXPECT_EQ(form->Params(), "6,55,55,55,55,0,0,");
    form->Fields().FollowBox()->setChecked(false);
    Type(Number(1), "7");
    EXPECT_EQ(form->Params(), "6,55,7,55,55,0,0,");
}

TEST_F(Form, StartShowsTheControlsOfOneSource) {
    Show(names::kStartImageLoop);
    QWidget* list = form->Fields().Control(1);
    QWidget* folder = form->Fields().Control(2);
    EXPECT_TRUE(list->isHidden() && folder->isHidden());
    At<ChoiceControl>(0).Select(1);
    EXPECT_TRUE(list->isVisible() && folder->isHidden());
    At<ChoiceControl>(0).Select(2);
    EXPECT_TRUE(list->isHidden() && folder->isVisible());
    EXPECT_TRUE(form->Fields().Control(31)->isVisible());
}

TEST_F(Form, StartEnablesTheNumbersOfTheFiltersThatAreOn) {
    Show(names::kStartImageLoop);
    EXPECT_FALSE(Number(14).isEnabled());
    At<FlagControl>(23).Box().setChecked(true);
    EXPECT_TRUE(Number(14).isEnabled() && Number(13).isEnabled() && Number(15).isEnabled());
    EXPECT_FALSE(Number(16).isEnabled());
}

TEST_F(Form, StartReadsOlderLayoutsAndWritesThePresentOne) {
    Open(names::kStartImageLoop,
         "31,0,,,0,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,");
    Accept();
    EXPECT_EQ(form->Params().substr(0, 3), "32,");
    EXPECT_EQ(
        ReadParams(engine::FindCommand(names::kStartImageLoop)->spec, form->Params()).Text(31),
        "0");
}

TEST_F(Form, TabVisitsTheFieldsInTheirOrder) {
    for (const std::string_view name : {names::kCrop, names::kScale, names::kWatermark}) {
        SCOPED_TRACE(name);
        Show(name);
        const int last = static_cast<int>(engine::FindCommand(name)->spec.fields.size()) - 1;
        const auto fieldOf = [&](QWidget* widget) {
            for (int i = 0; i <= last; ++i) {
                QWidget* control = form->Fields().Control(i);
                if (control && (control == widget || control->isAncestorOf(widget)))
                    return form->Fields().Control(i)->Field();
            }
            return -1;
        };
        int previous = -1;
        std::set<int> visited;
        for (int i = 0; i < 40; ++i) {
            const int field = fieldOf(QApplication::focusWidget());
            if (field < 0) break;
            EXPECT_GE(field, previous);
            previous = field;
            visited.insert(field);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        EXPECT_GE(visited.size(), 4U);
        EXPECT_EQ(*visited.begin(), 0);
        EXPECT_GE(*visited.rbegin(), last - 2);
    }
}

TEST_F(Form, WheelPassesEditsThatHaveNoFocus) {
    Show(names::kCrop);
    Number(0).setFocus();
    QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&Number(2), &wheel);
    EXPECT_EQ(form->Params(), "6,10,10,10,10,0,0,");
    QApplication::sendEvent(&Number(0), &wheel);
    EXPECT_EQ(form->Params(), "6,11,10,10,10,0,0,");
}

// ---- OK, Cancel, Default, placement ----

/// Lets a function act on the form that EditParameters opens.
template <class Act>
void WhenOpen(Act act) {
    QTimer::singleShot(0, &test::TestApplication(), [act] {
        auto* opened = qobject_cast<CommandForm*>(QApplication::activeModalWidget());
        ASSERT_TRUE(opened);
        act(*opened);
    });
}

TEST_F(Form, OkGivesTheNewStringAndCancelTheOldOne) {
    const Command& crop = *engine::FindCommand(names::kCrop);
    std::string params = "6,1,2,3,4,0,0,";
    const auto type9 = [](CommandForm& opened) {
        dynamic_cast<NumberControl&>(*opened.Fields().Control(0)).Edit().SetValue(9);
    };
    WhenOpen([&](CommandForm& opened) {
        type9(opened);
        opened.reject();
    });
    EXPECT_FALSE(EditParameters(nullptr, view, crop, params));
    EXPECT_EQ(params, "6,1,2,3,4,0,0,");
    EXPECT_THAT(view.settings.windows, IsEmpty());  // a cancelled dialog keeps no placement
    WhenOpen([&](CommandForm& opened) {
        type9(opened);
        opened.accept();
    });
    EXPECT_TRUE(EditParameters(nullptr, view, crop, params));
    EXPECT_EQ(params, "6,9,2,3,4,0,0,");
    EXPECT_EQ(view.settings.commandDefaults.count("Crop"), 0U);
    EXPECT_TRUE(view.settings.windows["WS23"].saved);
}

/// Gives an answer to the message box that comes up over the form.
void Answer(QMessageBox::StandardButton answer, QStringList& asked) {
    QTimer::singleShot(0, &test::TestApplication(), [answer, &asked] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        asked << box->text();
        box->button(answer)->click();
    });
}

TEST_F(Form, OkAsksWhereTheCommandDoes) {
    const Command& copy = *engine::FindCommand(names::kCopyMove);
    std::string params = "6,1,,0,,,1,";
    QStringList asked;
    WhenOpen([&](CommandForm& opened) {
        Answer(QMessageBox::No, asked);
        opened.accept();
        EXPECT_TRUE(opened.isVisible());
        EXPECT_THAT(view.settings.windows, IsEmpty());
        Answer(QMessageBox::Yes, asked);
        opened.accept();
    });
    EXPECT_TRUE(EditParameters(nullptr, view, copy, params));
    const auto question = QStringLiteral("Warning, no output folder specified. Continue anyway?");
    EXPECT_EQ(asked, QStringList({question, question}));
    EXPECT_EQ(params, "6,1,\"\",0,\"\",\"\",1,");
    params = "6,1,/out,0,,,1,";
    WhenOpen([](CommandForm& opened) { opened.accept(); });
    EXPECT_TRUE(EditParameters(nullptr, view, copy, params));
    EXPECT_EQ(asked.size(), 2);
}

TEST_F(Form, DefaultBoxMakesTheNextNewCommandBeginSo) {
    std::string params = "6,1,2,3,4,0,0,";
    WhenOpen([](CommandForm& opened) {
        opened.DefaultBox().setChecked(true);
        opened.accept();
    });
    EXPECT_TRUE(EditParameters(nullptr, view, *engine::FindCommand(names::kCrop), params));
    EXPECT_EQ(engine::DefaultParams(view, names::kCrop), "6,1,2,3,4,0,0,");
}

TEST_F(Form, DefaultBoxIsThereWhereADefaultIsKept) {
    EXPECT_FALSE(Show(names::kCrop).DefaultBox().isHidden());
    EXPECT_FALSE(form->DefaultBox().isChecked());
    EXPECT_TRUE(Show(names::kCounter).DefaultBox().isHidden());
    EXPECT_TRUE(Show(names::kBlur).DefaultBox().isHidden());
}

TEST_F(Form, EscapeCancels) {
    Show(names::kCrop);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_EQ(form->result(), QDialog::Rejected);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(Form, FirstPlaceIsTheUpperLeftQuarterOfTheScreen) {
    Show(names::kSolarize);
    const QRect screen = form->screen()->geometry();
    EXPECT_EQ(form->pos(), QPoint(10, 10));
    EXPECT_LE(form->width(), std::max(screen.width() / 2, form->minimumSizeHint().width()));
    EXPECT_GE(form->width(), screen.width() / 2 - 10);
}

TEST_F(Form, PlacementIsKeptForTheNextTime) {
    Show(names::kSolarize);
    form->move(31, 42);
    form->resize(700, 500);
    Accept();
    Show(names::kSolarize);
    EXPECT_EQ(form->pos(), QPoint(31, 42));
    EXPECT_EQ(form->size(), QSize(700, 500));
    settings::Settings again;
    settings::LoadSettings(again, settings::StoreAccess::ReadOnly, 0);
    EXPECT_EQ(again.windows["WS75"], view.settings.windows["WS75"]);
}

TEST_F(Form, PlacementOfALargerScreenIsBroughtBack) {
    view.settings.windows["WS75"] = {
        .saved = true, .showCommand = 1, .left = 5000, .top = -4000, .right = 9000, .bottom = 0};
    Show(names::kSolarize);
    const QRect screen = form->screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(form->pos()));
    EXPECT_LE(form->width(), screen.width());
    EXPECT_LE(form->height(), screen.height());
}

TEST_F(Form, CommandsWithoutKeyKeepNoPlacement) {
    Show(names::kCounter);
    Accept();
    EXPECT_THAT(view.settings.windows, IsEmpty());
}

// ---- Preview ----

/// A preview that is calculated as long as the gate is closed.
class Gate {
  public:
    static void Close() {
        open_ = false;
        calls = inside = 0;
        last = -1;
    }
    static void Open() {
        const std::lock_guard lock(mutex_);
        open_ = true;
        opened_.notify_all();
    }
    static void Pass(int value) {
        ++inside;
        std::unique_lock lock(mutex_);
        // Nobody opens it if the window's thread stands here itself.
        EXPECT_TRUE(opened_.wait_for(lock, std::chrono::seconds(60), [] { return open_.load(); }));
        last = value;
        ++calls;
        --inside;
    }
    static inline std::atomic<int> calls{0}, inside{0}, last{-1};

  private:
    static inline std::mutex mutex_;
    static inline std::condition_variable opened_;
    static inline std::atomic<bool> open_{true};
};

constexpr std::array kSlowFields{script::Integer("Value", "0").Clamp(0, 255)};

imaging::Image SlowPreview(imaging::ConstImageView before, imaging::Size, const Fields& fields) {
    Gate::Pass(fields.Integer(0));
    return std::move(*imaging::Image::TryCopy(before));
}

const Command kSlowCommand{.spec = {.name = "Slow", .fields = kSlowFields}, .preview = SlowPreview};

TEST_F(Form, TypingNeverWaitsForThePreview) {
    Gate::Close();
    form = std::make_unique<CommandForm>(view, kSlowCommand, "1,0,");
    form->show();
    ASSERT_TRUE(test::WaitUntil([] { return Gate::inside == 1; }));
    for (int i = 0; i < 40; ++i) {
        Type(Number(0), std::to_string(100 + i).c_str());
        QApplication::processEvents();
    }
    EXPECT_EQ(Gate::calls, 0);
    Gate::Open();
    // The last state is shown, and most of those before it were passed over.
    EXPECT_TRUE(test::WaitUntil([] { return Gate::last == 139; }));
    EXPECT_LE(Gate::calls, 3);
}

TEST_F(Form, PreviewShowsWhatTheCommandDoes) {
    Show(names::kSolarize, "1,255,");
    ASSERT_TRUE(form->Preview());
    ASSERT_TRUE(test::WaitUntil([&] { return !form->Preview()->After().Picture().isNull(); }));
    const QImage before = form->Preview()->Before().Picture();
    EXPECT_EQ(form->Preview()->After().Picture(), before);    // threshold 255 changes nothing
    EXPECT_NEAR(before.width() * 2, before.height() * 3, 3);  // of 60 x 40
    Number(0).SetValue(0);
    ASSERT_TRUE(test::WaitUntil([&] { return form->Preview()->After().Picture() != before; }));
    const QRgb pixel = before.pixel(5, 5);
    EXPECT_EQ(form->Preview()->After().Picture().pixel(5, 5),
              qRgb(255 - qRed(pixel), 255 - qGreen(pixel), 255 - qBlue(pixel)));
}

constexpr std::array kMacroFields{script::Text("Text", "").Quoted().Macros(),
                                  script::Text("Other", "").Quoted()};
std::mutex shownMutex;
std::string shownText;

imaging::Image MacroPreview(imaging::ConstImageView before, imaging::Size, const Fields& fields) {
    const std::lock_guard lock(shownMutex);
    shownText = fields.Text(0) + "|" + fields.Text(1);
    return std::move(*imaging::Image::TryCopy(before));
}

const Command kMacroCommand{.spec = {.name = "Macro", .fields = kMacroFields},
                            .preview = MacroPreview};

TEST_F(Form, PreviewShowsWhatTheMacrosOfATextStandFor) {
    view.sample.path = "/photos/IMG 1.tar.jpg";
    view.settings.dateFormat = "day %%";
    view.counters[2] = 42;
    const char* const params =
        "2,\"$(size) $(filetitle) $(filename) $(filepath) $(date) $(counterC)\",\"$(size)\",";
    const auto shown = [&] {
        const std::lock_guard lock(shownMutex);
        return shownText;
    };
    const auto open = [&] {
        form = std::make_unique<CommandForm>(view, kMacroCommand, params);
        form->show();
    };
    open();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return shown() == "60x40 IMG 1.tar IMG 1.tar.jpg /photos/IMG 1.tar.jpg day % 42|$(size)";
    })) << shown();
    // During a run they belong to the worker.
    view.run.batchRunning = true;
    view.sample.left = test::CoordinateImage({10, 90});
    open();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return shown() == "10x90 $(filetitle) $(filename) $(filepath) day % 0|$(size)";
    })) << shown();
    view.run.batchRunning = false;
}

TEST_F(Form, PreviewObeysTheRangeWhileTheEditDoesNot) {
    form = std::make_unique<CommandForm>(view, kSlowCommand, "1,0,");
    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    Type(Number(0), "999");
    EXPECT_TRUE(test::WaitUntil([] { return Gate::last == 255; }));
}

TEST_F(Form, EveryPreviewComesBack) {
    view.settings.installFolder = (test::SourceRoot() / "share").string();
    for (const Command* command : CommandsWithForm()) {
        if (!PreviewRenderer::CanShow(*command)) continue;
        SCOPED_TRACE(command->spec.name);
        Show(command->spec.name);
        ASSERT_TRUE(form->Preview());
        ASSERT_TRUE(test::WaitUntil([&] { return !form->Preview()->Before().Picture().isNull(); }));
        ASSERT_TRUE(test::WaitUntil([&] { return !form->Preview()->After().Picture().isNull(); }));
    }
}

TEST_F(Form, WithoutAnImageThereIsNoPreview) {
    view.working.main = {};
    EXPECT_FALSE(Open(names::kSolarize).Preview());
}

TEST_F(Form, DuringABatchTheLeftImageIsShown) {
    view.run.batchRunning = true;
    view.sample.left = test::CoordinateImage({10, 90});
    Show(names::kSolarize);
    ASSERT_TRUE(test::WaitUntil([&] { return !form->Preview()->Before().Picture().isNull(); }));
    const QImage before = form->Preview()->Before().Picture();
    EXPECT_NEAR(before.height(), 9 * before.width(), 9);
    view.run.batchRunning = false;
}

TEST_F(Form, MissingSecondPictureIsTold) {
    Show(names::kWatermark, "12,10,10,20,100,1,0,0,255,10,\"/nowhere/at/all.bmp\",0,0,");
    ASSERT_TRUE(test::WaitUntil([&] { return !form->Preview()->Before().Picture().isNull(); }));
    EXPECT_TRUE(form->Preview()->After().Picture().isNull());
}

TEST_F(Form, ClosingWhileAPreviewIsCalculatedWaitsForIt) {
    for (const bool begun : {false, true}) {
        Gate::Close();
        form = std::make_unique<CommandForm>(view, kSlowCommand, "1,0,");
        form->show();
        if (begun) {
            ASSERT_TRUE(test::WaitUntil([] { return Gate::inside == 1; }));
        }
        std::thread opener([] { Gate::Open(); });
        form.reset();
        EXPECT_EQ(Gate::inside, 0);
        opener.join();
    }
    QApplication::processEvents();  // nothing comes for a form that is gone
}

TEST(PreviewFit, KeepsProportionsInsideOfTheFrame) {
    EXPECT_EQ(PreviewRenderer::Fit({6000, 4000}, {300, 300}), (imaging::Size{300, 200}));
    EXPECT_EQ(PreviewRenderer::Fit({4000, 6000}, {300, 300}), (imaging::Size{200, 300}));
    EXPECT_EQ(PreviewRenderer::Fit({65500, 1}, {300, 300}), (imaging::Size{300, 1}));
    EXPECT_EQ(PreviewRenderer::Fit({1, 65500}, {300, 300}), (imaging::Size{1, 300}));
}

TEST(MnemonicsOfADialog, PreferTheBeginningsOfWords) {
    Mnemonics mnemonics(QStringLiteral("oc"));
    EXPECT_EQ(mnemonics.Mark(QStringLiteral("Top")), QStringLiteral("&Top"));
    EXPECT_EQ(mnemonics.Mark(QStringLiteral("The crop")), QStringLiteral("T&he crop"));
    EXPECT_EQ(mnemonics.Mark(QStringLiteral("To & fro")), QStringLiteral("To && &fro"));
    EXPECT_EQ(mnemonics.Mark(QStringLiteral("oc")), QStringLiteral("oc"));
    EXPECT_EQ(mnemonics.Mark(QString()), QString());
}

}  // namespace
}  // namespace lumo::ui

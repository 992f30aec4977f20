// Thousands of things that a user could do, in a random but repeatable order; after each of them
// everything that always holds must hold. LUMO_MONKEY_ACTIONS=10000 asks for more of them, and
// LUMO_MONKEY_SEED=7 for others.

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <random>

#include "engine/editing.h"
#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "script/catalogue.h"
#include "script/names.h"
#include "support/test_images.h"
#include "ui/command_tree.h"
#include "ui/image_frame.h"
#include "ui/parameter_panel.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

namespace names = script::names;

constexpr int kActions = 2500;
constexpr int kSeed = 20240817;
constexpr double kLongestRun = 0.1;  // seconds; then it is aborted

class Monkey : public test::WindowTest {
  protected:
    int Below(int bound) { return bound <= 0 ? 0 : static_cast<int>(random_() % unsigned(bound)); }
    template <class List>
    auto AnyOf(const List& list) {
        return *(std::begin(list) + Below(static_cast<int>(std::size(list))));
    }

    void PutFiles() {
        for (int i = 0; i < 3; ++i) {
            const imaging::Image picture =
                test::PhotoLikeImage({40 + 13 * i, 30}, static_cast<unsigned>(i) + 1);
            const auto bytes = imaging::codecs::EncodeBmp(picture.View());
            ASSERT_TRUE(bytes && platform::MakeFolders(*this / "in"));
            ASSERT_TRUE(platform::WriteFile(*this / ("in/" + std::to_string(i) + ".bmp"), *bytes));
        }
        const std::string run = "START image loop (setup)\r\n32,2,\"\",\"" + (*this / "in") +
                                "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,"
                                "0,0,0,0.0,4.0,0,\r\nGamma adjust\r\n1,1.5,\r\nOutput setup\r\n"
                                "11,0,\"" +
                                (*this / "out") +
                                "\",0,png,1,0,\"\",\"\",0,0,1,\r\nEND image loop\r\n0\r\nEND\r\n";
        test::PutFile(*this / "run.whs", "BEGIN\r\n" + run);
        test::PutFile(*this / "sub.sbr", "SUBRT\r\nDespeckle\r\n0\r\nBlur\r\n1,25,\r\nEND\r\n");
        test::PutFile(*this / "bad.whs", "nothing");
        test::PutFile(*this / "bad.bmp", "nothing");
        test::PutFile(*this / "a.lst", "START\r\n" + (*this / "in/") + "\r\nEND\r\n");
        files_ = {*this / "run.whs", *this / "sub.sbr",  *this / "bad.whs",
                  *this / "bad.bmp", *this / "in/0.bmp", *this / "in/1.bmp",
                  *this / "a.lst",   *this / "new.whs",  *this / "saved.png"};
    }

    void Answer(QWidget* widget) {
        if (auto* box = qobject_cast<QMessageBox*>(widget)) {
            AnyOf(box->buttons())->click();
            return;
        }
        if (auto* file = qobject_cast<QFileDialog*>(widget); file && Below(4) != 0) {
            if (auto* name = file->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
                name->setText(ToQt(AnyOf(files_)));
            QMetaObject::invokeMethod(file, "accept");
            if (!file->isVisible()) return;
        }
        auto* dialog = qobject_cast<QDialog*>(widget);
        if (!dialog) {
            widget->close();
            return;
        }
        if (qobject_cast<QFileDialog*>(dialog) || Below(3) == 0)
            dialog->reject();
        else
            dialog->accept();
    }

    void Act1() {
        MainForm& form = Form();
        const int kind = Below(100);
        if (kind < 20) {
            const auto act = static_cast<Act>(Below(static_cast<int>(Act::Count)));
            what_ = "action " + FromQt(Action(act)->text());
            Action(act)->trigger();
        } else if (kind < 35) {
            const auto buttons = form.findChildren<QPushButton*>();
            QPushButton* button = AnyOf(buttons);
            what_ = "button " + FromQt(button->text());
            Click(button);
        } else if (kind < 50) {
            what_ = "row";
            ClickRow(Below(View().script.commands.Count()));
        } else if (kind < 62) {
            what_ = "command of the menu";
            const auto rows = script::Catalogue();
            const auto& row = rows[static_cast<std::size_t>(Below(script::kCommandCount))];
            const QString text = ToQt(script::NumberedMenuText(row));
            for (QAction* action : Window().findChildren<QAction*>())
                if (VisibleText(action->text()) == text) action->trigger();
        } else if (kind < 68) {
            what_ = "drag";
            form.scriptList->MoveSelectedTo({5, Below(form.scriptList->viewport()->height())});
        } else if (kind < 78) {
            what_ = "key";
            constexpr Qt::Key kKeys[] = {Qt::Key_Up,     Qt::Key_Down, Qt::Key_Return, Qt::Key_A,
                                         Qt::Key_Delete, Qt::Key_F2,   Qt::Key_Home,   Qt::Key_End,
                                         Qt::Key_Escape, Qt::Key_Tab,  Qt::Key_Right};
            QWidget* targets[] = {form.filter, form.tree, form.scriptList, form.leftFrame};
            QTest::keyClick(AnyOf(targets), AnyOf(kKeys),
                            Below(4) == 0 ? Qt::ControlModifier : Qt::NoModifier);
        } else if (kind < 82) {
            what_ = "filter";
            constexpr const char* kTexts[] = {"", "blur", "IF", "zzz", "rotate"};
            form.filter->setText(QString::fromLatin1(AnyOf(kTexts)));
        } else if (kind < 88) {
            what_ = "paste";
            constexpr const char* kTexts[] = {"Despeckle\r\n0",
                                              "START image loop (setup)\r\n32,0,",
                                              "END image loop\r\n0",
                                              "IF_START (condition)\r\n5,0,0,1.0,2.0,0,",
                                              "IF_END\r\n0",
                                              "nothing\r\nof the kind",
                                              "Crop",
                                              ""};
            QApplication::clipboard()->setText(QString::fromLatin1(AnyOf(kTexts)));
            Trigger(Act::Paste);
        } else if (kind < 91) {
            what_ = "size";
            Window().resize(500 + Below(900), 400 + Below(600));
        } else if (kind < 94) {
            what_ = "drop";
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(ToQt(AnyOf(files_)))});
            QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
            QApplication::sendEvent(&Window(), &drop);
        } else if (kind < 97) {
            what_ = "context menu";
            QWidget* targets[] = {form.tree, form.scriptList, form.leftFrame, form.rightFrame};
            Q_EMIT AnyOf(targets)->customContextMenuRequested({3, 3});
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                const auto items = menu->actions();
                QAction* item = AnyOf(items);
                menu->close();
                item->trigger();
            }
        } else {
            what_ = "run";
            Trigger(Below(2) == 0 ? Act::RunBatch : Act::RunOnSample);
        }
    }
    /// What others than the window do meanwhile.
    void Settle() {
        QApplication::processEvents();
        if (Window().IsRunning() &&
            !test::WaitUntil([&] { return !Window().IsRunning(); }, kLongestRun)) {
            View().run.keepRunning = 0;
            ASSERT_TRUE(WaitForEnd()) << "a run could not be aborted";
        }
        if (View().run.mode == engine::RunMode::WholeScript && Below(3) == 0)
            QTest::keyClick(&Window(), Qt::Key_A);
        for (QWidget* other : QApplication::topLevelWidgets())
            if (other != &Window() && other->isVisible() && other->windowType() == Qt::Window &&
                Below(3) == 0)
                other->close();
        if (!Window().isVisible()) Window().show();
        if (!platform::FileExists(*this / "in/0.bmp")) PutFiles();
    }

    void Check() {
        const engine::CLumoscriptView& view = View();
        const script::Script& script = view.script.commands;
        ASSERT_EQ(script.names.size(), script.params.size());
        int starts = 0, ends = 0;
        for (int i = 0; i < script.Count(); ++i) {
            const std::string& name = script.NameAt(i);
            starts += name == names::kStartImageLoop ? 1 : 0;
            ends += name == names::kEndImageLoop ? 1 : 0;
            ASSERT_TRUE(script::IsKnownCommand(name) || script::FindByName(name)) << name;
            if (script::FieldCountText(name) == "0") {
                ASSERT_EQ(script.ParamsAt(i), "0") << name;
            }
        }
        ASSERT_EQ(starts, ends);
        ASSERT_LE(starts, 1);
        ASSERT_LE(script.Find(names::kStartImageLoop), script.Find(names::kEndImageLoop));

        ASSERT_EQ(Form().scriptList->model()->rowCount(), script.Count());
        ASSERT_EQ(Form().scriptList->SelectedRow(), engine::SelectedCommand(view));
        const bool idle = !Window().IsRunning() && view.run.mode == engine::RunMode::Idle;
        ASSERT_EQ(Form().scriptList->isEnabled(), idle);
        const engine::EditButtons may = engine::UpdateButtons(view);
        ASSERT_EQ(Form().remove->isEnabled(), idle && may.remove);
        ASSERT_EQ(Form().edit->isEnabled(), idle && may.edit);
        ASSERT_EQ(Form().swapUp->isEnabled(), idle && may.swapUp);
        ASSERT_EQ(Form().swapDown->isEnabled(), idle && may.swapDown);
        ASSERT_EQ(Action(Act::Undo)->isEnabled(), idle && may.undo);
        if (idle) {
            ASSERT_FALSE(view.run.onLeftImage);
            ASSERT_FALSE(view.run.batchRunning);
            ASSERT_EQ(view.run.keepRunning, 1);
        }
        ASSERT_EQ(view.sample.left.IsEmpty(), Form().leftFrame->Picture().pixels.isNull());
        if (!idle) return;
        ASSERT_EQ(view.working.main.IsEmpty(), Form().rightFrame->Picture().pixels.isNull());
    }

    std::mt19937 random_;
    std::vector<std::string> files_;
    std::string what_;
};

int FromEnvironment(const char* name, int usual) {
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
}

TEST_F(Monkey, AnyActionsLeaveEverythingInOrder) {
    const int actions = FromEnvironment("LUMO_MONKEY_ACTIONS", kActions);
    random_.seed(static_cast<unsigned>(FromEnvironment("LUMO_MONKEY_SEED", kSeed)));
    UseShippedFilesOfItsOwn();
    Start();
    PutFiles();
    answers.Always([this](QWidget* widget) { Answer(widget); });
    QElapsedTimer clock;
    clock.start();
    int done = 0;
    for (; done < actions; ++done) {
        Act1();
        Settle();
        Check();
        if (HasFatalFailure()) {
            ADD_FAILURE() << "behind action " << done << ", " << what_;
            break;
        }
    }
    std::printf("%d actions in %.1f s\n", done, clock.elapsed() / 1000.0);
    answers.Always(nullptr);
    View().script.modified = false;
}

}  // namespace
}  // namespace lumo::ui

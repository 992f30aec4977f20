// The two frames: opening, copying, testing, saving, looking closer.

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include "engine/editing.h"
#include "engine/sample_tests.h"
#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "script/names.h"
#include "support/codec_files.h"
#include "support/content_files.h"
#include "support/test_images.h"
#include "ui/command_tree.h"
#include "ui/image_frame.h"
#include "ui/image_window.h"
#include "ui/parameter_panel.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

using testing::ElementsAre, testing::HasSubstr, testing::StartsWith;

class SampleWindow : public test::WindowTest {
  protected:
    SampleWindow() {
        Start();
        picture_ = test::PhotoLikeImage({320, 200});
        Put(*this / "sample.bmp", picture_);
    }

    static void Put(const std::string& path, const imaging::Image& picture) {
        const auto bytes = imaging::codecs::EncodeBmp(picture.View());
        ASSERT_TRUE(bytes);
        ASSERT_TRUE(platform::WriteFile(path, *bytes));
    }
    void OpenSample() {
        answers.Pick(*this / "sample.bmp");
        Click(Form().open);
        ASSERT_EQ(View().sample.path, *this / "sample.bmp");
    }
    testing::AssertionResult RightIs(const imaging::Image& picture) {
        return test::SamePixels(View().working.main.View(), picture.View());
    }
    testing::AssertionResult LeftIs(const imaging::Image& picture) {
        return test::SamePixels(View().sample.left.View(), picture.View());
    }
    void Negate() {
        SetScript({"START image loop (setup)", "0", "Negative - inverted rgb", "0",
                   "END image loop", "0"});
        ClickRow(1);
        Click(Form().testOne);
    }
    ImageWindow* Enlarged() { return Window().findChild<ImageWindow*>(); }

    imaging::Image picture_;
};

TEST_F(SampleWindow, TheDefaultSampleIsThereAtStart) {
    EXPECT_THAT(View().sample.path, testing::EndsWith("Frame1.jpg"));
    EXPECT_FALSE(Form().leftFrame->Picture().pixels.isNull());
    EXPECT_FALSE(Form().rightFrame->Picture().pixels.isNull());
    EXPECT_EQ(View().settings.recentPictures[0], "");
}

TEST_F(SampleWindow, OpensIntoBothFrames) {
    OpenSample();
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_TRUE(RightIs(picture_));
    EXPECT_EQ(Form().leftFrame->Picture().source, (imaging::Size{320, 200}));
    EXPECT_EQ(Form().leftFrame->Picture().pixels, Form().rightFrame->Picture().pixels);
    EXPECT_EQ(View().settings.recentPictures[0], *this / "sample.bmp");
    EXPECT_EQ(answers.shown.back(), "Get sample photo - open image file");
}

TEST_F(SampleWindow, AFailureLeavesTheFormerPicture) {
    OpenSample();
    ASSERT_TRUE(platform::WriteFile(*this / "broken.png", test::HeadOfPng(picture_.View())));
    answers.Pick(*this / "broken.png");
    answers.Expect("Open image failure 1342: ", QMessageBox::Ok);
    Click(Form().open);
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_EQ(View().sample.path, *this / "sample.bmp");
    EXPECT_EQ(View().settings.recentPictures[0], *this / "sample.bmp");
    test::PutFile(*this / "text.jpg", "no picture at all");
    answers.Pick(*this / "text.jpg");
    answers.Expect("Open image failure 1341: ", QMessageBox::Ok);
    Click(Form().open);
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_FALSE(Form().leftFrame->Picture().pixels.isNull());
}

TEST_F(SampleWindow, TestOneRunsTheSelectedCommandAndGoesOn) {
    OpenSample();
    Negate();
    EXPECT_EQ(Form().scriptList->SelectedRow(), 2);
    EXPECT_EQ(View().working.main.View().Pixel(5, 5).red, 255 - picture_.View().Pixel(5, 5).red);
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_NE(Form().leftFrame->Picture().pixels, Form().rightFrame->Picture().pixels);
    Click(Form().testOne);  // on the last command: on to index 1
    EXPECT_EQ(Form().scriptList->SelectedRow(), 1);
    View().working.main.Reset();
    answers.Expect("You must have an image...?", QMessageBox::Ok);
    Press(&Window(), Qt::Key_F6);
}

TEST_F(SampleWindow, CopiesBetweenTheFrames) {
    OpenSample();
    Negate();
    const imaging::Image negative = test::Copy(View().working.main.View());
    Click(Form().copyToLeft);
    EXPECT_TRUE(LeftIs(negative));
    Click(Form().reload);  // the picture as first opened
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_TRUE(RightIs(negative));
    Click(Form().copyToRight);
    EXPECT_TRUE(RightIs(picture_));
    EXPECT_EQ(Form().leftFrame->Picture().pixels, Form().rightFrame->Picture().pixels);
}

TEST_F(SampleWindow, TestAllWalksTheLoopWithAPause) {
    OpenSample();
    SetScript({"Flip - vertical", "0", "START image loop (setup)", "0", "Negative - inverted rgb",
               "0", "Loop Start (by number)", "1,5,", "Negative - inverted rgb", "0",
               "Loop End (by number)", "0", "Negative - inverted rgb", "0", "END image loop", "0",
               "Flip - vertical", "0"});
    QElapsedTimer clock;
    clock.start();
    Click(Form().testAll);
    EXPECT_EQ(Status(), "Press A key to abort");
    EXPECT_FALSE(Form().scriptList->isEnabled());
    EXPECT_FALSE(Form().run->isEnabled());
    ASSERT_TRUE(test::WaitUntil([&] { return Form().scriptList->isEnabled(); }));
    EXPECT_GE(clock.elapsed(), 5 * 450);  // timers may be a little early
    // Three negatives: the loop's body once, what stands outside of the markers not at all.
    imaging::Image expected = test::Copy(picture_.View());
    for (std::uint8_t& byte : expected.View().Bytes()) byte = static_cast<std::uint8_t>(255 - byte);
    EXPECT_TRUE(RightIs(expected));
    EXPECT_EQ(Form().scriptList->SelectedRow(), 6);
    EXPECT_EQ(Status(), "");
}

TEST_F(SampleWindow, KeyAEndsTestAll) {
    OpenSample();
    SetScript({"START image loop (setup)", "0", "Negative - inverted rgb", "0", "Despeckle", "0",
               "Despeckle", "0", "END image loop", "0"});
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_Escape}) {
        Click(Form().testAll);
        EXPECT_FALSE(Form().scriptList->isEnabled());
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &Window(), key);
        EXPECT_TRUE(Form().scriptList->isEnabled());
        EXPECT_EQ(Form().scriptList->SelectedRow(), 1);
        EXPECT_EQ(View().run.mode, engine::RunMode::Idle);
    }
    EXPECT_TRUE(RightIs(picture_));  // twice the first step
}

TEST_F(SampleWindow, TestAllRefusesOpenBlocks) {
    SetScript({"START image loop (setup)", "0", "IF_END", "0", "END image loop", "0"});
    answers.Expect(
        "IF_END cmd without IF_START cmd. This may cause unpreditable results. Please "
        "correct!",
        QMessageBox::Ok);
    Click(Form().testAll);
    EXPECT_TRUE(Form().scriptList->isEnabled());
}

TEST_F(SampleWindow, KeyAEndsTestAllFromItsMessageToo) {
    SetScript({"START image loop (setup)", "0", "Loop Start (by number)", "1,2,",
               "Loop End (by number)", "0", "END image loop", "0"});
    View().working.main.Reset();
    answers.Do([](QWidget* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(FromQt(box->text()), "rgbBuf2=NULL 1");
        QTest::keyClick(box, Qt::Key_A);
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    Click(Form().testAll);
    EXPECT_EQ(View().run.mode, engine::RunMode::Idle);
    EXPECT_TRUE(Form().scriptList->isEnabled());
    QTest::qWait(600);  // no further step, and no further message
    EXPECT_EQ(Form().scriptList->SelectedRow(), 1);
}

TEST_F(SampleWindow, ASubroutineThatTestAllLoadsIsShownAndAskedAbout) {
    test::PutFile(View().settings.folders.subroutines + "/neg.sbr",
                  "SUBRT\r\nNegative - inverted rgb\r\n0\r\nEND\r\n");
    SetScript({"START image loop (setup)", "0", "SUBROUTINE Execute", "1,neg,", "Despeckle", "0",
               "END image loop", "0"});
    Click(Form().testAll);
    EXPECT_EQ(Rows().size(), 7U);
    const auto selected = [this](int row) {
        return test::WaitUntil([&] { return Form().scriptList->SelectedRow() == row; });
    };
    EXPECT_TRUE(selected(5));  // inside of the subroutine
    EXPECT_FALSE(Form().scriptList->visualRect(Form().scriptList->currentIndex()).isEmpty());
    ASSERT_TRUE(test::WaitUntil([&] { return Form().scriptList->isEnabled(); }));
    EXPECT_TRUE(Window().isWindowModified());
    Trigger(Act::Undo);
    EXPECT_EQ(Rows().size(), 4U);
}

TEST_F(SampleWindow, ClosingDuringTestAllEndsTheWalk) {
    SetScript({"START image loop (setup)", "0", "Despeckle", "0", "END image loop", "0"});
    Click(Form().testAll);
    Window().close();
    EXPECT_FALSE(Window().isVisible());
    EXPECT_FALSE(engine::IsTestAllActive(View()));
    EXPECT_EQ(View().run.mode, engine::RunMode::Idle);
}

TEST_F(SampleWindow, SavesFramesInTheFormatOfTheName) {
    OpenSample();
    Negate();
    answers.Pick(*this / "right.png");
    Click(Form().saveAs);
    const auto right = platform::ReadFile(*this / "right.png");
    ASSERT_TRUE(right);
    const auto decoded = imaging::codecs::Decode(*right, imaging::codecs::Format::Unknown);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->format, imaging::codecs::Format::Png);
    EXPECT_TRUE(RightIs(decoded->image));
    answers.Pick(*this / "left.bmp");
    Trigger(Act::SaveLeftImage);
    EXPECT_EQ(test::FileText(*this / "left.bmp"), test::FileText(*this / "sample.bmp"));
    answers.Pick(*this / "picture.xyz");
    answers.Expect("Unsupported file type!", QMessageBox::Ok);
    Click(Form().saveAs);
    EXPECT_EQ(test::FileText(*this / "picture.xyz"), "<missing>");
}

TEST_F(SampleWindow, ShowsTheSampleEnlarged) {
    OpenSample();
    QTest::mouseDClick(Form().rightFrame, Qt::LeftButton);
    ImageWindow* window = Enlarged();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->Mode(), ImageWindow::Show::After);
    const double fitting = window->Zoom();
    QTest::keyClick(window, Qt::Key_Plus);
    EXPECT_GT(window->Zoom(), fitting);
    QTest::keyClick(window, Qt::Key_1);
    EXPECT_EQ(window->Zoom(), 1);
    QTest::keyClick(window, Qt::Key_0);
    EXPECT_EQ(window->Zoom(), fitting);
    QTest::keyClick(window, Qt::Key_S);
    EXPECT_EQ(window->Mode(), ImageWindow::Show::Split);
    QTest::keyClick(window, Qt::Key_Space);
    EXPECT_EQ(window->Mode(), ImageWindow::Show::Before);
    EXPECT_FALSE(window->grab().isNull());
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Form().leftFrame->setFocus();
    QTest::keyClick(Form().leftFrame, Qt::Key_Return);
    ASSERT_NE(Enlarged(), nullptr);
    EXPECT_EQ(Enlarged()->Mode(), ImageWindow::Show::Before);
}

TEST_F(SampleWindow, SplitShowsBeforeOnTheLeftAndAfterOnTheRight) {
    const imaging::Image red = test::FlatImage({40, 20}, {255, 0, 0});
    const imaging::Image blue = test::FlatImage({40, 20}, {0, 0, 255});
    ImageWindow window(nullptr, red.View(), blue.View(), ImageWindow::Show::Split);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.resize(400, 400);
    window.show();
    const auto at = [&](int x, int y) { return window.grab().toImage().pixelColor(x, y).rgb(); };
    EXPECT_EQ(at(100, 200), qRgb(255, 0, 0));
    EXPECT_EQ(at(300, 200), qRgb(0, 0, 255));
    QTest::mousePress(&window, Qt::LeftButton, {}, {200, 300});
    QTest::mouseMove(&window, {80, 300});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {80, 300});
    EXPECT_EQ(at(100, 200), qRgb(0, 0, 255));
    EXPECT_EQ(at(50, 200), qRgb(255, 0, 0));
    for (int i = 0; i < 10; ++i) QTest::keyClick(&window, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(at(155, 200), qRgb(255, 0, 0));
    EXPECT_EQ(at(165, 200), qRgb(0, 0, 255));
    for (int i = 0; i < 30; ++i) QTest::keyClick(&window, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(at(10, 200), qRgb(0, 0, 255));
}

TEST_F(SampleWindow, EnlargedPixelsAreSquares) {
    imaging::Image two = test::FlatImage({2, 1}, {10, 20, 30});
    two.View().SetPixel(1, 0, {200, 100, 50});
    ImageWindow window(nullptr, two.View(), two.View(), ImageWindow::Show::After);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.resize(100, 100);
    window.show();
    const QImage shown = window.grab().toImage();
    EXPECT_EQ(shown.pixelColor(49, 60).rgb(), qRgb(10, 20, 30));
    EXPECT_EQ(shown.pixelColor(50, 60).rgb(), qRgb(200, 100, 50));
}

TEST_F(SampleWindow, TellsOfImageAndFile) {
    OpenSample();
    const auto textOf = [this](Act act) {
        Trigger(act);
        const QList<QPlainTextEdit*> texts = Window().findChildren<QPlainTextEdit*>();
        return texts.isEmpty() ? std::string() : FromQt(texts.back()->toPlainText());
    };
    EXPECT_THAT(textOf(Act::ImageInfo), HasSubstr("Width: 320 pixels\nHeight: 200 pixels"));
    const std::string file = textOf(Act::FileProperties);
    EXPECT_THAT(file, StartsWith("Name: sample.bmp\n"));
    EXPECT_THAT(file, HasSubstr("Size: 192 054 bytes"));
    EXPECT_THAT(textOf(Act::ExifInfo),
                HasSubstr("sample.bmp did not contain any EXIF information"));
    EXPECT_THAT(textOf(Act::IptcInfo),
                HasSubstr("sample.bmp did not contain any JPG comments or IPTC information"));
    EXPECT_EQ(FromQt(Window().findChildren<QPlainTextEdit*>().back()->window()->windowTitle()),
              "Metadata display");
}

TEST_F(SampleWindow, RemembersTheDefaultSample) {
    OpenSample();
    Trigger(Act::SetDefaultImage);
    CloseWindow();
    Start();
    EXPECT_EQ(View().sample.path, *this / "sample.bmp");
    EXPECT_EQ(View().settings.recentPictures[0], *this / "sample.bmp");
}

TEST_F(SampleWindow, RecentPicturesOpenAgainAndLoseTheirPlaceWhenGone) {
    OpenSample();
    Put(*this / "other.bmp", test::FlatImage({9, 9}, {1, 2, 3}));
    answers.Pick(*this / "other.bmp");
    Click(Form().open);
    EXPECT_THAT(View().settings.recentPictures,
                ElementsAre(*this / "other.bmp", *this / "sample.bmp", "", ""));
    const auto press = [this](int n) {
        const QString beginning = QStringLiteral("&%1 ").arg(n);
        for (QAction* action : Window().findChildren<QAction*>())
            if (action->isVisible() && action->text().startsWith(beginning) &&
                action->statusTip().startsWith(QStringLiteral("Opens the image"))) {
                action->trigger();
                return;
            }
        ADD_FAILURE() << "no item " << n;
    };
    press(2);
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_EQ(View().settings.recentPictures[0], *this / "sample.bmp");
    ASSERT_TRUE(platform::RemoveFile(*this / "other.bmp"));
    answers.Expect("Open image failure 1341: ", QMessageBox::Ok);
    press(2);
    EXPECT_THAT(View().settings.recentPictures, ElementsAre(*this / "sample.bmp", "", "", ""));
}

// ---- Dropped files ------------------------------------------------------------------------------

class Drop : public SampleWindow {
  protected:
    /// A drop on a control of the window, or on the window itself.
    void DropFiles(const std::vector<std::string>& paths, QWidget* on = nullptr) {
        if (!on) on = &Window();
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string& path : paths) urls += QUrl::fromLocalFile(ToQt(path));
        data.setUrls(urls);
        data.setText(urls.front().toString());  // as file managers do
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(on, &enter);
        QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(on, &drop);
        QApplication::processEvents();  // it is taken up when the drop is over
    }
};

TEST_F(Drop, AnImageBecomesTheSample) {
    Put(*this / "photo.JPEG", picture_);  // the name decides; the content is a BMP
    DropFiles({*this / "photo.JPEG"});
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_EQ(View().settings.recentPictures[0], *this / "photo.JPEG");
}

TEST_F(Drop, AnImageThatCannotBeOpenedLeavesTheFormerPicture) {
    OpenSample();
    ASSERT_TRUE(platform::WriteFile(*this / "broken.png", test::HeadOfPng(picture_.View())));
    for (const char* name : {"broken.png", "gone.png"}) {
        answers.Expect("Open image failure 1341: ", QMessageBox::Ok);
        DropFiles({*this / name});
    }
    EXPECT_TRUE(LeftIs(picture_));
    EXPECT_EQ(View().settings.recentPictures[0], *this / "sample.bmp");
}

TEST_F(Drop, AFileDroppedOnAnyControlIsForTheWindow) {
    int width = 10;
    for (QWidget* control : std::initializer_list<QWidget*>{
             Form().filter, Form().tree->viewport(), Form().scriptList->viewport(),
             Form().leftFrame, Form().rightFrame, Form().panel, Form().run}) {
        const std::string path = *this / (std::to_string(++width) + ".bmp");
        Put(path, test::RandomImage({width, 8}, 1));
        DropFiles({path}, control);
        EXPECT_EQ(View().sample.left.Width(), width) << FromQt(control->accessibleName());
    }
    EXPECT_EQ(FromQt(Form().filter->text()), "");
}

TEST_F(Drop, AScriptIsOpened) {
    const std::string path = (test::ShareFolder() / "Scripts/Thumbnails.whs").string();
    DropFiles({path});
    EXPECT_EQ(Rows().size(), 6U);
    EXPECT_EQ(View().settings.recentScripts[0], path);
    answers.Expect("Unable to find or open named script file, check file path?", QMessageBox::Ok);
    DropFiles({*this / "gone.whs"});
    EXPECT_EQ(Rows().size(), 6U);
}

TEST_F(Drop, OtherFilesAreRefusedAndSeveralIgnored) {
    answers.Expect("Unsupported file type!", QMessageBox::Ok);
    DropFiles({*this / "words.doc"});
    for (const char* name : {"sub.sbr", "images.lst"}) {
        answers.Expect("Unsupported file type!", QMessageBox::Ok);
        test::PutFile(*this / name, "SUBRT\r\nEND\r\n");
        DropFiles({*this / name});
    }
    EXPECT_EQ(Rows().size(), 3U);
    DropFiles({*this / "sample.bmp", *this / "sample.bmp"});
    DropFiles({*this / "nodot"});
    EXPECT_THAT(View().sample.path, testing::EndsWith("Frame1.jpg"));
}

TEST_F(SampleWindow, ALargeSampleIsShownInBothFrames) {
    const imaging::Image large = test::PhotoLikeImage({3000, 2000});
    const auto bytes = imaging::codecs::EncodeJpeg(large.View(), {});
    ASSERT_TRUE(bytes);
    ASSERT_TRUE(platform::WriteFile(*this / "large.jpg", *bytes));
    answers.Pick(*this / "large.jpg");
    Trigger(Act::OpenImage);
    EXPECT_EQ(Form().leftFrame->Picture().source, (imaging::Size{3000, 2000}));
    EXPECT_EQ(Form().leftFrame->Picture().pixels, Form().rightFrame->Picture().pixels);
}

}  // namespace
}  // namespace lumo::ui

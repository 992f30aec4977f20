#include "ui/form_layout.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include "imaging/resample.h"
#include "support/test_images.h"
#include "ui/display_picture.h"
#include "ui/elided_label.h"
#include "ui/image_frame.h"
#include "ui/main_form.h"
#include "ui/parameter_panel.h"
#include "ui/progress_panel.h"
#include "ui/qt_application.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

TEST(FormLayout, IsChosenByTheWidthOfTheScreen) {
    EXPECT_EQ(LayoutForScreen(640).basisWidth, 411);
    EXPECT_EQ(LayoutForScreen(649).basisWidth, 411);
    EXPECT_EQ(LayoutForScreen(650).basisWidth, 480);
    EXPECT_EQ(LayoutForScreen(800).basisWidth, 480);
    EXPECT_EQ(LayoutForScreen(809).basisWidth, 480);
    EXPECT_EQ(LayoutForScreen(810).basisWidth, 590);
    EXPECT_EQ(LayoutForScreen(1024).basisWidth, 590);
    EXPECT_EQ(LayoutForScreen(640).basisHeight, 198);
    EXPECT_EQ(LayoutForScreen(800).basisHeight, 260);
    EXPECT_EQ(LayoutForScreen(1024).basisHeight, 325);
}

TEST(FormLayout, ScalesInWholeNumbers) {
    FormLayout layout{.basisWidth = 411, .basisHeight = 198};
    layout.places[0] = {3, 16, 92, 179};
    EXPECT_EQ(PlaceOf(layout, Place::Filter, {640, 400}), QRect(4, 32, 143, 361));
    EXPECT_EQ(PlaceOf(layout, Place::Filter, {411, 198}), QRect(3, 16, 92, 179));
}

/// Pairs of controls of which one lies inside of the other on purpose.
bool MayOverlap(Place a, Place b) {
    const auto inGroup = [](Place place) {
        return place >= Place::ImageGroup && place <= Place::RunOnSample;
    };
    return (a == Place::ImageGroup && inGroup(b)) || (b == Place::ImageGroup && inGroup(a));
}

TEST(FormLayout, NothingOverlapsOrLeavesTheForm) {
    for (const int width : {640, 800, 1024, 1920}) {
        const FormLayout& layout = LayoutForScreen(width);
        for (const QSize client : {QSize(480, 300), QSize(640, 400), QSize(1919, 1003)}) {
            for (int i = 0; i < static_cast<int>(Place::Count); ++i) {
                const QRect one = PlaceOf(layout, static_cast<Place>(i), client);
                EXPECT_TRUE(QRect(QPoint(0, 0), client).contains(one)) << width << ": " << i;
                EXPECT_GT(one.width(), 10) << width << ": " << i;
                for (int k = 0; k < i; ++k) {
                    if (MayOverlap(static_cast<Place>(i), static_cast<Place>(k))) continue;
                    EXPECT_FALSE(one.intersects(PlaceOf(layout, static_cast<Place>(k), client)))
                        << width << ": " << i << " and " << k;
                }
            }
        }
    }
}

TEST(FormLayout, TextsOfButtonsHaveRoom) {
    test::TestApplication();
    MainForm form;
    for (const auto& [screen, client] :
         {std::pair{640, QSize(640, 398)}, std::pair{800, QSize(800, 518)},
          std::pair{1024, QSize(1024, 686)}, std::pair{1920, QSize(1920, 998)}}) {
        form.resize(client);
        form.PlaceControls(screen);
        for (const QPushButton* button : form.findChildren<QPushButton*>()) {
            const QFontMetrics metrics = button->fontMetrics();
            const QString text = VisibleText(button->text());
            EXPECT_LE(metrics.horizontalAdvance(text) + 6, button->width())
                << screen << ": " << FromQt(text);
            EXPECT_LE(metrics.height(), button->height()) << screen << ": " << FromQt(text);
        }
        for (const QLabel* label : form.progress->findChildren<QLabel*>())
            EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->width())
                << screen << ": " << FromQt(label->text());
    }
}

TEST(FitIntoFrame, KeepsTheShapeInTruncatedWholeNumbers) {
    using imaging::Size;
    EXPECT_EQ(FitIntoFrame({1, 1}, {100, 100}), (Size{96, 96}));
    EXPECT_EQ(FitIntoFrame({640, 480}, {204, 204}), (Size{200, 150}));
    EXPECT_EQ(FitIntoFrame({480, 640}, {204, 204}), (Size{150, 200}));
    // 100 high, one more than fits: now the height decides.
    EXPECT_EQ(FitIntoFrame({100, 101}, {104, 100}), (Size{95, 96}));
    EXPECT_EQ(FitIntoFrame({100, 100}, {104, 100}),
              (Size{100, 100}));  // it still counts as fitting
    EXPECT_EQ(FitIntoFrame({65500, 1}, {104, 100}), (Size{100, 1}));
    EXPECT_EQ(FitIntoFrame({1, 65500}, {104, 100}), (Size{1, 96}));
    EXPECT_EQ(FitIntoFrame({0, 0}, {104, 100}), (Size{}));
    EXPECT_EQ(FitIntoFrame({10, 10}, {2, 2}), (Size{1, 1}));
}

TEST(DisplayPicture, IsBilinearWhetherItGrowsOrShrinks) {
    for (const imaging::Size size : {imaging::Size{3, 2}, {640, 333}}) {
        const imaging::Image picture = test::RandomImage(size, 7);
        const DisplayPicture shown = MakeDisplayPicture(picture.View(), {104, 90});
        EXPECT_EQ(shown.source, size);
        const imaging::Size fit = FitIntoFrame(size, {104, 90});
        auto expected = *imaging::Image::TryCreate(fit);
        ASSERT_TRUE(imaging::ResizeImage(picture.View(), expected.View(),
                                         imaging::ResampleFilter::Bilinear));
        EXPECT_EQ(shown.pixels, ToQImage(expected.View())) << size.width;
    }
    EXPECT_TRUE(MakeDisplayPicture({}, {104, 90}).pixels.isNull());
}

TEST(FileFilter, SpeaksQt) {
    EXPECT_EQ(FromQt(FileFilter("Lumoscript log file (*.log)|*.log|All files (*.*)|*.*||")),
              "Lumoscript log file (*.[lL][oO][gG]);;All files (*)");
    EXPECT_EQ(FromQt(FileFilter("TIF|*.tif;*.tiff||")), "TIF (*.[tT][iI][fF] *.[tT][iI][fF][fF])");
    EXPECT_EQ(FromQt(VisibleText(QStringLiteral("Sa&ve && close"))), "Save & close");
}

}  // namespace
}  // namespace lumo::ui

// What texts look like, letter by letter.

#include <gtest/gtest.h>

#include "support/golden.h"
#include "text_fixture.h"

namespace lumo::ops::overlays {
namespace {

class TextGolden : public test::TextCommandTest {
  protected:
    /// Exact where letters are fitted to pixels by the same libraries. Others may shift an edge.
    static test::GoldenTolerance Tolerance(bool smooth) {
        if (test::FontLibrariesOfGoldens())
            return smooth ? test::GoldenTolerance{.byte = 2} : test::GoldenTolerance{};
        return {.byte = 40, .otherShare = 0.02};
    }
    static imaging::Image Written(const engine::Command& command, std::string_view params,
                                  imaging::Size size) {
        test::CommandRunner runner(test::CoordinateImage(size));
        EXPECT_TRUE(runner.Run(command, params));
        return std::move(runner.Main());
    }
};

constexpr const char* kLine =
    "\"Hamburg caf\u00E9 \u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627 "
    "\u65E5\u672C\u8A9E \uD55C\uAD6D\uC5B4\"";

TEST_F(TextGolden, Line) {
    for (const char* smooth : {"0", "1"})
        for (const char* noBackground : {"0", "1"}) {
            const std::string params = std::string("21,2,20,") + kLine + "," + noBackground +
                                       ",30,30,60,10,0,-24,400,F,F,F,Lumo Test Sans,255,255,0," +
                                       smooth + ",0,80,";
            EXPECT_TRUE(test::MatchesGolden(
                Written(kTextOverlayCommand, params, {480, 50}).View(),
                std::string("text/line-") + (*smooth == '1' ? "smooth" : "aliased") +
                    (*noBackground == '1' ? "-bare" : "-block") + ".png",
                Tolerance(*smooth == '1')));
        }
}

TEST_F(TextGolden, Styles) {
    for (const char* smooth : {"0", "1"}) {
        test::CommandRunner runner(test::FlatImage({300, 150}, {240, 240, 230}));
        int y = 0;
        for (const char* style :
             {"400,F,F,F", "700,F,F,F", "400,T,F,F", "400,F,T,F", "700,F,F,T", "400,T,T,T"}) {
            ASSERT_TRUE(runner.Run(kTextOverlayCommand,
                                   "21,2," + std::to_string(y) +
                                       ",\"Jagged style, 0.5 g\",1,0,0,0,10,0,-20," + style +
                                       ",Lumo Test Sans,20,20,120," + smooth + ",0,100,"));
            y += 16;
        }
        EXPECT_TRUE(test::MatchesGolden(
            runner.Main().View(),
            std::string("text/styles-") + (*smooth == '1' ? "smooth" : "aliased") + ".png",
            Tolerance(*smooth == '1')));
    }
}

TEST_F(TextGolden, Lines) {
    for (const char* smooth : {"0", "1"}) {
        const std::string params =
            std::string(
                "18,20,12,0,200,220,200,-18,700,F,F,F,Lumo Test Sans,120,0,0,"
                "\"Sample $(size)$x$xDate: today, 7/16$x\u05E2\u05D1\u05E8\u05D9\u05EA "
                "1948\",") +
            smooth + ",70,";
        EXPECT_TRUE(test::MatchesGolden(
            Written(kTextOverlayAbsoluteCommand, params, {260, 130}).View(),
            std::string("text/lines-") + (*smooth == '1' ? "smooth" : "aliased") + ".png",
            Tolerance(*smooth == '1')));
    }
}

TEST_F(TextGolden, LargeLetters) {
    for (const char* smooth : {"0", "1"}) {
        const std::string params = std::string(
                                       "21,0,0,\"R\u00E9\u0628\u0628\",1,0,0,0,60,1,-24,400,F,T,F,"
                                       "Lumo Test Sans,255,255,255,") +
                                   smooth + ",0,100,";
        EXPECT_TRUE(test::MatchesGolden(
            Written(kTextOverlayCommand, params, {620, 260}).View(),
            std::string("text/large-") + (*smooth == '1' ? "smooth" : "aliased") + ".png",
            Tolerance(*smooth == '1')));
    }
}

}  // namespace
}  // namespace lumo::ops::overlays

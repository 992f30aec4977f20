#include "imaging/draw_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "imaging/last_error.h"
#include "support/ink.h"
#include "support/test_fonts.h"

namespace lumo::imaging {
namespace {

using test::InkBox;
using test::InkSum;
using test::WhiteOnBlack;

constexpr Smoothing kBoth[] = {Smoothing::Aliased, Smoothing::Smooth};
constexpr const char* kLatin = "Lumo Test Sans";
constexpr Size kPaper{400, 120};

// Of the shipped font, in units of 1/2048 of its size.
constexpr double kUnits = 2048, kAscent = 1901, kDescent = 483, kAdvanceOfN = 1298,
                 kCapitalHeight = 1493;

class DrawText : public testing::Test {
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(test::HasTestFonts()); }

    static TextFont Font(int height) { return {.face = kLatin, .height = height}; }
    static Size Measured(std::string_view text, const TextFont& font, Smoothing smoothing) {
        const auto size = GetTextLineSize2(text, font, smoothing);
        EXPECT_TRUE(size);
        return size.value_or(Size{});
    }
    static Image Drawn(std::string_view text, int height, Smoothing smoothing, int x = 0,
                       int y = 0) {
        return WhiteOnBlack(kPaper, text, Font(height), smoothing, x, y);
    }
};

// The picture moved by (x, y), black coming in.
Image Moved(const Image& picture, int x, int y) {
    Image moved = test::FlatImage(picture.Extent(), test::kNoInk);
    for (int row = std::max(y, 0); row < std::min(picture.Height(), picture.Height() + y); ++row)
        for (int column = std::max(x, 0); column < std::min(picture.Width(), picture.Width() + x);
             ++column)
            moved.View().SetPixel(column, row, picture.View().Pixel(column - x, row - y));
    return moved;
}

// The brighter byte of the two at each place.
Image Together(const Image& a, const Image& b) {
    Image both = test::Copy(a.View());
    for (std::size_t i = 0; i < both.View().Bytes().size(); ++i)
        both.View().Bytes()[i] = std::max(both.View().Bytes()[i], b.View().Bytes()[i]);
    return both;
}

std::set<int> RedValues(const Image& picture) {
    std::set<int> values;
    for (int y = 0; y < picture.Height(); ++y)
        for (int x = 0; x < picture.Width(); ++x) values.insert(picture.View().Pixel(x, y).red);
    return values;
}

TEST_F(DrawText, SmoothWidthsAreTheAdvancesOfTheFont) {
    for (const int height : {7, 24, 80, 199, 300, 2500, 100'000}) {
        const double expected = 10 * height * kAdvanceOfN / kUnits;
        const Size size = Measured("nnnnnnnnnn", Font(-height), Smoothing::Smooth);
        EXPECT_NEAR(size.width, expected, 1.0 + expected / 2000) << height;
        EXPECT_NEAR(size.height, height * (kAscent + kDescent) / kUnits, 1.0 + height / 2000.0);
    }
    EXPECT_EQ(Measured("nnnnnnnnnn", Font(-24), Smoothing::Smooth), (Size{153, 28}));
}

TEST_F(DrawText, AliasedAdvancesAreWholePixels) {
    const int one = Measured("n", Font(-24), Smoothing::Aliased).width;
    EXPECT_NEAR(one, 24 * kAdvanceOfN / kUnits, 1.0);
    EXPECT_EQ(Measured("nnnnnnnnnn", Font(-24), Smoothing::Aliased).width, 10 * one);
}

TEST_F(DrawText, MeasuredAtFourTimesTheHeightItIsFourTimesAsLarge) {
    for (const int height : {9, 12, 24, 51}) {
        const Size once = Measured("Sample 640x480", Font(-height), Smoothing::Smooth);
        const Size four = Measured("Sample 640x480", Font(-4 * height), Smoothing::Smooth);
        EXPECT_NEAR(four.width / 4.0, once.width, 1.0);
        EXPECT_NEAR(four.height / 4.0, once.height, 1.0);
    }
}

TEST_F(DrawText, HeightsNameTheLettersTheCellOrTheDefault) {
    for (const Smoothing smoothing : kBoth) {
        EXPECT_EQ(Measured("Hxg", Font(0), smoothing), Measured("Hxg", Font(-16), smoothing));
        for (const int cell : {20, 47, 150, 900})
            EXPECT_NEAR(Measured("Hxg", Font(cell), smoothing).height, cell, 1);
        for (const int height : {20, 60, 90, 130}) {
            const Image letter = Drawn("H", -height, smoothing, 20);
            EXPECT_NEAR(InkBox(letter).Extent().height, height * kCapitalHeight / kUnits, 1.5);
        }
    }
}

TEST_F(DrawText, AnEmptyTextHasNoWidthButALine) {
    for (const Smoothing smoothing : kBoth) {
        const Size line = Measured("x", Font(-24), smoothing);
        EXPECT_EQ(Measured("", Font(-24), smoothing), (Size{0, line.height}));
        EXPECT_EQ(InkSum(Drawn("", -24, smoothing)), 0U);
        EXPECT_EQ(InkSum(Drawn("   ", -24, smoothing)), 0U);
    }
}

TEST_F(DrawText, InkLiesInTheMeasuredBoxAtItsPlace) {
    for (const Smoothing smoothing : kBoth)
        for (const char* text : {"Hxg", "Put message here", "WAVE AVATAR", "\u00C5\u00E9\u00FC"}) {
            const Size size = Measured(text, Font(-24), smoothing);
            const Rect ink = InkBox(Drawn(text, -24, smoothing, 30, 40));
            EXPECT_GE(ink.left, 30);
            EXPECT_LE(ink.left, 34);
            EXPECT_LE(ink.right, 30 + size.width + 1) << text;
            EXPECT_GE(ink.right, 30 + size.width - 4) << text;
            EXPECT_GE(ink.top, 40 - 1);
            EXPECT_LE(ink.bottom, 40 + size.height);
        }
}

TEST_F(DrawText, MovedByWholePixelsATextKeepsItsShape) {
    for (const Smoothing smoothing : kBoth)
        for (const char* text : {"Sample: 640x480", "\u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D",
                                 "\u65E5\u672C\u8A9E"}) {
            const Image at = Drawn(text, -24, smoothing, 100, 30);
            ASSERT_GT(InkSum(at), 0U);
            for (const auto& [x, y] : {std::pair{1, 0}, {7, 3}, {-90, -25}, {13, 40}})
                EXPECT_TRUE(test::SamePixels(Drawn(text, -24, smoothing, 100 + x, 30 + y),
                                             Moved(at, x, y)));
        }
}

TEST_F(DrawText, ALetterLooksTheSameWhereverItStands) {
    for (const Smoothing smoothing : kBoth) {
        const Image one = Drawn("n", -19, smoothing);
        Image row = test::FlatImage(kPaper, test::kNoInk);
        const double advance = smoothing == Smoothing::Smooth
                                   ? 19 * kAdvanceOfN / kUnits
                                   : Measured("n", Font(-19), smoothing).width;
        for (int i = 0; i < 20; ++i)
            row = Together(row, Moved(one, static_cast<int>(std::floor(i * advance + 0.5)), 0));
        EXPECT_TRUE(test::SamePixels(Drawn("nnnnnnnnnnnnnnnnnnnn", -19, smoothing), row));
    }
}

TEST_F(DrawText, AliasedTextHasNoColoursBetween) {
    for (const int height : {-12, -24, -80, -260, 40}) {
        Image picture = test::FlatImage({600, 300}, {10, 20, 30});
        TextFont font = Font(height);
        font.underline = font.strikeOut = true;
        ASSERT_TRUE(DrawTextOnRGB2(picture.View(), "Sg8 \u05D0\u0628\u65E5", font, {5, 5, 600, 300},
                                   {200, 100, 50}, 1.0));
        std::size_t ink = 0;
        for (int y = 0; y < 300; ++y)
            for (int x = 0; x < 600; ++x) {
                const Rgb pixel = picture.View().Pixel(x, y);
                ink += pixel == Rgb{200, 100, 50};
                ASSERT_TRUE(pixel == (Rgb{10, 20, 30}) || pixel == (Rgb{200, 100, 50}))
                    << x << "," << y << " at height " << height;
            }
        EXPECT_GT(ink, 100U);
    }
}

TEST_F(DrawText, SmoothTextHasFullInkAndEdges) {
    const std::set<int> values = RedValues(Drawn("Sg8", -60, Smoothing::Smooth));
    EXPECT_TRUE(values.contains(255));
    EXPECT_GT(values.size(), 50U);
}

TEST_F(DrawText, OpacityMixesEachChannelByTheInkOverThePixel) {
    constexpr Rgb kInk{200, 3, 90};
    for (const Smoothing smoothing : kBoth)
        for (const double opacity : {1.0, 0.5, 0.35, 0.01, 0.0, 2.0, -1.0}) {
            const Image ground = test::RandomImage(kPaper, 11);
            const Image mask = Drawn("Wave 8", -50, smoothing, 10, 10);
            Image actual = test::Copy(ground.View()), expected = test::Copy(ground.View());
            const auto draw =
                smoothing == Smoothing::Smooth ? DrawSmoothTextOnRGB2 : DrawTextOnRGB2;
            ASSERT_TRUE(
                draw(actual.View(), "Wave 8", Font(-50), {10, 10, 400, 120}, kInk, opacity));
            const double limited = std::clamp(opacity, 0.0, 1.0);
            const int ink[] = {kInk.red, kInk.green, kInk.blue};
            for (std::size_t i = 0; i < mask.View().Bytes().size(); ++i) {
                const double share = mask.View().Bytes()[i] / 255.0 * limited;
                std::uint8_t& byte = expected.View().Bytes()[i];
                byte = static_cast<std::uint8_t>(ink[i % 3] * share + byte * (1.0 - share) + 0.5);
            }
            EXPECT_TRUE(test::SamePixels(actual, expected)) << opacity;
        }
}

TEST_F(DrawText, LettersThatOverlapAreOneInk) {
    Image picture = test::FlatImage(kPaper, {100, 100, 100});
    TextFont font = Font(-40);
    font.underline = true;  // goes through the tails of these
    ASSERT_TRUE(
        DrawTextOnRGB2(picture.View(), "gjpqy", font, {10, 10, 400, 120}, {200, 200, 200}, 0.5));
    EXPECT_EQ(RedValues(picture), (std::set<int>{100, 150}));
}

TEST_F(DrawText, BoldItalicAndOtherFacesDiffer) {
    for (const Smoothing smoothing : kBoth) {
        TextFont bold = Font(-40), italic = Font(-40);
        bold.weight = 700;
        italic.italic = true;
        const Image plain = Drawn("Illness", -40, smoothing);
        EXPECT_GT(InkSum(WhiteOnBlack(kPaper, "Illness", bold, smoothing)), InkSum(plain) * 5 / 4);
        const Image slanted = WhiteOnBlack(kPaper, "l", italic, smoothing, 20);
        const Image upright = WhiteOnBlack(kPaper, "l", Font(-40), smoothing, 20);
        EXPECT_GT(InkBox(slanted).Extent().width, InkBox(upright).Extent().width + 3);
        TextFont normal = Font(-40);
        normal.weight = 0;
        EXPECT_TRUE(test::SamePixels(WhiteOnBlack(kPaper, "Illness", normal, smoothing), plain));
    }
}

// Rows in which every pixel of the text's width is ink.
std::vector<int> FullRows(const Image& picture, int width) {
    std::vector<int> rows;
    for (int y = 0; y < picture.Height(); ++y) {
        int x = 0;
        while (x < width && picture.View().Pixel(x, y) == test::kFullInk) ++x;
        if (x == width) rows.push_back(y);
    }
    return rows;
}

TEST_F(DrawText, UnderlineAndStrikeoutRunAlongTheWholeText) {
    for (const Smoothing smoothing : kBoth)
        for (const int height : {-24, -60, -230}) {
            const Size paper{900, 400};
            TextFont font = Font(height);
            const std::string text = "x on  ";
            const int width = Measured(text, font, smoothing).width;
            const Rect letters = InkBox(WhiteOnBlack(paper, "x", font, smoothing));
            EXPECT_TRUE(FullRows(WhiteOnBlack(paper, text, font, smoothing), width).empty());

            font.underline = true;
            auto rows = FullRows(WhiteOnBlack(paper, text, font, smoothing), width);
            ASSERT_FALSE(rows.empty());
            EXPECT_GE(rows.front(), letters.bottom - 1);
            EXPECT_LE(rows.back(), Measured(text, font, smoothing).height);

            font.underline = false;
            font.strikeOut = true;
            rows = FullRows(WhiteOnBlack(paper, text, font, smoothing), width);
            ASSERT_FALSE(rows.empty());
            EXPECT_GT(rows.front(), letters.top);
            EXPECT_LT(rows.back(), letters.bottom);
        }
}

TEST_F(DrawText, LinesStandBelowEachOtherByTheHighestOfThem) {
    for (const Smoothing smoothing : kBoth) {
        const Size line = Measured("x", Font(-24), smoothing);
        const Size lines = Measured("Hg\r\nxyzzy\n\rA", Font(-24), smoothing);
        EXPECT_EQ(lines.height, 4 * line.height);
        EXPECT_EQ(lines.width, Measured("xyzzy", Font(-24), smoothing).width);
        const Image below = Drawn("xyzzy", -24, smoothing, 9, 5 + line.height);
        EXPECT_TRUE(test::SamePixels(Drawn("Hg\r\nxyzzy", -24, smoothing, 9, 5),
                                     Together(below, Drawn("Hg", -24, smoothing, 9, 5))));
    }
}

TEST_F(DrawText, MarksFindTheirLetters) {
    for (const Smoothing smoothing : kBoth) {
        const Image whole = Drawn("caf\u00E9 \u00C5", -30, smoothing);
        EXPECT_TRUE(test::SamePixels(Drawn("cafe\u0301 A\u030A", -30, smoothing), whole));
        EXPECT_GT(InkSum(whole), InkSum(Drawn("cafe A", -30, smoothing)));
    }
}

TEST_F(DrawText, HebrewRunsFromTheRight) {
    for (const Smoothing smoothing : kBoth) {
        const TextFont font = Font(-30);
        const Image word = Drawn("\u05D0\u05D1", -30, smoothing);  // alef, then bet to its left
        const int bet = Measured("\u05D1", font, smoothing).width;
        const Image left = Drawn("\u05D1", -30, smoothing);
        double advance = bet;
        if (smoothing == Smoothing::Smooth) advance = std::floor(30 * 1184 / kUnits + 0.5);
        const Image right = Drawn("\u05D0", -30, smoothing, static_cast<int>(advance));
        EXPECT_TRUE(test::NearPixels(word.View(), Together(left, right).View(), 3));
    }
}

TEST_F(DrawText, ArabicLettersJoin) {
    for (const Smoothing smoothing : kBoth) {
        const TextFont font = Font(-40);
        const int alone = Measured("\u0628", font, smoothing).width;
        EXPECT_LT(Measured("\u0628\u0628\u0628", font, smoothing).width, 3 * alone - 10);
        // One stroke from end to end: no column of the word is without ink.
        const Image word = Drawn("\u0628\u0628\u0628", -40, smoothing);
        const Rect ink = InkBox(word);
        for (int x = ink.left; x < ink.right; ++x) {
            int most = 0;
            for (int y = ink.top; y < ink.bottom; ++y)
                most = std::max<int>(most, word.View().Pixel(x, y).red);
            EXPECT_GT(most, x == ink.left || x == ink.right - 1 ? 0 : 250) << x;
        }
    }
}

TEST_F(DrawText, AnotherFontStandsInForLettersThatTheFaceHasNot) {
    for (const Smoothing smoothing : kBoth) {
        const char* text = "\u65E5\u672C\u8A9E";
        TextFont asian = Font(-30);
        asian.face = "Lumo Test Asian";
        const Rect direct = InkBox(WhiteOnBlack(kPaper, text, asian, smoothing));
        const Rect fallen = InkBox(Drawn(text, -30, smoothing));
        EXPECT_EQ(direct.left, fallen.left);
        EXPECT_EQ(direct.Extent(), fallen.Extent());
        EXPECT_NEAR(direct.Extent().width, 84, 6);
        // A letter that no font has is a box, not nothing.
        EXPECT_GT(InkSum(Drawn("\u0E01", -30, smoothing)), 500U);
    }
}

TEST_F(DrawText, AFaceThatIsNotInstalledFallsBack) {
    const std::string longName(10'000, 'z');
    for (const std::string& face :
         {std::string("No Such Face"), std::string(), std::string("a,b;c"), std::string("\xFF\xC3"),
          std::string("Times New Roman"), std::string("\0\n", 2), longName}) {
        const Image picture =
            WhiteOnBlack(kPaper, "Hamburg", {.face = face, .height = -24}, Smoothing::Aliased);
        EXPECT_TRUE(test::SamePixels(picture, Drawn("Hamburg", -24, Smoothing::Aliased)));
    }
}

TEST_F(DrawText, NothingIsDrawnOutsideOfTheRectangle) {
    for (const Smoothing smoothing : kBoth) {
        const auto draw = smoothing == Smoothing::Smooth ? DrawSmoothTextOnRGB2 : DrawTextOnRGB2;
        const Image whole = Drawn("MMMM", -60, smoothing, 10, 10);
        for (const Rect rect : {Rect{10, 10, 70, 40}, Rect{10, 10, 11, 400}, Rect{10, 10, 5, 5},
                                Rect{10, 10, 4000, 4000}}) {
            Image actual = test::FlatImage(kPaper, test::kNoInk);
            ASSERT_TRUE(draw(actual.View(), "MMMM", Font(-60), rect, test::kFullInk, 1.0));
            for (int y = 0; y < kPaper.height; ++y)
                for (int x = 0; x < kPaper.width; ++x) {
                    const bool inside =
                        x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
                    ASSERT_EQ(actual.View().Pixel(x, y),
                              inside ? whole.View().Pixel(x, y) : test::kNoInk)
                        << x << "," << y;
                }
        }
        for (const Rect rect :
             {Rect{400, 10, 400, 120}, Rect{0, 120, 400, 120}, Rect{INT_MAX, INT_MAX, 400, 120},
              Rect{INT_MIN, INT_MIN, 400, 120}, Rect{INT_MIN, INT_MIN, INT_MAX, INT_MAX},
              Rect{INT_MAX, INT_MAX, INT_MIN, INT_MIN}}) {
            Image actual = test::FlatImage(kPaper, test::kNoInk);
            ASSERT_TRUE(draw(actual.View(), "MMMM", Font(-60), rect, test::kFullInk, 1.0));
            EXPECT_EQ(InkSum(actual), 0U) << rect.left;
        }
        Image pixel = test::FlatImage({1, 1}, test::kNoInk);
        ASSERT_TRUE(draw(pixel.View(), "MMMM", Font(-60), {-30, -30, 1, 1}, test::kFullInk, 1.0));
    }
}

TEST_F(DrawText, LargeLettersAreLargerCopies) {
    for (const Smoothing smoothing : kBoth)
        for (const int height : {250, 1000, 4000}) {
            const double stem = height * kCapitalHeight / kUnits;
            const Image letter =
                WhiteOnBlack({height, height * 5 / 4}, "H", Font(-height), smoothing);
            const Rect ink = InkBox(letter);
            EXPECT_NEAR(ink.Extent().height, stem, 2.0);
            EXPECT_NEAR(ink.left, height * 201 / kUnits, 2.0);
        }
}

TEST_F(DrawText, LongLinesGoOnWhereTheirFirstPartsEnd) {
    std::string words;
    while (words.size() < 6000) words += "long words ";
    for (const Smoothing smoothing : kBoth) {
        const TextFont font = Font(-20);
        // The text is shaped in pieces; its end stands where its advances lead.
        const int before =
            Measured(words + "x", font, smoothing).width - Measured("x", font, smoothing).width;
        const int shown = 300;
        const Image tail =
            WhiteOnBlack({shown, 60}, words + "Hxg", font, smoothing, 100 - before, 5);
        const Rect end = InkBox(WhiteOnBlack({shown, 60}, "Hxg", font, smoothing, 100, 5));
        const Rect ink = InkBox(tail);
        EXPECT_EQ(ink.left, 0);
        EXPECT_NEAR(ink.right, end.right, 1);
        EXPECT_EQ(ink.bottom, end.bottom);
    }
}

TEST_F(DrawText, LongHebrewLinesBeginAtTheRight) {
    std::string words = "\u05D0";  // alef, which no other word has
    while (words.size() < 6000) words += " \u05E9\u05DC\u05D5\u05DD";
    for (const Smoothing smoothing : kBoth) {
        const TextFont font = Font(-20);
        const int width = Measured(words, font, smoothing).width;
        const Image end = WhiteOnBlack({200, 60}, words, font, smoothing, 200 - width, 5);
        const Rect alef = InkBox(WhiteOnBlack({200, 60}, "\u05D0", font, smoothing,
                                              200 - Measured("\u05D0", font, smoothing).width, 5));
        EXPECT_NEAR(InkBox(end).right, alef.right, 1);
        // Left of the alef there is a blank.
        for (int x = alef.left - 4; x < alef.left - 1; ++x)
            for (int y = 0; y < 60; ++y) EXPECT_EQ(end.View().Pixel(x, y), test::kNoInk);
    }
}

TEST_F(DrawText, AbsurdTextsAndHeightsEndSoon) {
    constexpr int kCharacters = 100'000;
    const auto repeated = [](const char* part, int times) {
        std::string text;
        for (int i = 0; i < times; ++i) text += part;
        return text;
    };
    const std::string texts[] = {repeated("x", kCharacters),
                                 repeated("word ", kCharacters / 5),
                                 repeated("x\n", kCharacters / 2),
                                 "a" + repeated("\u0301", kCharacters),
                                 repeated("a\u65E5", kCharacters / 2),
                                 repeated("\u0628", kCharacters),
                                 repeated("\u05D0 1 ", kCharacters / 4),
                                 repeated("\u202E", kCharacters),
                                 repeated("\u200D", kCharacters),
                                 repeated("\U0001F468\u200D", kCharacters / 2),
                                 repeated("\xFF", kCharacters)};
    const auto start = std::chrono::steady_clock::now();
    for (const int height : {-24, -260, 1, INT_MIN, INT_MAX})
        for (const std::string& text : texts) {
            const bool all = height == -24 || &text == &texts[0];
            if (!all && (height > INT_MIN || &text > &texts[4])) continue;
            for (const Smoothing smoothing : kBoth) {
                const Size size = Measured(text, Font(height), smoothing);
                EXPECT_GE(size.width, 0);
                EXPECT_GT(size.height, 0);
                Image picture = test::FlatImage({200, 100}, test::kNoInk);
                const auto draw =
                    smoothing == Smoothing::Smooth ? DrawSmoothTextOnRGB2 : DrawTextOnRGB2;
                EXPECT_TRUE(draw(picture.View(), text, Font(height), {0, 0, 200, 100},
                                 test::kFullInk, 1.0));
            }
        }
    // Some tenths of a second each. Any that took the square of its length would need hours.
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_LT(seconds.count(), 400);
}

TEST_F(DrawText, ThreadsDrawTheSame) {
    const Image expected = Drawn("Threads \u05D0\u65E5", -30, Smoothing::Smooth);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < 5; ++j)
                EXPECT_TRUE(test::SamePixels(Drawn("Threads \u05D0\u65E5", -30, Smoothing::Smooth),
                                             expected));
        });
    for (std::thread& thread : threads) thread.join();
}

TEST_F(DrawText, WithoutAnyFontItFails) {
    test::WithoutFonts([] {
        Image picture = test::FlatImage({20, 20}, test::kNoInk);
        for (const Smoothing smoothing : kBoth)
            EXPECT_FALSE(GetTextLineSize2("x", Font(-24), smoothing));
        EXPECT_FALSE(
            DrawTextOnRGB2(picture.View(), "x", Font(-24), {0, 0, 20, 20}, test::kFullInk, 1.0));
        EXPECT_EQ(LastError(), "there is no font to draw text with");
        EXPECT_EQ(InkSum(picture), 0U);
    });
    EXPECT_TRUE(GetTextLineSize2("x", Font(-24), Smoothing::Smooth));
}

TEST_F(DrawText, WithoutAPictureItFails) {
    EXPECT_FALSE(DrawTextOnRGB2({}, "x", Font(-24), {0, 0, 20, 20}, test::kFullInk, 1.0));
    EXPECT_EQ(LastError(), "there is no picture to write on");
    EXPECT_FALSE(DrawSmoothTextOnRGB2({}, "x", Font(-24), {0, 0, 20, 20}, test::kFullInk, 1.0));
}

}  // namespace
}  // namespace lumo::imaging

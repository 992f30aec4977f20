#include "imaging/codecs/metafile/clip.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_images.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr Rect kLimits{0, 0, 6, 3};

Path BoxPath(Box box) {
    Path path;
    path.AddBox(box);
    return path;
}

// Two boxes in one figure list: no single rectangle.
Path TwoBoxes(Box a, Box b) {
    Path path = BoxPath(a);
    path.AddBox(b);
    return path;
}

// '#' full, '.' none, '+' in between; rows parted by '/'.
std::string Show(const Clip& clip) {
    std::string text;
    for (int y = kLimits.top; y < kLimits.bottom; ++y) {
        for (int x = kLimits.left; x < kLimits.right; ++x) {
            const Rect b = clip.Bounds();
            const bool inside = x >= b.left && x < b.right && y >= b.top && y < b.bottom;
            const int amount = !inside ? 0 : clip.IsRectangle() ? 255 : clip.Row(y)[x - b.left];
            text += amount == 0 ? '.' : amount == 255 ? '#' : '+';
        }
        text += '/';
    }
    return text;
}

TEST(Clip, BoxesStayRectangles) {
    Clip clip(kLimits);
    EXPECT_EQ(Show(clip), "######/######/######/");
    clip.Change(ClipMode::And, BoxPath({1.4, 0, 4.6, 2}), FillRule::Winding);
    EXPECT_TRUE(clip.IsRectangle());
    EXPECT_EQ(Show(clip), ".####./.####./....../");
    clip.Change(ClipMode::Copy, BoxPath({0, 0, 2, 1}), FillRule::Winding);
    EXPECT_EQ(Show(clip), "##..../....../....../");
}

TEST(Clip, SetOperationsAreExact) {
    struct Case {
        ClipMode mode;
        const char* expected;
    };
    for (const Case& c :
         {Case{ClipMode::And, "...##./...##./....../"}, Case{ClipMode::Or, "#####./#####./...##./"},
          Case{ClipMode::Xor, "###.../###.../...##./"},
          Case{ClipMode::Diff, "###.../###.../....../"},
          Case{ClipMode::Copy, "...##./...##./...##./"}}) {
        Clip clip(kLimits);
        clip.Change(ClipMode::Copy, BoxPath({0, 0, 5, 2}), FillRule::Winding);
        clip.Change(c.mode, BoxPath({3, 0, 5, 3}), FillRule::Winding);
        EXPECT_EQ(Show(clip), c.expected) << static_cast<int>(c.mode);
    }
}

TEST(Clip, ShapesThatAreNoBoxKeepAmounts) {
    Clip clip(kLimits);
    clip.Change(ClipMode::And, TwoBoxes({0, 0, 1, 3}, {4, 1, 6, 2}), FillRule::Winding);
    EXPECT_EQ(Show(clip), "#...../#...##/#...../");
    Clip half(kLimits);
    Path triangle;
    const Point corners[] = {{0, 0}, {3, 0}, {0, 3}};
    triangle.AddPolygon(corners);
    half.Change(ClipMode::And, triangle, FillRule::Winding);
    EXPECT_EQ(Show(half), "##+.../#+..../+...../");
}

TEST(Clip, CopiesDoNotChangeEachOther) {
    Clip clip(kLimits);
    clip.Change(ClipMode::Diff, BoxPath({2, 0, 3, 3}), FillRule::Winding);
    const Clip saved = clip;
    clip.Change(ClipMode::Diff, BoxPath({4, 0, 5, 3}), FillRule::Winding);
    clip.Offset(1, 0);
    EXPECT_EQ(Show(saved), "##.###/##.###/##.###/");
    EXPECT_EQ(Show(clip), ".##.#./.##.#./.##.#./");
}

TEST(Clip, OffsetLosesWhatLeavesTheLimits) {
    Clip clip(kLimits);
    clip.Change(ClipMode::Copy, TwoBoxes({0, 0, 2, 1}, {3, 0, 4, 1}), FillRule::Winding);
    clip.Offset(-1, 1);
    EXPECT_EQ(Show(clip), "....../#.#.../....../");
    clip.Offset(100, 100);
    EXPECT_EQ(Show(clip), "....../....../....../");
}

TEST(Clip, IntersectsWithAnother) {
    Clip a(kLimits), b(kLimits);
    a.Change(ClipMode::Diff, BoxPath({0, 1, 6, 2}), FillRule::Winding);
    b.Change(ClipMode::Diff, BoxPath({1, 0, 2, 3}), FillRule::Winding);
    a.Intersect(b);
    EXPECT_EQ(Show(a), "#.####/....../#.####/");
}

TEST(Clip, WithoutMemoryTheSurroundingRectangleStays) {
    Clip clip(kLimits);
    const test::ScopedMemoryBudget budget(0);
    clip.Change(ClipMode::And, TwoBoxes({0, 0, 1, 3}, {4, 1, 6, 2}), FillRule::Winding);
    EXPECT_TRUE(clip.IsRectangle());
    EXPECT_EQ(clip.Bounds(), kLimits);
}

TEST(SnapToPixels, GoesToTheNearestAndKeepsOnePixel) {
    EXPECT_EQ(SnapToPixels({0.4, 0.5, 2.6, 3.4}), (Box{0, 1, 3, 3}));
    EXPECT_EQ(SnapToPixels({1.6, 1.1, 1.9, 1.2}), (Box{1, 1, 2, 2}));
}

TEST(AsBox, TellsBoxesFromOtherShapes) {
    EXPECT_EQ(AsBox(BoxPath({1, 2, 3, 4})), (Box{1, 2, 3, 4}));
    Path skewed;
    const Point corners[] = {{0, 0}, {3, 0}, {3, 3}, {1, 3}};
    skewed.AddPolygon(corners);
    EXPECT_FALSE(AsBox(skewed));
    EXPECT_FALSE(AsBox(TwoBoxes({0, 0, 1, 1}, {2, 2, 3, 3})));
    EXPECT_FALSE(AsBox(Path()));
}

}  // namespace
}  // namespace lumo::imaging::codecs::metafile

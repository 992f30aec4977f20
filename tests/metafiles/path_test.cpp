#include "imaging/codecs/metafile/path.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace lumo::imaging::codecs::metafile {
namespace {

TEST(Transform, ComposeDoesTheInnerOneFirst) {
    const Transform scale{2, 0, 0, 3, 0, 0}, move{1, 0, 0, 1, 10, 20};
    EXPECT_EQ(Compose(scale, move).Map({1, 1}), (Point{22, 63}));
    EXPECT_EQ(Compose(move, scale).Map({1, 1}), (Point{12, 23}));
    EXPECT_FALSE((Transform{NAN}).IsFinite());
}

TEST(Transform, BoxToBoxMapsCornersEvenMirroredOnes) {
    const Transform t = BoxToBox({10, 20, 30, 10}, {0, 0, 100, 50});
    EXPECT_EQ(t.Map({10, 20}), (Point{0, 0}));
    EXPECT_EQ(t.Map({30, 10}), (Point{100, 50}));
    EXPECT_TRUE(BoxToBox({5, 5, 5, 5}, {0, 0, 9, 9}).IsFinite());
}

TEST(Path, ArcsKeepTheirRadius) {
    for (const double sweep : {0.1, 1.0, std::numbers::pi, 6.2, -4.0}) {
        Path path;
        path.AddArc({100, 50}, {40, 40}, 0.3, sweep, false);
        const Point end = path.Last();
        EXPECT_NEAR(end.x, 100 + 40 * std::cos(0.3 + sweep), 1e-9);
        EXPECT_NEAR(end.y, 50 + 40 * std::sin(0.3 + sweep), 1e-9);
        path.Flatten();
        for (const Point p : path.Points()) EXPECT_NEAR(std::hypot(p.x - 100, p.y - 50), 40, 0.01);
    }
}

TEST(Path, FlatteningStaysWithinAQuarterUnit) {
    Path path;
    path.MoveTo({0, 0});
    path.CurveTo({0, 100}, {100, 100}, {100, 0});
    path.Flatten();
    EXPECT_LT(path.Points().size(), 60U);
    Point before{0, 0};
    for (const Point p : path.Points()) {
        const double t = (p.x + before.x) / 200;  // x is nearly even in the parameter here
        const double s = 1 - t;
        const Point middle = (p + before) * 0.5;
        double nearest = 1e9;
        for (double u = std::max(0.0, t - 0.2); u < std::min(1.0, t + 0.2); u += 1e-3) {
            const Point c = Point{0, 100} * (3 * (1 - u) * (1 - u) * u) +
                            Point{100, 100} * (3 * (1 - u) * u * u) + Point{100, 0} * (u * u * u);
            nearest = std::min(nearest, std::hypot(c.x - middle.x, c.y - middle.y));
        }
        EXPECT_LT(nearest, 0.25 + 0.1) << t << s;
        before = p;
    }
}

TEST(Path, KnowsBoundsLengthAndStraightness) {
    Path path;
    EXPECT_EQ(path.Bounds(), (Box{}));
    path.AddBox({1, 2, 5, 5});
    EXPECT_EQ(path.Bounds(), (Box{1, 2, 5, 5}));
    EXPECT_EQ(path.Length(), 14);
    EXPECT_TRUE(path.IsRectilinear());
    path.AddEllipse({0, 0, 1, 1});
    EXPECT_FALSE(path.IsRectilinear());
}

TEST(Path, RoundBoxWithLargeCornersIsAnEllipse) {
    Path path;
    path.AddRoundBox({0, 0, 20, 10}, {100, 100});
    path.Flatten();
    for (const Point p : path.Points())
        EXPECT_NEAR(std::pow((p.x - 10) / 10, 2) + std::pow((p.y - 5) / 5, 2), 1, 0.01);
}

TEST(Path, ExtendGoesOnWithTheSameFigure) {
    Path path, more;
    path.MoveTo({0, 0});
    path.LineTo({1, 0});
    more.MoveTo({1, 0});
    more.LineTo({1, 1});
    path.Extend(more);
    EXPECT_EQ(path.Verbs().size(), 3U);
    EXPECT_EQ(path.Last(), (Point{1, 1}));
}

}  // namespace
}  // namespace lumo::imaging::codecs::metafile

#pragma once

// Points, affine transforms and outlines, in double precision.

#include <cstdint>
#include <span>
#include <vector>

namespace lumo::imaging::codecs::metafile {

struct Point {
    double x = 0;
    double y = 0;
    friend constexpr Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
    friend constexpr Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
    friend constexpr Point operator*(Point a, double k) { return {a.x * k, a.y * k}; }
    friend constexpr bool operator==(Point, Point) = default;
};

/// An axis-parallel box; empty unless left < right and top < bottom.
struct Box {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    constexpr double Width() const { return right - left; }
    constexpr double Height() const { return bottom - top; }
    constexpr bool IsEmpty() const { return !(left < right && top < bottom); }
    friend constexpr bool operator==(Box, Box) = default;
};
Box Intersection(Box a, Box b);
/// The smallest box that holds both; an empty one does not count.
Box Union(Box a, Box b);

/// x' = xx * x + xy * y + x0, y' = yx * x + yy * y + y0.
struct Transform {
    double xx = 1;
    double yx = 0;
    double xy = 0;
    double yy = 1;
    double x0 = 0;
    double y0 = 0;

    constexpr Point Map(Point p) const {
        return {xx * p.x + xy * p.y + x0, yx * p.x + yy * p.y + y0};
    }
    /// The same turn and scale without the shift.
    constexpr Point MapVector(Point p) const { return {xx * p.x + xy * p.y, yx * p.x + yy * p.y}; }
    constexpr double Determinant() const { return xx * yy - xy * yx; }
    bool IsFinite() const;
    friend constexpr bool operator==(Transform, Transform) = default;
};
/// First `inner`, then `outer`.
Transform Compose(const Transform& outer, const Transform& inner);
/// Maps one box onto another; a side of no length counts as one unit long.
Transform BoxToBox(Box from, Box to);

/// An outline of lines and cubic curves, in as many figures as wanted.
class Path {
  public:
    enum class Verb : std::uint8_t { Move, Line, Curve, Close };  // 1, 1, 3 and 0 points

    void MoveTo(Point p);
    void LineTo(Point p);
    void CurveTo(Point a, Point b, Point p);
    /// Joins the end of the current figure with its start.
    void Close();
    void AddPolygon(std::span<const Point> points);
    void AddPolyline(std::span<const Point> points);
    void AddBox(Box box);
    /// Appends an arc of an ellipse: angles in radians, from the x axis towards the y axis, with
    /// `sweep` of either sign. It begins with a line if `join`, else with a move.
    void AddArc(Point centre, Point radius, double start, double sweep, bool join);
    /// A closed ellipse.
    void AddEllipse(Box box);
    void AddRoundBox(Box box, Point radius);
    void Append(const Path& other);
    /// Appends the other path to the current figure: its first point is where this one ends.
    void Extend(const Path& other);

    bool IsEmpty() const { return verbs_.empty(); }
    std::span<const Verb> Verbs() const { return verbs_; }
    std::span<const Point> Points() const { return points_; }
    std::span<Point> Points() { return points_; }
    Point Last() const { return points_.empty() ? Point{} : points_.back(); }

    void Map(const Transform& transform);
    /// The box of all points, control points included.
    Box Bounds() const;
    /// Length of the lines between the points, which no curve exceeds.
    double Length() const;
    /// True if every line is level or upright and there is no curve.
    bool IsRectilinear() const;
    /// Replaces curves by lines that lie within a quarter of a unit.
    void Flatten();

  private:
    std::vector<Verb> verbs_;
    std::vector<Point> points_;
};

/// Calls `line(from, to)` for every straight piece, closing ones included; a curve counts as the
/// lines between its control points.
template <class Line>
void ForEachLine(const Path& path, Line line) {
    Point start, at;
    std::size_t next = 0;
    const auto points = path.Points();
    for (const Path::Verb verb : path.Verbs()) {
        switch (verb) {
            case Path::Verb::Move:
                start = at = points[next++];
                break;
            case Path::Verb::Close:
                line(at, start);
                at = start;
                break;
            case Path::Verb::Line:
                line(at, points[next]);
                at = points[next++];
                break;
            case Path::Verb::Curve:
                for (int i = 0; i < 3; ++i) {
                    line(at, points[next]);
                    at = points[next++];
                }
                break;
        }
    }
}

}  // namespace lumo::imaging::codecs::metafile

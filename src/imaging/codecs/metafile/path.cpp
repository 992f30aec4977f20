#include "imaging/codecs/metafile/path.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lumo::imaging::codecs::metafile {

Box Intersection(Box a, Box b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

Box Union(Box a, Box b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

bool Transform::IsFinite() const {
    return std::isfinite(xx) && std::isfinite(yx) && std::isfinite(xy) && std::isfinite(yy) &&
           std::isfinite(x0) && std::isfinite(y0);
}

Transform Compose(const Transform& outer, const Transform& inner) {
    const Point x = outer.MapVector({inner.xx, inner.yx});
    const Point y = outer.MapVector({inner.xy, inner.yy});
    const Point shift = outer.Map({inner.x0, inner.y0});
    return {x.x, x.y, y.x, y.y, shift.x, shift.y};
}

Transform BoxToBox(Box from, Box to) {
    const auto ratio = [](double target, double source) {
        return target / (source == 0 ? 1 : source);
    };
    Transform t;
    t.xx = ratio(to.Width(), from.Width());
    t.yy = ratio(to.Height(), from.Height());
    t.x0 = to.left - from.left * t.xx;
    t.y0 = to.top - from.top * t.yy;
    return t;
}

void Path::MoveTo(Point p) {
    verbs_.push_back(Verb::Move);
    points_.push_back(p);
}

void Path::LineTo(Point p) {
    verbs_.push_back(verbs_.empty() ? Verb::Move : Verb::Line);
    points_.push_back(p);
}

void Path::CurveTo(Point a, Point b, Point p) {
    if (verbs_.empty()) MoveTo(a);
    verbs_.push_back(Verb::Curve);
    points_.insert(points_.end(), {a, b, p});
}

void Path::Close() {
    if (!verbs_.empty() && verbs_.back() != Verb::Close) verbs_.push_back(Verb::Close);
}

void Path::AddPolygon(std::span<const Point> points) {
    if (points.empty()) return;
    AddPolyline(points);
    Close();
}

void Path::AddPolyline(std::span<const Point> points) {
    if (points.empty()) return;
    MoveTo(points.front());
    for (const Point p : points.subspan(1)) LineTo(p);
}

void Path::AddBox(Box box) {
    MoveTo({box.left, box.top});
    LineTo({box.right, box.top});
    LineTo({box.right, box.bottom});
    LineTo({box.left, box.bottom});
    Close();
}

void Path::AddArc(Point centre, Point radius, double start, double sweep, bool join) {
    // One cubic for each eighth of a turn; the handle is 4/3 * tan(angle / 4) of the radius
    // (the usual fit, which is off by less than 5e-6 of the radius here).
    const int pieces =
        std::clamp(static_cast<int>(std::ceil(std::abs(sweep) / (std::numbers::pi / 4))), 1, 64);
    const double step = sweep / pieces;
    const double handle = 4.0 / 3.0 * std::tan(step / 4);
    const auto at = [&](double angle) {
        return Point{centre.x + radius.x * std::cos(angle), centre.y + radius.y * std::sin(angle)};
    };
    const auto along = [&](double angle) {
        return Point{-radius.x * std::sin(angle), radius.y * std::cos(angle)} * handle;
    };
    if (join)
        LineTo(at(start));
    else
        MoveTo(at(start));
    for (int i = 0; i < pieces; ++i) {
        const double from = start + i * step;
        const double to = start + (i + 1) * step;
        CurveTo(at(from) + along(from), at(to) - along(to), at(to));
    }
}

void Path::AddEllipse(Box box) {
    const Point centre{(box.left + box.right) / 2, (box.top + box.bottom) / 2};
    AddArc(centre, {box.Width() / 2, box.Height() / 2}, 0, 2 * std::numbers::pi, false);
    Close();
}

void Path::AddRoundBox(Box box, Point radius) {
    const double rx = std::min(std::abs(radius.x), std::abs(box.Width()) / 2);
    const double ry = std::min(std::abs(radius.y), std::abs(box.Height()) / 2);
    if (rx == 0 || ry == 0) return AddBox(box);
    const double left = std::min(box.left, box.right) + rx;
    const double right = std::max(box.left, box.right) - rx;
    const double top = std::min(box.top, box.bottom) + ry;
    const double bottom = std::max(box.top, box.bottom) - ry;
    constexpr double kQuarter = std::numbers::pi / 2;
    AddArc({right, top}, {rx, ry}, -kQuarter, kQuarter, false);
    AddArc({right, bottom}, {rx, ry}, 0, kQuarter, true);
    AddArc({left, bottom}, {rx, ry}, kQuarter, kQuarter, true);
    AddArc({left, top}, {rx, ry}, 2 * kQuarter, kQuarter, true);
    Close();
}

void Path::Append(const Path& other) {
    verbs_.insert(verbs_.end(), other.verbs_.begin(), other.verbs_.end());
    points_.insert(points_.end(), other.points_.begin(), other.points_.end());
}

void Path::Extend(const Path& other) {
    if (other.IsEmpty()) return;
    verbs_.insert(verbs_.end(), other.verbs_.begin() + 1, other.verbs_.end());
    points_.insert(points_.end(), other.points_.begin() + 1, other.points_.end());
}

void Path::Map(const Transform& transform) {
    for (Point& p : points_) p = transform.Map(p);
}

Box Path::Bounds() const {
    if (points_.empty()) return {};
    Box box{points_[0].x, points_[0].y, points_[0].x, points_[0].y};
    for (const Point p : points_)
        box = {std::min(box.left, p.x), std::min(box.top, p.y), std::max(box.right, p.x),
               std::max(box.bottom, p.y)};
    return box;
}

double Path::Length() const {
    double length = 0;
    ForEachLine(*this, [&](Point a, Point b) { length += std::hypot(b.x - a.x, b.y - a.y); });
    return length;
}

bool Path::IsRectilinear() const {
    if (std::ranges::find(verbs_, Verb::Curve) != verbs_.end()) return false;
    bool straight = true;
    ForEachLine(*this,
                [&](Point a, Point b) { straight = straight && (a.x == b.x || a.y == b.y); });
    return straight;
}

void Path::Flatten() {
    Path flat;
    std::size_t next = 0;
    for (const Verb verb : verbs_) {
        switch (verb) {
            case Verb::Move:
                flat.MoveTo(points_[next++]);
                break;
            case Verb::Line:
                flat.LineTo(points_[next++]);
                break;
            case Verb::Close:
                flat.Close();
                break;
            case Verb::Curve: {
                const Point p0 = flat.Last(), p1 = points_[next], p2 = points_[next + 1],
                            p3 = points_[next + 2];
                next += 3;
                // A cubic strays from n chords by at most |second difference| * 3/4 / n^2.
                const Point a = p0 - p1 * 2 + p2, b = p1 - p2 * 2 + p3;
                const double bend = std::max(std::hypot(a.x, a.y), std::hypot(b.x, b.y));
                const int pieces =
                    static_cast<int>(std::clamp(std::ceil(std::sqrt(3 * bend)), 1.0, 200.0));
                for (int i = 1; i <= pieces; ++i) {
                    const double t = static_cast<double>(i) / pieces, s = 1 - t;
                    flat.LineTo(p0 * (s * s * s) + p1 * (3 * s * s * t) + p2 * (3 * s * t * t) +
                                p3 * (t * t * t));
                }
                break;
            }
        }
    }
    *this = std::move(flat);
}

}  // namespace lumo::imaging::codecs::metafile

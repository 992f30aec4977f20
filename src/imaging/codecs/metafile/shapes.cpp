// The drawing of lines and areas.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "imaging/codecs/metafile/device_context.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr double kThin = 1.5;  // pixels; pens below are drawn one pixel wide and crisp

std::vector<double> DashesOf(const Pen& pen, double width, double scale) {
    const bool thin = width < kThin;
    const double dash = thin ? 18 : 3 * width, dot = thin ? 3 : width, gap = thin ? 6 : width;
    switch (pen.line) {
        case Pen::Dash:
            return {dash, gap};
        case Pen::Dot:
            return {dot, thin ? 3 : gap};
        case Pen::DashDot:
            return {thin ? 9 : dash, gap, dot, gap};
        case Pen::DashDotDot:
            return {thin ? 9 : dash, thin ? 3 : gap, dot, thin ? 3 : gap, dot, thin ? 3 : gap};
        case Pen::Alternate:
            return {1, 1};
        case Pen::Custom: {
            std::vector<double> dashes;
            for (const double d : pen.dashes)
                dashes.push_back(std::max(0.0, d * (pen.geometric ? scale : 1)));
            double sum = 0;
            for (const double d : dashes) sum += d;
            // Dashes too fine to be seen make a whole line.
            return sum < 0.5 || !std::isfinite(sum) ? std::vector<double>{} : dashes;
        }
        default:
            return {};
    }
}

StrokeStyle StyleOf(const Pen& pen, double scale, double miterLimit) {
    StrokeStyle style;
    style.width = std::clamp(pen.geometric ? pen.width * scale : pen.width, 1.0, 100'000.0);
    style.miterLimit = miterLimit;
    if (style.width < kThin) {
        style.cap = CAIRO_LINE_CAP_SQUARE;
        style.join = CAIRO_LINE_JOIN_MITER;
        style.miterLimit = 2;
    } else {
        style.cap = pen.cap == Pen::Cap::Flat     ? CAIRO_LINE_CAP_BUTT
                    : pen.cap == Pen::Cap::Square ? CAIRO_LINE_CAP_SQUARE
                                                  : CAIRO_LINE_CAP_ROUND;
        style.join = pen.join == Pen::Join::Bevel   ? CAIRO_LINE_JOIN_BEVEL
                     : pen.join == Pen::Join::Miter ? CAIRO_LINE_JOIN_MITER
                                                    : CAIRO_LINE_JOIN_ROUND;
    }
    style.dashes = DashesOf(pen, style.width, scale);
    if (style.width >= kThin) {
        if (!style.dashes.empty()) style.cap = CAIRO_LINE_CAP_BUTT;
    } else {
        // Square ends reach half a pixel out on both sides, to the borders of the end pixels.
        for (std::size_t i = 0; i < style.dashes.size(); ++i) {
            double& dash = style.dashes[i];
            dash = i % 2 == 0 ? std::max(0.0, dash - 1) : dash + 1;
        }
    }
    return style;
}

}  // namespace

void DeviceContext::FillPath(const Path& path) {
    if (state_.brush.kind == Brush::Kind::None) return;
    canvas_.Fill(path, state_.fillRule, PaintOf(state_.brush), state_.clip,
                 RopOfMode(state_.drawMode));
}

void DeviceContext::StrokePath(const Path& path) {
    const Pen& pen = state_.pen;
    if (pen.line == Pen::None) return;
    StrokeStyle style = StyleOf(pen, Scale(), state_.miterLimit);
    const Rop3 rop = RopOfMode(state_.drawMode);
    if (!style.dashes.empty() && !pen.extended && state_.opaqueBack) {
        StrokeStyle ground = style;
        ground.dashes.clear();
        canvas_.Stroke(path, ground, {.colour = ColourOf(state_.backColour)}, state_.clip, rop);
    }
    canvas_.Stroke(path, style, {.colour = ColourOf(pen.colour)}, state_.clip, rop);
}

void DeviceContext::Emit(Path fill, const Path* outline, bool filled) {
    Path shape = OnCanvas(std::move(fill));
    if (buildingPath_) {
        path_.Append(shape);
        return;
    }
    if (filled) FillPath(shape);
    StrokePath(outline ? OnCanvas(*outline) : shape);
}

void DeviceContext::Continue(Path path) {
    if (path.IsEmpty()) return;
    state_.position = path.Last();
    if (!buildingPath_) return Lines(path);
    path = OnCanvas(std::move(path));
    const bool goesOn = !path_.IsEmpty() && path_.Verbs().back() != Path::Verb::Close &&
                        path_.Last() == path.Points()[0];
    if (goesOn)
        path_.Extend(path);
    else
        path_.Append(path);
}

void DeviceContext::LineTo(Point p) {
    const Point line[] = {state_.position, p};
    Path path;
    path.AddPolyline(line);
    Continue(std::move(path));
}

void DeviceContext::Polyline(std::span<const Point> points) {
    Path path;
    path.AddPolyline(points);
    Lines(path);
}

void DeviceContext::Lines(const Path& figures) {
    if (!figures.IsEmpty()) Emit(figures, nullptr, false);
}

void DeviceContext::Polygon(std::span<const Point> points) {
    Path path;
    path.AddPolygon(points);
    PolyPolygon(path);
}

void DeviceContext::PolyPolygon(const Path& figures) {
    if (!figures.IsEmpty()) Emit(figures, nullptr, true);
}

void DeviceContext::Rectangle(Box box) {
    Path fill, outline;
    fill.AddBox(box);
    outline.AddBox(OutlineBox(box));
    Emit(std::move(fill), &outline, true);
}

void DeviceContext::RoundRectangle(Box box, Point corner) {
    Path fill, outline;
    fill.AddRoundBox(box, corner * 0.5);
    outline.AddRoundBox(OutlineBox(box), corner * 0.5);
    Emit(std::move(fill), &outline, true);
}

void DeviceContext::Ellipse(Box box) {
    Path fill, outline;
    fill.AddEllipse(box);
    outline.AddEllipse(OutlineBox(box));
    Emit(std::move(fill), &outline, true);
}

void DeviceContext::Arc(Box box, Point from, Point to, ArcKind kind, bool join) {
    const Point centre{(box.left + box.right) / 2, (box.top + box.bottom) / 2};
    const Point radius{std::abs(box.Width()) / 2, std::abs(box.Height()) / 2};
    if (radius.x == 0 || radius.y == 0) return;
    const auto angle = [&](Point p) {
        return std::atan2((p.y - centre.y) / radius.y, (p.x - centre.x) / radius.x);
    };
    // Counter-clockwise is meant as seen on the picture, where y runs down.
    const bool mirrored = ToCanvas().Determinant() < 0;
    const bool rising = state_.arcsClockwise != mirrored;
    const double start = angle(from);
    double sweep = angle(to) - start;
    constexpr double kTurn = 2 * std::numbers::pi;
    if (rising && sweep <= 0) sweep += kTurn;
    if (!rising && sweep >= 0) sweep -= kTurn;

    Path path;
    if (join) path.MoveTo(state_.position);
    path.AddArc(centre, radius, start, sweep, join);
    if (join) return Continue(std::move(path));
    if (kind == ArcKind::Pie) path.LineTo(centre);
    if (kind != ArcKind::Open) path.Close();
    Emit(std::move(path), nullptr, kind != ArcKind::Open);
}

void DeviceContext::AngleArc(Point centre, double radius, double start, double sweep) {
    if (!std::isfinite(start) || !std::isfinite(sweep)) return;
    const double upward = ToCanvas().Determinant() < 0 ? 1 : -1;
    const double degrees = upward * std::numbers::pi / 180;
    Path path;
    path.MoveTo(state_.position);
    path.AddArc(centre, {radius, radius}, start * degrees,
                std::clamp(sweep, -3600.0, 3600.0) * degrees, true);
    Continue(std::move(path));
}

void DeviceContext::SetPixel(Point p, ColourRef colour) {
    // A pixel of the device, however small; on the canvas it is at least one pixel.
    const Point unit = base_.MapVector({1, 1});
    Path at;
    at.MoveTo(p);
    const Point corner = OnCanvas(std::move(at)).Last();
    Path dot;
    dot.AddBox({corner.x, corner.y, corner.x + std::max(1.0, std::abs(unit.x)),
                corner.y + std::max(1.0, std::abs(unit.y))});
    canvas_.Fill(dot, FillRule::Winding, {.colour = ColourOf(colour)}, state_.clip, kPatternCopy);
}

void DeviceContext::FloodFill(Point p, std::optional<ColourRef> border) {
    if (state_.brush.kind == Brush::Kind::None) return;
    Path at;
    at.MoveTo(p);
    const Point seed = OnCanvas(std::move(at)).Last();
    std::optional<Rgb> edge;
    if (border) edge = ColourOf(*border);
    canvas_.FloodFill(static_cast<int>(std::floor(seed.x)), static_cast<int>(std::floor(seed.y)),
                      edge, PaintOf(state_.brush), state_.clip);
}

void DeviceContext::BeginPath() {
    path_ = Path();
    buildingPath_ = true;
}

void DeviceContext::AbortPath() {
    path_ = Path();
    buildingPath_ = false;
}

void DeviceContext::CloseFigure() {
    if (buildingPath_) path_.Close();
}

void DeviceContext::PaintPath(bool fill, bool stroke) {
    const Path path = std::move(path_);
    AbortPath();
    if (fill) FillPath(path);
    if (stroke) StrokePath(path);
}

}  // namespace lumo::imaging::codecs::metafile

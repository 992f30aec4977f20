// Lines, shapes, paths and regions of enhanced metafiles.

#include <algorithm>

#include "imaging/codecs/metafile/emf_player_class.h"

namespace lumo::imaging::codecs::metafile {
namespace {

// Bounds, a count, and points.
std::vector<Point> ReadPoints(RecordReader& record, bool wide) {
    record.Skip(16);
    const std::size_t count =
        std::min(static_cast<std::size_t>(record.U32()), record.Left() / (wide ? 8 : 4));
    std::vector<Point> points(count);
    for (Point& p : points) p = wide ? ReadPoint(record) : ReadPoint16(record);
    return points;
}

Path Curves(std::span<const Point> points) {
    Path path;
    if (points.empty()) return path;
    path.MoveTo(points[0]);
    for (std::size_t i = 1; i + 2 < points.size(); i += 3)
        path.CurveTo(points[i], points[i + 1], points[i + 2]);
    return path;
}

}  // namespace

bool EmfPlayer::HandlePoints(EmfType type, RecordReader& record) {
    const bool wide = type < EmfType::PolyBezier16;
    const auto fromHere = [&] {
        std::vector<Point> points = ReadPoints(record, wide);
        points.insert(points.begin(), dc_.State().position);
        return points;
    };
    switch (type) {
        case EmfType::PolyBezier:
        case EmfType::PolyBezier16:
            dc_.Lines(Curves(ReadPoints(record, wide)));
            return true;
        case EmfType::Polygon:
        case EmfType::Polygon16:
            dc_.Polygon(ReadPoints(record, wide));
            return true;
        case EmfType::Polyline:
        case EmfType::Polyline16:
            dc_.Polyline(ReadPoints(record, wide));
            return true;
        case EmfType::PolyBezierTo:
        case EmfType::PolyBezierTo16:
            dc_.Continue(Curves(fromHere()));
            return true;
        case EmfType::PolylineTo:
        case EmfType::PolylineTo16: {
            Path path;
            path.AddPolyline(fromHere());
            dc_.Continue(std::move(path));
            return true;
        }
        case EmfType::PolyPolyline:
        case EmfType::PolyPolyline16:
            PolyPoly(record, wide, false);
            return true;
        case EmfType::PolyPolygon:
        case EmfType::PolyPolygon16:
            PolyPoly(record, wide, true);
            return true;
        case EmfType::PolyDraw:
        case EmfType::PolyDraw16:
            PolyDraw(record, wide);
            return true;
        default:
            return false;
    }
}

void EmfPlayer::PolyPoly(RecordReader& record, bool wide, bool close) {
    record.Skip(16);
    const std::size_t figures = record.U32();
    record.Skip(4);
    std::vector<std::size_t> counts;
    while (counts.size() < figures && record.Left() >= 4) counts.push_back(record.U32());
    Path path;
    std::vector<Point> points;
    for (const std::size_t count : counts) {
        points.clear();
        while (points.size() < count && record.Left() >= (wide ? 8U : 4U))
            points.push_back(wide ? ReadPoint(record) : ReadPoint16(record));
        if (close)
            path.AddPolygon(points);
        else
            path.AddPolyline(points);
    }
    if (close)
        dc_.PolyPolygon(path);
    else
        dc_.Lines(path);
}

void EmfPlayer::PolyDraw(RecordReader& record, bool wide) {
    const std::vector<Point> points = ReadPoints(record, wide);
    const ByteView kinds = record.Take(std::min(points.size(), record.Left()));
    constexpr std::uint8_t kClose = 1, kLine = 2, kCurve = 4, kMove = 6;
    Path path;
    path.MoveTo(dc_.State().position);
    const auto flush = [&] {
        if (path.Verbs().size() > 1) dc_.Continue(std::move(path));
        path = Path();
    };
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const std::uint8_t kind = kinds[i] & ~kClose;
        bool close = (kinds[i] & kClose) != 0;
        if (kind == kMove) {
            flush();
            path.MoveTo(points[i]);
            dc_.State().position = points[i];
        } else if (kind == kLine) {
            path.LineTo(points[i]);
        } else if (kind == kCurve && i + 2 < kinds.size()) {
            path.CurveTo(points[i], points[i + 1], points[i + 2]);
            i += 2;
            close = (kinds[i] & kClose) != 0;
        }
        if (close) path.Close();
    }
    flush();
}

bool EmfPlayer::HandleShapes(EmfType type, RecordReader& record) {
    switch (type) {
        case EmfType::MoveTo:
            dc_.State().position = ReadPoint(record);
            return true;
        case EmfType::LineTo:
            dc_.LineTo(ReadPoint(record));
            return true;
        case EmfType::Rectangle:
            dc_.Rectangle(ReadEmfBox(record));
            return true;
        case EmfType::Ellipse:
            dc_.Ellipse(ReadEmfBox(record));
            return true;
        case EmfType::RoundRectangle: {
            const Box box = ReadEmfBox(record);
            dc_.RoundRectangle(box, ReadPoint(record));
            return true;
        }
        case EmfType::Arc:
        case EmfType::ArcTo:
        case EmfType::Chord:
        case EmfType::Pie: {
            const Box box = ReadEmfBox(record);
            const Point from = ReadPoint(record), to = ReadPoint(record);
            const ArcKind kind = type == EmfType::Chord ? ArcKind::Chord
                                 : type == EmfType::Pie ? ArcKind::Pie
                                                        : ArcKind::Open;
            dc_.Arc(box, from, to, kind, type == EmfType::ArcTo);
            return true;
        }
        case EmfType::AngleArc: {
            const Point centre = ReadPoint(record);
            const double radius = record.U32();
            const double start = record.F32(), sweep = record.F32();
            dc_.AngleArc(centre, radius, start, sweep);
            return true;
        }
        case EmfType::SetPixel: {
            const Point at = ReadPoint(record);
            dc_.SetPixel(at, record.U32());
            return true;
        }
        case EmfType::ExtFloodFill: {
            const Point at = ReadPoint(record);
            const ColourRef border = record.U32();
            const bool surface = record.U32() == 1;
            dc_.FloodFill(at, surface ? std::nullopt : std::optional(border));
            return true;
        }
        default:
            return false;
    }
}

bool EmfPlayer::HandlePaths(EmfType type, RecordReader& record) {
    switch (type) {
        case EmfType::BeginPath:
            dc_.BeginPath();
            return true;
        case EmfType::EndPath:
            dc_.EndPath();
            return true;
        case EmfType::AbortPath:
            dc_.AbortPath();
            return true;
        case EmfType::CloseFigure:
            dc_.CloseFigure();
            return true;
        case EmfType::FlattenPath:
            dc_.CurrentPath().Flatten();
            return true;
        case EmfType::FillPath:
            dc_.PaintPath(true, false);
            return true;
        case EmfType::StrokePath:
            dc_.PaintPath(false, true);
            return true;
        case EmfType::StrokeAndFillPath:
            dc_.PaintPath(true, true);
            return true;
        case EmfType::SelectClipPath: {
            const std::uint32_t mode = record.U32();
            if (mode >= 1 && mode <= 5) dc_.ClipToPath(static_cast<ClipMode>(mode));
            return true;
        }
        default:
            return false;
    }
}

bool EmfPlayer::HandleRegions(EmfType type, RecordReader& record) {
    ObjectHandle keep;
    switch (type) {
        case EmfType::IntersectClipBox:
            dc_.ClipToBox(ClipMode::And, ReadEmfBox(record));
            return true;
        case EmfType::ExcludeClipBox:
            dc_.ClipToBox(ClipMode::Diff, ReadEmfBox(record));
            return true;
        case EmfType::OffsetClip:
            dc_.OffsetClip(ReadPoint(record));
            return true;
        case EmfType::FixClip:
            dc_.FixClip();
            return true;
        case EmfType::SelectClipRegion: {
            const std::size_t size = record.U32();
            const std::uint32_t mode = record.U32();
            if (size == 0)
                dc_.ResetClip();
            else if (mode >= 1 && mode <= 5)
                dc_.ClipToDeviceRegion(static_cast<ClipMode>(mode), ReadEmfRegion(record));
            return true;
        }
        case EmfType::FillRegion:
        case EmfType::FrameRegion: {
            record.Skip(20);
            const auto* brush = ObjectAt<Brush>(record.U32(), keep);
            Point size;
            if (type == EmfType::FrameRegion) size = ReadPoint(record);
            const Region region = ReadEmfRegion(record);
            if (brush == nullptr) return true;
            if (type == EmfType::FillRegion)
                dc_.FillRegion(region, *brush);
            else
                dc_.FrameRegion(region, *brush, size);
            return true;
        }
        case EmfType::InvertRegion:
        case EmfType::PaintRegion: {
            record.Skip(20);
            const Region region = ReadEmfRegion(record);
            if (type == EmfType::InvertRegion)
                dc_.InvertRegion(region);
            else
                dc_.FillRegion(region, dc_.State().brush);
            return true;
        }
        default:
            return false;
    }
}

}  // namespace lumo::imaging::codecs::metafile

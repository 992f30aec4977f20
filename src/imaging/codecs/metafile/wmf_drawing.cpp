// Lines, shapes, text and regions of Windows metafiles.

#include "imaging/codecs/metafile/charsets.h"
#include "imaging/codecs/metafile/wmf_player_class.h"

namespace lumo::imaging::codecs::metafile {

void WmfPlayer::PolyPolygon(RecordReader& record) {
    const std::size_t polygons = record.U16();
    std::vector<std::size_t> counts;
    for (std::size_t i = 0; i < polygons && record.IsGood(); ++i) counts.push_back(record.U16());
    Path path;
    for (const std::size_t count : counts) path.AddPolygon(ReadPoints(record, count));
    dc_.PolyPolygon(path);
}

bool WmfPlayer::HandleShapes(WmfFunction function, RecordReader& record) {
    switch (function) {
        case WmfFunction::LineTo:
            dc_.LineTo(ReadYX(record));
            return true;
        case WmfFunction::Polygon: {
            const std::size_t count = record.U16();
            dc_.Polygon(ReadPoints(record, count));
            return true;
        }
        case WmfFunction::Polyline: {
            const std::size_t count = record.U16();
            dc_.Polyline(ReadPoints(record, count));
            return true;
        }
        case WmfFunction::PolyPolygon:
            PolyPolygon(record);
            return true;
        case WmfFunction::Rectangle:
            dc_.Rectangle(ReadBox(record));
            return true;
        case WmfFunction::Ellipse:
            dc_.Ellipse(ReadBox(record));
            return true;
        case WmfFunction::RoundRectangle: {
            const Point corner = ReadYX(record);
            dc_.RoundRectangle(ReadBox(record), corner);
            return true;
        }
        case WmfFunction::Arc:
        case WmfFunction::Chord:
        case WmfFunction::Pie: {
            const Point to = ReadYX(record), from = ReadYX(record);
            const Box box = ReadBox(record);
            dc_.Arc(box, from, to,
                    function == WmfFunction::Arc     ? ArcKind::Open
                    : function == WmfFunction::Chord ? ArcKind::Chord
                                                     : ArcKind::Pie);
            return true;
        }
        case WmfFunction::SetPixel: {
            const ColourRef colour = record.U32();
            dc_.SetPixel(ReadYX(record), colour);
            return true;
        }
        case WmfFunction::FloodFill: {
            const ColourRef border = record.U32();
            dc_.FloodFill(ReadYX(record), border);
            return true;
        }
        case WmfFunction::ExtFloodFill: {
            const bool surface = record.U16() == 1;
            const ColourRef border = record.U32();
            dc_.FloodFill(ReadYX(record), surface ? std::nullopt : std::optional(border));
            return true;
        }
        case WmfFunction::TextOut:
            TextOut(record);
            return true;
        case WmfFunction::ExtTextOut:
            ExtTextOut(record);
            return true;
        default:
            return false;
    }
}

void WmfPlayer::TextOut(RecordReader& record) {
    const std::size_t length = record.U16();
    const ByteView bytes = record.Take(length);
    record.Skip(length % 2);
    TextCall call;
    call.at = ReadYX(record);
    const Font& font = dc_.State().font;
    SetCharacters(call, DecodeInFont(bytes, font), font, {});
    dc_.DrawText(call);
}

void WmfPlayer::ExtTextOut(RecordReader& record) {
    TextCall call;
    call.at = ReadYX(record);
    const std::size_t length = record.U16();
    const std::uint16_t options = record.U16();
    call.fillBox = (options & 2) != 0;
    call.clipToBox = (options & 4) != 0;
    call.glyphIndices = (options & 0x10) != 0;
    if (call.fillBox || call.clipToBox) {
        const double left = record.I16(), top = record.I16();
        const double right = record.I16(), bottom = record.I16();
        call.box = Box{left, top, right, bottom};
    }
    const ByteView bytes = record.Take(length);
    if (record.Left() > 0) record.Skip(length % 2);
    std::vector<double> advances;
    while (advances.size() < length && record.Left() >= 2) advances.push_back(record.I16());
    const Font& font = dc_.State().font;
    SetCharacters(call, DecodeInFont(bytes, font), font, advances);
    dc_.DrawText(call);
}

bool WmfPlayer::HandleRegions(WmfFunction function, RecordReader& record) {
    ObjectHandle keep, keepBrush;
    switch (function) {
        case WmfFunction::IntersectClipBox:
            dc_.ClipToBox(ClipMode::And, ReadBox(record));
            return true;
        case WmfFunction::ExcludeClipBox:
            dc_.ClipToBox(ClipMode::Diff, ReadBox(record));
            return true;
        case WmfFunction::OffsetClip:
            dc_.OffsetClip(ReadYX(record));
            return true;
        case WmfFunction::SelectClipRegion:
            if (const auto* region = ObjectAt<Region>(record.U16(), keep))
                dc_.ClipToRegion(ClipMode::Copy, *region);
            else
                dc_.ResetClip();
            return true;
        case WmfFunction::FillRegion:
        case WmfFunction::FrameRegion: {
            const auto* region = ObjectAt<Region>(record.U16(), keep);
            const auto* brush = ObjectAt<Brush>(record.U16(), keepBrush);
            if (region == nullptr || brush == nullptr) return true;
            if (function == WmfFunction::FillRegion)
                dc_.FillRegion(*region, *brush);
            else
                dc_.FrameRegion(*region, *brush, ReadYX(record));
            return true;
        }
        case WmfFunction::PaintRegion:
            if (const auto* region = ObjectAt<Region>(record.U16(), keep))
                dc_.FillRegion(*region, dc_.State().brush);
            return true;
        case WmfFunction::InvertRegion:
            if (const auto* region = ObjectAt<Region>(record.U16(), keep))
                dc_.InvertRegion(*region);
            return true;
        default:
            return false;
    }
}

}  // namespace lumo::imaging::codecs::metafile

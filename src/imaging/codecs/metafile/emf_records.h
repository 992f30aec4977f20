#pragma once

// How the records of an enhanced metafile are told apart.

#include <cstdint>

#include "imaging/codecs/metafile/record_reader.h"

namespace lumo::imaging::codecs::metafile {

enum class EmfType : std::uint32_t {
    Header = 1,
    PolyBezier = 2,
    Polygon = 3,
    Polyline = 4,
    PolyBezierTo = 5,
    PolylineTo = 6,
    PolyPolyline = 7,
    PolyPolygon = 8,
    SetWindowExtent = 9,
    SetWindowOrigin = 10,
    SetViewportExtent = 11,
    SetViewportOrigin = 12,
    SetBrushOrigin = 13,
    End = 14,
    SetPixel = 15,
    SetMapMode = 17,
    SetBackMode = 18,
    SetFillMode = 19,
    SetDrawMode = 20,
    SetStretchMode = 21,
    SetTextAlign = 22,
    SetTextColour = 24,
    SetBackColour = 25,
    OffsetClip = 26,
    MoveTo = 27,
    FixClip = 28,
    ExcludeClipBox = 29,
    IntersectClipBox = 30,
    ScaleViewportExtent = 31,
    ScaleWindowExtent = 32,
    SaveState = 33,
    RestoreState = 34,
    SetWorldTransform = 35,
    ModifyWorldTransform = 36,
    SelectObject = 37,
    CreatePen = 38,
    CreateBrush = 39,
    DeleteObject = 40,
    AngleArc = 41,
    Ellipse = 42,
    Rectangle = 43,
    RoundRectangle = 44,
    Arc = 45,
    Chord = 46,
    Pie = 47,
    SelectPalette = 48,
    CreatePalette = 49,
    SetPaletteEntries = 50,
    ResizePalette = 51,
    ExtFloodFill = 53,
    LineTo = 54,
    ArcTo = 55,
    PolyDraw = 56,
    SetArcDirection = 57,
    SetMiterLimit = 58,
    BeginPath = 59,
    EndPath = 60,
    CloseFigure = 61,
    FillPath = 62,
    StrokeAndFillPath = 63,
    StrokePath = 64,
    FlattenPath = 65,
    SelectClipPath = 67,
    AbortPath = 68,
    Comment = 70,
    FillRegion = 71,
    FrameRegion = 72,
    InvertRegion = 73,
    PaintRegion = 74,
    SelectClipRegion = 75,
    BitBlit = 76,
    StretchBlit = 77,
    MaskBlit = 78,
    ParallelogramBlit = 79,
    SetDibToDevice = 80,
    StretchDib = 81,
    CreateFont = 82,
    ExtTextOutBytes = 83,
    ExtTextOut = 84,
    PolyBezier16 = 85,
    Polygon16 = 86,
    Polyline16 = 87,
    PolyBezierTo16 = 88,
    PolylineTo16 = 89,
    PolyPolyline16 = 90,
    PolyPolygon16 = 91,
    PolyDraw16 = 92,
    CreateMonoBrush = 93,
    CreateDibBrush = 94,
    ExtCreatePen = 95,
    PolyTextOutBytes = 96,
    PolyTextOut = 97,
    SmallTextOut = 108,
    AlphaBlend = 114,
    TransparentBlit = 116,
    GradientFill = 118,
    SetTextJustification = 120,
};

/// Calls `use(type, record)` with each whole record, its type and size included, until the last
/// one or until `use` gives false. Returns false if the records end before the closing one, or a
/// length makes no sense.
template <class Use>
bool ForEachEmfRecord(ByteView file, Use use) {
    RecordReader reader(file);
    while (reader.Left() >= 8) {
        const std::size_t start = reader.Position();
        const auto type = static_cast<EmfType>(reader.U32());
        const std::size_t size = reader.U32();
        if (type == EmfType::End) return true;
        if (size < 8 || size - 8 > reader.Left()) return false;
        if (!use(type, file.subspan(start, size))) return true;
        reader.Seek(start + size);
    }
    return false;
}

}  // namespace lumo::imaging::codecs::metafile

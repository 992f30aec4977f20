#pragma once

// How the records of a Windows metafile are told apart.

#include <cstdint>

#include "imaging/codecs/metafile/record_reader.h"

namespace lumo::imaging::codecs::metafile {

/// The function numbers; the high byte is the number of 16-bit parameters of the call it stands
/// for.
enum class WmfFunction : std::uint16_t {
    End = 0x0000,
    SetBackMode = 0x0102,
    SetMapMode = 0x0103,
    SetDrawMode = 0x0104,
    SetFillMode = 0x0106,
    SetStretchMode = 0x0107,
    SetCharExtra = 0x0108,
    RestoreState = 0x0127,
    InvertRegion = 0x012A,
    PaintRegion = 0x012B,
    SelectClipRegion = 0x012C,
    SelectObject = 0x012D,
    SetTextAlign = 0x012E,
    DibCreatePatternBrush = 0x0142,
    SaveState = 0x001E,
    SetPaletteEntries = 0x0037,
    CreatePalette = 0x00F7,
    CreateBrush = 0x00F8,
    DeleteObject = 0x01F0,
    CreatePatternBrush = 0x01F9,
    SetBackColour = 0x0201,
    SetTextColour = 0x0209,
    SetTextJustification = 0x020A,
    SetWindowOrigin = 0x020B,
    SetWindowExtent = 0x020C,
    SetViewportOrigin = 0x020D,
    SetViewportExtent = 0x020E,
    OffsetWindowOrigin = 0x020F,
    OffsetViewportOrigin = 0x0211,
    LineTo = 0x0213,
    MoveTo = 0x0214,
    OffsetClip = 0x0220,
    FillRegion = 0x0228,
    SelectPalette = 0x0234,
    CreatePen = 0x02FA,
    CreateFont = 0x02FB,
    CreateBrushIndirect = 0x02FC,
    Polygon = 0x0324,
    Polyline = 0x0325,
    ScaleWindowExtent = 0x0410,
    ScaleViewportExtent = 0x0412,
    ExcludeClipBox = 0x0415,
    IntersectClipBox = 0x0416,
    Ellipse = 0x0418,
    FloodFill = 0x0419,
    Rectangle = 0x041B,
    SetPixel = 0x041F,
    FrameRegion = 0x0429,
    AnimatePalette = 0x0436,
    TextOut = 0x0521,
    PolyPolygon = 0x0538,
    ExtFloodFill = 0x0548,
    RoundRectangle = 0x061C,
    PatternBlit = 0x061D,
    CreateRegion = 0x06FF,
    Arc = 0x0817,
    Pie = 0x081A,
    Chord = 0x0830,
    BitBlit = 0x0922,
    DibBitBlit = 0x0940,
    ExtTextOut = 0x0A32,
    StretchBlit = 0x0B23,
    DibStretchBlit = 0x0B41,
    SetDibToDevice = 0x0D33,
    StretchDib = 0x0F43,
};

/// Calls `use(function, parameters)` for each record until the last one, or until `use` gives
/// false. Returns false if the records end before the closing one, or a length makes no sense.
template <class Use>
bool ForEachWmfRecord(ByteView records, Use use) {
    RecordReader reader(records);
    while (reader.Left() >= 6) {
        const std::uint64_t words = reader.U32();
        const auto function = static_cast<WmfFunction>(reader.U16());
        if (function == WmfFunction::End) return true;
        if (words < 3 || words * 2 - 6 > reader.Left()) return false;
        if (!use(function, reader.Take(static_cast<std::size_t>(words * 2 - 6)))) return true;
    }
    return false;
}

}  // namespace lumo::imaging::codecs::metafile

#include "imaging/codecs/metafile/wmf_player.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "imaging/codecs/metafile/charsets.h"
#include "imaging/codecs/metafile/wmf_objects.h"
#include "imaging/codecs/metafile/wmf_records.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr double kScreenDotsPerInch = 96;
constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;

Point ReadYX(RecordReader& record) {
    const double y = record.I16(), x = record.I16();
    return {x, y};
}

// Bottom, right, top, left.
Box ReadBox(RecordReader& record) {
    const Point low = ReadYX(record), high = ReadYX(record);
    return {high.x, high.y, low.x, low.y};
}

std::vector<Point> ReadPoints(RecordReader& record, std::size_t count) {
    std::vector<Point> points;
    points.reserve(std::min(count, record.Left() / 4));
    while (points.size() < count && record.Left() >= 4) {
        const double x = record.I16(), y = record.I16();
        points.push_back({x, y});
    }
    return points;
}

class Player {
  public:
    Player(const WmfFile& file, Canvas& canvas, Size target, const Transform& base,
           const DecodeOptions& options);
    bool Play();

  private:
    void Handle(WmfFunction function, RecordReader record);
    bool HandleState(WmfFunction function, RecordReader& record);
    bool HandleMapping(WmfFunction function, RecordReader& record);
    bool HandleObjects(WmfFunction function, RecordReader& record);
    bool HandleShapes(WmfFunction function, RecordReader& record);
    bool HandleRegions(WmfFunction function, RecordReader& record);
    bool HandleBitmaps(WmfFunction function, RecordReader& record);

    void SetMapMode(int mode);
    void ViewportChanged();
    void PolyPolygon(RecordReader& record);
    void TextOut(RecordReader& record);
    void ExtTextOut(RecordReader& record);
    void BitBlit(WmfFunction function, RecordReader& record);
    void StretchDib(RecordReader& record);
    void SetDibToDevice(RecordReader& record);
    template <class Kind>
    const Kind* ObjectAt(std::size_t index, ObjectHandle& keep) const;

    const WmfFile& file_;
    Canvas& canvas_;
    Size target_;
    DeviceContext dc_;
    ObjectTable objects_;
    bool viewportSet_ = false;
    bool drawn_ = false;
};

Player::Player(const WmfFile& file, Canvas& canvas, Size target, const Transform& base,
               const DecodeOptions& options)
    : file_(file),
      canvas_(canvas),
      target_(target),
      dc_(canvas, base, {kScreenDotsPerInch / 25.4, kScreenDotsPerInch / 25.4}, options) {
    if (!file.box && !file.window) return;
    Mapping& mapping = dc_.State().mapping;
    mapping.mode = MapMode::Anisotropic;
    mapping.viewportExtent = {static_cast<double>(target.width),
                              static_cast<double>(target.height)};
    if (file.box) {
        mapping.windowOrigin = {file.box->left, file.box->top};
        mapping.windowExtent = {file.box->Width(), file.box->Height()};
    } else {
        mapping.windowExtent = *file.window;
    }
}

bool Player::Play() {
    return ForEachWmfRecord(file_.records, [&](WmfFunction function, ByteView parameters) {
        Handle(function, RecordReader(parameters));
        return !canvas_.IsExhausted();
    });
}

void Player::Handle(WmfFunction function, RecordReader record) {
    if (HandleState(function, record) || HandleMapping(function, record) ||
        HandleObjects(function, record))
        return;
    drawn_ = true;
    if (HandleShapes(function, record) || HandleRegions(function, record)) return;
    HandleBitmaps(function, record);  // what is left is unknown, and skipped
}

bool Player::HandleState(WmfFunction function, RecordReader& record) {
    DrawingState& state = dc_.State();
    switch (function) {
        case WmfFunction::SaveState:
            dc_.Save();
            return true;
        case WmfFunction::RestoreState:
            dc_.Restore(record.I16());
            return true;
        case WmfFunction::SetBackMode:
            state.opaqueBack = record.U16() != 1;
            return true;
        case WmfFunction::SetDrawMode:
            state.drawMode = record.U16();
            return true;
        case WmfFunction::SetFillMode:
            state.fillRule = record.U16() == 2 ? FillRule::Winding : FillRule::EvenOdd;
            return true;
        case WmfFunction::SetStretchMode:
            return true;
        case WmfFunction::SetCharExtra:
            state.charExtra = record.I16();
            return true;
        case WmfFunction::SetTextAlign:
            state.textAlign = record.U16();
            return true;
        case WmfFunction::SetTextJustification: {
            const double count = record.U16(), extra = record.I16();
            state.breakExtra = count > 0 ? extra / count : 0;
            return true;
        }
        case WmfFunction::SetBackColour:
            state.backColour = record.U32();
            return true;
        case WmfFunction::SetTextColour:
            state.textColour = record.U32();
            return true;
        case WmfFunction::MoveTo:
            state.position = ReadYX(record);
            return true;
        default:
            return false;
    }
}

void Player::SetMapMode(int mode) {
    if (mode < 1 || mode > 8) return;
    // Files with a box or a window that say "pixels" mean the units of that box: they were
    // recorded for a device that the viewer chooses.
    const bool scales = file_.box || file_.window;
    if (mode == static_cast<int>(MapMode::Text) && scales)
        mode = static_cast<int>(MapMode::Anisotropic);
    dc_.State().mapping.mode = static_cast<MapMode>(mode);
}

// The first viewport of a file is the area of the device that its maker had; later ones are places
// in it.
void Player::ViewportChanged() {
    if (drawn_ || !viewportSet_) return;
    const Mapping& m = dc_.State().mapping;
    const Point far = m.viewportOrigin + m.viewportExtent;
    dc_.SetBase(
        BoxToBox({std::min(m.viewportOrigin.x, far.x), std::min(m.viewportOrigin.y, far.y),
                  std::max(m.viewportOrigin.x, far.x), std::max(m.viewportOrigin.y, far.y)},
                 {0, 0, static_cast<double>(target_.width), static_cast<double>(target_.height)}));
}

bool Player::HandleMapping(WmfFunction function, RecordReader& record) {
    Mapping& m = dc_.State().mapping;
    const auto scaled = [&](Point extent) {
        const Point divisor = ReadYX(record);  // y divisor, y factor, x divisor, x factor
        const double yDivisor = divisor.y, yFactor = divisor.x;
        const Point across = ReadYX(record);
        if (!record.IsGood() || yDivisor == 0 || across.y == 0) return extent;
        return Point{extent.x * across.x / across.y, extent.y * yFactor / yDivisor};
    };
    switch (function) {
        case WmfFunction::SetMapMode:
            SetMapMode(record.U16());
            return true;
        case WmfFunction::SetWindowOrigin:
            m.windowOrigin = ReadYX(record);
            return true;
        case WmfFunction::SetWindowExtent: {
            const Point extent = ReadYX(record);
            if (extent.x != 0 && extent.y != 0) m.windowExtent = extent;
            return true;
        }
        case WmfFunction::OffsetWindowOrigin:
            m.windowOrigin = m.windowOrigin + ReadYX(record);
            return true;
        case WmfFunction::ScaleWindowExtent: {
            const Point extent = scaled(m.windowExtent);
            if (extent.x != 0 && extent.y != 0) m.windowExtent = extent;
            return true;
        }
        case WmfFunction::SetViewportOrigin:
            m.viewportOrigin = ReadYX(record);
            ViewportChanged();
            return true;
        case WmfFunction::SetViewportExtent: {
            const Point extent = ReadYX(record);
            if (extent.x == 0 || extent.y == 0) return true;
            m.viewportExtent = extent;
            viewportSet_ = true;
            ViewportChanged();
            return true;
        }
        case WmfFunction::OffsetViewportOrigin:
            m.viewportOrigin = m.viewportOrigin + ReadYX(record);
            return true;
        case WmfFunction::ScaleViewportExtent: {
            const Point extent = scaled(m.viewportExtent);
            if (extent.x != 0 && extent.y != 0) m.viewportExtent = extent;
            return true;
        }
        default:
            return false;
    }
}

template <class Kind>
const Kind* Player::ObjectAt(std::size_t index, ObjectHandle& keep) const {
    keep = objects_.Get(index);
    return keep ? std::get_if<Kind>(keep.get()) : nullptr;
}

bool Player::HandleObjects(WmfFunction function, RecordReader& record) {
    DrawingState& state = dc_.State();
    switch (function) {
        case WmfFunction::CreatePen:
            objects_.Add(ReadWmfPen(record));
            return true;
        case WmfFunction::CreateBrush:
            objects_.Add({});
            return true;
        case WmfFunction::CreateBrushIndirect:
            objects_.Add(ReadWmfBrush(record));
            return true;
        case WmfFunction::CreateFont:
            objects_.Add(ReadWmfFont(record));
            return true;
        case WmfFunction::CreatePalette:
            objects_.Add(ReadWmfPalette(record));
            return true;
        case WmfFunction::CreateRegion:
            objects_.Add(ReadWmfRegion(record));
            return true;
        case WmfFunction::CreatePatternBrush:
            objects_.Add(ReadWmfPatternBrush(record));
            return true;
        case WmfFunction::DibCreatePatternBrush:
            objects_.Add(ReadWmfDibBrush(record, state.palette, dc_.Options()));
            return true;
        case WmfFunction::SelectPalette:
        case WmfFunction::SelectObject:
            if (const ObjectHandle object = objects_.Get(record.U16())) dc_.Select(*object);
            return true;
        case WmfFunction::DeleteObject:
            objects_.Delete(record.U16());
            return true;
        case WmfFunction::SetPaletteEntries:
        case WmfFunction::AnimatePalette: {
            std::size_t first = 0;
            const std::vector<Rgb> colours = ReadWmfColours(record, first);
            for (std::size_t i = 0; i < colours.size() && first + i < state.palette.size(); ++i)
                state.palette[first + i] = colours[i];
            return true;
        }
        default:
            return false;
    }
}

void Player::PolyPolygon(RecordReader& record) {
    const std::size_t polygons = record.U16();
    std::vector<std::size_t> counts;
    for (std::size_t i = 0; i < polygons && record.IsGood(); ++i) counts.push_back(record.U16());
    Path path;
    for (const std::size_t count : counts) path.AddPolygon(ReadPoints(record, count));
    dc_.PolyPolygon(path);
}

bool Player::HandleShapes(WmfFunction function, RecordReader& record) {
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

void Player::TextOut(RecordReader& record) {
    const std::size_t length = record.U16();
    const ByteView bytes = record.Take(length);
    record.Skip(length % 2);
    TextCall call;
    call.at = ReadYX(record);
    const Font& font = dc_.State().font;
    SetCharacters(call, DecodeInFont(bytes, font), font, {});
    dc_.DrawText(call);
}

void Player::ExtTextOut(RecordReader& record) {
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

bool Player::HandleRegions(WmfFunction function, RecordReader& record) {
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

bool Player::HandleBitmaps(WmfFunction function, RecordReader& record) {
    switch (function) {
        case WmfFunction::PatternBlit: {
            const Rop3 rop = static_cast<Rop3>(record.U32() >> 16);
            const Point size = ReadYX(record), at = ReadYX(record);
            dc_.PatternBlit({at.x, at.y, at.x + size.x, at.y + size.y}, rop);
            return true;
        }
        case WmfFunction::BitBlit:
        case WmfFunction::StretchBlit:
        case WmfFunction::DibBitBlit:
        case WmfFunction::DibStretchBlit:
            BitBlit(function, record);
            return true;
        case WmfFunction::StretchDib:
            StretchDib(record);
            return true;
        case WmfFunction::SetDibToDevice:
            SetDibToDevice(record);
            return true;
        default:
            return false;
    }
}

void Player::BitBlit(WmfFunction function, RecordReader& record) {
    const bool isDib =
        function == WmfFunction::DibBitBlit || function == WmfFunction::DibStretchBlit;
    const bool stretches =
        function == WmfFunction::StretchBlit || function == WmfFunction::DibStretchBlit;
    // Without a bitmap the record ends behind its numbers, one of which is unused.
    const bool noBitmap = record.Left() == (static_cast<std::size_t>(function) >> 8) * 2;
    BlitMode mode;
    mode.rop = static_cast<Rop3>(record.U32() >> 16);
    Point sourceSize;
    if (stretches) sourceSize = ReadYX(record);
    const Point from = ReadYX(record);
    if (noBitmap) record.Skip(2);
    const Point size = ReadYX(record), at = ReadYX(record);
    if (!record.IsGood()) return;
    const Box target{at.x, at.y, at.x + size.x, at.y + size.y};
    if (!stretches) sourceSize = size;
    if (noBitmap) return dc_.PatternBlit(target, mode.rop);
    const std::optional<Bitmap> bitmap =
        isDib ? DecodePackedDib(record.Rest(), ColourTable::Rgb, dc_.State().palette, dc_.Options())
              : ReadDeviceBitmap(record, 0);
    if (bitmap) dc_.Blit(*bitmap, target, SourceBox(*bitmap, from, sourceSize), mode);
}

void Player::StretchDib(RecordReader& record) {
    BlitMode mode;
    mode.rop = static_cast<Rop3>(record.U32() >> 16);
    const auto table = static_cast<ColourTable>(record.U16() & 1);
    const Point sourceSize = ReadYX(record), from = ReadYX(record);
    const Point size = ReadYX(record), at = ReadYX(record);
    if (!record.IsGood()) return;
    const Box target{at.x, at.y, at.x + size.x, at.y + size.y};
    if (record.Left() == 0) return dc_.PatternBlit(target, mode.rop);
    const auto bitmap = DecodePackedDib(record.Rest(), table, dc_.State().palette, dc_.Options());
    if (!bitmap) return;
    // Rows of a bitmap that runs from the bottom are counted from there.
    const double top = bitmap->bottomUp ? bitmap->size.height - from.y - sourceSize.y : from.y;
    dc_.Blit(*bitmap, target, {from.x, top, from.x + sourceSize.x, top + sourceSize.y}, mode);
}

void Player::SetDibToDevice(RecordReader& record) {
    const auto table = static_cast<ColourTable>(record.U16() & 1);
    record.Skip(4);  // the rows that are there: as many as the bitmap has
    const Point from = ReadYX(record), size = ReadYX(record), at = ReadYX(record);
    if (!record.IsGood()) return;
    const auto bitmap = DecodePackedDib(record.Rest(), table, dc_.State().palette, dc_.Options());
    if (!bitmap) return;
    // The size is meant in pixels of a device that is gone. It grows with the rest of the drawing,
    // as if a logical unit had been a pixel there.
    Box source = SourceBox(*bitmap, from, size);
    if (bitmap->bottomUp)
        source = {source.left, bitmap->size.height - source.bottom, source.right,
                  bitmap->size.height - source.top};
    dc_.Blit(*bitmap, {at.x, at.y, at.x + size.x, at.y + size.y}, source, {});
}

}  // namespace

std::optional<Point> WmfFile::StatedSize(Size hint) const {
    if (box)
        return Point{std::abs(box->Width()) / unitsPerInch * kScreenDotsPerInch,
                     std::abs(box->Height()) / unitsPerInch * kScreenDotsPerInch};
    if (!window) return std::nullopt;
    const Point extent{std::abs(window->x), std::abs(window->y)};
    return extent * std::min(hint.width / extent.x, hint.height / extent.y);
}

std::optional<WmfFile> OpenWmf(ByteView bytes) {
    RecordReader reader(bytes);
    WmfFile file;
    if (reader.U32() == kPlaceableKey) {
        reader.Skip(2);
        const double left = reader.I16(), top = reader.I16();
        const double right = reader.I16(), bottom = reader.I16();
        file.unitsPerInch = reader.U16();
        reader.Skip(6);
        // A header without a size says no more than none.
        if (left != right && top != bottom && file.unitsPerInch > 0)
            file.box = Box{left, top, right, bottom};
    } else {
        reader.Seek(0);
    }
    const unsigned kind = reader.U16(), headerWords = reader.U16(), version = reader.U16();
    reader.Skip(12);
    if (!reader.IsGood() || kind < 1 || kind > 2 || headerWords != 9) return std::nullopt;
    if (version != 0x0300 && version != 0x0100) return std::nullopt;
    file.records = reader.Rest();
    ForEachWmfRecord(file.records, [&](WmfFunction function, ByteView parameters) {
        if (function != WmfFunction::SetWindowExtent) return true;
        RecordReader record(parameters);
        const Point extent = ReadYX(record);
        if (extent.x != 0 && extent.y != 0) file.window = extent;
        return !file.window;
    });
    return file;
}

bool PlayWmf(const WmfFile& file, Canvas& canvas, Size target, const Transform& base,
             const DecodeOptions& options) {
    return Player(file, canvas, target, base, options).Play();
}

}  // namespace lumo::imaging::codecs::metafile

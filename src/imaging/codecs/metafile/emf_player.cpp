#include "imaging/codecs/metafile/emf_player.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "imaging/codecs/metafile/charsets.h"
#include "imaging/codecs/metafile/emf_objects.h"
#include "imaging/codecs/metafile/emf_records.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr double kScreenDotsPerInch = 96;
constexpr std::uint32_t kSignature = 0x464D4520;       // " EMF"
constexpr std::uint32_t kPlusSignature = 0x2B464D45;   // "EMF+"
constexpr std::uint32_t kStock = 0x80000000;

class Player {
  public:
    Player(const EmfFile& file, Canvas& canvas, const Transform& base, const DecodeOptions& options)
        : file_(file), canvas_(canvas), dc_(canvas, base, file.pixelsPerMillimetre, options) {}
    EmfOutcome Play();

  private:
    void Handle(EmfType type, ByteReader record);
    bool HandleState(EmfType type, ByteReader& record);
    bool HandleMapping(EmfType type, ByteReader& record);
    bool HandleObjects(EmfType type, ByteReader& record);
    bool HandlePoints(EmfType type, ByteReader& record);
    bool HandleShapes(EmfType type, ByteReader& record);
    bool HandlePaths(EmfType type, ByteReader& record);
    bool HandleRegions(EmfType type, ByteReader& record);
    bool HandleText(EmfType type, ByteReader& record);
    bool HandleBitmaps(EmfType type, ByteReader& record);

    void ModifyWorld(ByteReader& record);
    void PolyPoly(ByteReader& record, bool wide, bool close);
    void PolyDraw(ByteReader& record, bool wide);
    void ExtTextOut(ByteReader& record, bool wide);
    void PolyTextOut(ByteReader& record, bool wide);
    void TextRecord(ByteReader& record, bool wide, bool turns);
    void SmallTextOut(ByteReader& record);
    void BitBlit(EmfType type, ByteReader& record);
    void ParallelogramBlit(ByteReader& record);
    void StretchDib(ByteReader& record);
    void SetDibToDevice(ByteReader& record);
    void GradientFill(ByteReader& record);
    std::optional<Bitmap> BitmapOf(const ByteReader& record, const EmfBitmapPlace& place,
                                   std::uint32_t usage);
    template <class Kind>
    const Kind* ObjectAt(std::uint32_t index, ObjectHandle& keep) const;
    ObjectHandle Find(std::uint32_t index) const;

    const EmfFile& file_;
    Canvas& canvas_;
    DeviceContext dc_;
    ObjectTable objects_;
    EmfOutcome outcome_;
};

EmfOutcome Player::Play() {
    outcome_.complete = ForEachEmfRecord(file_.bytes, [&](EmfType type, ByteView bytes) {
        ByteReader record(bytes);
        record.Skip(8);
        Handle(type, record);
        return !canvas_.IsExhausted();
    });
    return outcome_;
}

void Player::Handle(EmfType type, ByteReader record) {
    // Unknown records fall through all of them, and are skipped.
    (void)(HandleState(type, record) || HandleMapping(type, record) ||
           HandleObjects(type, record) || HandlePoints(type, record) ||
           HandleShapes(type, record) || HandlePaths(type, record) ||
           HandleRegions(type, record) || HandleText(type, record) || HandleBitmaps(type, record));
}

bool Player::HandleState(EmfType type, ByteReader& record) {
    DrawingState& state = dc_.State();
    switch (type) {
        case EmfType::SaveState: dc_.Save(); return true;
        case EmfType::RestoreState: dc_.Restore(record.I32()); return true;
        case EmfType::SetBackMode: state.opaqueBack = record.U32() != 1; return true;
        case EmfType::SetFillMode:
            state.fillRule = record.U32() == 2 ? FillRule::Winding : FillRule::EvenOdd;
            return true;
        case EmfType::SetDrawMode: state.drawMode = record.U32(); return true;
        case EmfType::SetStretchMode: return true;
        case EmfType::SetTextAlign: state.textAlign = record.U32(); return true;
        case EmfType::SetTextColour: state.textColour = record.U32(); return true;
        case EmfType::SetBackColour: state.backColour = record.U32(); return true;
        case EmfType::SetBrushOrigin: state.brushOrigin = ReadPoint(record); return true;
        case EmfType::SetArcDirection: state.arcsClockwise = record.U32() == 2; return true;
        case EmfType::SetMiterLimit: {
            // Some write a whole number, some a float; the two cannot be taken for each other.
            const std::uint32_t word = record.U32();
            const float number = std::bit_cast<float>(word);
            state.miterLimit = word < 10'000 ? word : std::isfinite(number) ? number : 10;
            return true;
        }
        case EmfType::SetTextJustification: {
            const double extra = record.I32(), count = record.I32();
            state.breakExtra = count > 0 ? extra / count : 0;
            return true;
        }
        case EmfType::Comment: {
            const std::size_t size = record.U32();
            if (size >= 4 && record.U32() == kPlusSignature) outcome_.hasPlusRecords = true;
            return true;
        }
        default: return false;
    }
}

bool Player::HandleMapping(EmfType type, ByteReader& record) {
    Mapping& m = dc_.State().mapping;
    const auto set = [](Point& extent, Point value) {
        if (value.x != 0 && value.y != 0) extent = value;
    };
    const auto scaled = [&](Point extent) {
        const Point x = ReadPoint(record), y = ReadPoint(record);  // each factor and divisor
        if (!record.IsGood() || x.y == 0 || y.y == 0) return extent;
        return Point{extent.x * x.x / x.y, extent.y * y.x / y.y};
    };
    switch (type) {
        case EmfType::SetMapMode: {
            const std::uint32_t mode = record.U32();
            if (mode >= 1 && mode <= 8) m.mode = static_cast<MapMode>(mode);
            return true;
        }
        case EmfType::SetWindowExtent: set(m.windowExtent, ReadPoint(record)); return true;
        case EmfType::SetWindowOrigin: m.windowOrigin = ReadPoint(record); return true;
        case EmfType::SetViewportExtent: set(m.viewportExtent, ReadPoint(record)); return true;
        case EmfType::SetViewportOrigin: m.viewportOrigin = ReadPoint(record); return true;
        case EmfType::ScaleWindowExtent: set(m.windowExtent, scaled(m.windowExtent)); return true;
        case EmfType::ScaleViewportExtent:
            set(m.viewportExtent, scaled(m.viewportExtent));
            return true;
        case EmfType::SetWorldTransform: {
            const Transform world = ReadTransform(record);
            if (record.IsGood() && world.IsFinite()) m.world = world;
            return true;
        }
        case EmfType::ModifyWorldTransform: ModifyWorld(record); return true;
        default: return false;
    }
}

void Player::ModifyWorld(ByteReader& record) {
    const Transform change = ReadTransform(record);
    const std::uint32_t mode = record.U32();
    if (!record.IsGood()) return;
    Transform& world = dc_.State().mapping.world;
    Transform result = world;
    switch (mode) {
        case 1: result = {}; break;
        case 2: result = Compose(world, change); break;  // the change comes first
        case 3: result = Compose(change, world); break;
        case 4: result = change; break;
        default: break;
    }
    if (result.IsFinite()) world = result;
}

ObjectHandle Player::Find(std::uint32_t index) const {
    if (index & kStock) return std::make_shared<const Object>(StockObject(index & ~kStock));
    return objects_.Get(index);
}

template <class Kind>
const Kind* Player::ObjectAt(std::uint32_t index, ObjectHandle& keep) const {
    keep = Find(index);
    return keep ? std::get_if<Kind>(keep.get()) : nullptr;
}

bool Player::HandleObjects(EmfType type, ByteReader& record) {
    DrawingState& state = dc_.State();
    const auto create = [&](auto read, auto... more) {
        const std::uint32_t index = record.U32();
        objects_.Set(index, read(record, more...));
        return true;
    };
    switch (type) {
        case EmfType::CreatePen: return create(ReadEmfPen);
        case EmfType::ExtCreatePen: return create(ReadEmfExtPen);
        case EmfType::CreateBrush: return create(ReadEmfBrush);
        case EmfType::CreateFont: return create(ReadEmfFont);
        case EmfType::CreatePalette: return create(ReadEmfPalette);
        case EmfType::CreateMonoBrush:
        case EmfType::CreateDibBrush: {
            const std::uint32_t index = record.U32();
            objects_.Set(index,
                         ReadEmfPatternBrush(record, state.palette,
                                             type == EmfType::CreateMonoBrush, dc_.Options()));
            return true;
        }
        case EmfType::SelectPalette:
        case EmfType::SelectObject:
            if (const ObjectHandle object = Find(record.U32())) dc_.Select(*object);
            return true;
        case EmfType::DeleteObject: objects_.Delete(record.U32()); return true;
        case EmfType::SetPaletteEntries: {
            record.Skip(4);
            std::size_t index = record.U32();
            record.Skip(4);
            for (; record.Left() >= 4 && index < state.palette.size(); ++index) {
                const std::uint8_t red = record.U8(), green = record.U8(), blue = record.U8();
                record.Skip(1);
                state.palette[index] = {red, green, blue};
            }
            return true;
        }
        default: return false;
    }
}

// Bounds, a count, and points.
std::vector<Point> ReadPoints(ByteReader& record, bool wide) {
    record.Skip(16);
    const std::size_t count = std::min(static_cast<std::size_t>(record.U32()),
                                       record.Left() / (wide ? 8 : 4));
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

bool Player::HandlePoints(EmfType type, ByteReader& record) {
    const bool wide = type < EmfType::PolyBezier16;
    const auto fromHere = [&] {
        std::vector<Point> points = ReadPoints(record, wide);
        points.insert(points.begin(), dc_.State().position);
        return points;
    };
    switch (type) {
        case EmfType::PolyBezier:
        case EmfType::PolyBezier16: dc_.Lines(Curves(ReadPoints(record, wide))); return true;
        case EmfType::Polygon:
        case EmfType::Polygon16: dc_.Polygon(ReadPoints(record, wide)); return true;
        case EmfType::Polyline:
        case EmfType::Polyline16: dc_.Polyline(ReadPoints(record, wide)); return true;
        case EmfType::PolyBezierTo:
        case EmfType::PolyBezierTo16: dc_.Continue(Curves(fromHere())); return true;
        case EmfType::PolylineTo:
        case EmfType::PolylineTo16: {
            Path path;
            path.AddPolyline(fromHere());
            dc_.Continue(std::move(path));
            return true;
        }
        case EmfType::PolyPolyline:
        case EmfType::PolyPolyline16: PolyPoly(record, wide, false); return true;
        case EmfType::PolyPolygon:
        case EmfType::PolyPolygon16: PolyPoly(record, wide, true); return true;
        case EmfType::PolyDraw:
        case EmfType::PolyDraw16: PolyDraw(record, wide); return true;
        default: return false;
    }
}

void Player::PolyPoly(ByteReader& record, bool wide, bool close) {
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

void Player::PolyDraw(ByteReader& record, bool wide) {
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

bool Player::HandleShapes(EmfType type, ByteReader& record) {
    switch (type) {
        case EmfType::MoveTo: dc_.State().position = ReadPoint(record); return true;
        case EmfType::LineTo: dc_.LineTo(ReadPoint(record)); return true;
        case EmfType::Rectangle: dc_.Rectangle(ReadEmfBox(record)); return true;
        case EmfType::Ellipse: dc_.Ellipse(ReadEmfBox(record)); return true;
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
        default: return false;
    }
}

bool Player::HandlePaths(EmfType type, ByteReader& record) {
    switch (type) {
        case EmfType::BeginPath: dc_.BeginPath(); return true;
        case EmfType::EndPath: dc_.EndPath(); return true;
        case EmfType::AbortPath: dc_.AbortPath(); return true;
        case EmfType::CloseFigure: dc_.CloseFigure(); return true;
        case EmfType::FlattenPath: dc_.CurrentPath().Flatten(); return true;
        case EmfType::FillPath: dc_.PaintPath(true, false); return true;
        case EmfType::StrokePath: dc_.PaintPath(false, true); return true;
        case EmfType::StrokeAndFillPath: dc_.PaintPath(true, true); return true;
        case EmfType::SelectClipPath: {
            const std::uint32_t mode = record.U32();
            if (mode >= 1 && mode <= 5) dc_.ClipToPath(static_cast<ClipMode>(mode));
            return true;
        }
        default: return false;
    }
}

bool Player::HandleRegions(EmfType type, ByteReader& record) {
    ObjectHandle keep;
    switch (type) {
        case EmfType::IntersectClipBox:
            dc_.ClipToBox(ClipMode::And, ReadEmfBox(record));
            return true;
        case EmfType::ExcludeClipBox:
            dc_.ClipToBox(ClipMode::Diff, ReadEmfBox(record));
            return true;
        case EmfType::OffsetClip: dc_.OffsetClip(ReadPoint(record)); return true;
        case EmfType::FixClip: dc_.FixClip(); return true;
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
        default: return false;
    }
}

bool Player::HandleText(EmfType type, ByteReader& record) {
    switch (type) {
        case EmfType::ExtTextOut:
        case EmfType::ExtTextOutBytes: ExtTextOut(record, type == EmfType::ExtTextOut); return true;
        case EmfType::PolyTextOut:
        case EmfType::PolyTextOutBytes:
            PolyTextOut(record, type == EmfType::PolyTextOut);
            return true;
        case EmfType::SmallTextOut: SmallTextOut(record); return true;
        default: return false;
    }
}

constexpr std::uint32_t kAdvancedMode = 2;
enum TextOption : std::uint32_t {
    kOpaque = 0x2,
    kClipped = 0x4,
    kGlyphIndex = 0x10,
    kNoBox = 0x100,
    kSmallCharacters = 0x200,
    kPairs = 0x2000,
};

// The fonts of Windows number their glyphs in the order of ASCII, from the blank as the third on;
// text that is stored as glyph numbers shows its letters by this, and a mark for all others.
void GlyphsToText(std::vector<Character>& characters) {
    for (Character& c : characters) c.code = c.code >= 3 && c.code <= 97 ? c.code + 29 : 0xFFFD;
}

void Player::ExtTextOut(ByteReader& record, bool wide) {
    record.Skip(16);
    const bool turns = record.U32() == kAdvancedMode;
    record.Skip(8);
    TextRecord(record, wide, turns);
}

void Player::PolyTextOut(ByteReader& record, bool wide) {
    record.Skip(16);
    const bool turns = record.U32() == kAdvancedMode;
    record.Skip(8);
    const std::size_t count = record.U32();
    for (std::size_t i = 0; i < count && record.IsGood() && !canvas_.IsExhausted(); ++i)
        TextRecord(record, wide, turns);
}

void Player::TextRecord(ByteReader& record, bool wide, bool turns) {
    TextCall call;
    call.turnsWithWorld = turns;
    call.at = ReadPoint(record);
    const std::size_t count = record.U32(), textAt = record.U32();
    const std::uint32_t options = record.U32();
    const Box box = ReadEmfBox(record);
    const std::size_t advancesAt = record.U32();
    if (!record.IsGood()) return;
    call.fillBox = (options & kOpaque) != 0;
    call.clipToBox = (options & kClipped) != 0;
    if (call.fillBox || call.clipToBox) call.box = box;

    ByteReader text(record.All());
    text.Seek(textAt);
    const ByteView bytes = text.Take(count * (wide ? 2 : 1));
    std::vector<double> advances;
    ByteReader numbers(record.All());
    numbers.Seek(advancesAt);
    const std::size_t stride = (options & kPairs) != 0 ? 8 : 4;
    while (advancesAt != 0 && advances.size() < count && numbers.Left() >= stride) {
        advances.push_back(numbers.I32());
        numbers.Skip(stride - 4);
    }
    const Font& font = dc_.State().font;
    std::vector<Character> characters = wide ? DecodeUtf16(bytes) : DecodeInFont(bytes, font);
    if ((options & kGlyphIndex) != 0) GlyphsToText(characters);
    SetCharacters(call, characters, font, advances);
    dc_.DrawText(call);
}

void Player::SmallTextOut(ByteReader& record) {
    TextCall call;
    call.at = ReadPoint(record);
    const std::size_t count = record.U32();
    const std::uint32_t options = record.U32();
    call.turnsWithWorld = record.U32() == kAdvancedMode;
    record.Skip(8);
    call.fillBox = (options & kOpaque) != 0;
    call.clipToBox = (options & kClipped) != 0;
    if ((options & kNoBox) == 0) call.box = ReadEmfBox(record);
    const bool narrow = (options & kSmallCharacters) != 0;
    const ByteView bytes = record.Take(count * (narrow ? 1 : 2));
    const Font& font = dc_.State().font;
    std::vector<Character> characters = narrow ? DecodeInFont(bytes, font) : DecodeUtf16(bytes);
    if ((options & kGlyphIndex) != 0) GlyphsToText(characters);
    SetCharacters(call, characters, font, {});
    dc_.DrawText(call);
}

bool Player::HandleBitmaps(EmfType type, ByteReader& record) {
    switch (type) {
        case EmfType::BitBlit:
        case EmfType::StretchBlit:
        case EmfType::MaskBlit:
        case EmfType::AlphaBlend:
        case EmfType::TransparentBlit: BitBlit(type, record); return true;
        case EmfType::ParallelogramBlit: ParallelogramBlit(record); return true;
        case EmfType::StretchDib: StretchDib(record); return true;
        case EmfType::SetDibToDevice: SetDibToDevice(record); return true;
        case EmfType::GradientFill: GradientFill(record); return true;
        default: return false;
    }
}

std::optional<Bitmap> Player::BitmapOf(const ByteReader& record, const EmfBitmapPlace& place,
                                       std::uint32_t usage) {
    return ReadBitmap(record, place, static_cast<ColourTable>(usage & 1), dc_.State().palette,
                      dc_.Options());
}

// Leaves out the pixels where a mask of one bit is black.
void ApplyMask(Bitmap& bitmap, const Bitmap& mask, Point from, Point maskFrom) {
    for (int y = 0; y < bitmap.size.height; ++y)
        for (int x = 0; x < bitmap.size.width; ++x) {
            const double mx = x - from.x + maskFrom.x, my = y - from.y + maskFrom.y;
            const bool inside = mx >= 0 && my >= 0 && mx < mask.size.width && my < mask.size.height;
            const bool drawn =
                !inside || (mask.At(static_cast<int>(mx), static_cast<int>(my)) & 0xFFFFFF) != 0;
            std::uint32_t& pixel = bitmap.At(x, y);
            pixel = drawn ? pixel | 0xFF000000U : 0;
        }
}

void Player::BitBlit(EmfType type, ByteReader& record) {
    record.Skip(16);
    const Point at = ReadPoint(record), size = ReadPoint(record);
    const std::uint32_t operation = record.U32();
    const Point from = ReadPoint(record);
    const Transform source = ReadTransform(record);
    record.Skip(4);
    const std::uint32_t usage = record.U32();
    const EmfBitmapPlace place = ReadBitmapPlace(record);
    if (!record.IsGood()) return;
    // The source has its own transform, of which only a scale makes sense for a bitmap.
    Point sourceSize{size.x * (source.xx == 0 ? 1 : source.xx),
                     size.y * (source.yy == 0 ? 1 : source.yy)};
    BlitMode mode;
    EmfBitmapPlace maskPlace;
    Point maskFrom;
    std::uint32_t maskUsage = 0;
    if (type == EmfType::MaskBlit) {
        maskFrom = ReadPoint(record);
        maskUsage = record.U32();
        maskPlace = ReadBitmapPlace(record);
    } else if (type != EmfType::BitBlit) {
        sourceSize = ReadPoint(record);
    }
    if (type == EmfType::AlphaBlend) {
        mode.opacity = (operation >> 16 & 255) / 255.0;
        mode.useAlpha = (operation >> 24 & 1) != 0;
    } else if (type == EmfType::TransparentBlit) {
        mode.transparent = dc_.ColourOf(operation);
    } else {
        mode.rop = static_cast<Rop3>(operation >> 16);
    }
    const Box target{at.x, at.y, at.x + size.x, at.y + size.y};
    if (place.IsEmpty()) return dc_.PatternBlit(target, mode.rop);
    auto bitmap = BitmapOf(record, place, usage);
    if (!bitmap) return;
    mode.useAlpha = mode.useAlpha && bitmap->hasAlpha;
    if (!maskPlace.IsEmpty()) {
        if (const auto mask = BitmapOf(record, maskPlace, maskUsage)) {
            ApplyMask(*bitmap, *mask, from, maskFrom);
            mode.useAlpha = true;
        }
    }
    dc_.Blit(*bitmap, target, SourceBox(*bitmap, from, sourceSize), mode);
}

void Player::ParallelogramBlit(ByteReader& record) {
    record.Skip(16);
    const Point corner = ReadPoint(record), right = ReadPoint(record), below = ReadPoint(record);
    const Point from = ReadPoint(record), size = ReadPoint(record);
    record.Skip(28);
    const std::uint32_t usage = record.U32();
    const EmfBitmapPlace place = ReadBitmapPlace(record);
    const Point maskFrom = ReadPoint(record);
    const std::uint32_t maskUsage = record.U32();
    const EmfBitmapPlace maskPlace = ReadBitmapPlace(record);
    auto bitmap = BitmapOf(record, place, usage);
    if (!bitmap) return;
    BlitMode mode;
    if (!maskPlace.IsEmpty()) {
        if (const auto mask = BitmapOf(record, maskPlace, maskUsage)) {
            ApplyMask(*bitmap, *mask, from, maskFrom);
            mode.useAlpha = true;
        }
    }
    const Point across = right - corner, down = below - corner;
    dc_.BlitOnto(*bitmap, {across.x, across.y, down.x, down.y, corner.x, corner.y},
                 SourceBox(*bitmap, from, size), mode);
}

void Player::StretchDib(ByteReader& record) {
    record.Skip(16);
    const Point at = ReadPoint(record), from = ReadPoint(record), sourceSize = ReadPoint(record);
    const EmfBitmapPlace place = ReadBitmapPlace(record);
    const std::uint32_t usage = record.U32();
    BlitMode mode;
    mode.rop = static_cast<Rop3>(record.U32() >> 16);
    const Point size = ReadPoint(record);
    if (!record.IsGood()) return;
    const Box target{at.x, at.y, at.x + size.x, at.y + size.y};
    if (place.IsEmpty()) return dc_.PatternBlit(target, mode.rop);
    const auto bitmap = BitmapOf(record, place, usage);
    if (!bitmap) return;
    // Rows of a bitmap that runs from the bottom are counted from there.
    const double top = bitmap->bottomUp ? bitmap->size.height - from.y - sourceSize.y : from.y;
    dc_.Blit(*bitmap, target, {from.x, top, from.x + sourceSize.x, top + sourceSize.y}, mode);
}

void Player::SetDibToDevice(ByteReader& record) {
    record.Skip(16);
    const Point at = ReadPoint(record), from = ReadPoint(record), size = ReadPoint(record);
    const EmfBitmapPlace place = ReadBitmapPlace(record);
    const std::uint32_t usage = record.U32();
    const double firstScan = record.U32(), scans = record.U32();
    if (!record.IsGood()) return;
    if (const auto bitmap = BitmapOf(record, place, usage))
        dc_.SetDibToDevice(*bitmap, at, from, size, firstScan, scans);
}

void Player::GradientFill(ByteReader& record) {
    record.Skip(16);
    const std::size_t vertexCount = record.U32(), shapeCount = record.U32();
    const std::uint32_t mode = record.U32();
    constexpr std::uint32_t kUpright = 1, kTriangles = 2;
    std::vector<GradientVertex> vertices;
    while (vertices.size() < vertexCount && record.Left() >= 16) {
        const Point at = ReadPoint(record);
        const auto channel = [&] { return static_cast<std::uint8_t>(record.U16() >> 8); };
        const std::uint8_t red = channel(), green = channel(), blue = channel();
        record.Skip(2);
        vertices.push_back({at, {red, green, blue}});
    }
    if (vertices.empty() || mode > kTriangles) return;
    const auto vertex = [&] {
        return vertices[std::min<std::size_t>(record.U32(), vertices.size() - 1)];
    };
    const std::size_t shapeSize = mode == kTriangles ? 12 : 8;
    for (std::size_t i = 0; i < shapeCount && record.Left() >= shapeSize; ++i) {
        const GradientVertex a = vertex(), b = vertex();
        if (mode == kTriangles)
            dc_.GradientTriangle({a, b, vertex()});
        else
            dc_.GradientBox(a, b, mode == kUpright);
        if (canvas_.IsExhausted()) return;
    }
}

}  // namespace

void EmfFile::ChooseArea() {
    const Point unit = pixelsPerMillimetre * 0.01;
    area = {frame.left * unit.x, frame.top * unit.y, frame.right * unit.x, frame.bottom * unit.y};
    const auto size = [](Box box) { return box.IsEmpty() ? 0 : box.Width() * box.Height(); };
    // A frame that misses the drawing has the right size in the wrong place.
    if (area.IsEmpty() || size(Intersection(area, bounds)) < size(bounds) / 4) area = bounds;
}

Point EmfFile::StatedSize() const {
    const double inches = 1 / 25.4;
    if (area == bounds && frame.IsEmpty()) return {area.Width(), area.Height()};
    return {area.Width() / pixelsPerMillimetre.x * inches * kScreenDotsPerInch,
            area.Height() / pixelsPerMillimetre.y * inches * kScreenDotsPerInch};
}

Transform EmfFile::Base(Size size) const {
    const Box picture{0, 0, static_cast<double>(size.width), static_cast<double>(size.height)};
    const bool sameScale = std::abs(area.Width() - picture.right) < 0.5 &&
                           std::abs(area.Height() - picture.bottom) < 0.5;
    if (!sameScale) return BoxToBox(area, picture);
    // Hundredths of a millimetre are a little too coarse for pixels: one of the device is one of
    // the picture, or all lines would blur.
    return {1, 0, 0, 1, -std::round(area.left), -std::round(area.top)};
}

std::optional<EmfFile> OpenEmf(ByteView bytes) {
    ByteReader reader(bytes);
    if (reader.U32() != static_cast<std::uint32_t>(EmfType::Header)) return std::nullopt;
    const std::size_t headerSize = reader.U32();
    EmfFile file;
    file.bytes = bytes;
    file.bounds = ReadEmfBox(reader);
    file.bounds.right += 1;
    file.bounds.bottom += 1;
    file.frame = ReadEmfBox(reader);
    if (reader.U32() != kSignature) return std::nullopt;
    reader.Skip(28);
    const Point device = ReadPoint(reader), millimetres = ReadPoint(reader);
    if (!reader.IsGood()) return std::nullopt;
    Point extent = millimetres;
    if (headerSize >= 108) {
        reader.Skip(12);
        // The finer size is a later addition: some headers hold other things in its place.
        const Point finer = ReadPoint(reader) * 0.001;
        const auto agrees = [](double a, double b) { return std::abs(a - b) <= 1 + b / 20; };
        if (reader.IsGood() && agrees(finer.x, extent.x) && agrees(finer.y, extent.y))
            extent = finer;
    }
    const bool known = device.x > 0 && device.y > 0 && extent.x > 0 && extent.y > 0;
    file.pixelsPerMillimetre = known ? Point{device.x / extent.x, device.y / extent.y}
                                     : Point{kScreenDotsPerInch / 25.4, kScreenDotsPerInch / 25.4};
    file.ChooseArea();
    return file;
}

EmfOutcome PlayEmf(const EmfFile& file, Canvas& canvas, const Transform& base,
                   const DecodeOptions& options) {
    return Player(file, canvas, base, options).Play();
}

}  // namespace lumo::imaging::codecs::metafile

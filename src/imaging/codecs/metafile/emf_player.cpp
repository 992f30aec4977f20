#include "imaging/codecs/metafile/emf_player.h"

#include <bit>
#include <cmath>

#include "imaging/codecs/metafile/emf_player_class.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr std::uint32_t kPlusSignature = 0x2B464D45;  // "EMF+"
constexpr std::uint32_t kStock = 0x80000000;

}  // namespace

EmfOutcome EmfPlayer::Play() {
    outcome_.complete = ForEachEmfRecord(file_.bytes, [&](EmfType type, ByteView bytes) {
        RecordReader record(bytes);
        record.Skip(8);
        Handle(type, record);
        return !canvas_.IsExhausted();
    });
    return outcome_;
}

void EmfPlayer::Handle(EmfType type, RecordReader record) {
    // Unknown records fall through all of them, and are skipped.
    (void)(HandleState(type, record) || HandleMapping(type, record) ||
           HandleObjects(type, record) || HandlePoints(type, record) ||
           HandleShapes(type, record) || HandlePaths(type, record) || HandleRegions(type, record) ||
           HandleText(type, record) || HandleBitmaps(type, record));
}

bool EmfPlayer::HandleState(EmfType type, RecordReader& record) {
    DrawingState& state = dc_.State();
    switch (type) {
        case EmfType::SaveState:
            dc_.Save();
            return true;
        case EmfType::RestoreState:
            dc_.Restore(record.I32());
            return true;
        case EmfType::SetBackMode:
            state.opaqueBack = record.U32() != 1;
            return true;
        case EmfType::SetFillMode:
            state.fillRule = record.U32() == 2 ? FillRule::Winding : FillRule::EvenOdd;
            return true;
        case EmfType::SetDrawMode:
            state.drawMode = record.U32();
            return true;
        case EmfType::SetStretchMode:
            return true;
        case EmfType::SetTextAlign:
            state.textAlign = record.U32();
            return true;
        case EmfType::SetTextColour:
            state.textColour = record.U32();
            return true;
        case EmfType::SetBackColour:
            state.backColour = record.U32();
            return true;
        case EmfType::SetBrushOrigin:
            state.brushOrigin = ReadPoint(record);
            return true;
        case EmfType::SetArcDirection:
            state.arcsClockwise = record.U32() == 2;
            return true;
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
        default:
            return false;
    }
}

bool EmfPlayer::HandleMapping(EmfType type, RecordReader& record) {
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
        case EmfType::SetWindowExtent:
            set(m.windowExtent, ReadPoint(record));
            return true;
        case EmfType::SetWindowOrigin:
            m.windowOrigin = ReadPoint(record);
            return true;
        case EmfType::SetViewportExtent:
            set(m.viewportExtent, ReadPoint(record));
            return true;
        case EmfType::SetViewportOrigin:
            m.viewportOrigin = ReadPoint(record);
            return true;
        case EmfType::ScaleWindowExtent:
            set(m.windowExtent, scaled(m.windowExtent));
            return true;
        case EmfType::ScaleViewportExtent:
            set(m.viewportExtent, scaled(m.viewportExtent));
            return true;
        case EmfType::SetWorldTransform: {
            const Transform world = ReadTransform(record);
            if (record.IsGood() && world.IsFinite()) m.world = world;
            return true;
        }
        case EmfType::ModifyWorldTransform:
            ModifyWorld(record);
            return true;
        default:
            return false;
    }
}

void EmfPlayer::ModifyWorld(RecordReader& record) {
    const Transform change = ReadTransform(record);
    const std::uint32_t mode = record.U32();
    if (!record.IsGood()) return;
    Transform& world = dc_.State().mapping.world;
    Transform result = world;
    switch (mode) {
        case 1:
            result = {};
            break;
        case 2:
            result = Compose(world, change);
            break;  // the change comes first
        case 3:
            result = Compose(change, world);
            break;
        case 4:
            result = change;
            break;
        default:
            break;
    }
    if (result.IsFinite()) world = result;
}

ObjectHandle EmfPlayer::Find(std::uint32_t index) const {
    if (index & kStock) return std::make_shared<const Object>(StockObject(index & ~kStock));
    return objects_.Get(index);
}

bool EmfPlayer::HandleObjects(EmfType type, RecordReader& record) {
    DrawingState& state = dc_.State();
    const auto create = [&](auto read, auto... more) {
        const std::uint32_t index = record.U32();
        objects_.Set(index, read(record, more...));
        return true;
    };
    switch (type) {
        case EmfType::CreatePen:
            return create(ReadEmfPen);
        case EmfType::ExtCreatePen:
            return create(ReadEmfExtPen);
        case EmfType::CreateBrush:
            return create(ReadEmfBrush);
        case EmfType::CreateFont:
            return create(ReadEmfFont);
        case EmfType::CreatePalette:
            return create(ReadEmfPalette);
        case EmfType::CreateMonoBrush:
        case EmfType::CreateDibBrush: {
            const std::uint32_t index = record.U32();
            objects_.Set(
                index, ReadEmfPatternBrush(record, state.palette, type == EmfType::CreateMonoBrush,
                                           dc_.Options()));
            return true;
        }
        case EmfType::SelectPalette:
        case EmfType::SelectObject:
            if (const ObjectHandle object = Find(record.U32())) dc_.Select(*object);
            return true;
        case EmfType::DeleteObject:
            objects_.Delete(record.U32());
            return true;
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
        default:
            return false;
    }
}

EmfOutcome PlayEmf(const EmfFile& file, Canvas& canvas, const Transform& base,
                   const DecodeOptions& options) {
    return EmfPlayer(file, canvas, base, options).Play();
}

}  // namespace lumo::imaging::codecs::metafile

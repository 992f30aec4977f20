// Bitmaps and gradients of enhanced metafiles.

#include <algorithm>

#include "imaging/codecs/metafile/emf_player_class.h"

namespace lumo::imaging::codecs::metafile {
namespace {

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

}  // namespace

bool EmfPlayer::HandleBitmaps(EmfType type, RecordReader& record) {
    switch (type) {
        case EmfType::BitBlit:
        case EmfType::StretchBlit:
        case EmfType::MaskBlit:
        case EmfType::AlphaBlend:
        case EmfType::TransparentBlit:
            BitBlit(type, record);
            return true;
        case EmfType::ParallelogramBlit:
            ParallelogramBlit(record);
            return true;
        case EmfType::StretchDib:
            StretchDib(record);
            return true;
        case EmfType::SetDibToDevice:
            SetDibToDevice(record);
            return true;
        case EmfType::GradientFill:
            GradientFill(record);
            return true;
        default:
            return false;
    }
}

std::optional<Bitmap> EmfPlayer::BitmapOf(const RecordReader& record, const EmfBitmapPlace& place,
                                          std::uint32_t usage) {
    return ReadBitmap(record, place, static_cast<ColourTable>(usage & 1), dc_.State().palette,
                      dc_.Options());
}

void EmfPlayer::BitBlit(EmfType type, RecordReader& record) {
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

void EmfPlayer::ParallelogramBlit(RecordReader& record) {
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

void EmfPlayer::StretchDib(RecordReader& record) {
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

void EmfPlayer::SetDibToDevice(RecordReader& record) {
    record.Skip(16);
    const Point at = ReadPoint(record), from = ReadPoint(record), size = ReadPoint(record);
    const EmfBitmapPlace place = ReadBitmapPlace(record);
    const std::uint32_t usage = record.U32();
    const double firstScan = record.U32(), scans = record.U32();
    if (!record.IsGood()) return;
    if (const auto bitmap = BitmapOf(record, place, usage))
        dc_.SetDibToDevice(*bitmap, at, from, size, firstScan, scans);
}

void EmfPlayer::GradientFill(RecordReader& record) {
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

}  // namespace lumo::imaging::codecs::metafile

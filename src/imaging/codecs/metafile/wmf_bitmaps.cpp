// Bitmaps in Windows metafiles.

#include "imaging/codecs/metafile/wmf_player_class.h"

namespace lumo::imaging::codecs::metafile {

bool WmfPlayer::HandleBitmaps(WmfFunction function, RecordReader& record) {
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

void WmfPlayer::BitBlit(WmfFunction function, RecordReader& record) {
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

void WmfPlayer::StretchDib(RecordReader& record) {
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

void WmfPlayer::SetDibToDevice(RecordReader& record) {
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

}  // namespace lumo::imaging::codecs::metafile

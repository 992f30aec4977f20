// The headers of a Windows metafile: which part of the plane it shows, and how large.

#include <cmath>

#include "imaging/codecs/metafile/wmf_player_class.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;

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

}  // namespace lumo::imaging::codecs::metafile

#pragma once

// The player of Windows metafiles; its handlers stand by kind of record in wmf_player.cpp (state,
// mapping and objects), wmf_drawing.cpp and wmf_bitmaps.cpp.

#include <algorithm>

#include "imaging/codecs/metafile/device_context.h"
#include "imaging/codecs/metafile/wmf_objects.h"
#include "imaging/codecs/metafile/wmf_player.h"
#include "imaging/codecs/metafile/wmf_records.h"

namespace lumo::imaging::codecs::metafile {

inline constexpr double kScreenDotsPerInch = 96;

/// Coordinates stand in records with the vertical one first.
inline Point ReadYX(RecordReader& record) {
    const double y = record.I16(), x = record.I16();
    return {x, y};
}

/// Bottom, right, top, left.
inline Box ReadBox(RecordReader& record) {
    const Point low = ReadYX(record), high = ReadYX(record);
    return {high.x, high.y, low.x, low.y};
}

/// Here with the horizontal one first; as many as there are.
inline std::vector<Point> ReadPoints(RecordReader& record, std::size_t count) {
    std::vector<Point> points;
    points.reserve(std::min(count, record.Left() / 4));
    while (points.size() < count && record.Left() >= 4) {
        const double x = record.I16(), y = record.I16();
        points.push_back({x, y});
    }
    return points;
}

/// Plays one file: each record goes through the handlers until one knows it.
class WmfPlayer {
  public:
    WmfPlayer(const WmfFile& file, Canvas& canvas, Size target, const Transform& base,
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
    const Kind* ObjectAt(std::size_t index, ObjectHandle& keep) const {
        keep = objects_.Get(index);
        return keep ? std::get_if<Kind>(keep.get()) : nullptr;
    }

    const WmfFile& file_;
    Canvas& canvas_;
    Size target_;
    DeviceContext dc_;
    ObjectTable objects_;
    bool viewportSet_ = false;
    bool drawn_ = false;
};

}  // namespace lumo::imaging::codecs::metafile

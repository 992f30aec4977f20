#pragma once

// The player of enhanced metafiles; its handlers stand by kind of record in emf_player.cpp (state
// and objects), emf_drawing.cpp, emf_text.cpp and emf_bitmaps.cpp.

#include "imaging/codecs/metafile/device_context.h"
#include "imaging/codecs/metafile/emf_objects.h"
#include "imaging/codecs/metafile/emf_player.h"
#include "imaging/codecs/metafile/emf_records.h"

namespace lumo::imaging::codecs::metafile {

/// Plays one file: each record goes through the handlers until one knows it.
class EmfPlayer {
  public:
    EmfPlayer(const EmfFile& file, Canvas& canvas, const Transform& base,
              const DecodeOptions& options)
        : file_(file), canvas_(canvas), dc_(canvas, base, file.pixelsPerMillimetre, options) {}
    EmfOutcome Play();

  private:
    void Handle(EmfType type, RecordReader record);
    bool HandleState(EmfType type, RecordReader& record);
    bool HandleMapping(EmfType type, RecordReader& record);
    bool HandleObjects(EmfType type, RecordReader& record);
    bool HandlePoints(EmfType type, RecordReader& record);
    bool HandleShapes(EmfType type, RecordReader& record);
    bool HandlePaths(EmfType type, RecordReader& record);
    bool HandleRegions(EmfType type, RecordReader& record);
    bool HandleText(EmfType type, RecordReader& record);
    bool HandleBitmaps(EmfType type, RecordReader& record);

    void ModifyWorld(RecordReader& record);
    void PolyPoly(RecordReader& record, bool wide, bool close);
    void PolyDraw(RecordReader& record, bool wide);
    void ExtTextOut(RecordReader& record, bool wide);
    void PolyTextOut(RecordReader& record, bool wide);
    void TextRecord(RecordReader& record, bool wide, bool turns);
    void SmallTextOut(RecordReader& record);
    void BitBlit(EmfType type, RecordReader& record);
    void ParallelogramBlit(RecordReader& record);
    void StretchDib(RecordReader& record);
    void SetDibToDevice(RecordReader& record);
    void GradientFill(RecordReader& record);
    std::optional<Bitmap> BitmapOf(const RecordReader& record, const EmfBitmapPlace& place,
                                   std::uint32_t usage);
    template <class Kind>
    const Kind* ObjectAt(std::uint32_t index, ObjectHandle& keep) const {
        keep = Find(index);
        return keep ? std::get_if<Kind>(keep.get()) : nullptr;
    }
    ObjectHandle Find(std::uint32_t index) const;

    const EmfFile& file_;
    Canvas& canvas_;
    DeviceContext dc_;
    ObjectTable objects_;
    EmfOutcome outcome_;
};

}  // namespace lumo::imaging::codecs::metafile

#pragma once

// Enhanced metafiles: a header with bounds, frame and device, and records of 32-bit numbers that
// are drawn one by one.

#include <optional>

#include "imaging/codecs/metafile/device_context.h"

namespace lumo::imaging::codecs::metafile {

struct EmfFile {
    ByteView bytes;
    Box bounds;                 // of the drawing, in pixels of its device; the far sides exclusive
    Box frame;                  // of the picture, in hundredths of a millimetre
    Point pixelsPerMillimetre;  // of the device
    Box area;                   // what a picture shows, in pixels of the device

    /// Sets `area` to the frame, or to the bounds if the frame is empty or holds next to nothing of
    /// them.
    void ChooseArea();
    /// The area at 96 pixels to the inch; without a frame, as many pixels as the device had. Not
    /// rounded, and 0 or less if the file states no size at all.
    Point StatedSize() const;
    /// Maps pixels of the device so that the area covers a picture of that size.
    Transform Base(Size size) const;
};

/// Nothing if this is no enhanced metafile.
std::optional<EmfFile> OpenEmf(ByteView bytes);

/// What playing a file showed about it.
struct EmfOutcome {
    bool complete = true;         // its last record was there
    bool hasPlusRecords = false;  // comments hold records of the later kind, which are left alone
};

/// Draws all records. Files that hold the drawing twice, in the later kind of records too, are
/// drawn by the ordinary ones.
EmfOutcome PlayEmf(const EmfFile& file, Canvas& canvas, const Transform& base,
                   const DecodeOptions& options);

}  // namespace lumo::imaging::codecs::metafile

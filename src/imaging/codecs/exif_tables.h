#pragma once

// What the camera noted in a picture file, as texts.

#include <array>
#include <string>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// The tables of an EXIF block, in their order: main, EXIF, interoperability, thumbnail, GPS.
inline constexpr int kExifTableCount = 5;

struct ExifTables {
    /// One line for each tag but pointers to tables, as "0x10f Make: Canon". Values are
    /// UTF-8 without control characters; long ones are cut and end in "...".
    std::array<std::string, kExifTableCount> texts;
    /// One of the tables holds the maker of the camera (tag 0x10f).
    bool namesMaker = false;
};

/// Reads the first `count` tables of the EXIF block of a JPG. All empty for damaged blocks and for
/// other files, a TIF among them: its own tables say how the picture is stored.
ExifTables ReadExifTables(ByteView file, int count);

}  // namespace lumo::imaging::codecs

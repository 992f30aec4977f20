#pragma once

// What JPG and PNG files say beside their pixels, as it is stored. Bytes come from strangers:
// damage ends the reading, what was read so far stands.

#include <string>
#include <utility>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/jpeg_segments.h"

namespace lumo::imaging::codecs {

/// JPG markers that carry no picture.
inline constexpr int kApp0 = 0xE0;
inline constexpr int kApp1 = 0xE1;   // EXIF, XMP
inline constexpr int kApp2 = 0xE2;   // colour profile, index of further pictures
inline constexpr int kApp13 = 0xED;  // resource block with IPTC
inline constexpr int kApp14 = 0xEE;  // colour coding
inline constexpr int kApp15 = 0xEF;
inline constexpr int kComment = 0xFE;

/// Every application marker and comment before the picture data of a JPG, in file order: code and
/// payload. Empty for other files.
JpegMarkers ReadJpegMarkers(ByteView file);

/// Those of a list that may stand in a newly written RGB picture. The others say how the file they
/// come from is coded: density (APP0, which every writer sets itself), colour coding (APP14), the
/// index of further pictures in it, colour profiles for anything but RGB.
JpegMarkers MarkersForNewPicture(const JpegMarkers& markers);

/// Every text of a PNG, in file order: key and text, decompressed. International texts come as
/// Latin-1 where that can hold them, as the other kinds are; else as their UTF-8 bytes. Empty for
/// other files; at most 8 MiB of text.
std::vector<std::pair<std::string, std::string>> ReadPngTexts(ByteView file);

}  // namespace lumo::imaging::codecs

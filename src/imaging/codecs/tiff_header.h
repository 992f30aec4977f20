#pragma once

#include <cstdint>
#include <vector>

#include "imaging/codecs/tiff_file.h"

namespace lumo::imaging::codecs {

/// What the first directory says of its picture.
struct TiffHeader {
    std::uint32_t width = 0, height = 0;
    int bits = 1;
    int samples = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = 0;
    std::uint16_t compression = COMPRESSION_NONE;
    bool planar = false;
    bool tiled = false;
    std::uint32_t chunkWidth = 0, chunkHeight = 0;  // of a tile or a strip
    std::vector<std::uint16_t> extra;               // one entry per sample behind the colours

    int BitsPerPixel() const { return bits * samples; }
};

/// Also tells the JPEG codec to give RGB, if that is what the picture is stored with.
TiffHeader ReadTiffHeader(const TiffFile& file);

}  // namespace lumo::imaging::codecs

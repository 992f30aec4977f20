#include "imaging/codecs/tiff_header.h"

#include <algorithm>

namespace lumo::imaging::codecs {
namespace {

constexpr std::uint16_t kPhotometricMissing = 0xFFFF;

bool IsFax(std::uint16_t compression) {
    return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
           compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

}  // namespace

TiffHeader ReadTiffHeader(const TiffFile& file) {
    TiffHeader header;
    TIFF* tiff = file.Handle();
    header.width = file.Field<std::uint32_t>(TIFFTAG_IMAGEWIDTH);
    header.height = file.Field<std::uint32_t>(TIFFTAG_IMAGELENGTH);
    header.bits = file.Field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
    header.samples = file.Field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
    header.format = file.Field<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    header.compression = file.Field<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    header.planar = header.samples > 1 &&
                    file.Field<std::uint16_t>(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    std::uint16_t count = 0;
    std::uint16_t* types = nullptr;
    if (TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &types) == 1 && types != nullptr)
        header.extra.assign(types, types + count);
    header.photometric = file.Field<std::uint16_t>(TIFFTAG_PHOTOMETRIC, kPhotometricMissing);
    if (header.photometric == kPhotometricMissing) {
        const int colours = header.samples - static_cast<int>(header.extra.size());
        header.photometric = colours >= 3                ? PHOTOMETRIC_RGB
                             : IsFax(header.compression) ? PHOTOMETRIC_MINISWHITE
                                                         : PHOTOMETRIC_MINISBLACK;
    }
    // The JPEG codec converts by itself, also what is subsampled.
    if (header.photometric == PHOTOMETRIC_YCBCR && header.compression == COMPRESSION_JPEG &&
        !header.planar && header.samples == 3) {
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        header.photometric = PHOTOMETRIC_RGB;
    }
    header.tiled = TIFFIsTiled(tiff) != 0;
    if (header.tiled) {
        header.chunkWidth = file.Field<std::uint32_t>(TIFFTAG_TILEWIDTH);
        header.chunkHeight = file.Field<std::uint32_t>(TIFFTAG_TILELENGTH);
    } else {
        header.chunkWidth = header.width;
        header.chunkHeight =
            std::min(file.Field<std::uint32_t>(TIFFTAG_ROWSPERSTRIP, header.height), header.height);
    }
    return header;
}

}  // namespace lumo::imaging::codecs

// TIFF for writing: 8-bit RGB in strips, little-endian.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/tiff_file.h"

namespace lumo::imaging::codecs {
namespace {

// Large enough that headers do not count, small enough for a reader that wants a few rows.
constexpr std::size_t kStripBytes = std::size_t{128} << 10;
// Classic files end at 4 GiB; what cannot be predicted (LZW may grow by an eighth) stays below.
constexpr std::size_t kClassicPixelBytes = std::size_t{3} << 30;

int RowsPerStrip(ConstImageView image) {
    const auto rows = static_cast<int>(std::max<std::size_t>(1, kStripBytes / image.Stride()));
    return std::min(rows, image.Height());
}

bool WriteFields(TIFF* tiff, ConstImageView image, const TiffWriteOptions& options) {
    const auto compression = static_cast<std::uint16_t>(options.compression);
    const double dots = std::isfinite(options.dotsPerInch) ? options.dotsPerInch : 0;
    const double resolution = std::clamp(dots, 1.0, 1e6);
    bool ok = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.Width()) == 1 &&
              TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.Height()) == 1 &&
              TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) == 1 &&
              TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kChannels) == 1 &&
              TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) == 1 &&
              TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1 &&
              TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) == 1 &&
              TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, RowsPerStrip(image)) == 1 &&
              TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) == 1 &&
              TIFFSetField(tiff, TIFFTAG_XRESOLUTION, resolution) == 1 &&
              TIFFSetField(tiff, TIFFTAG_YRESOLUTION, resolution) == 1 &&
              TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression) == 1;
    // Without the differences of neighbours a photograph comes out larger than uncompressed.
    if (ok && options.compression == TiffCompression::Lzw)
        ok = TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) == 1;
    return ok;
}

bool WriteStrips(TIFF* tiff, ConstImageView image) {
    const int rows = RowsPerStrip(image);
    for (int y = 0; y < image.Height(); y += rows) {
        const int count = std::min(rows, image.Height() - y);
        const auto bytes = static_cast<tmsize_t>(static_cast<std::size_t>(count) * image.Stride());
        // The library copies before it changes anything, whatever its signature says.
        void* strip = const_cast<std::uint8_t*>(image.Row(y));
        if (TIFFWriteEncodedStrip(tiff, static_cast<std::uint32_t>(y / rows), strip, bytes) < 0)
            return false;
    }
    return true;
}

}  // namespace

Result<Bytes> EncodeTiff(ConstImageView image, const TiffWriteOptions& options) {
    const auto file = TiffFile::Create(image.Bytes().size() > kClassicPixelBytes);
    if (file->Handle() != nullptr && WriteFields(file->Handle(), image, options) &&
        WriteStrips(file->Handle(), image))
        if (Bytes bytes = file->Finish(); !bytes.empty()) return bytes;
    return platform::Error{
        fmt::format("TIF: {}", file->Failure().empty() ? "not enough memory" : file->Failure())};
}

}  // namespace lumo::imaging::codecs

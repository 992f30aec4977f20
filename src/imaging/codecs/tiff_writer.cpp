// TIFF for writing: 8-bit RGB in strips, little-endian.

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/lzw.h"
#include "imaging/codecs/tiff_file.h"
#include "imaging/parallel.h"
#include "imaging/simd.h"

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

// ---- LZW -------------------------------------------------------------------------------------

/// The first pixel as it is, then what each differs by from its left neighbour.
LUMO_SIMD_CLONES void Differences(const std::uint8_t* row, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < kChannels; ++i) out[i] = row[i];
    for (std::size_t i = kChannels; i < count; ++i)
        out[i] = static_cast<std::uint8_t>(row[i] - row[i - kChannels]);
}

Bytes PackedStrip(ConstImageView image, int first, int last) {
    Bytes packed, differences(image.Stride());
    LzwEncoder<LzwDialect::Tiff> encoder(packed);
    for (int y = first; y < last; ++y) {
        Differences(image.Row(y), image.Stride(), differences.data());
        encoder.Add(differences);
    }
    encoder.Finish();
    return packed;
}

// Strips know nothing of one another, so they are packed side by side and written in order.
bool WriteLzwStrips(TIFF* tiff, ConstImageView image) {
    const int rows = RowsPerStrip(image);
    const int strips = (image.Height() + rows - 1) / rows;
    std::vector<Bytes> packed(static_cast<std::size_t>(strips));
    std::atomic<bool> failed = false;
    ForRows(strips, static_cast<std::size_t>(rows) * image.Stride(), [&](int first, int last) {
        try {
            for (int i = first; i < last; ++i)
                packed[static_cast<std::size_t>(i)] =
                    PackedStrip(image, i * rows, std::min((i + 1) * rows, image.Height()));
        } catch (const std::bad_alloc&) {
            failed = true;
        }
    });
    if (failed) return false;
    for (std::uint32_t i = 0; i < packed.size(); ++i)
        if (TIFFWriteRawStrip(tiff, i, packed[i].data(), static_cast<tmsize_t>(packed[i].size())) <
            0)
            return false;
    return true;
}

}  // namespace

Result<Bytes> EncodeTiff(ConstImageView image, const TiffWriteOptions& options) {
    const std::size_t bytes = image.Bytes().size();
    const auto file = TiffFile::Create(bytes > kClassicPixelBytes, bytes);
    TIFF* tiff = file->Handle();
    try {
        if (tiff != nullptr && WriteFields(tiff, image, options) &&
            (options.compression == TiffCompression::Lzw ? WriteLzwStrips(tiff, image)
                                                         : WriteStrips(tiff, image)))
            if (Bytes whole = file->Finish(); !whole.empty()) return whole;
    } catch (const std::bad_alloc&) {
        return platform::Error{"TIF: not enough memory"};
    }
    return platform::Error{
        fmt::format("TIF: {}", file->Failure().empty() ? "not enough memory" : file->Failure())};
}

}  // namespace lumo::imaging::codecs

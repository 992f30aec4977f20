#pragma once

// Picture files in and out of memory. One format per file in this folder, registered in codecs.cpp;
// no other folder sees a picture library. Files are read and written by the callers.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "imaging/image.h"
#include "platform/result.h"

namespace lumo::imaging::codecs {

using platform::Result;
using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

/// The file formats. The numbers are those that GetExtType gives.
enum class Format : std::uint8_t {
    Unknown = 0,
    Jpeg = 1,
    Tiff = 2,
    Bmp = 3,
    Png = 4,
    Gif = 5,
    Pcx = 6,
    Tga = 7,
    Psd = 8,
    Wmf = 9,
    Emf = 10,
    Apm = 11,  // a Windows metafile with the placeable header
    Raw = 13,
};

/// What a decoder may spend on one file.
struct DecodeLimits {
    int maxSide = 65500;                           // pixels
    std::size_t maxPixels = 500'000'000;           // per picture
    int maxScans = 100;                            // of a progressive JPG
    std::size_t maxMemory = std::size_t{2} << 30;  // bytes inside a library
    Size* stated = nullptr;  // if set: RefuseSize notes here the first size that it is asked about
};

struct DecodeOptions {
    DecodeLimits limits;
    Size metafileHint{400, 400};  // box for a metafile that states no size of its own
};

/// A decoded picture: 8-bit RGB, alpha laid over white, 16 bits rounded to 8, no colour
/// management, not turned by an orientation tag.
struct Decoded {
    Image image;
    Format format = Format::Unknown;
    int bitsPerPixel = 24;  // as the file stores it, for display only
    std::string warning;    // one line where the file was damaged but gave a picture; else empty
};

/// Every decoder calls this before it allocates pixels: sides from 1 to limits.maxSide, at most
/// limits.maxPixels pixels, width * height * bytesPerPixel inside limits.maxMemory, all in 64 bits.
/// `bytesPerPixel` counts what the decoder itself will hold. Empty text: allowed; else the reason.
[[nodiscard]] std::string RefuseSize(std::int64_t width, std::int64_t height,
                                     std::int64_t bytesPerPixel, const DecodeLimits& limits);

/// The format that the first bytes tell, or Unknown (TGA and some RAW files have no signature).
Format FormatOfContent(ByteView file);

/// Decodes a whole file: by content first, by the format of its extension only where the content
/// says nothing. Never throws, never crashes, bounded by the limits in time and memory.
Result<Decoded> Decode(ByteView file, Format fromExtension, const DecodeOptions& options = {});

/// Width and height that the head of a file states, read by the rules of Decode but without any
/// pixels. Fails, with the reason, where Decode fails before it knows them.
Result<Size> GetImageDims(ByteView file, Format fromExtension);

// ---- Writers: each gives the whole file. The picture is never empty. --------------------------

struct JpegWriteOptions {
    int quality = 85;   // 0 to 100, clamped
    int smoothing = 0;  // 0 to 100, clamped
    bool progressive = false;
    double dotsPerInch = 72;                     // stored as a whole number, 1 to 65535
    std::vector<std::pair<int, Bytes>> markers;  // code (0xFE, 0xE1 ...) and payload, in file order
};

struct PngWriteOptions {
    double gamma = 0;  // the value for gAMA (1 / display gamma); 0: no such chunk
    double dotsPerMetre = 11811;
    bool interlaced = false;
    std::vector<std::pair<std::string, std::string>>
        texts;  // key, text; keys cleaned by the writer
};

enum class TiffCompression : std::uint16_t { None = 1, Lzw = 5, PackBits = 32773 };
struct TiffWriteOptions {
    TiffCompression compression = TiffCompression::None;
    double dotsPerInch = 300;
};

enum class GifPalette : std::uint8_t { Uniform = 0, MedianCut = 1, Octree = 2 };
struct GifWriteOptions {
    GifPalette palette = GifPalette::MedianCut;
    bool dither = false;  // Floyd-Steinberg over four neighbours, else over two
    bool interlaced = false;
};

Result<Bytes> EncodeJpeg(ConstImageView image, const JpegWriteOptions& options);
Result<Bytes> EncodePng(ConstImageView image, const PngWriteOptions& options);
Result<Bytes> EncodeTiff(ConstImageView image, const TiffWriteOptions& options);
Result<Bytes> EncodeGif(ConstImageView image, const GifWriteOptions& options);
Result<Bytes> EncodeBmp(ConstImageView image);
Result<Bytes> EncodePcx(ConstImageView image);
Result<Bytes> EncodeTga(ConstImageView image);
Result<Bytes> EncodePsd(ConstImageView image);
/// `format` is Wmf, Emf or Apm; the sides of Wmf and Apm end at 32767.
Result<Bytes> EncodeMetafile(ConstImageView image, Format format);

}  // namespace lumo::imaging::codecs

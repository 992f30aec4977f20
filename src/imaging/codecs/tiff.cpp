// TIFF for reading. Pictures made of plain samples are unpacked here, whatever their width, layout
// and compression; the rest (subsampled YCbCr, LogLuv, old JPEG) goes through libtiff's own RGBA
// conversion. The orientation tag is left alone.
//
// A flavour that neither side can read is refused with a text that begins with "0": callers then
// tell the user that the flavour is the reason, rather than damage.

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/tiff_file.h"
#include "imaging/codecs/tiff_header.h"
#include "imaging/codecs/tiff_reader.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

Error Flavour(std::string_view what) {
    return {fmt::format("0: {}", what)};
}

/// True for pictures that only libtiff's own conversion understands.
bool NeedsLibraryConversion(const TiffHeader& header) {
    switch (header.photometric) {
        case PHOTOMETRIC_YCBCR:
        case PHOTOMETRIC_LOGL:
        case PHOTOMETRIC_LOGLUV:
            return true;
        default:
            return header.compression == COMPRESSION_OJPEG;
    }
}

Result<Decoded> ConvertByLibrary(const TiffFile& file, const TiffHeader& header,
                                 const DecodeLimits& limits) {
    constexpr int kRasterBytes = 4;
    const Size size{static_cast<int>(header.width), static_cast<int>(header.height)};
    if (std::string refusal = RefuseSize(size.width, size.height, kChannels + kRasterBytes, limits);
        !refusal.empty())
        return Error{refusal};
    std::array<char, 1024> reason{};
    if (TIFFRGBAImageOK(file.Handle(), reason.data()) == 0) return Flavour(reason.data());

    const PixelBuffer raster = PixelBuffer::TryAllocate(size.Area() * kRasterBytes);
    auto image = Image::TryCreate(size);
    if (!raster || !image) return Error{LastError()};
    auto* words = reinterpret_cast<std::uint32_t*>(raster.Data());

    TIFFRGBAImage conversion{};
    if (TIFFRGBAImageBegin(&conversion, file.Handle(), 1, reason.data()) == 0)
        return Flavour(reason.data());
    conversion.orientation = conversion.req_orientation = ORIENTATION_TOPLEFT;  // as stored
    const int done = TIFFRGBAImageGet(&conversion, words, header.width, header.height);
    TIFFRGBAImageEnd(&conversion);
    if (done == 0) return Error{fmt::format("TIF: {}", file.Failure())};

    // The colours come multiplied by alpha: white shines through by 255 minus alpha.
    for (int y = 0; y < size.height; ++y) {
        std::uint8_t* target = image->View().Row(y);
        for (int x = 0; x < size.width; ++x, ++words, target += kChannels) {
            const std::uint32_t white = 255U - TIFFGetA(*words);
            target[0] = static_cast<std::uint8_t>(std::min(255U, TIFFGetR(*words) + white));
            target[1] = static_cast<std::uint8_t>(std::min(255U, TIFFGetG(*words) + white));
            target[2] = static_cast<std::uint8_t>(std::min(255U, TIFFGetB(*words) + white));
        }
    }
    return Decoded{std::move(*image), Format::Tiff, header.BitsPerPixel(), {}};
}

}  // namespace

Result<Decoded> DecodeTiff(ByteView bytes, const DecodeOptions& options) {
    const auto file = TiffFile::Open(bytes, options.limits.maxMemory);
    if (file->Handle() == nullptr) return Error{fmt::format("TIF: {}", file->Failure())};
    const TiffHeader header = ReadTiffHeader(*file);
    if (std::string refusal = RefuseSize(header.width, header.height, kChannels, options.limits);
        !refusal.empty())
        return Error{refusal};

    if (NeedsLibraryConversion(header)) return ConvertByLibrary(*file, header, options.limits);
    TiffReader reader(*file, header);
    if (std::string refusal = reader.Prepare(); !refusal.empty()) return Error{refusal};
    return reader.Read(options.limits);
}

}  // namespace lumo::imaging::codecs

// TIFF for reading. Pictures made of plain samples are unpacked here, whatever their width, layout
// and compression; the rest (subsampled YCbCr, LogLuv, old JPEG) goes through libtiff's own RGBA
// conversion. The orientation tag is left alone.
//
// A flavour that neither side can read is refused with a text that begins with "0": callers then
// tell the user that the flavour is the reason, rather than damage.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/tiff_file.h"
#include "imaging/codecs/tiff_samples.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr std::uint16_t kPhotometricMissing = 0xFFFF;

Error Flavour(std::string_view what) {
    return {fmt::format("0: {}", what)};
}

/// What the first directory says of its picture.
struct Header {
    std::uint32_t width = 0, height = 0;
    int bits = 1;
    int samples = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = kPhotometricMissing;
    std::uint16_t compression = COMPRESSION_NONE;
    bool planar = false;
    bool tiled = false;
    std::uint32_t chunkWidth = 0, chunkHeight = 0;  // of a tile or a strip
    std::vector<std::uint16_t> extra;               // one entry per sample behind the colours
};

bool IsFax(std::uint16_t compression) {
    return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
           compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

Header ReadHeader(const TiffFile& file) {
    Header header;
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

/// True for pictures that only libtiff's own conversion understands.
bool NeedsLibraryConversion(const Header& header) {
    switch (header.photometric) {
        case PHOTOMETRIC_YCBCR:
        case PHOTOMETRIC_LOGL:
        case PHOTOMETRIC_LOGLUV:
            return true;
        default:
            return header.compression == COMPRESSION_OJPEG;
    }
}

// ---- libtiff's own conversion ----------------------------------------------------------------

Result<Image> ConvertByLibrary(const TiffFile& file, const Header& header,
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
    return std::move(*image);
}

// ---- Plain samples ---------------------------------------------------------------------------

/// The picture as strips or tiles of samples, and how to make RGB of them.
class SampleReader {
  public:
    SampleReader(const TiffFile& file, const Header& header) : file_(file), header_(header) {}

    /// Decides on the conversion; a text that begins with "0" if there is none.
    std::string Prepare();
    Result<Image> Read(const DecodeLimits& limits);

  private:
    std::string ChooseType();
    std::string ChooseColours();
    void ChooseAlpha(int colourChannels);
    std::string ReadPalette();

    int Planes() const { return header_.planar ? usedChannels_ : 1; }
    bool IsDirect() const;
    std::string TryAllocateChunks(const DecodeLimits& limits);
    bool ReadChunk(std::uint32_t x, std::uint32_t y, int plane, std::uint8_t* target,
                   std::size_t bytes);
    bool ReadStripsInto(ImageView image);
    bool ReadChunksInto(ImageView image);
    void ConvertRow(std::uint32_t rowInChunk, int count, std::uint8_t* rgb);
    void ConvertPaletteRow(const std::uint8_t* row, int count, std::uint8_t* rgb) const;

    const TiffFile& file_;
    const Header& header_;
    SampleType type_;
    PixelLayout layout_;
    bool signedLab_ = false;
    int usedChannels_ = 1;  // those that ConvertRow looks at
    std::vector<Rgb> palette_;
    std::vector<std::uint8_t> paletteAlpha_;
    std::size_t chunkBytes_ = 0;
    std::size_t chunkRowBytes_ = 0;
    PixelBuffer chunks_;  // one strip or tile of each plane
    std::vector<std::uint8_t> pixels_;
};

std::string SampleReader::ChooseType() {
    type_.bits = header_.bits;
    switch (header_.format) {
        case SAMPLEFORMAT_UINT:
        case SAMPLEFORMAT_VOID:
            type_.kind = SampleKind::Unsigned;
            break;
        case SAMPLEFORMAT_INT:
            type_.kind = SampleKind::Signed;
            break;
        case SAMPLEFORMAT_IEEEFP:
            type_.kind = SampleKind::Float;
            break;
        default:
            return fmt::format("0: samples of format {}", header_.format);
    }
    if (type_.kind == SampleKind::Float) {
        if (type_.bits != 16 && type_.bits != 32 && type_.bits != 64)
            return fmt::format("0: {}-bit float samples", type_.bits);
    } else if (type_.bits < 1 || type_.bits > 32) {
        return fmt::format("0: {}-bit samples", type_.bits);
    }
    return {};
}

std::string SampleReader::ChooseColours() {
    switch (header_.photometric) {
        case PHOTOMETRIC_MINISWHITE:
            layout_.colours = SampleColours::InvertedGrey;
            return {};
        case PHOTOMETRIC_MINISBLACK:
        case PHOTOMETRIC_MASK:
            layout_.colours = SampleColours::Grey;
            return {};
        case PHOTOMETRIC_RGB:
            layout_.colours = SampleColours::Rgb;
            return {};
        case PHOTOMETRIC_PALETTE:
            return ReadPalette();
        case PHOTOMETRIC_SEPARATED:
            if (file_.Field<std::uint16_t>(TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK)
                return "0: inks other than CMYK";
            layout_.colours = SampleColours::Cmyk;
            return {};
        case PHOTOMETRIC_CIELAB:
        case PHOTOMETRIC_ICCLAB:
            if (type_.kind == SampleKind::Float || (type_.bits != 8 && type_.bits != 16))
                return fmt::format("0: Lab of {} bits", type_.bits);
            layout_.colours = SampleColours::Lab;
            signedLab_ = header_.photometric == PHOTOMETRIC_CIELAB;
            type_.kind = SampleKind::Unsigned;
            return {};
        default:
            return fmt::format("0: photometric interpretation {}", header_.photometric);
    }
}

std::string SampleReader::ReadPalette() {
    std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
    if (type_.kind == SampleKind::Float || type_.bits > 16)
        return fmt::format("0: palette indices of {} bits", type_.bits);
    if (TIFFGetField(file_.Handle(), TIFFTAG_COLORMAP, &red, &green, &blue) != 1)
        return "TIF: the palette is missing";
    const std::size_t entries = std::size_t{1} << type_.bits;
    // Some writers store 8-bit values; then no entry is above 255.
    std::uint16_t largest = 0;
    for (std::size_t i = 0; i < entries; ++i)
        largest = std::max({largest, red[i], green[i], blue[i]});
    const auto byte = [largest](std::uint16_t v) {
        return largest < 256 ? static_cast<std::uint8_t>(v) : Round16To8(v);
    };
    for (std::size_t i = 0; i < entries; ++i)
        palette_.push_back({byte(red[i]), byte(green[i]), byte(blue[i])});
    layout_.colours = SampleColours::Grey;  // one channel
    return {};
}

// The first extra sample that says so is alpha. RGB with a fourth sample of which nothing is said
// is taken as premultiplied, as libtiff does; a sample marked as unspecified is none.
void SampleReader::ChooseAlpha(int colourChannels) {
    usedChannels_ = colourChannels;
    for (std::size_t i = 0; i < header_.extra.size() && layout_.alpha == AlphaKind::None; ++i) {
        if (header_.extra[i] == EXTRASAMPLE_ASSOCALPHA) layout_.alpha = AlphaKind::Premultiplied;
        if (header_.extra[i] == EXTRASAMPLE_UNASSALPHA) layout_.alpha = AlphaKind::Straight;
        layout_.alphaChannel = colourChannels + static_cast<int>(i);
    }
    if (header_.extra.empty() && header_.samples == 4 && layout_.colours == SampleColours::Rgb) {
        layout_.alpha = AlphaKind::Premultiplied;
        layout_.alphaChannel = 3;
    }
    if (layout_.alphaChannel >= header_.samples) layout_.alpha = AlphaKind::None;
    if (layout_.alpha != AlphaKind::None) usedChannels_ = layout_.alphaChannel + 1;
}

std::string SampleReader::Prepare() {
    if (std::string refusal = ChooseType(); !refusal.empty()) return refusal;
    if (std::string refusal = ChooseColours(); !refusal.empty()) return refusal;
    const int colours = ColourChannels(layout_.colours);
    if (header_.samples < colours)
        return fmt::format("0: {} samples a pixel, {} needed", header_.samples, colours);
    if (TIFFIsCODECConfigured(header_.compression) == 0)
        return fmt::format("0: compression scheme {}", header_.compression);
    ChooseAlpha(colours);
    layout_.channels = header_.planar ? usedChannels_ : header_.samples;
    return {};
}

/// Rows of the file that are rows of the picture already.
bool SampleReader::IsDirect() const {
    return layout_.colours == SampleColours::Rgb && header_.samples == 3 && !header_.planar &&
           !header_.tiled && type_.bits == 8 && type_.kind == SampleKind::Unsigned;
}

std::string SampleReader::TryAllocateChunks(const DecodeLimits& limits) {
    const std::int64_t sampleBytes = (header_.bits + 7) / 8;
    const std::int64_t pixelBytes = sampleBytes * (header_.planar ? Planes() : header_.samples);
    if (std::string refusal =
            RefuseSize(header_.chunkWidth, header_.chunkHeight, pixelBytes, limits);
        !refusal.empty())
        return refusal;
    TIFF* tiff = file_.Handle();
    const tmsize_t bytes = header_.tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    const tmsize_t rowBytes = header_.tiled ? TIFFTileRowSize(tiff) : TIFFScanlineSize(tiff);
    const auto bitsPerRow = static_cast<std::uint64_t>(header_.chunkWidth) *
                            static_cast<std::uint64_t>(header_.bits) *
                            static_cast<std::uint64_t>(header_.planar ? 1 : header_.samples);
    if (bytes <= 0 || rowBytes <= 0 || static_cast<std::uint64_t>(rowBytes) * 8 < bitsPerRow ||
        static_cast<std::uint64_t>(bytes) <
            static_cast<std::uint64_t>(rowBytes) * header_.chunkHeight)
        return fmt::format(
            "TIF: {}", file_.Failure().empty() ? "rows of an impossible size" : file_.Failure());
    chunkBytes_ = static_cast<std::size_t>(bytes);
    chunkRowBytes_ = static_cast<std::size_t>(rowBytes);
    chunks_ = PixelBuffer::TryAllocate(chunkBytes_ * static_cast<std::size_t>(Planes()));
    if (!chunks_) return LastError();
    pixels_.resize(static_cast<std::size_t>(header_.chunkWidth) *
                   static_cast<std::size_t>(layout_.channels));
    return {};
}

/// Decodes the strip or tile that holds the pixel; what is missing of it counts as failure.
bool SampleReader::ReadChunk(std::uint32_t x, std::uint32_t y, int plane, std::uint8_t* target,
                             std::size_t bytes) {
    TIFF* tiff = file_.Handle();
    const auto sample = static_cast<std::uint16_t>(plane);
    const auto size = static_cast<tmsize_t>(bytes);
    const tmsize_t got =
        header_.tiled
            ? TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, sample), target, size)
            : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, sample), target, size);
    return got == size;
}

bool SampleReader::ReadStripsInto(ImageView image) {
    for (std::uint32_t y = 0; y < header_.height; y += header_.chunkHeight) {
        const std::uint32_t rows = std::min(header_.chunkHeight, header_.height - y);
        if (!ReadChunk(0, y, 0, image.Row(static_cast<int>(y)), rows * image.Stride()))
            return false;
    }
    return true;
}

void SampleReader::ConvertPaletteRow(const std::uint8_t* row, int count, std::uint8_t* rgb) const {
    const auto step = static_cast<std::size_t>(header_.planar ? 1 : header_.samples);
    for (int i = 0; i < count; ++i, rgb += kChannels) {
        const std::size_t at = static_cast<std::size_t>(i) * step;
        const Rgb colour = palette_[IndexAt(row, type_.bits, at)];
        rgb[0] = colour.red;
        rgb[1] = colour.green;
        rgb[2] = colour.blue;
    }
}

void SampleReader::ConvertRow(std::uint32_t rowInChunk, int count, std::uint8_t* rgb) {
    const std::uint8_t* row = chunks_.Data() + rowInChunk * chunkRowBytes_;
    if (!palette_.empty()) return ConvertPaletteRow(row, count, rgb);
    const auto channels = static_cast<std::size_t>(layout_.channels);
    if (!header_.planar && type_.bits == 8 && type_.kind == SampleKind::Unsigned && !signedLab_)
        return PixelsToRgb(row, layout_, count, rgb);
    for (int channel = 0; channel < usedChannels_; ++channel) {
        const auto c = static_cast<std::size_t>(channel);
        SampleType type = type_;
        if (signedLab_ && (channel == 1 || channel == 2)) type.kind = SampleKind::Signed;
        const std::uint8_t* plane = row + (header_.planar ? c * chunkBytes_ : 0);
        UnpackSamples(plane, type, header_.planar ? 0 : c, header_.planar ? 1 : channels, count,
                      pixels_.data() + c, channels);
    }
    PixelsToRgb(pixels_.data(), layout_, count, rgb);
}

bool SampleReader::ReadChunksInto(ImageView image) {
    for (std::uint32_t y = 0; y < header_.height; y += header_.chunkHeight) {
        const std::uint32_t rows = std::min(header_.chunkHeight, header_.height - y);
        // The last strip ends with the picture, tiles are always whole.
        const std::size_t bytes = header_.tiled ? chunkBytes_ : rows * chunkRowBytes_;
        for (std::uint32_t x = 0; x < header_.width; x += header_.chunkWidth) {
            for (int plane = 0; plane < Planes(); ++plane)
                if (!ReadChunk(x, y, plane,
                               chunks_.Data() + static_cast<std::size_t>(plane) * chunkBytes_,
                               bytes))
                    return false;
            const auto columns = static_cast<int>(std::min(header_.chunkWidth, header_.width - x));
            for (std::uint32_t row = 0; row < rows; ++row)
                ConvertRow(row, columns, image.At(static_cast<int>(x), static_cast<int>(y + row)));
        }
    }
    return true;
}

Result<Image> SampleReader::Read(const DecodeLimits& limits) {
    if (std::string refusal = RefuseSize(header_.width, header_.height, kChannels, limits);
        !refusal.empty())
        return Error{refusal};
    const bool direct = IsDirect();
    if (!direct)
        if (std::string refusal = TryAllocateChunks(limits); !refusal.empty())
            return Error{refusal};
    auto image =
        Image::TryCreate({static_cast<int>(header_.width), static_cast<int>(header_.height)});
    if (!image) return Error{LastError()};
    const bool whole = direct ? ReadStripsInto(image->View()) : ReadChunksInto(image->View());
    if (!whole)
        return Error{fmt::format(
            "TIF: {}", file_.Failure().empty() ? "the file ends too early" : file_.Failure())};
    return std::move(*image);
}

}  // namespace

Result<Decoded> DecodeTiff(ByteView bytes, const DecodeOptions& options) {
    const auto file = TiffFile::Open(bytes, options.limits.maxMemory);
    if (file->Handle() == nullptr) return Error{fmt::format("TIF: {}", file->Failure())};
    const Header header = ReadHeader(*file);
    if (std::string refusal = RefuseSize(header.width, header.height, kChannels, options.limits);
        !refusal.empty())
        return Error{refusal};

    Result<Image> image = Error{};
    if (NeedsLibraryConversion(header)) {
        image = ConvertByLibrary(*file, header, options.limits);
    } else {
        SampleReader reader(*file, header);
        if (std::string refusal = reader.Prepare(); !refusal.empty()) return Error{refusal};
        image = reader.Read(options.limits);
    }
    if (!image) return Error{image.Message()};
    return Decoded{.image = std::move(*image),
                   .format = Format::Tiff,
                   .bitsPerPixel = header.bits * header.samples};
}

}  // namespace lumo::imaging::codecs

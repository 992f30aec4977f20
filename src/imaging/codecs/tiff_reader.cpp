#include "imaging/codecs/tiff_reader.h"

#include <fmt/format.h>

#include <algorithm>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/rows.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {

using platform::Error;

namespace {

constexpr std::size_t kLongestRun = 258;  // that deflated data can state

}  // namespace

std::string TiffReader::ChooseType() {
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

std::string TiffReader::ChooseColours() {
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

std::string TiffReader::ReadPalette() {
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
void TiffReader::ChooseAlpha(int colourChannels) {
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

std::string TiffReader::Prepare() {
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
bool TiffReader::IsDirect() const {
    return layout_.colours == SampleColours::Rgb && header_.samples == 3 && !header_.planar &&
           !header_.tiled && type_.bits == 8 && type_.kind == SampleKind::Unsigned;
}

std::string TiffReader::TryAllocateChunks(const DecodeLimits& limits) {
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

/// Decodes the strip or tile that holds the pixel. What is missing of it counts as failure; a
/// chunk that reaches behind the end of the file tells that the file was cut.
bool TiffReader::ReadChunk(std::uint32_t x, std::uint32_t y, int plane, std::uint8_t* target,
                           std::size_t bytes) {
    TIFF* tiff = file_.Handle();
    const auto sample = static_cast<std::uint16_t>(plane);
    const auto size = static_cast<tmsize_t>(bytes);
    const std::uint32_t chunk =
        header_.tiled ? TIFFComputeTile(tiff, x, y, 0, sample) : TIFFComputeStrip(tiff, y, sample);
    // Deflated data that would give more than there is room for is forgiven; then the library
    // leaves out the whole run that does not fit, and the memory would show what it held before.
    std::fill_n(target + (bytes - std::min(bytes, kLongestRun)), std::min(bytes, kLongestRun),
                std::uint8_t{0});
    const tmsize_t got = header_.tiled ? TIFFReadEncodedTile(tiff, chunk, target, size)
                                       : TIFFReadEncodedStrip(tiff, chunk, target, size);
    if (got == size) return true;
    const std::uint64_t offset = TIFFGetStrileOffset(tiff, chunk);
    const std::uint64_t end = file_.InputBytes();
    cut_ = offset >= end || TIFFGetStrileByteCount(tiff, chunk) > end - offset;
    return false;
}

/// Rows of an uncompressed strip that stand in front of the end of a cut file, as ReadChunk would
/// give them; many writers put the whole picture into one strip.
std::uint32_t TiffReader::ReadCutStrip(std::uint32_t y, std::uint8_t* target,
                                       std::size_t rowBytes) {
    if (!cut_ || header_.tiled || header_.planar || header_.compression != COMPRESSION_NONE)
        return 0;
    TIFF* tiff = file_.Handle();
    const std::uint32_t strip = TIFFComputeStrip(tiff, y, 0);
    const std::uint64_t offset = TIFFGetStrileOffset(tiff, strip);
    if (offset >= file_.InputBytes()) return 0;
    const std::uint64_t rows =
        std::min<std::uint64_t>((file_.InputBytes() - offset) / rowBytes,
                                std::min(header_.chunkHeight, header_.height - y));
    const auto bytes = static_cast<tmsize_t>(rows * rowBytes);
    if (bytes == 0 || TIFFReadRawStrip(tiff, strip, target, bytes) != bytes) return 0;
    if (file_.Field<std::uint16_t>(TIFFTAG_FILLORDER) == FILLORDER_LSB2MSB)
        TIFFReverseBits(target, bytes);
    if (TIFFIsByteSwapped(tiff) != 0) {
        const auto count = bytes * 8 / header_.bits;
        if (header_.bits == 16)
            TIFFSwabArrayOfShort(reinterpret_cast<std::uint16_t*>(target), count);
        if (header_.bits == 24) TIFFSwabArrayOfTriples(target, count);
        if (header_.bits == 32)
            TIFFSwabArrayOfLong(reinterpret_cast<std::uint32_t*>(target), count);
        if (header_.bits == 64)
            TIFFSwabArrayOfLong8(reinterpret_cast<std::uint64_t*>(target), count);
    }
    return static_cast<std::uint32_t>(rows);
}

/// The number of rows from the top that came whole.
std::uint32_t TiffReader::ReadStripsInto(ImageView image) {
    for (std::uint32_t y = 0; y < header_.height; y += header_.chunkHeight) {
        const std::uint32_t rows = std::min(header_.chunkHeight, header_.height - y);
        std::uint8_t* target = image.Row(static_cast<int>(y));
        if (!ReadChunk(0, y, 0, target, rows * image.Stride()))
            return y + ReadCutStrip(y, target, image.Stride());
    }
    return header_.height;
}

void TiffReader::ConvertPaletteRow(const std::uint8_t* row, int count, std::uint8_t* rgb) const {
    const auto step = static_cast<std::size_t>(header_.planar ? 1 : header_.samples);
    for (int i = 0; i < count; ++i, rgb += kChannels) {
        const std::size_t at = static_cast<std::size_t>(i) * step;
        const Rgb colour = palette_[IndexAt(row, type_.bits, at)];
        rgb[0] = colour.red;
        rgb[1] = colour.green;
        rgb[2] = colour.blue;
    }
}

void TiffReader::ConvertRow(std::uint32_t rowInChunk, int count, std::uint8_t* rgb) {
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

/// Decodes the chunk of every plane; gives the rows that came whole, at most `rows`.
std::uint32_t TiffReader::ReadPlanes(std::uint32_t x, std::uint32_t y, std::uint32_t rows) {
    // The last strip ends with the picture, tiles are always whole.
    const std::size_t bytes = header_.tiled ? chunkBytes_ : rows * chunkRowBytes_;
    for (int plane = 0; plane < Planes(); ++plane) {
        std::uint8_t* target = chunks_.Data() + static_cast<std::size_t>(plane) * chunkBytes_;
        if (!ReadChunk(x, y, plane, target, bytes)) return ReadCutStrip(y, target, chunkRowBytes_);
    }
    return rows;
}

/// The number of rows from the top that came whole.
std::uint32_t TiffReader::ReadChunksInto(ImageView image) {
    for (std::uint32_t y = 0; y < header_.height; y += header_.chunkHeight) {
        const std::uint32_t rows = std::min(header_.chunkHeight, header_.height - y);
        for (std::uint32_t x = 0; x < header_.width; x += header_.chunkWidth) {
            const std::uint32_t whole = ReadPlanes(x, y, rows);
            const auto columns = static_cast<int>(std::min(header_.chunkWidth, header_.width - x));
            for (std::uint32_t row = 0; row < whole; ++row)
                ConvertRow(row, columns, image.At(static_cast<int>(x), static_cast<int>(y + row)));
            if (whole < rows) return y + whole;
        }
    }
    return header_.height;
}

Result<Decoded> TiffReader::Read(const DecodeLimits& limits) {
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
    const std::uint32_t rows =
        direct ? ReadStripsInto(image->View()) : ReadChunksInto(image->View());
    if (rows < header_.height && !cut_)
        return Error{fmt::format(
            "TIF: {}", file_.Failure().empty() ? "a strip or tile is too short" : file_.Failure())};
    return FinishRows(std::move(*image), Format::Tiff, header_.BitsPerPixel(),
                      static_cast<int>(rows), true);
}

}  // namespace lumo::imaging::codecs

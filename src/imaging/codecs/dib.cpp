#include "imaging/codecs/dib.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/decoders.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

enum class Coding { Plain, Masks, Runs, Jpeg, Png };

constexpr std::uint32_t kCoreHeader = 12;  // 16-bit sizes and colour entries of three bytes
constexpr std::uint32_t kOs2Header = 64;
constexpr std::uint32_t kMaxHeader = 4096;

struct Header {
    std::uint32_t bytes = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool topDown = false;
    int bits = 0;
    Coding coding = Coding::Plain;
    std::array<std::uint32_t, 4> masks{};  // red, green, blue, alpha
    std::size_t tableOffset = 0;           // of the colour table, behind header and masks
    std::size_t entryBytes = 4;
    std::uint32_t coloursUsed = 0;

    Size Extent() const { return {static_cast<int>(width), static_cast<int>(height)}; }
    bool IsIndexed() const { return bits <= 8; }
};

bool IsOneOf(int value, std::initializer_list<int> values) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// Empty if the pair can be read.
std::string SetCoding(Header& header, std::uint32_t compression) {
    const bool os2 = header.bytes < 40 || header.bytes == kOs2Header;
    bool fits = false;
    switch (compression) {
        case 0:
            fits = IsOneOf(header.bits, {1, 2, 4, 8, 16, 24, 32});
            break;
        case 1:
        case 2:
            header.coding = Coding::Runs;
            fits = header.bits == (compression == 1 ? 8 : 4);
            break;
        case 3:
            if (os2 || header.bits == 1) return "a BMP with Huffman coding is not supported";
            [[fallthrough]];
        case 6:
            header.coding = Coding::Masks;
            fits = IsOneOf(header.bits, {16, 32});
            break;
        case 4:  // run lengths of 24 bits in OS/2, a JPEG in Windows
            header.coding = os2 ? Coding::Runs : Coding::Jpeg;
            fits = !os2 || header.bits == 24;
            break;
        case 5:
            header.coding = Coding::Png;
            fits = true;
            break;
        default:
            return fmt::format("a BMP with coding {} is not supported", compression);
    }
    if (fits) return {};
    return fmt::format("a BMP of {} bits with coding {} is not supported", header.bits,
                       compression);
}

// The masks stand in the longer Windows headers, or behind one that is too short for them.
void ReadMasks(Header& header, ByteView dib, std::uint32_t compression) {
    const bool inside = header.bytes >= 52 && header.bytes != kOs2Header;
    if (header.coding == Coding::Masks) {
        ByteReader in(dib, 40);
        const int count = inside ? (header.bytes >= 56 ? 4 : 3) : (compression == 6 ? 4 : 3);
        if (!inside) in = ByteReader(dib, header.bytes);
        for (int i = 0; i < count; ++i) header.masks[static_cast<std::size_t>(i)] = in.U32Le();
        if (!inside) header.tableOffset += static_cast<std::size_t>(count) * 4;
    } else if (header.bits == 16) {
        header.masks = {0x7C00, 0x03E0, 0x001F, 0};
    } else if (header.bits == 32) {
        header.masks = {0xFF0000, 0x00FF00, 0x0000FF, 0};
    }
}

Result<Header> ReadHeader(ByteView dib) {
    Header header;
    header.bytes = ByteReader(dib).U32Le();
    const bool known = header.bytes == kCoreHeader || header.bytes >= 16;
    if (!known || header.bytes > kMaxHeader || header.bytes > dib.size())
        return Error{"the BMP header is damaged"};
    ByteReader in(dib.first(header.bytes), 4);  // what a short header leaves out reads as 0
    std::uint32_t compression = 0;
    if (header.bytes == kCoreHeader) {
        header.width = in.U16Le();
        header.height = in.U16Le();
        header.entryBytes = 3;
    } else {
        header.width = in.I32Le();
        header.height = in.I32Le();
    }
    in.Skip(2);  // colour planes, always 1
    header.bits = in.U16Le();
    if (header.bytes != kCoreHeader) {
        compression = in.U32Le();
        in.Skip(12);  // bytes of the pixels, resolution
        header.coloursUsed = in.U32Le();
    }
    header.topDown = header.height < 0;
    header.height = std::abs(header.height);
    header.tableOffset = header.bytes;
    if (std::string reason = SetCoding(header, compression); !reason.empty()) return Error{reason};
    ReadMasks(header, dib, compression);
    return header;
}

// Colour entries that the file sets aside, which may be more than pixels can name.
std::uint64_t StatedColours(const Header& header) {
    if (!header.IsIndexed()) return header.coloursUsed;
    return header.coloursUsed == 0 ? 1U << header.bits : header.coloursUsed;
}

std::size_t PixelOffset(const Header& header, std::optional<std::size_t> stated, ByteView dib) {
    if (stated && *stated >= header.tableOffset && *stated <= dib.size()) return *stated;
    const std::uint64_t end = header.tableOffset + StatedColours(header) * header.entryBytes;
    return static_cast<std::size_t>(std::min<std::uint64_t>(end, dib.size()));
}

Palette ReadPalette(const Header& header, ByteView dib, std::size_t pixelOffset) {
    Palette palette;
    if (!header.IsIndexed() || header.tableOffset >= pixelOffset) return palette;
    const std::size_t room = pixelOffset - header.tableOffset;
    const std::size_t named = std::size_t{1} << header.bits;
    // Some writers give the old header entries of four bytes; the room tells.
    const std::size_t entryBytes = room == named * 4 ? 4 : header.entryBytes;
    const std::size_t count = std::min<std::uint64_t>(
        {StatedColours(header), std::uint64_t{named}, std::uint64_t{room / entryBytes}});
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* entry = dib.data() + header.tableOffset + i * entryBytes;
        palette.Set(static_cast<int>(i), {entry[2], entry[1], entry[0]});
    }
    return palette;
}

// One channel of a masked pixel, scaled to 0..255 and rounded. A mask may have any bits.
class Channel {
  public:
    explicit Channel(std::uint32_t mask) : mask_(mask) {
        if (mask == 0) return;
        shift_ = std::countr_zero(mask);
        max_ = mask >> shift_;
        if (max_ > 0xFFFF) return;
        table_.resize(std::size_t{max_} + 1);
        for (std::uint32_t v = 0; v <= max_; ++v) table_[v] = Scaled(v);
    }
    std::uint8_t Of(std::uint32_t pixel) const {
        const std::uint32_t value = (pixel & mask_) >> shift_;
        return table_.empty() ? Scaled(value) : table_[value];
    }

  private:
    std::uint8_t Scaled(std::uint64_t value) const {
        return static_cast<std::uint8_t>((value * 255 + max_ / 2) / max_);
    }
    std::uint32_t mask_;
    int shift_ = 0;
    std::uint32_t max_ = 1;
    std::vector<std::uint8_t> table_;
};

template <class Pixel>
Pixel LoadPixel(const std::uint8_t* row, int x) {
    Pixel pixel = 0;
    for (std::size_t i = 0; i < sizeof(Pixel); ++i)
        pixel = static_cast<Pixel>(
            pixel | Pixel{row[static_cast<std::size_t>(x) * sizeof(Pixel) + i]} << (8 * i));
    return pixel;
}

struct StoredRows {
    ByteView bytes;
    std::size_t stride = 0;
    int count = 0;  // whole rows in the file

    const std::uint8_t* At(int i) const {
        return bytes.data() + static_cast<std::size_t>(i) * stride;
    }
};

template <class Pixel>
bool AnyPixelHas(const StoredRows& rows, int width, std::uint32_t mask) {
    if (mask == 0) return false;
    for (int i = 0; i < rows.count; ++i)
        for (int x = 0; x < width; ++x)
            if ((LoadPixel<Pixel>(rows.At(i), x) & mask) != 0) return true;
    return false;
}

template <class ConvertRow>
void ConvertRows(const StoredRows& rows, bool topDown, ImageView image, const ConvertRow& convert) {
    for (int i = 0; i < rows.count; ++i)
        convert(rows.At(i), image.Width(), RowInFileOrder(image, i, topDown));
}

// The place of a byte that is a whole channel; none for any other mask.
std::optional<int> ByteOf(std::uint32_t mask) {
    const int shift = std::countr_zero(mask);
    if (mask == 0 || shift % 8 != 0 || mask >> shift != 0xFF) return std::nullopt;
    return shift / 8;
}

// Channels of whole bytes, in any order. False if there are others.
bool ConvertWholeBytes(const StoredRows& rows, const Header& header, bool hasAlpha,
                       ImageView image) {
    std::array<int, 4> places{};  // of red, green, blue, alpha
    for (std::size_t i = 0; i < (hasAlpha ? 4U : 3U); ++i) {
        const auto place = ByteOf(header.masks[i]);
        if (!place) return false;
        places[i] = *place;
    }
    const auto convert = hasAlpha ? RgbFromBgra : RgbFromBgrx;
    if (places[0] == 2 && places[1] == 1 && places[2] == 0 && (!hasAlpha || places[3] == 3)) {
        ConvertRows(rows, header.topDown, image, convert);
        return true;
    }
    std::vector<std::uint8_t> bgra(static_cast<std::size_t>(image.Width()) * 4);
    ConvertRows(
        rows, header.topDown, image, [&](const std::uint8_t* row, int width, std::uint8_t* rgb) {
            for (std::size_t x = 0; x < bgra.size(); x += 4)
                for (std::size_t i = 0; i < 4; ++i)
                    bgra[x + (i < 3 ? 2 - i : 3)] = row[x + static_cast<std::size_t>(places[i])];
            convert(bgra.data(), width, rgb);
        });
    return true;
}

template <class Pixel>
void ConvertBits(const StoredRows& rows, const Header& header, bool hasAlpha, ImageView image) {
    const Channel red(header.masks[0]), green(header.masks[1]), blue(header.masks[2]);
    const Channel alpha(header.masks[3]);
    const auto convert = [&](const std::uint8_t* row, int width, std::uint8_t* rgb) {
        for (int x = 0; x < width; ++x, rgb += 3) {
            const std::uint32_t pixel = LoadPixel<Pixel>(row, x);
            rgb[0] = red.Of(pixel);
            rgb[1] = green.Of(pixel);
            rgb[2] = blue.Of(pixel);
            if (!hasAlpha) continue;
            const std::uint8_t coverage = alpha.Of(pixel);
            for (int c = 0; c < 3; ++c) rgb[c] = OverWhite(rgb[c], coverage);
        }
    };
    ConvertRows(rows, header.topDown, image, convert);
}

void Convert16(const StoredRows& rows, const Header& header, ImageView image) {
    const bool hasAlpha = AnyPixelHas<std::uint16_t>(rows, image.Width(), header.masks[3]);
    const auto isPlain = [&](std::uint32_t red, std::uint32_t green) {
        return !hasAlpha && header.masks[0] == red && header.masks[1] == green &&
               header.masks[2] == 0x1F;
    };
    if (isPlain(0x7C00, 0x03E0)) return ConvertRows(rows, header.topDown, image, RgbFrom555);
    if (isPlain(0xF800, 0x07E0)) return ConvertRows(rows, header.topDown, image, RgbFrom565);
    ConvertBits<std::uint16_t>(rows, header, hasAlpha, image);
}

void Convert32(const StoredRows& rows, const Header& header, ImageView image) {
    const bool hasAlpha = AnyPixelHas<std::uint32_t>(rows, image.Width(), header.masks[3]);
    if (!ConvertWholeBytes(rows, header, hasAlpha, image))
        ConvertBits<std::uint32_t>(rows, header, hasAlpha, image);
}

int ConvertPlain(const Header& header, const Palette& palette, ByteView pixels, ImageView image) {
    const std::size_t rowBytes = PackedRowBytes(image.Width(), header.bits);
    const std::size_t stride = (rowBytes + 3) / 4 * 4;
    const StoredRows rows{pixels, stride,
                          WholeRows(pixels.size(), rowBytes, stride, image.Height())};
    if (header.IsIndexed()) {
        std::vector<std::uint8_t> indices(static_cast<std::size_t>(image.Width()));
        ConvertRows(rows, header.topDown, image,
                    [&](const std::uint8_t* row, int width, std::uint8_t* rgb) {
                        if (header.bits == 8) return palette.Expand(row, width, rgb);
                        UnpackIndices(row, header.bits, width, indices.data());
                        palette.Expand(indices.data(), width, rgb);
                    });
    } else if (header.bits == 16) {
        Convert16(rows, header, image);
    } else if (header.bits == 24) {
        ConvertRows(rows, header.topDown, image, RgbFromBgr);
    } else {
        Convert32(rows, header, image);
    }
    return rows.count;
}

Result<Decoded> DecodeEmbedded(Coding coding, ByteView pixels, const DecodeOptions& options) {
    auto result = coding == Coding::Jpeg ? DecodeJpeg(pixels, options) : DecodePng(pixels, options);
    if (result) result->format = Format::Bmp;
    return result;
}

}  // namespace

Result<Decoded> DecodeDib(ByteView dib, std::optional<std::size_t> pixelOffset,
                          const DecodeOptions& options) {
    auto read = ReadHeader(dib);
    if (!read) return Error{read.Message()};
    const Header& header = *read;
    const std::size_t offset = PixelOffset(header, pixelOffset, dib);
    const ByteView pixels = dib.subspan(offset);
    if (header.coding == Coding::Jpeg || header.coding == Coding::Png)
        return DecodeEmbedded(header.coding, pixels, options);
    if (std::string reason = RefuseSize(header.width, header.height, kChannels, options.limits);
        !reason.empty())
        return Error{reason};
    const Size size = header.Extent();
    if (header.coding != Coding::Runs && pixels.size() < PackedRowBytes(size.width, header.bits))
        return Error{kNoRows};
    auto image = Image::TryCreate(size);
    if (!image) return Error{"not enough memory"};

    const Palette palette = ReadPalette(header, dib, offset);
    const int rows =
        header.coding == Coding::Runs
            ? DecodeDibRuns(pixels, header.bits, palette, header.topDown, image->View())
            : ConvertPlain(header, palette, pixels, image->View());
    return FinishRows(std::move(*image), Format::Bmp, header.bits, rows, header.topDown);
}

}  // namespace lumo::imaging::codecs

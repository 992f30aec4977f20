#include "imaging/codecs/metafile/dib.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/metafile/record_reader.h"

namespace lumo::imaging::codecs::metafile {
namespace {

enum Compression : std::uint32_t {
    kRgb = 0,
    kRle8 = 1,
    kRle4 = 2,
    kBitFields = 3,
    kJpeg = 4,
    kPng = 5,
};

constexpr std::uint32_t kWhite = 0xFFFFFFFFU;

// One channel of a pixel with bit masks, as 8 bits: value * 255 / largest value, rounded.
class Channel {
  public:
    explicit Channel(std::uint32_t mask)
        : mask_(mask), shift_(mask == 0 ? 0 : std::countr_zero(mask)), largest_(mask >> shift_) {}
    std::uint32_t operator()(std::uint32_t pixel) const {
        if (largest_ == 0) return 0;
        const std::uint64_t value = (pixel & mask_) >> shift_;
        return static_cast<std::uint32_t>((value * 255 + largest_ / 2) / largest_);
    }

  private:
    std::uint32_t mask_;
    int shift_;
    std::uint32_t largest_;
};

std::vector<std::uint32_t> ReadTable(const DibHeader& header, ByteView info, ColourTable table,
                                     std::span<const Rgb> palette) {
    // Indices beyond the table are black.
    std::vector<std::uint32_t> colours(256, 0xFF000000U);
    if (header.bits > 8) return colours;
    RecordReader reader(info);
    reader.Skip(header.headerSize);
    for (std::size_t i = 0; i < std::min<std::size_t>(header.tableColours, 256); ++i) {
        if (reader.Left() < header.tableEntrySize) break;
        if (table == ColourTable::Palette) {
            const std::size_t index = reader.U16();
            if (index < palette.size()) colours[i] = PackRgb(palette[index]);
        } else {
            const std::uint32_t blue = reader.U8(), green = reader.U8(), red = reader.U8();
            colours[i] = 0xFF000000U | red << 16 | green << 8 | blue;
            reader.Skip(header.tableEntrySize - 3);
        }
    }
    return colours;
}

void DecodeRow(const DibHeader& header, const std::uint8_t* row,
               const std::vector<std::uint32_t>& colours, std::span<std::uint32_t> target) {
    const Channel red(header.masks[0]), green(header.masks[1]), blue(header.masks[2]);
    const std::size_t bits = static_cast<std::size_t>(header.bits);
    for (std::size_t x = 0; x < target.size(); ++x) {
        switch (header.bits) {
            case 1:
            case 4:
            case 8: {
                const std::size_t at = x * bits;
                const unsigned index = row[at / 8] >> (8 - bits - at % 8) & ((1U << bits) - 1);
                target[x] = colours[index];
                break;
            }
            case 16: {
                const std::uint32_t v = row[2 * x] | std::uint32_t{row[2 * x + 1]} << 8;
                target[x] = 0xFF000000U | red(v) << 16 | green(v) << 8 | blue(v);
                break;
            }
            case 24:
                target[x] = 0xFF000000U | std::uint32_t{row[3 * x + 2]} << 16 |
                            std::uint32_t{row[3 * x + 1]} << 8 | row[3 * x];
                break;
            default: {
                const std::uint32_t v = row[4 * x] | std::uint32_t{row[4 * x + 1]} << 8 |
                                        std::uint32_t{row[4 * x + 2]} << 16 |
                                        std::uint32_t{row[4 * x + 3]} << 24;
                if (header.compression == kRgb)
                    target[x] = v;
                else
                    target[x] = 0xFF000000U | red(v) << 16 | green(v) << 8 | blue(v);
            }
        }
    }
}

void DecodePlain(const DibHeader& header, ByteView bits, const std::vector<std::uint32_t>& colours,
                 Bitmap& bitmap) {
    const std::size_t stride = header.Stride();
    const std::size_t rows =
        std::min(bits.size() / stride, static_cast<std::size_t>(header.height));
    const std::size_t width = static_cast<std::size_t>(header.width);
    for (std::size_t i = 0; i < rows; ++i) {
        const std::size_t y = header.bottomUp ? static_cast<std::size_t>(header.height) - 1 - i : i;
        DecodeRow(header, bits.data() + i * stride, colours,
                  std::span(bitmap.pixels).subspan(y * width, width));
    }
}

// Runs of one colour (count, index), or behind a zero byte: 0 end of row, 1 end of bitmap, 2 a
// shift (right, up), else that many single indices, padded to 16 bits. With 4 bits a run alternates
// between two colours.
void DecodeRuns(const DibHeader& header, ByteView bits, const std::vector<std::uint32_t>& colours,
                Bitmap& bitmap) {
    RecordReader reader(bits);
    std::int64_t x = 0, row = 0;
    const auto put = [&](unsigned index) {
        if (x < header.width && row < header.height)
            bitmap.At(static_cast<int>(x),
                      static_cast<int>(header.bottomUp ? header.height - 1 - row : row)) =
                colours[index];
        ++x;
    };
    const bool nibbles = header.compression == kRle4;
    while (reader.IsGood() && row < header.height) {
        const unsigned count = reader.U8();
        const unsigned value = reader.U8();
        if (!reader.IsGood()) break;
        if (count > 0) {
            for (unsigned i = 0; i < count; ++i)
                put(!nibbles ? value : i % 2 == 0 ? value >> 4 : value & 15);
        } else if (value == 0) {
            x = 0;
            ++row;
        } else if (value == 1) {
            break;
        } else if (value == 2) {
            x += reader.U8();
            row += reader.U8();
        } else {
            const std::size_t bytes = nibbles ? (value + 1) / 2 : value;
            const ByteView run = reader.Take(bytes);
            if (run.empty()) break;
            for (unsigned i = 0; i < value; ++i)
                put(!nibbles ? run[i] : i % 2 == 0 ? run[i / 2] >> 4 : run[i / 2] & 15);
            if (bytes % 2 == 1) reader.Skip(1);
        }
    }
}

std::optional<Bitmap> FromImage(const Result<Decoded>& decoded) {
    if (!decoded) return std::nullopt;
    const ConstImageView view = decoded->image.View();
    Bitmap bitmap;
    bitmap.size = view.Extent();
    bitmap.pixels.reserve(bitmap.size.Area());
    for (int y = 0; y < view.Height(); ++y)
        for (int x = 0; x < view.Width(); ++x) bitmap.pixels.push_back(PackRgb(view.Pixel(x, y)));
    return bitmap;
}

bool ReadCore(RecordReader& reader, DibHeader& header) {
    header.headerSize = 12;
    header.tableEntrySize = 3;
    header.width = reader.U16();
    header.height = reader.U16();
    reader.Skip(2);
    header.bits = reader.U16();
    if (header.bits <= 8) header.tableColours = std::size_t{1} << header.bits;
    return reader.IsGood();
}

bool ReadInfo(RecordReader& reader, std::uint32_t size, DibHeader& header) {
    header.headerSize = size;
    header.width = reader.I32();
    const std::int64_t height = reader.I32();
    header.bottomUp = height > 0;
    if (std::abs(height) > INT32_MAX) return false;
    header.height = static_cast<int>(std::abs(height));
    reader.Skip(2);
    header.bits = reader.U16();
    header.compression = reader.U32();
    reader.Skip(12);
    header.tableColours = reader.U32();
    reader.Skip(4);
    if (!reader.IsGood()) return false;
    if (header.compression == kBitFields) {
        // The masks are part of the later headers and stand behind the first one.
        if (size < 52) header.headerSize += 12;
        for (std::uint32_t& mask : header.masks) mask = reader.U32();
        if (!reader.IsGood()) return false;
    } else if (header.bits == 16) {
        header.masks = {0x7C00, 0x03E0, 0x001F};
    } else {
        header.masks = {0xFF0000, 0xFF00, 0xFF};
    }
    if (header.bits > 0 && header.bits <= 8) {
        const std::size_t all = std::size_t{1} << header.bits;
        if (header.tableColours == 0 || header.tableColours > all) header.tableColours = all;
    }
    return true;
}

bool IsKnown(const DibHeader& header) {
    switch (header.compression) {
        case kRgb:
            return header.bits == 1 || header.bits == 4 || header.bits == 8 || header.bits == 16 ||
                   header.bits == 24 || header.bits == 32;
        case kRle8:
            return header.bits == 8;
        case kRle4:
            return header.bits == 4;
        case kBitFields:
            return header.bits == 16 || header.bits == 32;
        case kJpeg:
        case kPng:
            return true;
        default:
            return false;
    }
}

}  // namespace

std::optional<DibHeader> ReadDibHeader(ByteView info, ColourTable table) {
    RecordReader reader(info);
    DibHeader header;
    const std::uint32_t size = reader.U32();
    if (size == 12) {
        if (!ReadCore(reader, header)) return std::nullopt;
    } else if (size < 40 || size > info.size() || !ReadInfo(reader, size, header)) {
        return std::nullopt;
    }
    if (header.width <= 0 || header.height <= 0 || !IsKnown(header)) return std::nullopt;
    if (table == ColourTable::Palette && header.bits <= 8) header.tableEntrySize = 2;
    // A table of a picture with more colours than an index can name is a hint to viewers.
    if (header.tableColours > info.size() / header.tableEntrySize) {
        if (header.bits <= 8) return std::nullopt;
        header.tableColours = 0;
    }
    return header;
}

std::optional<Bitmap> DecodeDib(ByteView info, ByteView bits, ColourTable table,
                                std::span<const Rgb> palette, const DecodeOptions& options) {
    const auto header = ReadDibHeader(info, table);
    if (!header) return std::nullopt;
    if (header->compression == kJpeg) return FromImage(DecodeJpeg(bits, options));
    if (header->compression == kPng) return FromImage(DecodePng(bits, options));
    if (!RefuseSize(header->width, header->height, 4, options.limits).empty()) return std::nullopt;
    // A header may state any size: memory is taken only for what the file can hold.
    const bool runs = header->compression == kRle4 || header->compression == kRle8;
    const std::size_t area = Size{header->width, header->height}.Area();
    const std::size_t wanted =
        runs ? area / 4096
             : header->Stride() * static_cast<std::size_t>(std::max(1, header->height / 4));
    if (bits.size() < wanted) return std::nullopt;

    Bitmap bitmap;
    bitmap.size = {header->width, header->height};
    bitmap.bottomUp = header->bottomUp;
    bitmap.monochrome = header->bits == 1;
    bitmap.hasAlpha = header->bits == 32 && header->compression == kRgb;
    const std::vector<std::uint32_t> colours = ReadTable(*header, info, table, palette);
    // What runs skip shows the first colour, as on a bitmap that is fresh from the system.
    bitmap.pixels.assign(area, runs ? colours[0] : kWhite);
    if (runs)
        DecodeRuns(*header, bits, colours, bitmap);
    else
        DecodePlain(*header, bits, colours, bitmap);
    return bitmap;
}

std::optional<Bitmap> DecodePackedDib(ByteView dib, ColourTable table, std::span<const Rgb> palette,
                                      const DecodeOptions& options) {
    const auto header = ReadDibHeader(dib, table);
    if (!header || header->BitsOffset() > dib.size()) return std::nullopt;
    return DecodeDib(dib, dib.subspan(header->BitsOffset()), table, palette, options);
}

}  // namespace lumo::imaging::codecs::metafile

// Pictures as metafiles: one bitmap of 24 bits in one record, at one unit a pixel. The readers of
// this folder give such a file back pixel by pixel.

#include <fmt/format.h>

#include <array>
#include <limits>
#include <new>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {
namespace {

constexpr int kWmfMaxSide = 32767;  // the numbers of a record have 16 bits
constexpr int kDotsPerInch = 96;
constexpr std::uint32_t kSourceCopy = 0x00CC0020;
constexpr std::size_t kBitmapHeader = 40;

class Writer {
  public:
    explicit Writer(std::size_t bytes) { bytes_.reserve(bytes); }
    void U16(std::uint32_t v) { Little(v, 2); }
    void U32(std::uint64_t v) { Little(v, 4); }
    void Zeros(std::size_t count) { bytes_.resize(bytes_.size() + count); }
    /// A record of a Windows metafile: its length in words is known from its parameters.
    void WmfRecord(std::uint16_t function, std::initializer_list<int> parameters) {
        U32(3 + parameters.size());
        U16(function);
        for (const int p : parameters) U16(static_cast<std::uint32_t>(p));
    }
    void Bitmap(ConstImageView image);
    Bytes Take() { return std::move(bytes_); }

  private:
    void Little(std::uint64_t value, int count) {
        for (int i = 0; i < count; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> 8 * i));
    }
    Bytes bytes_;
};

std::size_t RowBytes(Size size) {
    return (StrideOf(size) + 3) / 4 * 4;
}
std::size_t RowsBytes(Size size) {
    return RowBytes(size) * static_cast<std::size_t>(size.height);
}

// Header and rows, from the bottom, blue first.
void Writer::Bitmap(ConstImageView image) {
    const Size size = image.Extent();
    U32(kBitmapHeader);
    U32(static_cast<std::uint32_t>(size.width));
    U32(static_cast<std::uint32_t>(size.height));
    U16(1);
    U16(24);
    U32(0);
    U32(RowsBytes(size));
    Zeros(16);
    const std::size_t start = bytes_.size();
    Zeros(RowsBytes(size));
    for (int y = 0; y < size.height; ++y) {
        std::uint8_t* target =
            bytes_.data() + start + static_cast<std::size_t>(size.height - 1 - y) * RowBytes(size);
        const std::uint8_t* row = image.Row(y);
        for (int x = 0; x < size.width; ++x, row += 3, target += 3) {
            target[0] = row[2];
            target[1] = row[1];
            target[2] = row[0];
        }
    }
}

// The header that states a box and its resolution: here one unit is one pixel of the screen, so
// that the picture has its own size for every reader.
void WritePlaceableHeader(Writer& writer, Size size) {
    const std::array<std::uint16_t, 10> words = {0xCDD7,
                                                 0x9AC6,
                                                 0,
                                                 0,
                                                 0,
                                                 static_cast<std::uint16_t>(size.width),
                                                 static_cast<std::uint16_t>(size.height),
                                                 kDotsPerInch,
                                                 0,
                                                 0};
    std::uint16_t checksum = 0;
    for (const std::uint16_t word : words) {
        writer.U16(word);
        checksum ^= word;
    }
    writer.U16(checksum);
}

Bytes EncodeWmf(ConstImageView image, bool placeable) {
    const Size size = image.Extent();
    constexpr std::size_t kHeaderWords = 9, kMapModeWords = 4, kOriginWords = 5, kExtentWords = 5,
                          kStretchModeWords = 4, kEndWords = 3, kStretchWords = 14;
    const std::size_t bitmapWords = kStretchWords + (kBitmapHeader + RowsBytes(size)) / 2;
    const std::size_t words = kHeaderWords + kMapModeWords + kOriginWords + kExtentWords +
                              kStretchModeWords + bitmapWords + kEndWords;
    Writer writer(words * 2 + 22);
    if (placeable) WritePlaceableHeader(writer, size);
    writer.U16(1);  // in memory or a file of its own
    writer.U16(kHeaderWords);
    writer.U16(0x0300);  // with bitmaps that depend on no device
    writer.U32(words);
    writer.U16(0);  // objects
    writer.U32(bitmapWords);
    writer.U16(0);
    writer.WmfRecord(0x0103, {8});                        // units scale both ways
    writer.WmfRecord(0x020B, {0, 0});                     // window origin
    writer.WmfRecord(0x020C, {size.height, size.width});  // window extent
    writer.WmfRecord(0x0107, {3});                        // leave pixels out rather than mix them
    writer.U32(bitmapWords);
    writer.U16(0x0F43);  // stretch a bitmap: operation, colours, source, target
    writer.U32(kSourceCopy);
    writer.U16(0);
    for (int i = 0; i < 2; ++i) {
        writer.U16(static_cast<std::uint32_t>(size.height));
        writer.U16(static_cast<std::uint32_t>(size.width));
        writer.U16(0);
        writer.U16(0);
    }
    writer.Bitmap(image);
    writer.WmfRecord(0, {});
    return writer.Take();
}

constexpr std::size_t kEmfHeader = 108, kEmfMode = 12, kEmfStretch = 80, kEmfEnd = 20;

std::size_t EmfBytes(Size size) {
    return kEmfHeader + kEmfMode + kEmfStretch + kBitmapHeader + RowsBytes(size) + kEmfEnd;
}

Bytes EncodeEmf(ConstImageView image) {
    const Size size = image.Extent();
    const auto width = static_cast<std::uint32_t>(size.width);
    const auto height = static_cast<std::uint32_t>(size.height);
    // A device of exactly 96 pixels to the inch; the frame is in hundredths of a millimetre.
    constexpr std::uint32_t kDevicePixels = 960, kDeviceMillimetres = 254;
    const auto frame = [](std::uint32_t pixels) {
        return (std::uint64_t{pixels} * 2540 + kDotsPerInch / 2) / kDotsPerInch;
    };
    Writer writer(EmfBytes(size));
    writer.U32(1);
    writer.U32(kEmfHeader);
    writer.Zeros(8);
    writer.U32(width - 1);
    writer.U32(height - 1);
    writer.Zeros(8);
    writer.U32(frame(width));
    writer.U32(frame(height));
    writer.U32(0x464D4520);  // " EMF"
    writer.U32(0x00010000);
    writer.U32(EmfBytes(size));
    writer.U32(4);  // records
    writer.U16(1);  // objects, the file itself being the first
    writer.Zeros(14);
    for (int i = 0; i < 2; ++i) writer.U32(kDevicePixels);
    for (int i = 0; i < 2; ++i) writer.U32(kDeviceMillimetres);
    writer.Zeros(12);
    for (int i = 0; i < 2; ++i) writer.U32(kDeviceMillimetres * 1000);

    writer.U32(21);  // leave pixels out rather than mix them
    writer.U32(kEmfMode);
    writer.U32(3);

    writer.U32(81);  // stretch a bitmap
    writer.U32(kEmfStretch + kBitmapHeader + RowsBytes(size));
    writer.Zeros(8);  // bounds
    writer.U32(width - 1);
    writer.U32(height - 1);
    writer.Zeros(16);  // corners of target and source
    writer.U32(width);
    writer.U32(height);
    writer.U32(kEmfStretch);
    writer.U32(kBitmapHeader);
    writer.U32(kEmfStretch + kBitmapHeader);
    writer.U32(RowsBytes(size));
    writer.U32(0);
    writer.U32(kSourceCopy);
    writer.U32(width);
    writer.U32(height);
    writer.Bitmap(image);

    writer.U32(14);
    writer.U32(kEmfEnd);
    writer.U32(0);
    writer.U32(16);
    writer.U32(kEmfEnd);
    return writer.Take();
}

}  // namespace

Result<Bytes> EncodeMetafile(ConstImageView image, Format format) {
    const Size size = image.Extent();
    const bool isEmf = format == Format::Emf;
    if (!isEmf && (size.width > kWmfMaxSide || size.height > kWmfMaxSide))
        return platform::Error{
            fmt::format("a picture of {} x {} is too large for a Windows "
                        "metafile, whose sides end at {}",
                        size.width, size.height, kWmfMaxSide)};
    if (EmfBytes(size) > std::numeric_limits<std::uint32_t>::max())
        return platform::Error{fmt::format("a picture of {} x {} is too large for a metafile",
                                           size.width, size.height)};
    try {
        return isEmf ? EncodeEmf(image) : EncodeWmf(image, format == Format::Apm);
    } catch (const std::bad_alloc&) {
        return platform::Error{"not enough memory"};
    }
}

}  // namespace lumo::imaging::codecs

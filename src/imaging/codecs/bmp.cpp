// BMP files: the file headers around a device-independent bitmap, and the writer.

#include <limits>
#include <vector>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/decoders.h"
#include "imaging/codecs/dib.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kInfoHeader = 40;
constexpr std::uint16_t kBitmap = 'B' | 'M' << 8;
constexpr std::uint16_t kArray = 'B' | 'A' << 8;
constexpr std::uint32_t kPixelsPerMetre = 2835;  // 72 dots an inch

}  // namespace

Result<Decoded> DecodeBmp(ByteView file, const DecodeOptions& options) {
    ByteReader in(file);
    std::uint16_t signature = in.U16Le();
    if (signature == kArray) {  // an OS/2 array of bitmaps: the first one is taken
        in = ByteReader(file, kFileHeader);
        signature = in.U16Le();
    }
    in.Skip(8);  // bytes of the file, which many writers state wrong; reserved
    const std::size_t offset = in.U32Le();
    if (in.Failed() || signature != kBitmap) return Error{"not a BMP file"};
    const std::size_t start = in.Position();
    return DecodeDib(file.subspan(start),
                     offset > start ? std::optional(offset - start) : std::nullopt, options);
}

Result<Bytes> EncodeBmp(ConstImageView image) {
    const std::size_t rowBytes = (image.Stride() + 3) / 4 * 4;
    const std::size_t pixelBytes = rowBytes * static_cast<std::size_t>(image.Height());
    const std::size_t offset = kFileHeader + kInfoHeader;
    if (pixelBytes > std::numeric_limits<std::uint32_t>::max() - offset)
        return Error{"the picture is too large for a BMP file"};
    return BuildFile(offset + pixelBytes, [&](ByteWriter& out) {
        out.Text("BM");
        out.U32Le(static_cast<std::uint32_t>(offset + pixelBytes));
        out.U32Le(0);
        out.U32Le(static_cast<std::uint32_t>(offset));
        out.U32Le(static_cast<std::uint32_t>(kInfoHeader));
        out.U32Le(static_cast<std::uint32_t>(image.Width()));
        out.U32Le(static_cast<std::uint32_t>(image.Height()));  // positive: from the bottom up
        out.U16Le(1);                                           // colour planes
        out.U16Le(24);
        out.U32Le(0);  // not compressed
        out.U32Le(static_cast<std::uint32_t>(pixelBytes));
        out.U32Le(kPixelsPerMetre);
        out.U32Le(kPixelsPerMetre);
        out.U32Le(0);  // no colour table
        out.U32Le(0);
        std::vector<std::uint8_t> row(rowBytes);  // the padding stays 0
        for (int y = image.Height() - 1; y >= 0; --y) {
            RgbFromBgr(image.Row(y), image.Width(), row.data());  // the swap is its own inverse
            out.Append(row);
        }
    });
}

}  // namespace lumo::imaging::codecs

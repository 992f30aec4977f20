// TGA files, 1989 (with footer and extension area) and older. There is no signature: a file is
// taken if its header makes sense.

#include <algorithm>
#include <optional>
#include <vector>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/decoders.h"
#include "imaging/codecs/rows.h"
#include "imaging/codecs/tga_rows.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr std::size_t kHeaderBytes = 18;
constexpr std::size_t kFooterBytes = 26;
constexpr std::string_view kFooterSignature{"TRUEVISION-XFILE.\0", 18};
constexpr int kMaxSide = 65535;

bool IsColourDepth(int bits) {
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

std::optional<TgaHeader> ReadHeader(ByteView file) {
    ByteReader in(file);
    TgaHeader header;
    header.idBytes = in.U8();
    const int mapType = in.U8();
    const int type = in.U8();
    header.mapFirst = in.U16Le();
    header.mapCount = in.U16Le();
    header.mapBits = in.U8();
    in.Skip(4);  // place on the screen
    header.width = in.U16Le();
    header.height = in.U16Le();
    header.bits = in.U8();
    header.descriptor = in.U8();
    header.hasMap = mapType == 1;
    header.runLengths = type >= 9;
    if (in.Failed() || mapType > 1 || header.width == 0 || header.height == 0) return std::nullopt;
    if (header.hasMap && header.mapCount > 0 && !IsColourDepth(header.mapBits)) return std::nullopt;
    switch (type) {
        case 1:
        case 9:
            header.kind = TgaKind::Indexed;
            if (!header.hasMap || header.mapCount == 0) return std::nullopt;
            return header.bits == 8 || header.bits == 16 ? std::optional(header) : std::nullopt;
        case 2:
        case 10:
        case 3:
        case 11:
            // The depth decides: some writers call their grey pictures coloured and the reverse.
            header.kind = header.bits == 8 || (header.bits == 16 && type % 8 == 3)
                              ? TgaKind::Grey
                              : TgaKind::Colour;
            if (header.kind == TgaKind::Grey || IsColourDepth(header.bits)) return header;
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

// The descriptor says whether there is alpha, the extension area what it means. A colour map of 32
// bits has alpha of its own: the descriptor is about the indices then.
TgaAlpha AlphaOf(const TgaHeader& header, ByteView file) {
    const bool inMap = header.kind == TgaKind::Indexed && header.mapBits == 32;
    if (!header.HasAttributes() && !inMap) return TgaAlpha::None;
    if (file.size() < kHeaderBytes + kFooterBytes) return TgaAlpha::Coverage;
    const ByteView footer = file.last(kFooterBytes);
    if (!std::equal(kFooterSignature.begin(), kFooterSignature.end(), footer.begin() + 8))
        return TgaAlpha::Coverage;
    constexpr std::size_t kAttributesType = 494;  // in the extension area
    const std::size_t extension = ByteReader(footer).U32Le();
    if (extension == 0 || extension + kAttributesType >= file.size()) return TgaAlpha::Coverage;
    switch (file[extension + kAttributesType]) {
        case 1:
        case 2:
            return TgaAlpha::None;  // there are bits, but they mean nothing
        case 4:
            return TgaAlpha::Premultiplied;
        default:
            return TgaAlpha::Coverage;
    }
}

void MirrorRow(std::uint8_t* rgb, int width) {
    for (std::uint8_t *left = rgb, *right = rgb + std::ptrdiff_t{width - 1} * 3; left < right;
         left += 3, right -= 3)
        std::swap_ranges(left, left + 3, right);
}

int ConvertAll(const TgaHeader& header, ByteView pixels, TgaRowConverter& converter,
               ImageView image) {
    TgaStoredRows rows(pixels, header);
    for (int i = 0; i < header.height; ++i) {
        const std::uint8_t* row = rows.Next();
        if (row == nullptr) return i;
        std::uint8_t* target = RowInFileOrder(image, i, header.IsTopDown());
        converter.Convert(row, target);
        if (header.IsRightToLeft()) MirrorRow(target, header.width);
    }
    return header.height;
}

// Gives the rows that are there, in file order.
int DecodePixels(const TgaHeader& header, ByteView map, ByteView pixels, TgaAlpha alpha,
                 ImageView image) {
    if (header.kind == TgaKind::Indexed) {
        TgaRowConverter converter(header, ReadTgaMap(header, map, alpha), alpha);
        return ConvertAll(header, pixels, converter, image);
    }
    TgaRowConverter converter(header, {}, alpha);
    const int rows = ConvertAll(header, pixels, converter, image);
    if (alpha == TgaAlpha::None || header.PixelBytes() % 2 != 0 || converter.AnyCoverage())
        return rows;
    // Coverage that is 0 everywhere was never meant: the picture is opaque.
    return DecodePixels(header, map, pixels, TgaAlpha::None, image);
}

}  // namespace

Result<Decoded> DecodeTga(ByteView file, const DecodeOptions& options) {
    const auto read = ReadHeader(file);
    if (!read) return Error{"not a TGA file"};
    const TgaHeader& header = *read;
    if (std::string reason = RefuseSize(header.width, header.height, kChannels, options.limits);
        !reason.empty())
        return Error{reason};
    ByteReader in(file, kHeaderBytes);
    in.Skip(header.idBytes);
    const ByteView map = in.Take(header.MapBytes());
    const ByteView pixels = in.Take(in.Left());
    const auto width = static_cast<std::size_t>(header.width);
    const auto pixelBytes = static_cast<std::size_t>(header.PixelBytes());
    // A run of 128 pixels is the densest packet there is.
    const std::size_t firstRow =
        header.runLengths ? (width + 127) / 128 * (1 + pixelBytes) : width * pixelBytes;
    if (pixels.size() < firstRow) return Error{kNoRows};
    auto image = Image::TryCreate({header.width, header.height});
    if (!image) return Error{"not enough memory"};
    const int rows = DecodePixels(header, map, pixels, AlphaOf(header, file), image->View());
    return FinishRows(std::move(*image), Format::Tga, header.bits, rows, header.IsTopDown());
}

Result<Bytes> EncodeTga(ConstImageView image) {
    if (image.Width() > kMaxSide || image.Height() > kMaxSide)
        return Error{"the picture is too large for a TGA file"};
    return BuildFile(kHeaderBytes + image.Bytes().size() + kFooterBytes, [&](ByteWriter& out) {
        out.U8(0);     // no identification
        out.U8(0);     // no colour map
        out.U8(2);     // true colour, not compressed
        out.Zeros(9);  // colour map; place on the screen
        out.U16Le(static_cast<unsigned>(image.Width()));
        out.U16Le(static_cast<unsigned>(image.Height()));
        out.U8(24);
        out.U8(0x20);  // from the top left; no attribute bits
        std::vector<std::uint8_t> row(image.Stride());
        for (int y = 0; y < image.Height(); ++y) {
            RgbFromBgr(image.Row(y), image.Width(), row.data());  // the swap is its own inverse
            out.Append(row);
        }
        out.Zeros(8);  // neither extension area nor developer area
        out.Text(kFooterSignature);
    });
}

}  // namespace lumo::imaging::codecs

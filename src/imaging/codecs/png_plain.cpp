#include "imaging/codecs/png_plain.h"

#include <libdeflate.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <string_view>
#include <vector>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/png_rows.h"

namespace lumo::imaging::codecs {
namespace {

constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kAroundData = 12;  // length, type and checksum of a chunk
constexpr std::size_t kHeaderBytes = 13;
// No byte of deflate can stand for more than this: 258 bytes out of two bits.
constexpr std::size_t kGreatestRatio = 1032;

std::uint32_t BigEndian32(ByteView bytes, std::size_t at) {
    return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 |
           std::uint32_t{bytes[at + 2]} << 8 | std::uint32_t{bytes[at + 3]};
}

struct Chunk {
    std::string_view type;
    ByteView data;
};

/// The next whole chunk with a right checksum; `rest` then begins behind it.
std::optional<Chunk> TakeChunk(ByteView& rest) {
    if (rest.size() < kAroundData) return std::nullopt;
    const std::size_t length = BigEndian32(rest, 0);
    if (length > rest.size() - kAroundData) return std::nullopt;
    const ByteView checked = rest.subspan(4, length + 4);
    if (libdeflate_crc32(0, checked.data(), checked.size()) != BigEndian32(rest, length + 8))
        return std::nullopt;
    const std::string_view type(reinterpret_cast<const char*>(checked.data()), 4);
    if (!std::ranges::all_of(type, [](unsigned char c) { return std::isalpha(c) != 0; }))
        return std::nullopt;
    rest = rest.subspan(length + kAroundData);
    return Chunk{type, checked.subspan(4)};
}

struct PlainFile {
    std::int64_t width = 0, height = 0;
    bool alpha = false;
    std::vector<ByteView> pieces;  // of the compressed pixels
    std::size_t packedBytes = 0;

    std::size_t RowBytes() const { return static_cast<std::size_t>(width) * (alpha ? 4 : 3); }
    std::size_t FilteredBytes() const {
        return (RowBytes() + 1) * static_cast<std::size_t>(height);
    }
};

bool ReadHeader(const Chunk& chunk, PlainFile& file) {
    if (chunk.type != "IHDR" || chunk.data.size() != kHeaderBytes) return false;
    file.width = BigEndian32(chunk.data, 0);
    file.height = BigEndian32(chunk.data, 4);
    const std::uint8_t bits = chunk.data[8], colours = chunk.data[9];
    file.alpha = colours == 6;
    const auto methods = chunk.data.subspan(10);  // compression, filter, interlace
    return bits == 8 && (colours == 2 || colours == 6) &&
           std::ranges::all_of(methods, [](std::uint8_t m) { return m == 0; });
}

/// Walks up to the last chunk of pixels.
std::optional<PlainFile> Survey(ByteView bytes) {
    PlainFile file;
    if (FormatOfContent(bytes) != Format::Png) return std::nullopt;
    ByteView rest = bytes.subspan(kSignatureBytes);
    const auto header = TakeChunk(rest);
    if (!header || !ReadHeader(*header, file)) return std::nullopt;
    for (;;) {
        const auto chunk = TakeChunk(rest);
        if (!chunk) return std::nullopt;
        if (chunk->type == "IDAT") {
            file.pieces.push_back(chunk->data);
            file.packedBytes += chunk->data.size();
        } else if (!file.pieces.empty()) {
            return file;
        } else {
            const bool critical = std::isupper(static_cast<unsigned char>(chunk->type[0])) != 0;
            if (critical || chunk->type == "tRNS") return std::nullopt;
        }
    }
}

/// Inflates all pixels; false unless they fill `target` exactly and nothing is left over.
bool Inflate(const PlainFile& file, std::uint8_t* target) {
    ByteView packed = file.pieces.front();
    PixelBuffer joined;
    if (file.pieces.size() > 1) {
        joined = PixelBuffer::TryAllocate(file.packedBytes);
        if (!joined) return false;
        std::uint8_t* end = joined.Data();
        for (const ByteView piece : file.pieces) end = std::ranges::copy(piece, end).out;
        packed = {joined.Data(), file.packedBytes};
    }
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>
        decompressor(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    std::size_t used = 0;
    return decompressor &&
           libdeflate_zlib_decompress_ex(decompressor.get(), packed.data(), packed.size(), target,
                                         file.FilteredBytes(), &used,
                                         nullptr) == LIBDEFLATE_SUCCESS &&
           used == packed.size();
}

bool ReadRgbRows(const std::uint8_t* filtered, ImageView image) {
    const std::uint8_t* above = nullptr;
    for (int y = 0; y < image.Height(); ++y, filtered += image.Stride() + 1) {
        if (!UnfilterRgb(filtered[0], filtered + 1, above, image.Width(), image.Row(y)))
            return false;
        above = image.Row(y);
    }
    return true;
}

bool ReadRgbaRows(std::uint8_t* filtered, ImageView image) {
    const std::uint8_t* above = nullptr;
    const std::size_t rowBytes = static_cast<std::size_t>(image.Width()) * 4;
    for (int y = 0; y < image.Height(); ++y, filtered += rowBytes + 1) {
        std::uint8_t* row = filtered + 1;
        if (!UnfilterRgba(filtered[0], row, above, image.Width(), row)) return false;
        RgbaOverWhite(row, image.Row(y), image.Width());
        above = row;
    }
    return true;
}

}  // namespace

std::optional<Decoded> TryDecodePlainPng(ByteView bytes, const DecodeLimits& limits) {
    const auto file = Survey(bytes);
    if (!file || !RefuseSize(file->width, file->height, 2 * kChannels + 2, limits).empty() ||
        file->FilteredBytes() / kGreatestRatio > file->packedBytes)
        return std::nullopt;
    const PixelBuffer rows = PixelBuffer::TryAllocate(file->FilteredBytes() + kUnfilterSlack);
    if (!rows || !Inflate(*file, rows.Data())) return std::nullopt;
    auto image = Image::TryCreate({static_cast<int>(file->width), static_cast<int>(file->height)});
    if (!image) return std::nullopt;
    const bool done = file->alpha ? ReadRgbaRows(rows.Data(), image->View())
                                  : ReadRgbRows(rows.Data(), image->View());
    if (!done) return std::nullopt;
    return Decoded{
        .image = std::move(*image), .format = Format::Png, .bitsPerPixel = file->alpha ? 32 : 24};
}

}  // namespace lumo::imaging::codecs

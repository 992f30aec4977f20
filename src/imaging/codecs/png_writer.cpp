// PNG for writing: 8-bit RGB. The chunks are put together here, as libpng cannot hand a whole
// picture to libdeflate, which at its lowest level needs a third of the time that zlib takes for
// files of the same size.

#include <fmt/format.h>
#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <span>
#include <string_view>

#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/codec.h"
#include "imaging/codecs/gif_palette.h"
#include "imaging/codecs/png_filter.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr int kDeflateLevel = 1;  // of libdeflate; files as large as zlib makes them at level 3
constexpr int kZlibLevel = 3;
// Beyond this, the filtered rows are compressed in pieces, slower but in little memory.
constexpr std::size_t kWholeBytes = std::size_t{512} << 20;
constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
constexpr std::size_t kMaxTextBytes = std::size_t{1} << 30;
constexpr std::size_t kMaxKeyBytes = 79;
constexpr std::array<std::uint8_t, 8> kSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

// ---- Chunks ----------------------------------------------------------------------------------

void PutChunk(ByteWriter& out, std::string_view type, ByteView data) {
    out.U32Be(static_cast<std::uint32_t>(data.size()));
    out.Text(type);
    out.Append(data);
    std::uint32_t checksum = libdeflate_crc32(0, type.data(), type.size());
    // Without a buffer the library gives a starting value instead of the sum so far.
    if (!data.empty()) checksum = libdeflate_crc32(checksum, data.data(), data.size());
    out.U32Be(checksum);
}

// A keyword is 1 to 79 printable Latin-1 characters without leading, trailing or double blanks.
std::string CleanKey(std::string_view key) {
    std::string clean;
    for (const char c : key) {
        const auto code = static_cast<unsigned char>(c);
        const bool printable = (code > 32 && code < 127) || code > 160;
        if (printable)
            clean += c;
        else if (!clean.empty() && clean.back() != ' ')
            clean += ' ';
    }
    if (clean.size() > kMaxKeyBytes) clean.resize(kMaxKeyBytes);
    if (clean.ends_with(' ')) clean.pop_back();
    return clean;
}

void PutHeader(ByteWriter& out, Size size, const PngWriteOptions& options) {
    out.Append(kSignature);
    ByteWriter header(13);
    header.U32Be(static_cast<std::uint32_t>(size.width));
    header.U32Be(static_cast<std::uint32_t>(size.height));
    for (const unsigned value : {8U, 2U, 0U, 0U}) header.U8(value);  // RGB, deflate, five filters
    header.U8(options.interlaced ? 1 : 0);
    PutChunk(out, "IHDR", header.Finish());
    if (options.gamma > 0) {
        // In 100000ths; readers take 16 to 625000000 of them.
        ByteWriter gamma(4);
        gamma.U32Be(static_cast<std::uint32_t>(
            std::lround(std::clamp(options.gamma, 0.00016, 6250.0) * 100000)));
        PutChunk(out, "gAMA", gamma.Finish());
    }
    if (options.dotsPerMetre > 0) {
        const auto dots = static_cast<std::uint32_t>(
            std::round(std::clamp(options.dotsPerMetre, 1.0, 2147483647.0)));
        ByteWriter resolution(9);
        resolution.U32Be(dots);
        resolution.U32Be(dots);
        resolution.U8(1);  // the unit is the metre
        PutChunk(out, "pHYs", resolution.Finish());
    }
}

void PutTexts(ByteWriter& out, const PngWriteOptions& options) {
    for (const auto& [key, text] : options.texts) {
        const std::string clean = CleanKey(key);
        if (clean.empty()) continue;
        ByteWriter data(clean.size() + 1 + text.size());
        data.Text(clean);
        data.U8(0);
        // A zero byte would end the text for most readers.
        for (const char c : text) data.U8(c == '\0' ? ' ' : static_cast<unsigned char>(c));
        PutChunk(out, "tEXt", data.Finish());
    }
}

// ---- Rows ------------------------------------------------------------------------------------

/// The pixels of one pass: from `left`, `top` on, every `stepX`-th of every `stepY`-th row.
struct Pass {
    int left, top, stepX, stepY;

    int Columns(Size size) const { return (size.width - left + stepX - 1) / stepX; }
    int Rows(Size size) const { return (size.height - top + stepY - 1) / stepY; }
    std::size_t FilteredBytes(Size size) const {
        if (Columns(size) <= 0 || Rows(size) <= 0) return 0;
        return static_cast<std::size_t>(Rows(size)) *
               (static_cast<std::size_t>(Columns(size)) * kChannels + 1);
    }
};
constexpr std::array<Pass, 1> kWhole{{{0, 0, 1, 1}}};
constexpr std::array<Pass, 7> kAdam7{{{0, 0, 8, 8},
                                      {4, 0, 8, 8},
                                      {0, 4, 4, 8},
                                      {2, 0, 4, 4},
                                      {0, 2, 2, 4},
                                      {1, 0, 2, 2},
                                      {0, 1, 1, 2}}};

/// Calls `sink` with every filtered row; stops if it gives false.
template <class Sink>
bool FilterRows(ConstImageView image, std::span<const Pass> passes, const Sink& sink) {
    const auto choice =
        ExactPalette(image).empty() ? PngRowFilter::Choice::Adaptive : PngRowFilter::Choice::None;
    std::vector<std::uint8_t> picked(image.Stride()), filtered(image.Stride() + 1);
    for (const Pass& pass : passes) {
        if (pass.FilteredBytes(image.Extent()) == 0) continue;
        const int columns = pass.Columns(image.Extent());
        PngRowFilter filter(static_cast<std::size_t>(columns) * kChannels, choice);
        filter.StartPass();
        for (int y = pass.top; y < image.Height(); y += pass.stepY) {
            const std::uint8_t* row = image.Row(y);
            if (pass.stepX > 1) {
                for (int i = 0; i < columns; ++i)
                    std::copy_n(image.At(pass.left + i * pass.stepX, y), kChannels,
                                picked.data() + i * kChannels);
                row = picked.data();
            }
            filter.Filter(row, filtered.data());
            if (!sink(ByteView(filtered).first(filter.FilteredBytes()))) return false;
        }
    }
    return true;
}

// ---- Compression -----------------------------------------------------------------------------

/// All rows in one go; false if there is no memory for that.
bool CompressWhole(ConstImageView image, std::span<const Pass> passes, std::size_t bytes,
                   ByteWriter& out) {
    const PixelBuffer rows = PixelBuffer::TryAllocate(bytes);
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(kDeflateLevel), libdeflate_free_compressor);
    if (!rows || !compressor) return false;
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), bytes);
    const PixelBuffer packed = PixelBuffer::TryAllocate(bound);
    if (!packed) return false;
    std::uint8_t* end = rows.Data();
    FilterRows(image, passes, [&end](ByteView row) {
        end = std::ranges::copy(row, end).out;
        return true;
    });
    const std::size_t size =
        libdeflate_zlib_compress(compressor.get(), rows.Data(), bytes, packed.Data(), bound);
    if (size == 0) return false;
    PutChunk(out, "IDAT", ByteView(packed.Data(), size));
    return true;
}

/// zlib's stream, cut into chunks of kPieceBytes.
class PieceWriter {
  public:
    explicit PieceWriter(ByteWriter& out) : out_(out), piece_(kPieceBytes) {
        ready_ = deflateInit(&stream_, kZlibLevel) == Z_OK;
        StartPiece();
    }
    ~PieceWriter() {
        if (ready_) deflateEnd(&stream_);
    }
    PieceWriter(const PieceWriter&) = delete;
    PieceWriter& operator=(const PieceWriter&) = delete;

    bool Add(ByteView data) { return ready_ && Deflate(data, Z_NO_FLUSH); }
    bool Finish() { return ready_ && Deflate({}, Z_FINISH); }

  private:
    void StartPiece() {
        stream_.next_out = piece_.data();
        stream_.avail_out = static_cast<uInt>(piece_.size());
    }
    bool Deflate(ByteView data, int flush) {
        stream_.next_in = const_cast<Bytef*>(data.data());
        stream_.avail_in = static_cast<uInt>(data.size());
        for (;;) {
            const int result = deflate(&stream_, flush);
            const bool last = result == Z_STREAM_END;
            if (stream_.avail_out == 0 || last) {
                PutChunk(out_, "IDAT", ByteView(piece_).first(piece_.size() - stream_.avail_out));
                StartPiece();
            } else if (flush == Z_NO_FLUSH) {
                return result == Z_OK || result == Z_BUF_ERROR;
            }
            if (last) return true;
            if (result != Z_OK && result != Z_BUF_ERROR) return false;
        }
    }

    ByteWriter& out_;
    Bytes piece_;
    z_stream stream_{};
    bool ready_ = false;
};

bool CompressInPieces(ConstImageView image, std::span<const Pass> passes, ByteWriter& out) {
    PieceWriter writer(out);
    return FilterRows(image, passes, [&writer](ByteView row) { return writer.Add(row); }) &&
           writer.Finish();
}

}  // namespace

Result<Bytes> EncodePng(ConstImageView image, const PngWriteOptions& options) {
    const std::span<const Pass> passes =
        options.interlaced ? std::span<const Pass>(kAdam7) : std::span<const Pass>(kWhole);
    for (const auto& [key, text] : options.texts)
        if (text.size() > kMaxTextBytes)
            return Error{fmt::format("PNG: a text of {} bytes is too long", text.size())};
    std::size_t bytes = 0;
    for (const Pass& pass : passes) bytes += pass.FilteredBytes(image.Extent());
    bool done = false;
    // Half is what a photograph comes to.
    auto file = BuildFile(bytes / 2, [&](ByteWriter& out) {
        PutHeader(out, image.Extent(), options);
        PutTexts(out, options);
        done = (bytes <= kWholeBytes && CompressWhole(image, passes, bytes, out)) ||
               CompressInPieces(image, passes, out);
        PutChunk(out, "IEND", {});
    });
    if (file && !done) return Error{"not enough memory"};
    return file;
}

}  // namespace lumo::imaging::codecs

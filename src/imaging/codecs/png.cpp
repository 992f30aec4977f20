// PNG for reading, through libpng.
//
// The library leaves a failed call by longjmp, which runs no destructor. All that owns memory
// therefore lives in the reader, and the lambdas given to Guarded hold
// trivial locals only.

#include <fmt/format.h>
#include <png.h>

#include <array>
#include <csetjmp>
#include <cstring>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/png_plain.h"
#include "imaging/codecs/png_rows.h"
#include "imaging/codecs/rows.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr std::size_t kMaxChunkMemory = std::size_t{8} << 20;  // bytes; no pixel chunk needs it
constexpr int kMaxChunksKept = 1000;
// Of a file that ends early, what is left of the last portion is lost.
constexpr std::size_t kReadBytes = 512;

/// The error handling of one file: nothing is printed, a failure jumps back into Guarded.
struct Messages {
    std::array<char, 200> failure{};
    std::array<char, 200> warning{};  // the first one
};

template <std::size_t N>
void Keep(std::array<char, N>& target, const char* text) {
    std::strncpy(target.data(), text, N - 1);
}

[[noreturn]] void OnFailure(png_structp png, const char* text) {
    Keep(static_cast<Messages*>(png_get_error_ptr(png))->failure, text);
    png_longjmp(png, 1);
}

void OnWarning(png_structp png, const char* text) {
    auto& warning = static_cast<Messages*>(png_get_error_ptr(png))->warning;
    if (warning[0] == '\0') Keep(warning, text);
}

// "Invalid IHDR data" alone says little; the warnings before it say what is wrong with them.
Error FailureOf(const Messages& messages) {
    if (messages.warning[0] == '\0') return {fmt::format("PNG: {}", messages.failure.data())};
    return {fmt::format("PNG: {} ({})", messages.failure.data(), messages.warning.data())};
}

/// Runs `body`; false if the library gave up inside it.
template <class Body>
bool Guarded(png_structp png, const Body& body) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    body();
    return true;
}

class Reader {
  public:
    explicit Reader(ByteView file)
        : rest_(file),
          png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &messages_, OnFailure, OnWarning)),
          info_(png_ != nullptr ? png_create_info_struct(png_) : nullptr) {}
    ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Result<Decoded> Read(const DecodeOptions& options);

  private:
    void ReadHeader(const DecodeLimits& limits);
    void AskForEightBits();
    void ReadRows();
    void ReadRowsOverWhite();

    ByteView rest_;
    Messages messages_;
    png_structp png_;
    png_infop info_;
    bool interlaced_ = false;
    bool cut_ = false;
    int wholeRows_ = 0;  // of a picture that is not interlaced
    Image image_;
    PixelBuffer rgba_;  // one row, or all of an interlaced picture
};

void Reader::ReadHeader(const DecodeLimits& limits) {
    png_set_read_fn(png_, this, [](png_structp png, png_bytep target, std::size_t count) {
        auto& reader = *static_cast<Reader*>(png_get_io_ptr(png));
        reader.cut_ = count > reader.rest_.size();
        if (reader.cut_) png_error(png, "the file ends too early");
        std::memcpy(target, reader.rest_.data(), count);
        reader.rest_ = reader.rest_.subspan(count);
    });
    png_set_compression_buffer_size(png_, kReadBytes);
    png_set_benign_errors(png_, 1);
    const auto side = static_cast<png_uint_32>(limits.maxSide);
    png_set_user_limits(png_, side, side);
    png_set_chunk_malloc_max(png_, kMaxChunkMemory);
    png_set_chunk_cache_max(png_, kMaxChunksKept);
    // Profiles, gamma and texts do not touch the pixels here: their chunks are passed over.
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_info(png_, info_);
}

void Reader::AskForEightBits() {
    png_set_expand(png_);    // palette, 1 to 4 bits and the tRNS chunk
    png_set_scale_16(png_);  // rounds as Round16To8 does
    png_set_gray_to_rgb(png_);
    interlaced_ = png_set_interlace_handling(png_) > 1;
    png_read_update_info(png_, info_);
}

void Reader::ReadRows() {
    const ImageView rows = image_.View();
    for (int pass = interlaced_ ? 7 : 1; pass > 0; --pass)
        for (int y = 0; y < rows.Height(); ++y) {
            png_read_row(png_, rows.Row(y), nullptr);
            wholeRows_ = y + 1;
        }
}

void Reader::ReadRowsOverWhite() {
    const ImageView rows = image_.View();
    const std::size_t stride = static_cast<std::size_t>(rows.Width()) * 4;
    const auto row = [&](int y) {
        return rgba_.Data() + (interlaced_ ? static_cast<std::size_t>(y) * stride : 0);
    };
    for (int pass = interlaced_ ? 7 : 1; pass > 0; --pass)
        for (int y = 0; y < rows.Height(); ++y) {
            png_read_row(png_, row(y), nullptr);
            if (pass == 1) RgbaOverWhite(row(y), rows.Row(y), rows.Width());
            wholeRows_ = y + 1;
        }
}

Result<Decoded> Reader::Read(const DecodeOptions& options) {
    if (info_ == nullptr) return Error{"PNG: not enough memory"};
    if (!Guarded(png_, [&] { ReadHeader(options.limits); })) return FailureOf(messages_);

    const Size size{static_cast<int>(png_get_image_width(png_, info_)),
                    static_cast<int>(png_get_image_height(png_, info_))};
    const int stored = png_get_bit_depth(png_, info_) * png_get_channels(png_, info_);
    if (!Guarded(png_, [&] { AskForEightBits(); })) return FailureOf(messages_);
    const bool alpha = png_get_channels(png_, info_) == 4;

    const int bytesPerPixel = kChannels + (alpha && interlaced_ ? 4 : 0);
    if (std::string refusal = RefuseSize(size.width, size.height, bytesPerPixel, options.limits);
        !refusal.empty())
        return Error{refusal};
    auto image = Image::TryCreate(size);
    if (!image) return Error{LastError()};
    image_ = std::move(*image);
    if (alpha) {
        const std::size_t pixels = interlaced_ ? size.Area() : static_cast<std::size_t>(size.width);
        rgba_ = PixelBuffer::TryAllocate(pixels * 4);
        if (!rgba_) return Error{LastError()};
    }
    const bool done = Guarded(png_, [&] {
        if (alpha)
            ReadRowsOverWhite();
        else
            ReadRows();
    });
    // Nothing can be said of the rows of an interlaced picture that ends early.
    if (!done && (!cut_ || interlaced_)) return FailureOf(messages_);
    auto decoded =
        FinishRows(std::move(image_), Format::Png, stored, done ? size.height : wholeRows_, true);
    if (decoded && decoded->warning.empty() && messages_.warning[0] != '\0')
        decoded->warning = fmt::format("PNG: {}", messages_.warning.data());
    return decoded;
}

}  // namespace

Result<Decoded> DecodePng(ByteView file, const DecodeOptions& options) {
    if (auto decoded = TryDecodePlainPng(file, options.limits)) return std::move(*decoded);
    Reader reader(file);
    return reader.Read(options);
}

}  // namespace lumo::imaging::codecs

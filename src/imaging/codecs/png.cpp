// PNG through libpng.
//
// The library leaves a failed call by longjmp, which runs no destructor. All that owns memory
// therefore lives in the reader and writer objects, and the lambdas given to Guarded hold
// trivial locals only.

#include <fmt/format.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <exception>

#include "imaging/codecs/decoders.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr std::size_t kMaxChunkMemory = std::size_t{8} << 20;  // bytes; no pixel chunk needs it
constexpr int kMaxChunksKept = 1000;
// Photographs: within 1 % of the size that level 6 gives, in a third of its time.
constexpr int kCompressionLevel = 3;
constexpr std::size_t kMaxKeyBytes = 79;

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

// ---- Reading --------------------------------------------------------------------------------

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
    Image image_;
    PixelBuffer rgba_;  // one row, or all of an interlaced picture
};

void Reader::ReadHeader(const DecodeLimits& limits) {
    png_set_read_fn(png_, this, [](png_structp png, png_bytep target, std::size_t count) {
        auto& reader = *static_cast<Reader*>(png_get_io_ptr(png));
        if (count > reader.rest_.size()) png_error(png, "the file ends too early");
        std::memcpy(target, reader.rest_.data(), count);
        reader.rest_ = reader.rest_.subspan(count);
    });
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
        for (int y = 0; y < rows.Height(); ++y) png_read_row(png_, rows.Row(y), nullptr);
}

void LayOverWhite(const std::uint8_t* rgba, std::uint8_t* rgb, int width) {
    for (int x = 0; x < width; ++x, rgba += 4, rgb += kChannels)
        for (int c = 0; c < kChannels; ++c) rgb[c] = OverWhite(rgba[c], rgba[3]);
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
            if (pass == 1) LayOverWhite(row(y), rows.Row(y), rows.Width());
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
    if (!done) return FailureOf(messages_);

    Decoded decoded{.image = std::move(image_), .format = Format::Png, .bitsPerPixel = stored};
    if (messages_.warning[0] != '\0')
        decoded.warning = fmt::format("PNG: {}", messages_.warning.data());
    return decoded;
}

// ---- Writing --------------------------------------------------------------------------------

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

class Writer {
  public:
    Writer()
        : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, &messages_, OnFailure, OnWarning)),
          info_(png_ != nullptr ? png_create_info_struct(png_) : nullptr) {}
    ~Writer() { png_destroy_write_struct(&png_, &info_); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    Result<Bytes> Write(ConstImageView image, const PngWriteOptions& options);

  private:
    bool TryAppend(const std::uint8_t* data, std::size_t count) noexcept;
    void CollectOutput();
    void WriteHeader(Size size, const PngWriteOptions& options);
    void WriteRows(ConstImageView image);

    Messages messages_;
    png_structp png_;
    png_infop info_;
    std::vector<std::pair<std::string, std::string>> texts_;
    Bytes file_;
};

bool Writer::TryAppend(const std::uint8_t* data, std::size_t count) noexcept {
    try {
        file_.insert(file_.end(), data, data + count);
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

void Writer::CollectOutput() {
    const auto append = [](png_structp png, png_bytep data, std::size_t count) {
        if (!static_cast<Writer*>(png_get_io_ptr(png))->TryAppend(data, count))
            png_error(png, "not enough memory");
    };
    png_set_write_fn(png_, this, append, [](png_structp) {});
}

void Writer::WriteHeader(Size size, const PngWriteOptions& options) {
    png_set_compression_level(png_, kCompressionLevel);
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(size.width),
                 static_cast<png_uint_32>(size.height), 8, PNG_COLOR_TYPE_RGB,
                 options.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // The file holds gamma times 100000, of which the library takes 16 to 625000000.
    if (options.gamma > 0) png_set_gAMA(png_, info_, std::clamp(options.gamma, 0.00016, 6250.0));
    if (options.dotsPerMetre > 0) {
        const double dots = std::round(std::clamp(options.dotsPerMetre, 1.0, 2147483647.0));
        const auto whole = static_cast<png_uint_32>(dots);
        png_set_pHYs(png_, info_, whole, whole, PNG_RESOLUTION_METER);
    }
    for (auto& [key, text] : texts_) {
        png_text entry{};
        entry.compression = PNG_TEXT_COMPRESSION_NONE;
        entry.key = key.data();
        entry.text = text.data();
        entry.text_length = text.size();
        png_set_text(png_, info_, &entry, 1);
    }
    png_write_info(png_, info_);
}

void Writer::WriteRows(ConstImageView image) {
    for (int pass = png_set_interlace_handling(png_); pass > 0; --pass)
        for (int y = 0; y < image.Height(); ++y) png_write_row(png_, image.Row(y));
    png_write_end(png_, nullptr);
}

Result<Bytes> Writer::Write(ConstImageView image, const PngWriteOptions& options) {
    if (info_ == nullptr) return Error{"PNG: not enough memory"};
    for (const auto& [key, text] : options.texts) {
        std::string clean = CleanKey(key);
        if (clean.empty()) continue;
        texts_.emplace_back(std::move(clean), text);
        std::ranges::replace(texts_.back().second, '\0', ' ');  // NUL would end the text
    }
    file_.reserve(image.Extent().Area());
    const bool done = Guarded(png_, [&] {
        CollectOutput();
        WriteHeader(image.Extent(), options);
        WriteRows(image);
    });
    if (!done) return FailureOf(messages_);
    return std::move(file_);
}

}  // namespace

Result<Decoded> DecodePng(ByteView file, const DecodeOptions& options) {
    Reader reader(file);
    return reader.Read(options);
}

Result<Bytes> EncodePng(ConstImageView image, const PngWriteOptions& options) {
    Writer writer;
    return writer.Write(image, options);
}

}  // namespace lumo::imaging::codecs

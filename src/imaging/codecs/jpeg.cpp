// JPG through the plain libjpeg interface.
//
// The library leaves a failed call by longjmp, which runs no destructor. All that owns memory
// therefore lives in the reader and writer objects, and the lambdas given to Guarded hold
// trivial locals only.

#include <fmt/format.h>
#include <jpeglib.h>  // needs <cstddef> and <cstdio> before it

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <exception>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/stored_metadata.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr int kRowsAtOnce = 16;  // the rows of one MCU row at 4:2:0

/// The error handling of one file: nothing is printed, a failure jumps back into Guarded.
struct Errors {
    jpeg_error_mgr base{};
    std::jmp_buf jump{};
    std::array<char, JMSG_LENGTH_MAX> failure{};
    std::array<char, JMSG_LENGTH_MAX> warning{};  // the first one
};

Errors& ErrorsOf(j_common_ptr codec) {
    return *reinterpret_cast<Errors*>(codec->err);
}

[[noreturn]] void OnFailure(j_common_ptr codec) {
    Errors& errors = ErrorsOf(codec);
    errors.base.format_message(codec, errors.failure.data());
    std::longjmp(errors.jump, 1);
}

void OnMessage(j_common_ptr codec, int level) {
    if (level >= 0) return;  // trace lines
    Errors& errors = ErrorsOf(codec);
    if (errors.base.num_warnings++ == 0) errors.base.format_message(codec, errors.warning.data());
}

jpeg_error_mgr* Install(Errors& errors) {
    jpeg_std_error(&errors.base);
    errors.base.error_exit = OnFailure;
    errors.base.emit_message = OnMessage;
    errors.base.output_message = [](j_common_ptr) {};
    return &errors.base;
}

/// Runs `body`; false if the library gave up inside it.
template <class Body>
bool Guarded(Errors& errors, const Body& body) {
    if (setjmp(errors.jump) != 0) return false;
    body();
    return true;
}

// ---- Reading --------------------------------------------------------------------------------

class Reader {
  public:
    Reader() {
        codec_.err = Install(errors_);
        codec_.client_data = this;
    }
    ~Reader() { jpeg_destroy_decompress(&codec_); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Result<Decoded> Read(ByteView file, const DecodeOptions& options);

  private:
    bool ReadHeader(ByteView file, const DecodeLimits& limits);
    std::string Refusal(const DecodeLimits& limits) const;
    void ReadRgbRows();
    void ReadCmykRows();
    void LimitScans(int maxScans);
    Error Failure() const { return {fmt::format("JPG: {}", errors_.failure.data())}; }

    Errors errors_;
    jpeg_decompress_struct codec_{};
    jpeg_progress_mgr progress_{};
    int maxScans_ = 0;
    bool tooManyScans_ = false;
    Image image_;
    PixelBuffer cmykRows_;
};

bool Reader::ReadHeader(ByteView file, const DecodeLimits& limits) {
    return Guarded(errors_, [&] {
        jpeg_create_decompress(&codec_);
        codec_.mem->max_memory_to_use =
            static_cast<long>(std::min<std::size_t>(limits.maxMemory, LONG_MAX));
        jpeg_mem_src(&codec_, file.data(), file.size());
        jpeg_read_header(&codec_, TRUE);
    });
}

// A progressive picture, or one in several scans, is kept whole as 16-bit coefficients.
std::string Reader::Refusal(const DecodeLimits& limits) const {
    const int components = codec_.num_components;
    if (components != 1 && components != 3 && components != 4)
        return fmt::format("JPG: {} colour components are not supported", components);
    const bool whole = codec_.progressive_mode != 0 || codec_.comps_in_scan < components;
    const std::int64_t bytesPerPixel = kChannels + (whole ? 2 * components : 0);
    return RefuseSize(codec_.image_width, codec_.image_height, bytesPerPixel, limits);
}

// A few bytes can ask for one more pass over the whole picture, so passes are counted.
void Reader::LimitScans(int maxScans) {
    maxScans_ = maxScans;
    progress_.progress_monitor = [](j_common_ptr codec) {
        auto& reader = *static_cast<Reader*>(codec->client_data);
        if (reader.codec_.input_scan_number <= reader.maxScans_) return;
        reader.tooManyScans_ = true;
        std::longjmp(reader.errors_.jump, 1);
    };
    codec_.progress = &progress_;
}

void Reader::ReadRgbRows() {
    const ImageView rows = image_.View();
    std::array<JSAMPROW, kRowsAtOnce> pointers{};
    while (codec_.output_scanline < codec_.output_height) {
        const int first = static_cast<int>(codec_.output_scanline);
        const int count = std::min(kRowsAtOnce, rows.Height() - first);
        for (int i = 0; i < count; ++i) pointers[static_cast<std::size_t>(i)] = rows.Row(first + i);
        jpeg_read_scanlines(&codec_, pointers.data(), static_cast<JDIMENSION>(count));
    }
}

// Files with an Adobe marker hold 255 minus ink, the others the amount of ink.
void Reader::ReadCmykRows() {
    const ImageView rows = image_.View();
    const std::uint8_t invert = codec_.saw_Adobe_marker != 0 ? 255 : 0;
    while (codec_.output_scanline < codec_.output_height) {
        const int y = static_cast<int>(codec_.output_scanline);
        JSAMPROW source = cmykRows_.Data();
        jpeg_read_scanlines(&codec_, &source, 1);
        std::uint8_t* target = rows.Row(y);
        for (int x = 0; x < rows.Width(); ++x, source += 4, target += kChannels) {
            const auto ink = [&](int i) { return static_cast<std::uint8_t>(source[i] ^ invert); };
            const Rgb colour = CmykToRgb(ink(0), ink(1), ink(2), ink(3));
            target[0] = colour.red;
            target[1] = colour.green;
            target[2] = colour.blue;
        }
    }
}

Result<Decoded> Reader::Read(ByteView file, const DecodeOptions& options) {
    if (!ReadHeader(file, options.limits)) return Failure();
    if (std::string refusal = Refusal(options.limits); !refusal.empty()) return Error{refusal};

    const Size size{static_cast<int>(codec_.image_width), static_cast<int>(codec_.image_height)};
    auto image = Image::TryCreate(size);
    if (!image) return Error{LastError()};
    image_ = std::move(*image);
    const bool cmyk = codec_.num_components == 4;
    if (cmyk) {
        cmykRows_ = PixelBuffer::TryAllocate(static_cast<std::size_t>(size.width) * 4);
        if (!cmykRows_) return Error{LastError()};
    }
    LimitScans(options.limits.maxScans);
    const bool done = Guarded(errors_, [&] {
        codec_.out_color_space = cmyk ? JCS_CMYK : JCS_RGB;
        jpeg_start_decompress(&codec_);
        if (cmyk)
            ReadCmykRows();
        else
            ReadRgbRows();
        // What follows the last row is nobody's concern: jpeg_finish_decompress would only judge
        // it.
    });
    if (tooManyScans_) return Error{fmt::format("JPG: more than {} scans", maxScans_)};
    if (!done) return Failure();

    Decoded decoded{.image = std::move(image_),
                    .format = Format::Jpeg,
                    .bitsPerPixel = codec_.num_components * codec_.data_precision};
    // Data that ends early, or is damaged inside, still gives every row; only the count tells.
    if (errors_.base.num_warnings > 0)
        decoded.warning = fmt::format("JPG: {}", errors_.warning.data());
    return decoded;
}

// ---- Writing --------------------------------------------------------------------------------

class Writer {
  public:
    Writer() {
        codec_.err = Install(errors_);
        codec_.client_data = this;
    }
    ~Writer() { jpeg_destroy_compress(&codec_); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    Result<Bytes> Write(ConstImageView image, const JpegWriteOptions& options);

  private:
    static Writer& Of(j_compress_ptr codec) { return *static_cast<Writer*>(codec->client_data); }
    void CollectOutput(std::size_t expectedBytes);
    bool TryGrow() noexcept;
    void SetParameters(ConstImageView image, const JpegWriteOptions& options);
    void WriteRows(ConstImageView image);

    Errors errors_;
    jpeg_compress_struct codec_{};
    jpeg_destination_mgr destination_{};
    std::size_t expectedBytes_ = 0;
    Bytes file_;
};

// Doubles the file and points the library at its new half.
bool Writer::TryGrow() noexcept {
    const std::size_t used = file_.size();
    try {
        file_.resize(std::max(used * 2, expectedBytes_));
    } catch (const std::exception&) {
        return false;
    }
    destination_.next_output_byte = file_.data() + used;
    destination_.free_in_buffer = file_.size() - used;
    return true;
}

void Writer::CollectOutput(std::size_t expectedBytes) {
    expectedBytes_ = expectedBytes;
    destination_.init_destination = [](j_compress_ptr codec) {
        codec->dest->empty_output_buffer(codec);
    };
    destination_.empty_output_buffer = [](j_compress_ptr codec) -> boolean {
        Writer& writer = Of(codec);
        if (!writer.TryGrow()) {
            fmt::format_to_n(writer.errors_.failure.data(), JMSG_LENGTH_MAX - 1,
                             "not enough memory");
            std::longjmp(writer.errors_.jump, 1);
        }
        return TRUE;
    };
    destination_.term_destination = [](j_compress_ptr) {};
    codec_.dest = &destination_;
}

void Writer::SetParameters(ConstImageView image, const JpegWriteOptions& options) {
    codec_.image_width = static_cast<JDIMENSION>(image.Width());
    codec_.image_height = static_cast<JDIMENSION>(image.Height());
    codec_.input_components = kChannels;
    codec_.in_color_space = JCS_RGB;
    jpeg_set_defaults(&codec_);
    jpeg_set_quality(&codec_, std::clamp(options.quality, 0, 100), TRUE);
    codec_.smoothing_factor = std::clamp(options.smoothing, 0, 100);  // after the defaults
    const double dots = std::isfinite(options.dotsPerInch) ? options.dotsPerInch : 0;
    const auto density = static_cast<UINT16>(std::lround(std::clamp(dots, 1.0, 65535.0)));
    codec_.density_unit = 1;  // dots per inch
    codec_.X_density = density;
    codec_.Y_density = density;
    if (options.progressive) jpeg_simple_progression(&codec_);
}

void Writer::WriteRows(ConstImageView image) {
    std::array<JSAMPROW, kRowsAtOnce> pointers{};
    for (int y = 0; y < image.Height(); y += kRowsAtOnce) {
        const int count = std::min(kRowsAtOnce, image.Height() - y);
        for (int i = 0; i < count; ++i)  // the library only reads them
            pointers[static_cast<std::size_t>(i)] = const_cast<JSAMPROW>(image.Row(y + i));
        jpeg_write_scanlines(&codec_, pointers.data(), static_cast<JDIMENSION>(count));
    }
}

std::string RefuseMarker(int code, const Bytes& payload) {
    if (code != kComment && (code < kApp0 || code > kApp15))
        return fmt::format("JPG: marker {:#x} is none for application data", code);
    if (payload.size() > kMaxMarkerBytes)
        return fmt::format("JPG: a marker of {} bytes is too long", payload.size());
    return {};
}

Result<Bytes> Writer::Write(ConstImageView image, const JpegWriteOptions& options) {
    for (const auto& [code, payload] : options.markers)
        if (std::string refusal = RefuseMarker(code, payload); !refusal.empty())
            return Error{refusal};
    const bool done = Guarded(errors_, [&] {
        jpeg_create_compress(&codec_);
        CollectOutput(image.Extent().Area() / 4 + 4096);
        SetParameters(image, options);
        jpeg_start_compress(&codec_, TRUE);
        for (const auto& [code, payload] : options.markers)
            jpeg_write_marker(&codec_, code, payload.data(), static_cast<unsigned>(payload.size()));
        WriteRows(image);
        jpeg_finish_compress(&codec_);
    });
    if (!done) return Error{fmt::format("JPG: {}", errors_.failure.data())};
    file_.resize(file_.size() - destination_.free_in_buffer);
    return std::move(file_);
}

}  // namespace

Result<Decoded> DecodeJpeg(ByteView file, const DecodeOptions& options) {
    Reader reader;
    return reader.Read(file, options);
}

Result<Bytes> EncodeJpeg(ConstImageView image, const JpegWriteOptions& options) {
    Writer writer;
    return writer.Write(image, options);
}

}  // namespace lumo::imaging::codecs

#include <fmt/format.h>
#include <jpeglib.h>
#include <libraw/libraw.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>

#include "imaging/codecs/decoders.h"

namespace lumo::imaging::codecs {
namespace {

// Bytes for a pixel while a picture is developed: the sensor's value, four values of 16 bits in
// between, one channel of scratch, the result of the library and our own.
constexpr int kBytesPerPixel = 2 + 8 + 2 + 3 + 3;

struct ImageFree {
    void operator()(libraw_processed_image_t* image) const { LibRaw::dcraw_clear_mem(image); }
};
using Developed = std::unique_ptr<libraw_processed_image_t, ImageFree>;

platform::Error Failure(int status) {
    return platform::Error{fmt::format("camera RAW: {}", libraw_strerror(status))};
}

// Notes damage that the library would report on standard error.
void NoteDamage(void* seen, const char*, int) {
    *static_cast<bool*>(seen) = true;
}

// The file, with a count of what the library asked for behind its end: it takes that as zeros and
// makes a picture all the same.
class Stream : public LibRaw_buffer_datastream {
  public:
    // The library takes its input through a pointer that is not const, and does not write to it.
    explicit Stream(ByteView file)
        : LibRaw_buffer_datastream(const_cast<std::uint8_t*>(file.data()), file.size()) {}
    ~Stream() override { FreeJpeg(); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    int read(void* target, std::size_t size, std::size_t count) override {
        const INT64 before = tell();
        const int result = LibRaw_buffer_datastream::read(target, size, count);
        const auto got = static_cast<std::size_t>(tell() - before);
        read_ += got;
        missing_ += size * count - std::min(size * count, got);
        return result;
    }
    int seek(INT64 offset, int origin) override {
        if (toBeCleared_ != nullptr) ClearPixels();
        return LibRaw_buffer_datastream::seek(offset, origin);
    }
    // A JPG inside of the file is about to be decoded. Its decoder prints what is wrong, and the
    // library forgets to free it when a tile fails: both are mended here.
    int jpeg_src(void* decompress) override {
        auto* jpeg = static_cast<jpeg_decompress_struct*>(decompress);
        jpeg->client_data = this;
        jpeg->err->output_message = [](j_common_ptr common) {
            static_cast<Stream*>(common->client_data)->jpegDamaged_ = true;
        };
        if (jpeg->mem != jpegMemory_) {  // else the next tile of the same decoder
            FreeJpeg();
            jpegMemory_ = jpeg->mem;
            destroyJpeg_ = jpeg->mem->self_destruct;
            jpeg->mem->self_destruct = [](j_common_ptr common) {
                auto* self = static_cast<Stream*>(common->client_data);
                self->jpegMemory_ = nullptr;
                self->destroyJpeg_(common);
            };
        }
        return LibRaw_buffer_datastream::jpeg_src(decompress);
    }
    int get_char() override {
        const int byte = LibRaw_buffer_datastream::get_char();
        (byte < 0 ? missing_ : read_) += 1;
        return byte;
    }

    /// Before the pixels are unpacked: the library takes their memory as it comes, and some of its
    /// readers leave part of it unwritten where their data is no data. Such pixels would show what
    /// the memory held before, so it is cleared at the first seek after it has been taken, which
    /// is the one to the data.
    void ClearPixelsOf(LibRaw& raw) {
        libraw_decoder_info_t decoder{};
        raw.get_decoder_info(&decoder);
        // Some readers take memory of their own, while they read, and fill it.
        if ((decoder.decoder_flags & LIBRAW_DECODER_OWNALLOC) == 0)
            toBeCleared_ = &raw.imgdata.rawdata;
    }
    void StartCount() { read_ = missing_ = 0; }
    /// Readers of bits look a few bytes ahead; more than that was meant to be there.
    bool EndsEarly() const { return missing_ > kLookAhead; }
    bool IsMostlyMissing() const { return EndsEarly() && missing_ > read_; }
    /// True if a JPG inside of the file was.
    bool IsJpegDamaged() const { return jpegDamaged_; }

  private:
    void FreeJpeg() {
        if (jpegMemory_ == nullptr) return;
        jpeg_common_struct common{};  // the decoder itself is gone, and only its memory is needed
        common.mem = jpegMemory_;
        jpegMemory_ = nullptr;
        destroyJpeg_(&common);
    }

    void ClearPixels() {
        void* pixels = toBeCleared_->raw_alloc;
        if (pixels == nullptr) return;  // not taken yet
        std::memset(pixels, 0, malloc_usable_size(pixels));
        toBeCleared_ = nullptr;
    }

    static constexpr std::size_t kLookAhead = 4096;
    const libraw_rawdata_t* toBeCleared_ = nullptr;
    std::size_t read_ = 0;
    std::size_t missing_ = 0;
    bool jpegDamaged_ = false;
    jpeg_memory_mgr* jpegMemory_ = nullptr;  // of a decoder that was not destroyed
    void (*destroyJpeg_)(j_common_ptr) = nullptr;
};

void SetParameters(libraw_output_params_t& params, const DecodeLimits& limits) {
    params.output_bps = 8;
    params.output_color = 1;   // sRGB
    params.gamm[0] = 1 / 2.4;  // and its curve
    params.gamm[1] = 12.92;
    params.use_camera_wb = 1;
    params.user_flip = 0;  // as the sensor saw it: pictures are not turned by what a camera notes
    params.max_raw_memory_mb =
        static_cast<unsigned>(std::min<std::size_t>(limits.maxMemory >> 20, 1U << 20));
}

std::string RefuseRaw(const LibRaw& raw, const DecodeLimits& limits) {
    const libraw_image_sizes_t& sizes = raw.imgdata.sizes;
    auto reason = RefuseSize(sizes.width, sizes.height, kBytesPerPixel, limits);
    // The sensor is a little larger than the picture, or, in a damaged header, a lot.
    if (reason.empty())
        reason = RefuseSize(sizes.raw_width, sizes.raw_height, kBytesPerPixel, limits);
    return reason;
}

// Some readers of the library leave most pixels at zero, silently, where their data ends. A file
// far too small for its sensor shows that: even lossy formats spend a bit on ten pixels.
bool IsStub(const LibRaw& raw, ByteView file, bool damaged) {
    const libraw_rawdata_t& data = raw.imgdata.rawdata;
    const std::size_t pixels =
        std::size_t{raw.imgdata.sizes.raw_width} * raw.imgdata.sizes.raw_height;
    if (file.size() * 80 > pixels) return false;
    if (damaged) return true;
    std::size_t channels = 1;
    const ushort* first = data.raw_image;
    if (data.color3_image != nullptr) {
        channels = 3;
        first = data.color3_image[0];
    } else if (data.color4_image != nullptr) {
        channels = 4;
        first = data.color4_image[0];
    }
    if (first == nullptr) return false;
    const std::size_t count =
        raw.imgdata.sizes.raw_pitch / sizeof(ushort) * raw.imgdata.sizes.raw_height;
    if (count <= channels) return false;
    std::size_t changes = 0;
    for (std::size_t i = channels; i < count; ++i) changes += first[i] != first[i - channels];
    return changes < count / 50;
}

Result<Image> ToRgb(const libraw_processed_image_t& source) {
    if (source.type != LIBRAW_IMAGE_BITMAP || source.bits != 8 ||
        (source.colors != 1 && source.colors != 3))
        return platform::Error{"camera RAW: colours that are neither grey nor RGB"};
    auto image = Image::TryCreate({source.width, source.height});
    if (!image) return platform::Error{"not enough memory"};
    const std::span<std::uint8_t> target = image->View().Bytes();
    const std::size_t pixels = target.size() / kChannels;
    if (source.data_size < pixels * source.colors)
        return platform::Error{"camera RAW: the picture is incomplete"};
    if (source.colors == 3) {
        std::memcpy(target.data(), source.data, target.size());
    } else {
        for (std::size_t i = 0; i < pixels; ++i)
            std::fill_n(target.data() + i * kChannels, kChannels, source.data[i]);
    }
    return std::move(*image);
}

}  // namespace

Result<Decoded> DecodeRaw(ByteView file, const DecodeOptions& options) {
    bool damaged = false;
    Stream stream(file);  // outlives the object that reads from it
    // The object is too large for the stack of a thread.
    const auto raw = std::make_unique<LibRaw>(LIBRAW_OPIONS_NO_MEMERR_CALLBACK);
    raw->set_dataerror_handler(NoteDamage, &damaged);
    SetParameters(raw->imgdata.params, options.limits);
    int status = raw->open_datastream(&stream);
    if (status != LIBRAW_SUCCESS) return Failure(status);
    if (raw->imgdata.idata.raw_count == 0)
        return platform::Error{"camera RAW: only a preview, no picture of the sensor"};
    if (auto reason = RefuseRaw(*raw, options.limits); !reason.empty())
        return platform::Error{std::move(reason)};
    stream.StartCount();
    stream.ClearPixelsOf(*raw);
    status = raw->unpack();
    if (stream.IsMostlyMissing() ||
        (status == LIBRAW_SUCCESS && IsStub(*raw, file, damaged || stream.IsJpegDamaged())))
        return platform::Error{"camera RAW: the file does not hold the picture of the sensor"};
    if (status == LIBRAW_SUCCESS) status = raw->dcraw_process();
    if (status != LIBRAW_SUCCESS) return Failure(status);
    const Developed developed(raw->dcraw_make_mem_image(&status));
    if (!developed) return Failure(status);
    auto image = ToRgb(*developed);
    if (!image) return platform::Error{image.Message()};
    Decoded decoded{.image = std::move(*image), .format = Format::Raw};
    const int bits = static_cast<int>(raw->imgdata.color.raw_bps);
    decoded.bitsPerPixel = bits > 0 ? bits : 16;
    if (stream.EndsEarly())
        decoded.warning = "the camera data is cut short";
    else if (damaged || stream.IsJpegDamaged())
        decoded.warning = "the camera data is damaged";
    return decoded;
}

}  // namespace lumo::imaging::codecs

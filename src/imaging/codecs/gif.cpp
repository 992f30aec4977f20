// GIF through giflib. Reading stops behind the first picture of the file.

#include <fmt/format.h>
#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <optional>
#include <vector>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/gif_palette.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

/// The rows of an interlaced picture come in four passes.
struct Pass {
    int first, step;
};
constexpr std::array<Pass, 4> kInterlaced{{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
constexpr std::array<Pass, 1> kInOrder{{{0, 1}}};
constexpr int kMaxSide = 65535;  // 16-bit fields

std::span<const Pass> PassesOf(bool interlaced) {
    return interlaced ? std::span<const Pass>(kInterlaced) : std::span<const Pass>(kInOrder);
}

std::string ReasonOf(int code) {
    const char* text = GifErrorString(code);
    return text != nullptr ? text : "damaged";
}

// ---- Reading --------------------------------------------------------------------------------

class Reader {
  public:
    explicit Reader(ByteView file) : rest_(file) {
        const auto read = [](GifFileType* gif, GifByteType* target, int count) {
            return static_cast<Reader*>(gif->UserData)->Read(target, count);
        };
        gif_ = DGifOpen(this, read, &openError_);
    }
    ~Reader() {
        if (gif_ != nullptr) DGifCloseFile(gif_, nullptr);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Result<Decoded> ReadFirstPicture(const DecodeOptions& options);

  private:
    int Read(GifByteType* target, int count);
    Error Failure() const {
        return {fmt::format("GIF: {}", ReasonOf(gif_ != nullptr ? gif_->Error : openError_))};
    }
    bool FindFirstPicture();
    bool SkipExtension();
    void ReadColours();
    bool ReadRows(ImageView canvas);
    void PutRow(const std::uint8_t* indices, ImageView canvas, int y) const;

    ByteView rest_;
    GifFileType* gif_ = nullptr;
    int openError_ = 0;
    std::optional<int> transparent_;
    std::array<Rgb, kMaxColours> colours_{};
};

int Reader::Read(GifByteType* target, int count) {
    const std::size_t given = std::min(rest_.size(), static_cast<std::size_t>(count));
    std::memcpy(target, rest_.data(), given);
    rest_ = rest_.subspan(given);
    return static_cast<int>(given);
}

/// Leaves the library in front of the rows; false without a picture.
bool Reader::FindFirstPicture() {
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif_, &type) == GIF_ERROR) return false;
        if (type == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif_) == GIF_OK;
        if (type != EXTENSION_RECORD_TYPE || !SkipExtension()) return false;
    }
}

bool Reader::SkipExtension() {
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif_, &code, &block) == GIF_ERROR) return false;
    while (block != nullptr) {
        GraphicsControlBlock control{};
        if (code == GRAPHICS_EXT_FUNC_CODE &&
            DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK &&
            control.TransparentColor != NO_TRANSPARENT_COLOR)
            transparent_ = control.TransparentColor;
        if (DGifGetExtensionNext(gif_, &block) == GIF_ERROR) return false;
    }
    return true;
}

// A file without any colour map leaves the choice to the reader: a ramp of greys shows the most.
// Indices beyond a map are black.
void Reader::ReadColours() {
    const ColorMapObject* map =
        gif_->Image.ColorMap != nullptr ? gif_->Image.ColorMap : gif_->SColorMap;
    for (std::size_t i = 0; i < colours_.size(); ++i) {
        const auto grey = static_cast<std::uint8_t>(i);
        if (map == nullptr)
            colours_[i] = {grey, grey, grey};
        else if (static_cast<int>(i) < map->ColorCount)
            colours_[i] = {map->Colors[i].Red, map->Colors[i].Green, map->Colors[i].Blue};
    }
    if (transparent_) colours_[static_cast<std::size_t>(*transparent_)] = {255, 255, 255};
}

void Reader::PutRow(const std::uint8_t* indices, ImageView canvas, int y) const {
    std::uint8_t* target = canvas.At(gif_->Image.Left, y);
    for (int x = 0; x < gif_->Image.Width; ++x, target += kChannels) {
        const Rgb colour = colours_[indices[x]];
        target[0] = colour.red;
        target[1] = colour.green;
        target[2] = colour.blue;
    }
}

bool Reader::ReadRows(ImageView canvas) {
    const GifImageDesc& frame = gif_->Image;
    std::vector<std::uint8_t> indices(static_cast<std::size_t>(frame.Width));
    for (const Pass& pass : PassesOf(frame.Interlace))
        for (int y = pass.first; y < frame.Height; y += pass.step) {
            if (DGifGetLine(gif_, indices.data(), frame.Width) == GIF_ERROR) return false;
            PutRow(indices.data(), canvas, frame.Top + y);
        }
    return true;
}

Result<Decoded> Reader::ReadFirstPicture(const DecodeOptions& options) {
    if (gif_ == nullptr) return Failure();
    if (!FindFirstPicture()) {
        if (gif_->Error != 0) return Failure();
        return Error{"GIF: there is no picture in the file"};
    }
    const GifImageDesc& frame = gif_->Image;
    if (frame.Width < 1 || frame.Height < 1) return Error{"GIF: the first picture is empty"};
    // Some writers state a screen smaller than the picture on it.
    const Size screen{std::max(gif_->SWidth, frame.Left + frame.Width),
                      std::max(gif_->SHeight, frame.Top + frame.Height)};
    if (std::string refusal = RefuseSize(screen.width, screen.height, kChannels, options.limits);
        !refusal.empty())
        return Error{refusal};
    auto image = Image::TryCreate(screen);
    if (!image) return Error{LastError()};
    ReadColours();
    if (frame.Width != screen.width || frame.Height != screen.height)
        std::ranges::fill(image->View().Bytes(), std::uint8_t{255});
    if (!ReadRows(image->View())) return Failure();
    const ColorMapObject* map = frame.ColorMap != nullptr ? frame.ColorMap : gif_->SColorMap;
    return Decoded{.image = std::move(*image),
                   .format = Format::Gif,
                   .bitsPerPixel = map != nullptr ? map->BitsPerPixel : 8};
}

// ---- Writing --------------------------------------------------------------------------------

class Writer {
  public:
    Writer() {
        const auto write = [](GifFileType* gif, const GifByteType* data, int count) {
            return static_cast<Writer*>(gif->UserData)->TryAppend(data, count) ? count : 0;
        };
        gif_ = EGifOpen(this, write, &openError_);
    }
    ~Writer() {
        if (gif_ != nullptr) EGifCloseFile(gif_, nullptr);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    Result<Bytes> Write(Size size, std::uint8_t* indices, const ColourTable& palette,
                        bool interlaced);

  private:
    bool TryAppend(const GifByteType* data, int count) noexcept;
    bool WriteHeader(Size size, const ColourTable& palette, bool interlaced);
    bool WriteRows(Size size, std::uint8_t* indices, bool interlaced);
    bool Close();

    GifFileType* gif_ = nullptr;
    int openError_ = 0;
    Bytes file_;
};

bool Writer::TryAppend(const GifByteType* data, int count) noexcept {
    try {
        file_.insert(file_.end(), data, data + count);
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

bool Writer::WriteHeader(Size size, const ColourTable& palette, bool interlaced) {
    std::array<GifColorType, kMaxColours> colours{};
    for (std::size_t i = 0; i < palette.size(); ++i)
        colours[i] = {palette[i].red, palette[i].green, palette[i].blue};
    ColorMapObject* map = GifMakeMapObject(kMaxColours, colours.data());
    if (map == nullptr) return false;
    EGifSetGifVersion(gif_, false);  // GIF87a: nothing of the later version is used
    const bool done =
        EGifPutScreenDesc(gif_, size.width, size.height, 8, 0, map) == GIF_OK &&
        EGifPutImageDesc(gif_, 0, 0, size.width, size.height, interlaced, nullptr) == GIF_OK;
    GifFreeMapObject(map);
    return done;
}

bool Writer::WriteRows(Size size, std::uint8_t* indices, bool interlaced) {
    for (const Pass& pass : PassesOf(interlaced))
        for (int y = pass.first; y < size.height; y += pass.step) {
            std::uint8_t* row =
                indices + static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width);
            if (EGifPutLine(gif_, row, size.width) == GIF_ERROR) return false;
        }
    return true;
}

bool Writer::Close() {
    GifFileType* gif = gif_;
    gif_ = nullptr;
    return EGifCloseFile(gif, &openError_) == GIF_OK;
}

Result<Bytes> Writer::Write(Size size, std::uint8_t* indices, const ColourTable& palette,
                            bool interlaced) {
    if (gif_ != nullptr && WriteHeader(size, palette, interlaced) &&
        WriteRows(size, indices, interlaced) && Close())
        return std::move(file_);
    return Error{"GIF: not enough memory"};  // nothing else can fail
}

}  // namespace

Result<Decoded> DecodeGif(ByteView file, const DecodeOptions& options) {
    Reader reader(file);
    return reader.ReadFirstPicture(options);
}

Result<Bytes> EncodeGif(ConstImageView image, const GifWriteOptions& options) {
    if (image.Width() > kMaxSide || image.Height() > kMaxSide)
        return Error{fmt::format("GIF: a side of more than {} pixels", kMaxSide)};
    const PixelBuffer buffer = PixelBuffer::TryAllocate(image.Extent().Area());
    if (!buffer) return Error{LastError()};
    const std::span<std::uint8_t> indices(buffer.Data(), image.Extent().Area());

    ColourTable palette;
    if (options.palette == GifPalette::Uniform) {
        palette = UniformPalette();
        MapBestFit(image, palette, indices);
    } else {
        palette =
            options.palette == GifPalette::Octree ? OctreePalette(image) : MedianCutPalette(image);
        MapDiffused(image, palette,
                    options.dither ? Diffusion::FourNeighbours : Diffusion::TwoNeighbours, indices);
    }
    Writer writer;
    return writer.Write(image.Extent(), indices.data(), palette, options.interlaced);
}

}  // namespace lumo::imaging::codecs

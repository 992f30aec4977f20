// GIF for reading, through giflib. It stops behind the first picture of the file.

#include <fmt/format.h>
#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <vector>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/gif_passes.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

std::string ReasonOf(int code) {
    const char* text = GifErrorString(code);
    return text != nullptr ? text : "damaged";
}

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
    std::array<Rgb, 256> colours_{};
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
    for (const GifPass& pass : GifPassesOf(frame.Interlace))
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

}  // namespace

Result<Decoded> DecodeGif(ByteView file, const DecodeOptions& options) {
    Reader reader(file);
    return reader.ReadFirstPicture(options);
}

}  // namespace lumo::imaging::codecs

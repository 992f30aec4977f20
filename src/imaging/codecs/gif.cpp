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
#include "imaging/codecs/rows.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

std::string ReasonOf(int code) {
    if (code == D_GIF_ERR_READ_FAILED) return "the file ends too early";
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
    int ReadRows(ImageView canvas);
    void PutRow(const std::uint8_t* indices, ImageView canvas, int y) const;

    ByteView rest_;
    GifFileType* gif_ = nullptr;
    int openError_ = 0;
    std::optional<int> transparent_;
    std::array<Rgb, 256> colours_{};
};

int Reader::Read(GifByteType* target, int count) {
    const std::size_t given = std::min(rest_.size(), static_cast<std::size_t>(count));
    if (given > 0) std::memcpy(target, rest_.data(), given);
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

/// The rows that came whole; all others of the picture are white afterwards.
int Reader::ReadRows(ImageView canvas) {
    const GifImageDesc& frame = gif_->Image;
    std::vector<std::uint8_t> indices(static_cast<std::size_t>(frame.Width));
    int whole = 0;
    bool reading = true;
    for (const GifPass& pass : GifPassesOf(frame.Interlace))
        for (int y = pass.first; y < frame.Height; y += pass.step) {
            reading = reading && DGifGetLine(gif_, indices.data(), frame.Width) == GIF_OK;
            if (reading) {
                PutRow(indices.data(), canvas, frame.Top + y);
                ++whole;
            } else {
                std::uint8_t* row = canvas.At(frame.Left, frame.Top + y);
                std::fill_n(row, static_cast<std::size_t>(frame.Width) * kChannels,
                            std::uint8_t{255});
            }
        }
    return whole;
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
    const int rows = ReadRows(image->View());
    std::string warning;
    if (rows < frame.Height) {
        // The codes may end before the picture does, as well as the file.
        if (gif_->Error != D_GIF_ERR_READ_FAILED && gif_->Error != D_GIF_ERR_EOF_TOO_SOON)
            return Failure();
        if (rows == 0) return Error{kNoRows};
        warning = CutWarning(rows, frame.Height);
    }
    const ColorMapObject* map = frame.ColorMap != nullptr ? frame.ColorMap : gif_->SColorMap;
    return Decoded{.image = std::move(*image),
                   .format = Format::Gif,
                   .bitsPerPixel = map != nullptr ? map->BitsPerPixel : 8,
                   .warning = std::move(warning)};
}

}  // namespace

Result<Decoded> DecodeGif(ByteView file, const DecodeOptions& options) {
    Reader reader(file);
    return reader.ReadFirstPicture(options);
}

}  // namespace lumo::imaging::codecs

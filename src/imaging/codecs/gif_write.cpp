// GIF for writing: GIF87a with one picture and a global table of 256 colours.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <new>
#include <span>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/gif_palette.h"
#include "imaging/codecs/gif_passes.h"
#include "imaging/codecs/lzw.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr int kMaxSide = 65535;  // 16-bit fields
constexpr std::size_t kBlockBytes = 255;

void AppendNumber(Bytes& file, int value) {
    file.push_back(static_cast<std::uint8_t>(value & 0xFF));
    file.push_back(static_cast<std::uint8_t>(value >> 8));
}

void AppendHeader(Bytes& file, Size size, const ColourTable& palette, bool interlaced) {
    AppendNumber(file, size.width);
    AppendNumber(file, size.height);
    file.insert(file.end(), {0xF7, 0, 0});  // 256 colours of 8 bits, background 0, no aspect
    for (const Rgb colour : palette)
        file.insert(file.end(), {colour.red, colour.green, colour.blue});
    file.resize(file.size() + (kMaxColours - palette.size()) * kChannels);
    file.push_back(',');
    AppendNumber(file, 0);
    AppendNumber(file, 0);
    AppendNumber(file, size.width);
    AppendNumber(file, size.height);
    file.push_back(interlaced ? 0x40 : 0);
}

void AppendPixels(Bytes& file, Size size, std::span<const std::uint8_t> indices, bool interlaced) {
    Bytes codes;
    LzwEncoder<LzwDialect::Gif> encoder(codes);
    const auto width = static_cast<std::size_t>(size.width);
    for (const GifPass& pass : GifPassesOf(interlaced))
        for (int y = pass.first; y < size.height; y += pass.step)
            encoder.Add(indices.subspan(static_cast<std::size_t>(y) * width, width));
    encoder.Finish();

    file.reserve(file.size() + codes.size() + codes.size() / kBlockBytes + 4);
    file.push_back(8);  // bits of an index
    for (std::size_t at = 0; at < codes.size(); at += kBlockBytes) {
        const auto block = std::span(codes).subspan(at, std::min(kBlockBytes, codes.size() - at));
        file.push_back(static_cast<std::uint8_t>(block.size()));
        file.insert(file.end(), block.begin(), block.end());
    }
    file.push_back(0);
}

}  // namespace

Result<Bytes> EncodeGif(ConstImageView image, const GifWriteOptions& options) {
    if (image.Width() > kMaxSide || image.Height() > kMaxSide)
        return Error{fmt::format("GIF: a side of more than {} pixels", kMaxSide)};
    const PixelBuffer buffer = PixelBuffer::TryAllocate(image.Extent().Area());
    if (!buffer) return Error{LastError()};
    const std::span<std::uint8_t> indices(buffer.Data(), image.Extent().Area());
    try {
        ColourTable palette;
        if (options.palette == GifPalette::Uniform) {
            palette = UniformPalette();
            MapBestFit(image, palette, indices);
        } else {
            palette = options.palette == GifPalette::Octree ? OctreePalette(image)
                                                            : MedianCutPalette(image);
            MapDiffused(image, palette,
                        options.dither ? Diffusion::FourNeighbours : Diffusion::TwoNeighbours,
                        indices);
        }
        Bytes file{'G', 'I', 'F', '8', '7', 'a'};
        AppendHeader(file, image.Extent(), palette, options.interlaced);
        AppendPixels(file, image.Extent(), indices, options.interlaced);
        file.push_back(';');
        return file;
    } catch (const std::bad_alloc&) {
        return Error{"GIF: not enough memory"};
    }
}

}  // namespace lumo::imaging::codecs

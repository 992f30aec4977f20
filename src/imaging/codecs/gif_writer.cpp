// GIF for writing: GIF87a with one picture and a global table of 256 colours.

#include <fmt/format.h>

#include <algorithm>
#include <span>

#include "imaging/codecs/byte_writer.h"
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

void PutHeader(ByteWriter& out, Size size, const ColourTable& palette, bool interlaced) {
    const auto width = static_cast<unsigned>(size.width);
    const auto height = static_cast<unsigned>(size.height);
    out.Text("GIF87a");
    out.U16Le(width);
    out.U16Le(height);
    out.U8(0xF7);  // 256 colours of 8 bits
    out.U8(0);     // the background
    out.U8(0);     // no aspect
    for (const Rgb colour : palette) {
        out.U8(colour.red);
        out.U8(colour.green);
        out.U8(colour.blue);
    }
    out.Zeros((kMaxColours - palette.size()) * kChannels);
    out.Text(",");
    out.U16Le(0);
    out.U16Le(0);
    out.U16Le(width);
    out.U16Le(height);
    out.U8(interlaced ? 0x40 : 0);
}

void PutPixels(ByteWriter& out, Size size, std::span<const std::uint8_t> indices, bool interlaced) {
    Bytes codes;
    LzwEncoder<LzwDialect::Gif> encoder(codes);
    const auto width = static_cast<std::size_t>(size.width);
    for (const GifPass& pass : GifPassesOf(interlaced))
        for (int y = pass.first; y < size.height; y += pass.step)
            encoder.Add(indices.subspan(static_cast<std::size_t>(y) * width, width));
    encoder.Finish();

    out.U8(8);  // bits of an index
    for (std::size_t at = 0; at < codes.size(); at += kBlockBytes) {
        const auto block = ByteView(codes).subspan(at, std::min(kBlockBytes, codes.size() - at));
        out.U8(static_cast<unsigned>(block.size()));
        out.Append(block);
    }
    out.U8(0);
}

ColourTable Quantise(ConstImageView image, const GifWriteOptions& options,
                     std::span<std::uint8_t> indices) {
    if (options.palette == GifPalette::Uniform) {
        MapBestFit(image, UniformPalette(), indices);
        return UniformPalette();
    }
    ColourTable palette =
        options.palette == GifPalette::Octree ? OctreePalette(image) : MedianCutPalette(image);
    MapDiffused(image, palette,
                options.dither ? Diffusion::FourNeighbours : Diffusion::TwoNeighbours, indices);
    return palette;
}

}  // namespace

Result<Bytes> EncodeGif(ConstImageView image, const GifWriteOptions& options) {
    if (image.Width() > kMaxSide || image.Height() > kMaxSide)
        return Error{fmt::format("GIF: a side of more than {} pixels", kMaxSide)};
    const PixelBuffer buffer = PixelBuffer::TryAllocate(image.Extent().Area());
    if (!buffer) return Error{LastError()};
    const std::span<std::uint8_t> indices(buffer.Data(), image.Extent().Area());
    return BuildFile(indices.size(), [&](ByteWriter& out) {
        const ColourTable palette = Quantise(image, options, indices);
        PutHeader(out, image.Extent(), palette, options.interlaced);
        PutPixels(out, image.Extent(), indices, options.interlaced);
        out.Text(";");
    });
}

}  // namespace lumo::imaging::codecs

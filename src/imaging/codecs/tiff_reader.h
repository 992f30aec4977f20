#pragma once

#include <string>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/tiff_file.h"
#include "imaging/codecs/tiff_header.h"
#include "imaging/codecs/tiff_samples.h"

namespace lumo::imaging::codecs {

/// The picture as strips or tiles of samples, and how to make RGB of them.
class TiffReader {
  public:
    TiffReader(const TiffFile& file, const TiffHeader& header) : file_(file), header_(header) {}

    /// Decides on the conversion; a text that begins with "0" if there is none.
    std::string Prepare();
    /// The picture; of a file that ends early, what FinishRows makes of it.
    Result<Decoded> Read(const DecodeLimits& limits);

  private:
    std::string ChooseType();
    std::string ChooseColours();
    void ChooseAlpha(int colourChannels);
    std::string ReadPalette();

    int Planes() const { return header_.planar ? usedChannels_ : 1; }
    bool IsDirect() const;
    std::string TryAllocateChunks(const DecodeLimits& limits);
    bool ReadChunk(std::uint32_t x, std::uint32_t y, int plane, std::uint8_t* target,
                   std::size_t bytes);
    std::uint32_t ReadCutStrip(std::uint32_t y, std::uint8_t* target, std::size_t rowBytes);
    std::uint32_t ReadPlanes(std::uint32_t x, std::uint32_t y, std::uint32_t rows);
    std::uint32_t ReadStripsInto(ImageView image);
    std::uint32_t ReadChunksInto(ImageView image);
    void ConvertRow(std::uint32_t rowInChunk, int count, std::uint8_t* rgb);
    void ConvertPaletteRow(const std::uint8_t* row, int count, std::uint8_t* rgb) const;

    const TiffFile& file_;
    const TiffHeader& header_;
    SampleType type_;
    PixelLayout layout_;
    bool signedLab_ = false;
    int usedChannels_ = 1;  // those that ConvertRow looks at
    std::vector<Rgb> palette_;
    bool cut_ = false;  // the last chunk that failed reaches behind the end of the file
    std::size_t chunkBytes_ = 0;
    std::size_t chunkRowBytes_ = 0;
    PixelBuffer chunks_;  // one strip or tile of each plane
    std::vector<std::uint8_t> pixels_;
};

}  // namespace lumo::imaging::codecs

#pragma once

// The merged picture of a PSD file: its channels one behind the other, each a plane of rows.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/pixel_buffer.h"

namespace lumo::imaging::codecs {

enum class PsdCoding : std::uint16_t { Raw = 0, PackBits = 1, Zip = 2, ZipPredicted = 3 };

struct PsdLayout {
    int channels = 0;  // in the file
    int used = 0;      // the first ones, those that make the colours
    Size size;
    int depth = 8;         // bits of a sample: 1, 8, 16, 32
    bool isLarge = false;  // a PSB file: row lengths of four bytes
    PsdCoding coding = PsdCoding::Raw;

    std::size_t RowBytes() const;
};

class PsdPlanes {
  public:
    /// `data` begins behind the word of the coding and must outlive the planes. Fails where memory
    /// is spent or the data end before the first row.
    static Result<PsdPlanes> Open(ByteView data, const PsdLayout& layout);

    /// One row of a used channel as stored, samples high byte first: a pointer into the file, or
    /// into `scratch` of RowBytes(). Null where the file ends before the row does.
    const std::uint8_t* Row(int channel, int y, std::uint8_t* scratch);

    /// True once a row held fewer samples than its codes were to give; the others are 0.
    bool AnyRowWasShort() const { return anyRowWasShort_; }

  private:
    explicit PsdPlanes(const PsdLayout& layout) : layout_(layout) {}
    bool ReadRowLengths(ByteView data);
    bool Inflate(ByteView data);
    void UndoPrediction();

    PsdLayout layout_;
    ByteView data_;
    std::vector<std::size_t> offsets_;  // PackBits: where each row begins, and the last one ends
    PixelBuffer inflated_;
    bool anyRowWasShort_ = false;
};

}  // namespace lumo::imaging::codecs

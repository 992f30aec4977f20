// The PSD writer: one merged picture of 8-bit RGB without layers.

#include <algorithm>
#include <array>
#include <vector>

#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/packbits.h"
#include "imaging/codecs/psd_colour.h"
#include "imaging/codecs/psd_planes.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr int kMaxSide = 30000;  // beyond that, other programs ask for the large form (PSB)
constexpr int kMaxLargeSide = 300000;
constexpr std::size_t kHeaderBytes = 26 + 3 * 4 + 2;
constexpr int kSampledRows = 64;

// The three channels, each row by row.
class Planes {
  public:
    explicit Planes(ConstImageView image) : image_(image) {
        for (auto& row : rows_) row.resize(static_cast<std::size_t>(image.Width()));
    }
    const std::vector<std::uint8_t>& Row(std::size_t channel, int y) {
        PlanesFromRgb(image_.Row(y), image_.Width(), rows_[0].data(), rows_[1].data(),
                      rows_[2].data());
        return rows_[channel];
    }

  private:
    ConstImageView image_;
    std::array<std::vector<std::uint8_t>, 3> rows_;
};

// Photographs do not get smaller: a sample of the rows saves packing all of them to find out.
bool SeemsToShrink(ConstImageView image) {
    Planes planes(image);
    std::vector<std::uint8_t> codes;
    std::size_t raw = 0;
    const int step = std::max(1, image.Height() / kSampledRows);
    for (int y = 0; y < image.Height(); y += step)
        for (std::size_t channel = 0; channel < 3; ++channel) {
            PackBits(planes.Row(channel, y), codes);
            raw += static_cast<std::size_t>(image.Width());
        }
    return codes.size() < raw;
}

struct PackedPlanes {
    std::vector<std::uint32_t> lengths;  // of each row
    Bytes codes;
};

PackedPlanes PackPlanes(ConstImageView image) {
    Planes planes(image);
    PackedPlanes packed;
    for (std::size_t channel = 0; channel < 3; ++channel)
        for (int y = 0; y < image.Height(); ++y) {
            const std::size_t before = packed.codes.size();
            PackBits(planes.Row(channel, y), packed.codes);
            packed.lengths.push_back(static_cast<std::uint32_t>(packed.codes.size() - before));
        }
    return packed;
}

}  // namespace

Result<Bytes> EncodePsd(ConstImageView image) {
    const int side = std::max(image.Width(), image.Height());
    if (side > kMaxLargeSide) return Error{"the picture is too large for a PSD file"};
    const bool isLarge = side > kMaxSide;
    PackedPlanes packed;
    if (SeemsToShrink(image)) packed = PackPlanes(image);
    const std::size_t table = packed.lengths.size() * (isLarge ? 4 : 2);
    const bool pack = !packed.lengths.empty() && table + packed.codes.size() < image.Bytes().size();

    ByteWriter out(kHeaderBytes + (pack ? table + packed.codes.size() : image.Bytes().size()));
    out.Text("8BPS");
    out.U16Be(isLarge ? 2 : 1);
    out.Zeros(6);
    out.U16Be(3);  // channels
    out.U32Be(static_cast<std::uint32_t>(image.Height()));
    out.U32Be(static_cast<std::uint32_t>(image.Width()));
    out.U16Be(8);
    out.U16Be(static_cast<unsigned>(PsdMode::Rgb));
    out.Zeros(4 + 4 + (isLarge ? 8 : 4));  // no colour table, no resources, no layers
    out.U16Be(static_cast<unsigned>(pack ? PsdCoding::PackBits : PsdCoding::Raw));
    if (pack) {
        for (const std::uint32_t length : packed.lengths)
            isLarge ? out.U32Be(length) : out.U16Be(length);
        out.Append(packed.codes);
        return out.Finish();
    }
    Planes planes(image);
    for (std::size_t channel = 0; channel < 3; ++channel)
        for (int y = 0; y < image.Height(); ++y) out.Append(planes.Row(channel, y));
    return out.Finish();
}

}  // namespace lumo::imaging::codecs

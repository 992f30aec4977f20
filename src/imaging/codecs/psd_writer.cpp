// The PSD writer: one merged picture of 8-bit RGB without layers.

#include <algorithm>
#include <array>
#include <new>
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

struct PackedPlanes {
    std::array<std::vector<std::uint32_t>, 3> lengths;  // of each row
    std::array<Bytes, 3> codes;

    std::size_t Size() const { return codes[0].size() + codes[1].size() + codes[2].size(); }
};

PackedPlanes PackRows(ConstImageView image, int step) {
    PackedPlanes packed;
    std::array<Bytes, 3> row;
    for (auto& plane : row) plane.resize(static_cast<std::size_t>(image.Width()));
    for (int y = 0; y < image.Height(); y += step) {
        PlanesFromRgb(image.Row(y), image.Width(), row[0].data(), row[1].data(), row[2].data());
        for (std::size_t channel = 0; channel < row.size(); ++channel) {
            Bytes& codes = packed.codes[channel];
            const std::size_t before = codes.size();
            PackBits(row[channel], codes);
            packed.lengths[channel].push_back(static_cast<std::uint32_t>(codes.size() - before));
        }
    }
    return packed;
}

// Photographs do not get smaller: a sample of the rows saves packing all of them to find out.
bool SeemsToShrink(ConstImageView image) {
    const int step = std::max(1, image.Height() / kSampledRows);
    const int rows = (image.Height() + step - 1) / step;
    return PackRows(image, step).Size() < static_cast<std::size_t>(rows) * image.Stride();
}

void WriteHeader(ByteWriter& out, Size size, bool isLarge, PsdCoding coding) {
    out.Text("8BPS");
    out.U16Be(isLarge ? 2 : 1);
    out.Zeros(6);
    out.U16Be(3);  // channels
    out.U32Be(static_cast<std::uint32_t>(size.height));
    out.U32Be(static_cast<std::uint32_t>(size.width));
    out.U16Be(8);
    out.U16Be(static_cast<unsigned>(PsdMode::Rgb));
    out.Zeros(4 + 4 + (isLarge ? 8 : 4));  // no colour table, no resources, no layers
    out.U16Be(static_cast<unsigned>(coding));
}

Result<Bytes> WriteRaw(ConstImageView image, bool isLarge) {
    return BuildFile(kHeaderBytes + image.Bytes().size(), [&](ByteWriter& out) {
        WriteHeader(out, image.Extent(), isLarge, PsdCoding::Raw);
        const std::size_t plane = image.Extent().Area();
        std::uint8_t* red = out.Room(3 * plane);
        for (int y = 0; y < image.Height(); ++y, red += image.Width())
            PlanesFromRgb(image.Row(y), image.Width(), red, red + plane, red + 2 * plane);
    });
}

Result<Bytes> WritePacked(const PackedPlanes& packed, Size size, bool isLarge, std::size_t table) {
    return BuildFile(kHeaderBytes + table + packed.Size(), [&](ByteWriter& out) {
        WriteHeader(out, size, isLarge, PsdCoding::PackBits);
        for (const auto& lengths : packed.lengths)
            for (const std::uint32_t length : lengths)
                isLarge ? out.U32Be(length) : out.U16Be(length);
        for (const Bytes& codes : packed.codes) out.Append(codes);
    });
}

}  // namespace

Result<Bytes> EncodePsd(ConstImageView image) {
    const int side = std::max(image.Width(), image.Height());
    if (side > kMaxLargeSide) return Error{"the picture is too large for a PSD file"};
    const bool isLarge = side > kMaxSide;
    try {
        if (SeemsToShrink(image)) {
            const PackedPlanes packed = PackRows(image, 1);
            const std::size_t table =
                static_cast<std::size_t>(image.Height()) * 3 * (isLarge ? 4 : 2);
            if (table + packed.Size() < image.Bytes().size())
                return WritePacked(packed, image.Extent(), isLarge, table);
        }
    } catch (const std::bad_alloc&) {
        return Error{"not enough memory"};
    }
    return WriteRaw(image, isLarge);
}

}  // namespace lumo::imaging::codecs

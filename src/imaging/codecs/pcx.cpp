// PCX files: 1 to 8 bits in one plane or spread over several, and 24 and 32 bits in planes.

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/decoders.h"
#include "imaging/codecs/pcx_lines.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr std::size_t kHeaderBytes = 128;
constexpr std::uint8_t kMaker = 10;
constexpr std::size_t kVgaPaletteBytes = 1 + 256 * 3;
constexpr std::uint8_t kVgaPaletteMark = 12;
constexpr int kMaxSide = 65534;  // the bytes of a line are even and a 16-bit number

struct Header {
    int version = 0;
    bool runLengths = false;
    int bits = 0;  // of one plane
    int planes = 0;
    int width = 0;
    int height = 0;
    bool isCgaScreen = false;  // drawn on 320 x 200 pixels of four colours
    std::array<std::uint8_t, 48> colours{};
    std::size_t lineBytes = 0;  // of one plane

    int Depth() const { return bits * planes; }
    bool IsIndexed() const { return Depth() <= 8; }
    /// Of all planes together.
    std::size_t WholeLineBytes() const { return lineBytes * static_cast<std::size_t>(planes); }
    PcxLines LinesOf(ByteView file) const {
        return {file.subspan(kHeaderBytes), WholeLineBytes(), runLengths};
    }
};

Result<Header> ReadHeader(ByteView file) {
    ByteReader in(file);
    Header header;
    const std::uint8_t maker = in.U8();
    header.version = in.U8();
    const std::uint8_t encoding = in.U8();
    header.bits = in.U8();
    const int left = in.U16Le(), top = in.U16Le(), right = in.U16Le(), bottom = in.U16Le();
    header.width = right - left + 1;
    header.height = bottom - top + 1;
    header.isCgaScreen = in.U32Le() == (320 | 200 << 16);  // the resolution of old writers
    const ByteView colours = in.Take(header.colours.size());
    std::copy(colours.begin(), colours.end(), header.colours.begin());
    in.Skip(1);
    header.planes = in.U8();
    header.lineBytes = in.U16Le();
    header.runLengths = encoding == 1;
    if (file.size() < kHeaderBytes || maker != kMaker || encoding > 1 || header.version > 5)
        return Error{"not a PCX file"};
    const bool oneSample =
        header.bits == 1 || header.bits == 2 || header.bits == 4 || header.bits == 8;
    const bool colourPlanes = header.bits == 8 && (header.planes == 3 || header.planes == 4);
    if (!oneSample || header.planes < 1 || !(header.IsIndexed() || colourPlanes))
        return Error{"a PCX of this depth is not supported"};
    if (header.width > 0 && header.lineBytes < PackedRowBytes(header.width, header.bits))
        return Error{"the PCX header is damaged"};
    return header;
}

Palette PaletteOf(ByteView colours, int count) {
    Palette palette;
    for (int i = 0; i < count; ++i) {
        const std::uint8_t* entry = colours.data() + std::ptrdiff_t{i} * 3;
        palette.Set(i, {entry[0], entry[1], entry[2]});
    }
    return palette;
}

// The sixteen colours of the adapters that the first versions of the format drew for.
Palette AdapterPalette() {
    Palette palette;
    for (int i = 0; i < 16; ++i) {
        const int base = i < 8 ? 0 : 0x55;
        const auto channel = [&](int bit) {
            return static_cast<std::uint8_t>(base + ((i & bit) != 0 ? 0xAA : 0));
        };
        palette.Set(i, {channel(4), channel(2), channel(1)});
    }
    palette.Set(6, {0xAA, 0x55, 0x00});  // brown instead of a dark yellow
    return palette;
}

// Four colours of that adapter, which had two palettes in two brightnesses and one free colour.
// PC Paintbrush leaves the free one in the top bits of the first byte, and the others in the
// second entry: more green than blue means green, red and brown, else cyan, magenta and grey.
std::optional<Palette> CgaPalette(const std::array<std::uint8_t, 48>& colours) {
    const auto isZero = [](std::uint8_t v) { return v == 0; };
    const bool secondIsSet = !std::all_of(colours.begin() + 3, colours.begin() + 6, isZero);
    const bool othersAreSet = !std::all_of(colours.begin() + 6, colours.begin() + 12, isZero);
    if (!secondIsSet || othersAreSet) return std::nullopt;
    const int green = colours[4];
    const int blue = colours[5];
    const int first = (green > blue ? 2 : 3) + (std::max(green, blue) > 200 ? 8 : 0);
    const Palette adapter = AdapterPalette();
    Palette palette;
    palette.Set(0, adapter.At(colours[0] >> 4));
    for (int i = 0; i < 3; ++i) palette.Set(i + 1, adapter.At(first + 2 * i));
    return palette;
}

Palette ReadPalette(const Header& header, ByteView file) {
    const bool stated = header.version == 2 || header.version >= 4;
    const auto& colours = header.colours;
    const auto isZero = [](std::uint8_t v) { return v == 0; };
    if (header.Depth() == 1) {
        // Old writers set no more than the first byte, and mean black and white all the same.
        const bool blank = std::all_of(colours.begin() + 1, colours.begin() + 6, isZero);
        const bool same = std::equal(colours.begin(), colours.begin() + 3, colours.begin() + 3);
        return stated && !blank && !same ? PaletteOf(colours, 2) : GreyPalette(2);
    }
    if (header.bits == 2 && header.planes == 1 && stated && header.isCgaScreen)
        if (const auto palette = CgaPalette(colours)) return *palette;
    if (header.Depth() <= 4) {
        const bool blank = std::all_of(colours.begin(), colours.end(), isZero);
        return stated && !blank ? PaletteOf(colours, 16) : AdapterPalette();
    }
    if (file.size() >= kHeaderBytes + kVgaPaletteBytes) {
        const ByteView tail = file.last(kVgaPaletteBytes);
        if (tail[0] == kVgaPaletteMark) return PaletteOf(tail.subspan(1), 256);
    }
    // Something may stand behind the palette: then the lines lead to it.
    PcxLines lines = header.LinesOf(file);
    for (int i = 0; i < header.height; ++i)
        if (lines.Next() == nullptr) return GreyPalette(256);
    const ByteView rest = file.subspan(kHeaderBytes + lines.Position());
    if (rest.size() >= kVgaPaletteBytes && rest[0] == kVgaPaletteMark)
        return PaletteOf(rest.subspan(1), 256);
    return GreyPalette(256);
}

// The indices of one line: each plane gives its bits, the first plane the lowest.
void JoinPlanes(const Header& header, const std::uint8_t* line, std::uint8_t* indices,
                std::uint8_t* scratch) {
    UnpackIndices(line, header.bits, header.width, indices);
    for (int plane = 1; plane < header.planes; ++plane) {
        line += header.lineBytes;
        UnpackIndices(line, header.bits, header.width, scratch);
        for (int x = 0; x < header.width; ++x)
            indices[x] = static_cast<std::uint8_t>(indices[x] | scratch[x] << plane * header.bits);
    }
}

int DecodeIndexed(const Header& header, ByteView file, ImageView image) {
    const Palette palette = ReadPalette(header, file);
    PcxLines lines = header.LinesOf(file);
    std::vector<std::uint8_t> indices(static_cast<std::size_t>(header.width));
    std::vector<std::uint8_t> scratch(indices.size());
    for (int y = 0; y < header.height; ++y) {
        const std::uint8_t* line = lines.Next();
        if (line == nullptr) return y;
        JoinPlanes(header, line, indices.data(), scratch.data());
        palette.Expand(indices.data(), header.width, image.Row(y));
    }
    return header.height;
}

// A fourth plane is coverage over white, unless it is 0 everywhere.
int DecodeColour(const Header& header, ByteView file, bool withCoverage, ImageView image) {
    PcxLines lines = header.LinesOf(file);
    const std::size_t lineBytes = header.lineBytes;
    bool anyCoverage = false;
    int y = 0;
    for (; y < header.height; ++y) {
        const std::uint8_t* line = lines.Next();
        if (line == nullptr) break;
        std::uint8_t* rgb = image.Row(y);
        RgbFromPlanes(line, line + lineBytes, line + 2 * lineBytes, header.width, rgb);
        if (!withCoverage) continue;
        for (int x = 0; x < header.width; ++x, rgb += 3) {
            const std::uint8_t coverage = line[3 * lineBytes + static_cast<std::size_t>(x)];
            anyCoverage |= coverage != 0;
            for (int c = 0; c < 3; ++c) rgb[c] = OverWhite(rgb[c], coverage);
        }
    }
    if (withCoverage && !anyCoverage) return DecodeColour(header, file, false, image);
    return y;
}

}  // namespace

Result<Decoded> DecodePcx(ByteView file, const DecodeOptions& options) {
    auto read = ReadHeader(file);
    if (!read) return Error{read.Message()};
    const Header& header = *read;
    if (std::string reason = RefuseSize(header.width, header.height, kChannels, options.limits);
        !reason.empty())
        return Error{reason};
    const std::size_t line = header.WholeLineBytes();
    const std::size_t firstLine =
        header.runLengths ? (line + kMaxPcxRun - 1) / kMaxPcxRun * 2 : line;
    if (file.size() - kHeaderBytes < firstLine) return Error{kNoRows};
    auto image = Image::TryCreate({header.width, header.height});
    if (!image) return Error{"not enough memory"};
    const int rows = header.IsIndexed()
                         ? DecodeIndexed(header, file, image->View())
                         : DecodeColour(header, file, header.planes == 4, image->View());
    return FinishRows(std::move(*image), Format::Pcx, header.Depth(), rows, true);
}

Result<Bytes> EncodePcx(ConstImageView image) {
    if (image.Width() > kMaxSide || image.Height() > kMaxSide)
        return Error{"the picture is too large for a PCX file"};
    const auto width = static_cast<std::size_t>(image.Width());
    const std::size_t lineBytes = width + width % 2;
    return BuildFile(kHeaderBytes + image.Bytes().size() / 4 * 5, [&](ByteWriter& out) {
        out.U8(kMaker);
        out.U8(5);  // version
        out.U8(1);  // run lengths
        out.U8(8);  // bits of a plane
        out.Zeros(4);
        out.U16Le(static_cast<unsigned>(image.Width() - 1));
        out.U16Le(static_cast<unsigned>(image.Height() - 1));
        out.U16Le(72);  // dots an inch
        out.U16Le(72);
        out.Zeros(48 + 1);
        out.U8(3);
        out.U16Le(static_cast<unsigned>(lineBytes));
        out.U16Le(1);  // colours, not shades of grey
        out.Zeros(kHeaderBytes - out.Size());
        std::array<std::vector<std::uint8_t>, 3> planes;
        for (auto& plane : planes) plane.resize(lineBytes);
        std::vector<std::uint8_t> codes;
        for (int y = 0; y < image.Height(); ++y) {
            PlanesFromRgb(image.Row(y), image.Width(), planes[0].data(), planes[1].data(),
                          planes[2].data());
            for (const auto& plane : planes) out.Append(PcxRuns(plane, codes));
        }
    });
}

}  // namespace lumo::imaging::codecs

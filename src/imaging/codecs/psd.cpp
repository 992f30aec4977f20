// PSD and PSB files: the merged picture and what is needed to show it. Layers are passed over.

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <vector>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/decoders.h"
#include "imaging/codecs/lab.h"
#include "imaging/codecs/psd_colour.h"
#include "imaging/codecs/psd_planes.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

constexpr int kMaxChannels = 64;  // the format allows 56, some files have more
constexpr std::uint16_t kDisplayInfoOld = 1007;
constexpr std::uint16_t kTransparentIndex = 1047;
constexpr std::uint16_t kVersionInfo = 1057;
constexpr std::uint16_t kDisplayInfo = 1077;

using Resources = std::map<std::uint16_t, ByteView>;

struct Document {
    PsdLayout layout;
    PsdMode mode = PsdMode::Rgb;
    ByteView colourData;     // the colour table of an indexed picture
    int colourChannels = 0;  // the first ones; coverage may stand behind them
    Resources resources;
    ByteView pixels;
};

int ColourChannels(PsdMode mode, int channels) {
    switch (mode) {
        case PsdMode::Bitmap:
        case PsdMode::Grey:
        case PsdMode::Indexed:
        case PsdMode::Duotone:
            return 1;
        case PsdMode::Rgb:
        case PsdMode::Lab:
            return 3;
        case PsdMode::Cmyk:
            return 4;
        case PsdMode::Multichannel:
            return channels;
    }
    return 0;  // no mode that is known
}

bool DepthFits(PsdMode mode, int depth) {
    switch (mode) {
        case PsdMode::Bitmap:
            return depth == 1;
        case PsdMode::Indexed:
            return depth == 8;
        case PsdMode::Lab:
            return depth == 8 || depth == 16;
        default:
            return depth == 8 || depth == 16 || depth == 32;
    }
}

Resources ReadResources(ByteView section) {
    Resources resources;
    ByteReader in(section);
    while (in.Left() >= 12) {
        in.Skip(4);  // a signature, "8BIM" or one of its kin
        const std::uint16_t id = in.U16Be();
        const std::size_t nameBytes = in.U8();
        in.Skip(nameBytes + (nameBytes + 1) % 2);
        const std::uint32_t bytes = in.U32Be();
        const ByteView content = in.Take(bytes);
        if (in.Failed()) break;
        if (bytes % 2 != 0) in.Skip(1);
        resources.emplace(id, content);
    }
    return resources;
}

std::optional<std::uint16_t> FirstWord(const Resources& resources, std::uint16_t id) {
    const auto found = resources.find(id);
    if (found == resources.end() || found->second.size() < 2) return std::nullopt;
    return ByteReader(found->second).U16Be();
}

// The table is three planes of 256 bytes. A transparent entry lies on white.
Palette ReadPalette(const Document& document) {
    Palette palette;
    const ByteView table = document.colourData;
    if (document.mode != PsdMode::Indexed || table.size() < 768) return palette;
    for (int i = 0; i < 256; ++i) {
        const auto at = static_cast<std::size_t>(i);
        palette.Set(i, {table[at], table[256 + at], table[512 + at]});
    }
    const auto transparent = FirstWord(document.resources, kTransparentIndex);
    if (transparent && *transparent < 256) palette.Set(*transparent, {255, 255, 255});
    return palette;
}

// A colour of a display record: its space and four numbers.
std::optional<Rgb> ReadInk(ByteReader& in) {
    enum Space : std::uint16_t { kRgb = 0, kCmyk = 2, kLab = 7, kGrey = 8 };
    const std::uint16_t space = in.U16Be();
    std::array<std::uint16_t, 4> v{};
    for (auto& number : v) number = in.U16Be();
    const auto signedOf = [](std::uint16_t n) { return static_cast<std::int16_t>(n) / 100.0; };
    switch (space) {
        case kRgb:
            return Rgb{Round16To8(v[0]), Round16To8(v[1]), Round16To8(v[2])};
        case kCmyk: {  // 65535 is no ink
            const auto ink = [&](int i) {
                return static_cast<std::uint8_t>(255 - Round16To8(v[static_cast<std::size_t>(i)]));
            };
            return CmykToRgb(ink(0), ink(1), ink(2), ink(3));
        }
        case kLab:
            return LabToRgb(v[0] / 100.0, signedOf(v[1]), signedOf(v[2]));
        case kGrey: {  // 10000 is full ink
            const auto grey =
                static_cast<std::uint8_t>(255 - std::min<int>(v[0], 10000) * 255 / 10000);
            return Rgb{grey, grey, grey};
        }
        default:
            return std::nullopt;
    }
}

// The inks of a multichannel picture as its display records name them; without records that can
// be read cyan, magenta, yellow and black in this order.
std::vector<Rgb> ReadInks(const Document& document) {
    std::vector<Rgb> inks;
    if (document.mode != PsdMode::Multichannel) return inks;
    const auto count = static_cast<std::size_t>(document.layout.channels);
    for (const std::uint16_t id : {kDisplayInfo, kDisplayInfoOld}) {
        const auto found = document.resources.find(id);
        if (found == document.resources.end()) continue;
        ByteReader in(found->second);
        if (id == kDisplayInfo) in.Skip(4);  // version
        inks.clear();
        while (inks.size() < count) {
            const auto ink = ReadInk(in);
            in.Skip(id == kDisplayInfo ? 3 : 4);  // opacity and kind
            if (in.Failed() || !ink) break;
            inks.push_back(*ink);
        }
        if (inks.size() == count) return inks;
    }
    const std::vector<Rgb> standard{{0, 255, 255}, {255, 0, 255}, {255, 255, 0}, {0, 0, 0}};
    inks.assign(standard.begin(), standard.begin() + static_cast<long>(std::min<std::size_t>(
                                                         count, standard.size())));
    return inks;
}

Result<Document> ReadDocument(ByteView file) {
    ByteReader in(file);
    Document document;
    PsdLayout& layout = document.layout;
    const bool isPsd = in.U32Be() == 0x38425053;  // "8BPS"
    const int version = in.U16Be();
    in.Skip(6);
    layout.channels = in.U16Be();
    const std::uint32_t height = in.U32Be();
    const std::uint32_t width = in.U32Be();
    layout.depth = in.U16Be();
    document.mode = static_cast<PsdMode>(in.U16Be());
    layout.isLarge = version == 2;
    if (in.Failed() || !isPsd || version < 1 || version > 2) return Error{"not a PSD file"};
    layout.size = {static_cast<int>(std::min<std::uint32_t>(width, 1 << 30)),
                   static_cast<int>(std::min<std::uint32_t>(height, 1 << 30))};
    document.colourChannels = ColourChannels(document.mode, layout.channels);
    if (document.colourChannels == 0 || !DepthFits(document.mode, layout.depth))
        return Error{fmt::format("a PSD of colour mode {} with {} bits is not supported",
                                 static_cast<int>(document.mode), layout.depth)};
    if (layout.channels < document.colourChannels || layout.channels > kMaxChannels)
        return Error{"the PSD header is damaged"};

    document.colourData = in.Take(in.U32Be());
    document.resources = ReadResources(in.Take(in.U32Be()));
    ByteReader layers(in.Take(layout.isLarge ? in.U64Be() : in.U32Be()));
    layers.Skip(layout.isLarge ? 8 : 4);
    const bool hasCoverage = static_cast<std::int16_t>(layers.U16Be()) < 0;  // a count of layers
    const std::uint16_t coding = in.U16Be();
    if (in.Failed()) return Error{"the PSD file ends before its merged picture"};
    if (coding > static_cast<std::uint16_t>(PsdCoding::ZipPredicted))
        return Error{fmt::format("a PSD with coding {} is not supported", coding)};
    layout.coding = static_cast<PsdCoding>(coding);
    if (document.mode == PsdMode::Multichannel)
        document.colourChannels = static_cast<int>(ReadInks(document).size());
    const bool canBeLaidOverWhite =
        (document.mode == PsdMode::Grey || document.mode == PsdMode::Rgb) && layout.depth <= 16;
    const bool usesCoverage =
        hasCoverage && canBeLaidOverWhite && layout.channels > document.colourChannels;
    layout.used = document.colourChannels + (usesCoverage ? 1 : 0);
    document.pixels = in.Take(in.Left());
    return document;
}

// The stored rows of the colours, and of the coverage behind them.
class RowReader {
  public:
    RowReader(const PsdLayout& layout, PsdPlanes& planes)
        : planes_(planes), scratch_(static_cast<std::size_t>(layout.used)) {
        if (layout.coding == PsdCoding::PackBits)
            for (auto& row : scratch_) row.resize(layout.RowBytes());
    }
    const std::uint8_t* Read(int channel, int y) {
        return planes_.Row(channel, y, scratch_[static_cast<std::size_t>(channel)].data());
    }

  private:
    PsdPlanes& planes_;
    std::vector<std::vector<std::uint8_t>> scratch_;
};

int ConvertRows(const Document& document, RowReader& reader, PsdRowConverter& converter,
                ImageView image) {
    std::vector<const std::uint8_t*> rows(static_cast<std::size_t>(document.colourChannels));
    for (int y = 0; y < image.Height(); ++y) {
        for (int i = 0; i < document.colourChannels; ++i) {
            rows[static_cast<std::size_t>(i)] = reader.Read(i, y);
            if (rows[static_cast<std::size_t>(i)] == nullptr) return y;
        }
        converter.Convert(rows, image.Row(y));
    }
    return image.Height();
}

// A colour that is blended with white is at least as bright as the white that shows through it.
bool IsBlended(const std::uint8_t* rgb, const std::uint8_t* coverage, int width) {
    constexpr int kRounding = 2;
    for (int x = 0; x < width; ++x, rgb += 3)
        if (std::min({rgb[0], rgb[1], rgb[2]}) + coverage[x] < 255 - kRounding) return false;
    return true;
}

// The format asks for a merged picture that is blended with white, and for its coverage only
// beside it. Some writers store the colours as they were; those are laid over white here.
void LayOverWhite(const Document& document, RowReader& reader, const PsdRowConverter& converter,
                  int rows, ImageView image) {
    std::vector<std::uint8_t> scratch;
    const auto coverageOf = [&](int y) {
        const std::uint8_t* row = reader.Read(document.colourChannels, y);
        return row == nullptr ? nullptr : converter.Samples8(row, scratch);
    };
    bool blended = true;
    for (int y = 0; y < rows && blended; ++y) {
        const std::uint8_t* coverage = coverageOf(y);
        if (coverage == nullptr) return;
        blended = IsBlended(image.Row(y), coverage, image.Width());
    }
    if (blended) return;
    for (int y = 0; y < rows; ++y) {
        const std::uint8_t* coverage = coverageOf(y);
        if (coverage == nullptr) return;
        std::uint8_t* rgb = image.Row(y);
        for (int x = 0; x < image.Width(); ++x)
            for (int c = 0; c < 3; ++c, ++rgb) *rgb = OverWhite(*rgb, coverage[x]);
    }
}

// A file that was saved for size holds no picture behind its layers that is worth showing.
bool IsWithoutMergedPicture(const Document& document) {
    const auto found = document.resources.find(kVersionInfo);
    return found != document.resources.end() && found->second.size() >= 5 && found->second[4] == 0;
}

}  // namespace

Result<Decoded> DecodePsd(ByteView file, const DecodeOptions& options) {
    auto read = ReadDocument(file);
    if (!read) return Error{read.Message()};
    const Document& document = *read;
    const PsdLayout& layout = document.layout;
    const bool inflates =
        layout.coding == PsdCoding::Zip || layout.coding == PsdCoding::ZipPredicted;
    const int heldBytes = kChannels + (inflates ? (layout.used * layout.depth + 7) / 8 : 0);
    if (std::string reason =
            RefuseSize(layout.size.width, layout.size.height, heldBytes, options.limits);
        !reason.empty())
        return Error{reason};
    auto planes = PsdPlanes::Open(document.pixels, layout);
    if (!planes) return Error{planes.Message()};
    auto image = Image::TryCreate(layout.size);
    if (!image) return Error{"not enough memory"};
    RowReader reader(layout, *planes);
    PsdRowConverter converter(document.mode, layout.depth, layout.size.width, ReadPalette(document),
                              ReadInks(document));
    const int rows = ConvertRows(document, reader, converter, image->View());
    if (layout.used > document.colourChannels)
        LayOverWhite(document, reader, converter, rows, image->View());
    auto result =
        FinishRows(std::move(*image), Format::Psd, layout.depth * layout.channels, rows, true);
    if (!result || !result->warning.empty()) return result;
    if (planes->AnyRowWasShort())
        result->warning = "the file is damaged: rows of pixels are too short";
    else if (IsWithoutMergedPicture(document))
        result->warning = "the file was saved without its merged picture; layers are not read";
    return result;
}

}  // namespace lumo::imaging::codecs

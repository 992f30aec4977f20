#include "io/writer_preferences.h"

#include <array>

#include "script/names.h"

namespace lumo::io {
namespace {

using namespace script;
using engine::CLumoscriptView;
using engine::Outcome;

enum Field {
    kTifDpi,
    kJpgDpi,
    kJpgQuality,
    kJpgEncoding,
    kJpgSmoothing,
    kPngDotsPerMetre = 8,  // the three before it are not read
    kPngCopyText,
    kPngInterlaced,
    kPngAddText,
    kPngFirstKey,
    kPngFirstText = 16,
    kTifCompression = 20,
    kGifPalette,
    kGifDither,
    kGifInterlaced,
    kFieldCount
};

constexpr std::string_view kEncodings[] = {"Standard ", "Progressive"};
constexpr std::string_view kCompressions[] = {"No compression", "Compress (LZW)",
                                              "Compress (Macintosh PackBits)"};
constexpr std::string_view kStoredCompressions[] = {"1", "5", "8"};
constexpr std::string_view kPalettes[] = {
    "Standard palette (websafe)", "Optimized palette (median cut)", "Optimized palette (octree)"};

constexpr FieldSpec Key(std::string_view label) {
    return Text(label, "").Quoted().MaxLength(40);
}
constexpr FieldSpec Words(std::string_view label) {
    return Text(label, "").Quoted();
}

constexpr std::array kFields{
    Text("TIF DPI", "300").MaxLength(10),
    Text("JPG DPI", "72").MaxLength(10),
    Integer("Quality 0-100", "85").Clamp(0, 100),
    Choice("Encoding", "0", kEncodings),
    Integer("Smoothing 0-100", "0").Clamp(0, 100),
    Reserved(""),
    Reserved(""),
    Reserved(""),
    Text("PNG DPM", "11811").MaxLength(10),
    Flag("Copy text fields from input file", "0"),
    Flag("Interlaced (Adam7)", "0"),
    Flag("Add text fields", "0"),
    Key("Key 1"),
    Key("Key 2"),
    Key("Key 3"),
    Key("Key 4"),
    Words("Text 1"),
    Words("Text 2"),
    Words("Text 3"),
    Words("Text 4"),
    Choice("TIF compression", "1", kCompressions, kStoredCompressions),
    Choice("GIF palette", "1", kPalettes),
    Flag("Floyd-Steinberg 4 value dither (else 2 value)", "0"),
    Flag("GIF interlaced", "0"),
};
static_assert(kFields.size() == kFieldCount);

constexpr DialogSpec kDialog{.title = "Writer preferences", .helpTopic = "Writeroptions"};

constexpr std::array kPanel{Value(kJpgQuality, "JPG quality = "), Value(kJpgDpi, "JPG DPI = "),
                            Value(kTifDpi, "TIF DPI = "), Value(kPngDotsPerMetre, "PNG DPM = ")};

int TifCompression(const Fields& fields) {
    if (fields.Is(kTifCompression, "5")) return 5;
    return fields.Is(kTifCompression, "8") ? 32773 : 1;
}

int GifPalette(const Fields& fields) {
    if (fields.Is(kGifPalette, "1")) return 1;
    return fields.Is(kGifPalette, "2") ? 2 : 0;
}

Outcome RunWriterPreferences(CLumoscriptView& view, const Fields& fields) {
    using engine::RunMode;
    if (view.run.mode == RunMode::OneCommand || view.run.mode == RunMode::WholeScript)
        return Outcome::Succeeded;
    settings::WriterSettings& writer = view.settings.writer;
    writer.tifDpi = fields.Text(kTifDpi);
    writer.jpgDpi = fields.Text(kJpgDpi);
    writer.jpgQuality = fields.Text(kJpgQuality);
    writer.jpgEncoding = fields.Text(kJpgEncoding);
    writer.jpgSmoothing = fields.Text(kJpgSmoothing);
    writer.pngDotsPerMetre = fields.Text(kPngDotsPerMetre);
    writer.pngCopyText = fields.Is(kPngCopyText, "1");
    writer.pngInterlaced = fields.Is(kPngInterlaced, "1");
    writer.pngAddText = fields.Is(kPngAddText, "1");
    for (std::size_t i = 0; i < writer.pngKeys.size(); ++i) {
        writer.pngKeys[i] = fields.Text(kPngFirstKey + static_cast<int>(i));
        writer.pngTexts[i] = fields.Text(kPngFirstText + static_cast<int>(i));
    }
    writer.tifCompression = TifCompression(fields);
    writer.gifPalette = GifPalette(fields);
    writer.gifDither = fields.Is(kGifDither, "1");
    writer.gifInterlaced = fields.Is(kGifInterlaced, "1");
    return Outcome::Succeeded;
}

}  // namespace

const engine::Command kWriterPreferencesCommand{.spec = {.name = names::kWriterPreferences,
                                                         .fields = kFields,
                                                         .panel = kPanel,
                                                         .dialog = &kDialog},
                                                .opening = engine::openings::kNoSkipNoImage,
                                                .run = RunWriterPreferences};

}  // namespace lumo::io

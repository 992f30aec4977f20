#include "io/output.h"

#include <algorithm>
#include <array>
#include <optional>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/stored_metadata.h"
#include "imaging/last_error.h"
#include "io/run_logs.h"
#include "platform/files.h"
#include "script/fields.h"
#include "script/numbers.h"

namespace lumo::io {
namespace {

namespace codecs = imaging::codecs;
using codecs::Format;
using engine::CLumoscriptView;
using imaging::ConstImageView;
using platform::Result;
using script::ParseInteger;

struct Extension {
    std::string_view text;
    Format format;
};
constexpr std::array kExtensions{
    Extension{".JPG", Format::Jpeg}, Extension{".PNG", Format::Png}, Extension{".PSD", Format::Psd},
    Extension{".TIF", Format::Tiff}, Extension{".BMP", Format::Bmp}, Extension{".TGA", Format::Tga},
    Extension{".PCX", Format::Pcx},  Extension{".WMF", Format::Wmf}, Extension{".EMF", Format::Emf},
    Extension{".APM", Format::Apm},  Extension{".GIF", Format::Gif},
};

char UpperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

Format FormatOfPath(std::string_view path) {
    if (path.size() < 4) return Format::Unknown;
    const std::string_view lastFour = path.substr(path.size() - 4);
    for (const Extension& extension : kExtensions)
        if (std::equal(lastFour.begin(), lastFour.end(), extension.text.begin(),
                       [](char a, char b) { return UpperCase(a) == b; }))
            return extension.format;
    return Format::Unknown;
}

codecs::JpegWriteOptions JpegOptions(const CLumoscriptView& view) {
    const settings::WriterSettings& writer = view.settings.writer;
    return {.quality = ParseInteger(writer.jpgQuality),
            .smoothing = ParseInteger(writer.jpgSmoothing),
            .progressive = ParseInteger(writer.jpgEncoding) == 1,
            .dotsPerInch = static_cast<double>(ParseInteger(writer.jpgDpi)),
            .markers = codecs::MarkersForNewPicture(view.metadata.jpgOutput)};
}

/// Fills the store of texts for the output: those of the input, then those of the settings.
void CollectPngTexts(CLumoscriptView& view) {
    const settings::WriterSettings& writer = view.settings.writer;
    engine::TextPairs& texts = view.metadata.pngOutput;
    texts.clear();
    if (writer.pngCopyText) texts = view.metadata.pngInput;
    if (!writer.pngAddText) return;
    for (std::size_t i = 0; i < writer.pngKeys.size(); ++i)
        if (!writer.pngKeys[i].empty()) texts.emplace_back(writer.pngKeys[i], writer.pngTexts[i]);
}

codecs::PngWriteOptions PngOptions(CLumoscriptView& view) {
    CollectPngTexts(view);
    const settings::WriterSettings& writer = view.settings.writer;
    return {.gamma = writer.pngGamma == 0 ? 0 : 1 / writer.pngGamma,
            .dotsPerMetre = static_cast<double>(ParseInteger(writer.pngDotsPerMetre)),
            .interlaced = writer.pngInterlaced,
            .texts = view.metadata.pngOutput};
}

codecs::TiffWriteOptions TiffOptions(const CLumoscriptView& view) {
    const settings::WriterSettings& writer = view.settings.writer;
    const auto dpi = static_cast<double>(ParseInteger(writer.tifDpi));
    switch (writer.tifCompression) {
        case 5:
            return {codecs::TiffCompression::Lzw, dpi};
        case 32773:
            return {codecs::TiffCompression::PackBits, dpi};
        default:
            return {codecs::TiffCompression::None, dpi};
    }
}

codecs::GifWriteOptions GifOptions(const CLumoscriptView& view) {
    const settings::WriterSettings& writer = view.settings.writer;
    const auto palette = static_cast<codecs::GifPalette>(std::clamp(writer.gifPalette, 0, 2));
    return {palette, writer.gifDither, writer.gifInterlaced};
}

Result<codecs::Bytes> Encode(CLumoscriptView& view, ConstImageView picture, Format format) {
    switch (format) {
        case Format::Jpeg:
            return codecs::EncodeJpeg(picture, JpegOptions(view));
        case Format::Png:
            return codecs::EncodePng(picture, PngOptions(view));
        case Format::Tiff:
            return codecs::EncodeTiff(picture, TiffOptions(view));
        case Format::Gif:
            return codecs::EncodeGif(picture, GifOptions(view));
        case Format::Bmp:
            return codecs::EncodeBmp(picture);
        case Format::Pcx:
            return codecs::EncodePcx(picture);
        case Format::Tga:
            return codecs::EncodeTga(picture);
        case Format::Psd:
            return codecs::EncodePsd(picture);
        case Format::Wmf:
        case Format::Emf:
        case Format::Apm:
            return codecs::EncodeMetafile(picture, format);
        case Format::Raw:
        case Format::Unknown:
            break;
    }
    return platform::Error{"no writer for this extension"};
}

enum class Written { Yes, No, NotOpened };

Written WritePicture(CLumoscriptView& view, ConstImageView picture, const std::string& path) {
    const auto failed = [](const std::string& reason) {
        imaging::SetLastError(reason);
        return Written::No;
    };
    // A zero byte would cut the path short on its way to the file system.
    if (path.find('\0') != std::string::npos) return Written::NotOpened;
    auto file = platform::AtomicFile::Create(path);
    if (!file) {
        imaging::SetLastError(file.Message());
        return Written::NotOpened;
    }
    const Format format = FormatOfPath(path);
    const bool hasWriter = format != Format::Unknown;
    if (!hasWriter && platform::GetFileStatus(path)) return failed("no writer for this extension");

    Result<codecs::Bytes> bytes = hasWriter ? Encode(view, picture, format) : codecs::Bytes{};
    if (!bytes) return failed(bytes.Message());
    if (auto status = file->Write(*bytes); !status) return failed(status.Message());
    if (auto status = file->Commit(platform::Durability::Rename); !status)
        return failed(status.Message());
    return hasWriter ? Written::Yes : Written::No;
}

}  // namespace

bool OutputFolderLeftOpen(std::string_view params) {
    const script::Fields fields = script::ParseParams(params);
    const bool noFolder =
        fields.IsEmpty(output::kFolder) && fields.Is(output::kOriginalFolder, "0");
    return fields.Is(output::kSkip, "0") && (fields.Is(output::kAtRunTime, "1") || noFolder);
}

int WriteMainImage(CLumoscriptView& view, const std::string& path) {
    const Written written = WritePicture(view, view.working.main.View(), path);
    // The logs on disk are those of the last run; a test on the sample leaves them alone.
    if (written == Written::NotOpened && view.run.batchRunning) {
        LogBlock(view, "Save file", "File write", "Unable to open file.");
        SaveLogs(view);
    }
    return written == Written::Yes ? 1 : 0;
}

int WriteSampleImage(CLumoscriptView& view, ConstImageView picture, const std::string& path) {
    return WritePicture(view, picture, path) == Written::Yes ? 1 : 0;
}

}  // namespace lumo::io

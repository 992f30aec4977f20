#include "ui/preference_pages.h"

#include <array>
#include <charconv>
#include <cmath>
#include <ctime>

#include "platform/environment.h"
#include "platform/paths.h"
#include "script/numbers.h"

namespace lumo::ui {
namespace {

using namespace script;
using settings::Settings;

std::string OnOff(bool on) {
    return on ? "1" : "0";
}

/// The shortest text that reads back the same.
std::string Decimal(double value) {
    std::array<char, 32> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

// ---- General ------------------------------------------------------------------------------------

namespace general {
enum Field { kWarnOfFolder, kWarnOfName, kShowEach, kAutoPad, kDateFormat, kFirstDigit };
constexpr int kDigits = 4;

constexpr std::array kFields{
    Flag("Warn before creating, if output folder does not exist.", "0"),
    Flag("Warn if possible output name collision", "1"),
    Flag("Display current image during batch processing (slower)", "0"),
    Text("Zero padding when using 'AutoNumeric numbering' for output name.", "")
        .Quoted()
        .MaxLength(20),
    Text("Date format", "").Quoted().MaxLength(10),
    Text("", "").MaxLength(1),
    Text("", "").MaxLength(1),
    Text("", "").MaxLength(1),
    Text("", "").MaxLength(1)};
constexpr auto kDigitFields = FieldsFrom<kDigits>(kFirstDigit);
constexpr std::array kGroups{FieldGroup{
    .title = "When 'Incremental output count numbering'  is used on output name, this sets the "
             "beginning count",
    .fields = kDigitFields,
    .columns = kDigits}};
constexpr DialogSpec kDialog{.groups = kGroups};

Fields Read(const Settings& settings) {
    Fields fields;
    fields.Set(kWarnOfFolder, OnOff(settings.warnBeforeMakingFolder));
    fields.Set(kWarnOfName, OnOff(settings.warnOfNameCollision));
    fields.Set(kShowEach, OnOff(settings.showEachImage));
    fields.Set(kAutoPad, settings.autoPad);
    fields.Set(kDateFormat, settings.dateFormat);
    for (std::size_t i = 0; i < kDigits && i < settings.incrementalStart.size(); ++i)
        fields.Set(kFirstDigit + static_cast<int>(i), std::string(1, settings.incrementalStart[i]));
    return fields;
}

void Write(Settings& settings, const Fields& fields) {
    settings.warnBeforeMakingFolder = fields.Is(kWarnOfFolder, "1");
    settings.warnOfNameCollision = fields.Is(kWarnOfName, "1");
    settings.showEachImage = fields.Is(kShowEach, "1");
    settings.autoPad = fields.Text(kAutoPad);
    settings.dateFormat = fields.Text(kDateFormat);
    settings.incrementalStart.clear();
    for (int i = 0; i < kDigits; ++i) settings.incrementalStart += fields.Text(kFirstDigit + i);
}

std::string Note(const Fields& fields) {
    return "Date: " + platform::FormatTime(fields.Text(kDateFormat), std::time(nullptr));
}
}  // namespace general

namespace folders {
struct Row {
    std::string settings::Folders::* folder;
    std::string_view label, chooserTitle;
    int maxLength = 300;
};
constexpr std::array kRows{
    Row{&settings::Folders::scripts, "Batch scripts", "Choose folder for default (Batch scripts)",
        200},
    Row{&settings::Folders::lists, "Batch image lists",
        "Choose folder for default (Batch image lists)"},
    Row{&settings::Folders::masks, "Masks", "Choose folder for default (masks)"},
    Row{&settings::Folders::customFilters, "Custom Filters",
        "Choose folder for default location of Custom Filters"},
    Row{&settings::Folders::logs, "Logs", "Choose folder for default (logs)"},
    Row{&settings::Folders::photos, "Images", "Choose folder for default (images)"},
    Row{&settings::Folders::overlays, "Overlay images",
        "Choose folder for default (overlay images)"},
    Row{&settings::Folders::temp, "Temp", "Choose folder for use as the 'Temp' folder"},
    Row{&settings::Folders::subroutines, "Subroutines", "Choose default folder for subroutines"},
    Row{&settings::Folders::frames, "Frames", "Choose folder for default (Frames)"}};

constexpr auto kFields = [] {
    std::array<FieldSpec, kRows.size()> fields;
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i] = Folder(kRows[i].label, "").MaxLength(kRows[i].maxLength);
    return fields;
}();
constexpr auto kTitles = [] {
    std::array<std::string_view, kRows.size()> titles;
    for (std::size_t i = 0; i < titles.size(); ++i) titles[i] = kRows[i].chooserTitle;
    return titles;
}();

Fields Read(const Settings& settings) {
    Fields fields;
    for (std::size_t i = 0; i < kRows.size(); ++i)
        fields.Set(static_cast<int>(i), settings.folders.*kRows[i].folder);
    return fields;
}

/// An emptied edit leaves the folder as it was: no log or list lies nowhere.
void Write(Settings& settings, const Fields& fields) {
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        std::string& folder = settings.folders.*kRows[i].folder;
        const std::string& stated = fields.Text(static_cast<int>(i));
        if (stated.empty() || stated == folder) continue;
        std::string native =
            platform::ParsePath(stated, settings.installFolder, settings.folders.temp);
        while (native.size() > 1 && native.ends_with('/')) native.pop_back();
        folder = std::move(native);
    }
}
}  // namespace folders

namespace logs {
struct Row {
    bool settings::LogSettings::* setting;
    std::string_view label;
};
constexpr std::array kRows{Row{&settings::LogSettings::errorLog, "Error log to disk (Error.log)"},
                           Row{&settings::LogSettings::batchLog, "Batch log to disk (Batch.log)"},
                           Row{&settings::LogSettings::header, "Header (list of script commands)"},
                           Row{&settings::LogSettings::inputName, "Input file path"},
                           Row{&settings::LogSettings::inputSize, "Input image size"},
                           Row{&settings::LogSettings::outputName, "Output file path"},
                           Row{&settings::LogSettings::outputSize, "Output image size"},
                           Row{&settings::LogSettings::errors, "Errors in command execution"}};
constexpr auto kFields = [] {
    std::array<FieldSpec, kRows.size()> fields;
    for (std::size_t i = 0; i < fields.size(); ++i) fields[i] = Flag(kRows[i].label, "0");
    return fields;
}();

Fields Read(const Settings& settings) {
    Fields fields;
    for (std::size_t i = 0; i < kRows.size(); ++i)
        fields.Set(static_cast<int>(i), OnOff(settings.logs.*kRows[i].setting));
    return fields;
}

void Write(Settings& settings, const Fields& fields) {
    for (std::size_t i = 0; i < kRows.size(); ++i)
        settings.logs.*kRows[i].setting = fields.Is(static_cast<int>(i), "1");
}
}  // namespace logs

// ---- Writer -------------------------------------------------------------------------------------

namespace tif {
enum Field { kDpi, kCompression };
constexpr std::string_view kNames[] = {"No compression", "Compress (LZW)",
                                       "Compress (Macintosh PackBits)"};
constexpr std::string_view kValues[] = {"1", "5", "32773"};
constexpr std::array kFields{Integer("DPI", "300").MaxLength(10),
                             Choice("Compression", "1", kNames, kValues)};

Fields Read(const Settings& settings) {
    Fields fields;
    fields.Set(kDpi, settings.writer.tifDpi);
    fields.Set(kCompression, std::to_string(settings.writer.tifCompression));
    return fields;
}
void Write(Settings& settings, const Fields& fields) {
    settings.writer.tifDpi = fields.Text(kDpi);
    settings.writer.tifCompression = fields.Integer(kCompression);
}
}  // namespace tif

namespace jpg {
enum Field { kDpi, kEncoding, kQuality, kSmoothing };
constexpr std::string_view kNames[] = {"Standard ", "Progressive"};
constexpr std::array kFields{Integer("DPI", "72").MaxLength(10), Choice("Encoding", "0", kNames),
                             Integer("Quality 0-100", "85").Clamp(0, 100).MaxLength(10),
                             Integer("Smoothing 0-100", "0").Clamp(0, 100).MaxLength(10)};
constexpr std::array kSecond{static_cast<int>(kQuality)};
constexpr std::array kThird{static_cast<int>(kSmoothing)};
constexpr std::array kGroups{FieldGroup{.title = "Quality/compression", .fields = kSecond},
                             FieldGroup{.title = "Additional compression", .fields = kThird}};
constexpr DialogSpec kDialog{.groups = kGroups};

Fields Read(const Settings& settings) {
    Fields fields;
    fields.Set(kDpi, settings.writer.jpgDpi);
    fields.Set(kEncoding, settings.writer.jpgEncoding);
    fields.Set(kQuality, settings.writer.jpgQuality);
    fields.Set(kSmoothing, settings.writer.jpgSmoothing);
    return fields;
}
void Write(Settings& settings, const Fields& fields) {
    settings.writer.jpgDpi = fields.Text(kDpi);
    settings.writer.jpgEncoding = fields.Text(kEncoding);
    settings.writer.jpgQuality = fields.Text(kQuality);
    settings.writer.jpgSmoothing = fields.Text(kSmoothing);
}
}  // namespace jpg

namespace gif {
enum Field { kInterlaced, kDither, kPalette };
constexpr std::string_view kNames[] = {
    "Standard palette (websafe)", "Optimized palette (median cut)", "Optimized palette (octree)"};
constexpr std::array kFields{Flag("Interlaced", "0"),
                             Flag("Floyd-Steinberg 4 value dither (else 2 value)", "0"),
                             Choice("Palette", "1", kNames)};

Fields Read(const Settings& settings) {
    Fields fields;
    fields.Set(kInterlaced, OnOff(settings.writer.gifInterlaced));
    fields.Set(kDither, OnOff(settings.writer.gifDither));
    fields.Set(kPalette, std::to_string(settings.writer.gifPalette));
    return fields;
}
void Write(Settings& settings, const Fields& fields) {
    settings.writer.gifInterlaced = fields.Is(kInterlaced, "1");
    settings.writer.gifDither = fields.Is(kDither, "1");
    settings.writer.gifPalette = fields.Integer(kPalette);
}
}  // namespace gif

namespace png {
enum Field {
    kGammaKind,
    kGamma,
    kInterlaced,
    kCopyText,
    kDpi,
    kAddText,
    kFirstKey,  // followed by its text, then the next key
};
constexpr double kMetresPerInch = 0.0254;
constexpr std::string_view kGammaNames[] = {"Do not save", "Specify"};
constexpr FieldSpec Key(std::string_view label) {
    return Text(label, "").Quoted().MaxLength(40);
}
constexpr std::array kFields{Choice("Output gamma", "1", kGammaNames),
                             Real("Gamma", "2.2").Clamp(0, 100),
                             Flag("Interlaced (Adam7)", "0"),
                             Flag("Copy text fields from input file", "0"),
                             Integer("DPI", "300").MaxLength(10),
                             Flag("Add text fields", "0"),
                             Key("Key 1"),
                             Text("Text 1", "").Quoted(),
                             Key("Key 2"),
                             Text("Text 2", "").Quoted(),
                             Key("Key 3"),
                             Text("Text 3", "").Quoted(),
                             Key("Key 4"),
                             Text("Text 4", "").Quoted()};

std::string DpiOf(const std::string& dotsPerMetre) {
    return std::to_string(std::lround(ConvertStringToDouble(dotsPerMetre) * kMetresPerInch));
}
std::string DotsPerMetreOf(const std::string& dpi) {
    return std::to_string(std::lround(ConvertStringToDouble(dpi) / kMetresPerInch));
}

Fields Read(const Settings& settings) {
    const settings::WriterSettings& writer = settings.writer;
    Fields fields;
    fields.Set(kGammaKind, OnOff(writer.pngGamma != 0));
    fields.Set(kGamma,
               Decimal(writer.pngGamma != 0 ? writer.pngGamma : Settings{}.writer.pngGamma));
    fields.Set(kInterlaced, OnOff(writer.pngInterlaced));
    fields.Set(kCopyText, OnOff(writer.pngCopyText));
    fields.Set(kDpi, DpiOf(writer.pngDotsPerMetre));
    fields.Set(kAddText, OnOff(writer.pngAddText));
    for (std::size_t i = 0; i < writer.pngKeys.size(); ++i) {
        fields.Set(kFirstKey + 2 * static_cast<int>(i), writer.pngKeys[i]);
        fields.Set(kFirstKey + 2 * static_cast<int>(i) + 1, writer.pngTexts[i]);
    }
    return fields;
}

void Write(Settings& settings, const Fields& fields) {
    settings::WriterSettings& writer = settings.writer;
    writer.pngGamma = fields.Is(kGammaKind, "1") ? fields.Real(kGamma) : 0;
    writer.pngInterlaced = fields.Is(kInterlaced, "1");
    writer.pngCopyText = fields.Is(kCopyText, "1");
    // What is no whole number of dots an inch stays as long as nobody changes it.
    if (fields.Text(kDpi) != DpiOf(writer.pngDotsPerMetre))
        writer.pngDotsPerMetre = DotsPerMetreOf(fields.Text(kDpi));
    writer.pngAddText = fields.Is(kAddText, "1");
    for (std::size_t i = 0; i < writer.pngKeys.size(); ++i) {
        writer.pngKeys[i] = fields.Text(kFirstKey + 2 * static_cast<int>(i));
        writer.pngTexts[i] = fields.Text(kFirstKey + 2 * static_cast<int>(i) + 1);
    }
}

std::string Note(const Fields& fields) {
    return "DPM: " + DotsPerMetreOf(fields.Text(kDpi));
}
}  // namespace png

// ---- Reader -------------------------------------------------------------------------------------

namespace metafile {
enum Field { kWidth, kHeight };
constexpr std::array kFields{Integer("Width", "100").MaxLength(10),
                             Integer("Height", "100").MaxLength(10)};
constexpr auto kAll = FieldsFrom<2>(0);
constexpr std::string_view kTitle =
    "Set default image size on opening files with no specified size.";
constexpr std::array kGroups{FieldGroup{.title = kTitle, .fields = kAll}};
constexpr DialogSpec kDialog{.groups = kGroups};

Fields ReadWmf(const Settings& settings) {
    Fields fields;
    fields.Set(kWidth, settings.reader.wmfWidth);
    fields.Set(kHeight, settings.reader.wmfHeight);
    return fields;
}
void WriteWmf(Settings& settings, const Fields& fields) {
    settings.reader.wmfWidth = fields.Text(kWidth);
    settings.reader.wmfHeight = fields.Text(kHeight);
}
Fields ReadEmf(const Settings& settings) {
    Fields fields;
    fields.Set(kWidth, settings.reader.emfWidth);
    fields.Set(kHeight, settings.reader.emfHeight);
    return fields;
}
void WriteEmf(Settings& settings, const Fields& fields) {
    settings.reader.emfWidth = fields.Text(kWidth);
    settings.reader.emfHeight = fields.Text(kHeight);
}
}  // namespace metafile

namespace png_reader {
enum Field { kAllow, kGamma };
constexpr std::array kFields{Flag("Allow gamma", "0"), Real("Gamma", "2.2").Clamp(0, 100)};

Fields Read(const Settings& settings) {
    Fields fields;
    fields.Set(kAllow, OnOff(settings.reader.pngAllowGamma));
    fields.Set(kGamma, Decimal(settings.writer.pngGamma));
    return fields;
}
void Write(Settings& settings, const Fields& fields) {
    settings.reader.pngAllowGamma = fields.Is(kAllow, "1");
    settings.writer.pngGamma = fields.Real(kGamma);
}
}  // namespace png_reader

constexpr std::array kGeneralPages{
    PreferencePage{.tab = "General",
                   .spec = {.fields = general::kFields, .dialog = &general::kDialog},
                   .read = general::Read,
                   .write = general::Write,
                   .note = general::Note},
    PreferencePage{.tab = "Folders",
                   .spec = {.fields = folders::kFields},
                   .read = folders::Read,
                   .write = folders::Write,
                   .chooserTitles = folders::kTitles},
    PreferencePage{.tab = "Logs",
                   .spec = {.fields = logs::kFields},
                   .read = logs::Read,
                   .write = logs::Write}};

constexpr std::array kWriterPages{
    PreferencePage{.tab = "TIF",
                   .heading = "Tagged Image File Format",
                   .spec = {.fields = tif::kFields},
                   .read = tif::Read,
                   .write = tif::Write},
    PreferencePage{.tab = "JPG",
                   .heading = "JPG - JPEG  (compressed image format)",
                   .spec = {.fields = jpg::kFields, .dialog = &jpg::kDialog},
                   .read = jpg::Read,
                   .write = jpg::Write},
    PreferencePage{.tab = "GIF",
                   .heading = "Graphics Interchange Format",
                   .spec = {.fields = gif::kFields},
                   .read = gif::Read,
                   .write = gif::Write},
    PreferencePage{.tab = "PNG",
                   .heading = "Portable Network Graphic",
                   .spec = {.fields = png::kFields},
                   .read = png::Read,
                   .write = png::Write,
                   .note = png::Note}};

constexpr std::array kReaderPages{
    PreferencePage{.tab = "WMF",
                   .heading = "Windows Metafile",
                   .spec = {.fields = metafile::kFields, .dialog = &metafile::kDialog},
                   .read = metafile::ReadWmf,
                   .write = metafile::WriteWmf},
    PreferencePage{.tab = "EMF",
                   .heading = "Enhanced Windows Metafile",
                   .spec = {.fields = metafile::kFields, .dialog = &metafile::kDialog},
                   .read = metafile::ReadEmf,
                   .write = metafile::WriteEmf},
    PreferencePage{.tab = "PNG",
                   .spec = {.fields = png_reader::kFields},
                   .read = png_reader::Read,
                   .write = png_reader::Write}};

}  // namespace

const PreferenceSheet kGeneralSheet{.title = "Preferences", .pages = kGeneralPages};
const PreferenceSheet kWriterSheet{.title = "Writer preferences", .pages = kWriterPages};
const PreferenceSheet kReaderSheet{.title = "Reader preferences", .pages = kReaderPages};

}  // namespace lumo::ui

#include "io/metadata_report.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

#include "imaging/codecs/exif_tables.h"
#include "imaging/codecs/image_resources.h"
#include "imaging/codecs/iptc.h"
#include "imaging/codecs/stored_metadata.h"
#include "imaging/codecs/unicode.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace lumo::io {
namespace {

namespace codecs = imaging::codecs;

constexpr std::array<std::string_view, codecs::kExifTableCount> kTitles{
    "--Main IFD--", "--EXIF IFD--", "--Interoperability IFD--", "--Thumbnail IFD--", "--GPS IFD--"};
constexpr std::string_view kDashes = "--------------------------\n";
constexpr std::string_view kWindowTitle = "Metadata display";

/// A comment with its line breaks as LF, without zeros behind it and other control characters.
std::string CommentText(const codecs::Bytes& payload) {
    std::string_view bytes(reinterpret_cast<const char*>(payload.data()), payload.size());
    bytes = bytes.substr(0, bytes.find_last_not_of('\0') + 1);
    const std::string text = codecs::TextAsUtf8(bytes);
    std::string shown, line;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const bool isBreak = i < text.size() && (text[i] == '\r' || text[i] == '\n');
        if (i < text.size() && !isBreak) {
            line += text[i] == '\t' ? ' ' : text[i];
            continue;
        }
        shown += platform::Printable(line);
        line.clear();
        if (i < text.size()) shown += '\n';
        if (isBreak && text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    }
    return shown;
}

std::string CommentsText(const codecs::JpegMarkers& markers) {
    std::string text;
    for (const auto& [code, payload] : markers)
        if (code == codecs::kComment) text += CommentText(payload) + "\n";
    return text;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> ExifReport(const std::string& path, int tables) {
    const auto file = platform::ReadFile(path);
    if (!file) return {};
    auto read = codecs::ReadExifTables(*file, tables);
    std::vector<std::pair<std::string, std::string>> report;
    if (!read.namesMaker) return report;
    for (std::size_t i = 0; i < kTitles.size(); ++i)
        if (!read.texts[i].empty()) report.emplace_back(kTitles[i], std::move(read.texts[i]));
    return report;
}

std::string ExifReportText(const std::string& path) {
    const std::string shownPath = platform::Printable(path);
    const auto report = ExifReport(path);
    if (report.empty()) return shownPath + " did not contain any EXIF information";
    std::string text = fmt::format("EXIF information for {}:\n{}", shownPath, kDashes);
    for (const auto& [title, lines] : report)
        text += fmt::format("{}\n{}{}", title, kDashes, lines);
    return text;
}

std::string IptcReportText(const std::string& path) {
    const std::string shownPath = platform::Printable(path);
    const auto file = platform::ReadFile(path);
    const auto markers = file ? codecs::ReadJpegMarkers(*file) : codecs::JpegMarkers();
    const std::string comments = CommentsText(markers);
    const std::string iptc = codecs::IptcText(codecs::IptcOf(codecs::JoinResources(markers)));
    if (comments.empty() && iptc.empty())
        return shownPath + " did not contain any JPG comments or IPTC information";
    std::string text =
        fmt::format("JPG comments and IPTC information for {}:\n{}", shownPath, kDashes);
    if (!comments.empty()) text += fmt::format("JPG_COM comments:\n{}{}\n", comments, kDashes);
    if (iptc.empty()) return text + "No IPTC information found.";
    return text + fmt::format("IPTC information:\n{}{}", kDashes, iptc);
}

void ShowExifReport(engine::CLumoscriptView& view) {
    view.ui.ShowReport(kWindowTitle, ExifReportText(view.sample.path));
}

void ShowIptcReport(engine::CLumoscriptView& view) {
    view.ui.ShowReport(kWindowTitle, IptcReportText(view.sample.path));
}

}  // namespace lumo::io

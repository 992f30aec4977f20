#include "io/metadata_report.h"

#include <array>
#include <string_view>

#include "imaging/codecs/exif_tables.h"
#include "platform/files.h"

namespace lumo::io {
namespace {

constexpr std::array<std::string_view, imaging::codecs::kExifTableCount> kTitles{
    "--Main IFD--", "--EXIF IFD--", "--Interoperability IFD--", "--Thumbnail IFD--", "--GPS IFD--"};

}  // namespace

std::vector<std::pair<std::string, std::string>> ExifReport(const std::string& path, int tables) {
    const auto file = platform::ReadFile(path);
    if (!file) return {};
    auto read = imaging::codecs::ReadExifTables(*file, tables);
    std::vector<std::pair<std::string, std::string>> report;
    if (!read.namesMaker) return report;
    for (std::size_t i = 0; i < kTitles.size(); ++i)
        if (!read.texts[i].empty()) report.emplace_back(kTitles[i], std::move(read.texts[i]));
    return report;
}

}  // namespace lumo::io

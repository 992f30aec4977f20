#include "imaging/codecs/exif_tables.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <exiv2/exiv2.hpp>
#include <optional>
#include <sstream>
#include <string_view>

#include "imaging/codecs/jpeg_segments.h"
#include "imaging/codecs/one_line.h"
#include "imaging/codecs/stored_metadata.h"
#include "imaging/codecs/unicode.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_view_literals;

constexpr std::array kGroups{"Image"sv, "Photo"sv, "Iop"sv, "Thumbnail"sv, "GPSInfo"sv};
static_assert(kGroups.size() == kExifTableCount);
constexpr std::uint16_t kMaker = 0x10F;
constexpr std::uint16_t kMakerNote = 0x927C;  // a block in the maker's own format
constexpr std::array<std::uint16_t, 3> kPointers{0x8769, 0x8825, 0xA005};  // to other tables
constexpr std::uint16_t kFirstUtf16Tag = 0x9C9B, kLastUtf16Tag = 0x9C9F;
constexpr std::size_t kMaxValueBytes = 200;

/// Damaged blocks make the library talk on standard error.
void SilenceLibrary() {
    static const bool done = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        return true;
    }();
    static_cast<void>(done);
}

std::optional<ByteView> ExifBlock(ByteView file) {
    if (file.size() > 0xFFFFFFFFU) return std::nullopt;
    for (const JpegSegment& segment : ReadJpegHead(file).segments)
        if (segment.code == kApp1 && IsExifPayload(segment.payload))
            return segment.payload.subspan(kExifPrefixBytes);
    return std::nullopt;
}

/// The property texts of the desktop are UTF-16, low byte first, in a tag of bytes.
std::string TextOfUtf16(const Exiv2::Value& value) {
    const auto unit = [&](long i) {
        return static_cast<std::uint32_t>(value.toLong(i) & 0xFF) |
               static_cast<std::uint32_t>(value.toLong(i + 1) & 0xFF) << 8;
    };
    std::string text;
    for (long i = 0; i + 1 < value.count() && text.size() <= kMaxValueBytes; i += 2) {
        std::uint32_t code = unit(i);
        if (code >= 0xD800 && code < 0xDC00 && i + 3 < value.count()) {
            const std::uint32_t low = unit(i + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            }
        }
        if (code >= 0xD800 && code < 0xE000) code = 0xFFFD;  // half of a pair
        AppendUtf8(text, code);
    }
    return text;
}

std::string ValueText(const Exiv2::Exifdatum& tag, const Exiv2::ExifData& all) {
    std::string text;
    if (tag.tag() >= kFirstUtf16Tag && tag.tag() <= kLastUtf16Tag) {
        text = TextOfUtf16(tag.value());
    } else if (tag.tag() == kMakerNote || tag.size() > 16 * static_cast<long>(kMaxValueBytes)) {
        text = fmt::format("({} bytes)", tag.size());  // nothing to read: tables of strips, too
    } else {
        std::ostringstream stream;
        tag.write(stream, &all);
        text = stream.str();
    }
    return OneLine(TextAsUtf8(text), kMaxValueBytes);
}

std::string LineOf(const Exiv2::Exifdatum& tag, const Exiv2::ExifData& all) {
    const std::string number = fmt::format("{:#x}", tag.tag());
    const std::string name = tag.tagName();
    const bool named = !name.starts_with("0x");
    return fmt::format("{}{}{}: {}\n", number, named ? " " : "", named ? name : "",
                       ValueText(tag, all));
}

}  // namespace

ExifTables ReadExifTables(ByteView file, int count) {
    ExifTables tables;
    const auto block = ExifBlock(file);
    if (!block) return tables;
    SilenceLibrary();
    try {
        Exiv2::ExifData data;
        Exiv2::ExifParser::decode(data, block->data(), static_cast<std::uint32_t>(block->size()));
        for (const Exiv2::Exifdatum& tag : data) {
            const auto group = std::find(kGroups.begin(), kGroups.end(), tag.groupName());
            const auto table = static_cast<std::size_t>(group - kGroups.begin());
            if (group == kGroups.end() || static_cast<int>(table) >= count) continue;
            if (std::find(kPointers.begin(), kPointers.end(), tag.tag()) != kPointers.end())
                continue;
            tables.texts[table] += LineOf(tag, data);
            if (tag.tag() == kMaker) tables.namesMaker = true;
        }
    } catch (const std::exception&) {
        return {};  // a damaged block is as good as none
    }
    return tables;
}

}  // namespace lumo::imaging::codecs

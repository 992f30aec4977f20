#include "imaging/codecs/stored_metadata.h"

#include <zlib.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace lumo::imaging::codecs {
namespace {

constexpr std::size_t kMaxTextBytes = std::size_t{8} << 20;  // of all texts of a PNG

std::uint32_t BigEndian32(ByteView bytes, std::size_t at) {
    return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 |
           std::uint32_t{bytes[at + 2]} << 8 | std::uint32_t{bytes[at + 3]};
}

std::string TextOf(ByteView bytes) {
    return {bytes.begin(), bytes.end()};
}

/// What stands before the next zero byte; `bytes` then begins behind it. None without a zero.
std::optional<std::string> TakeTerminated(ByteView& bytes) {
    const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
    if (end == bytes.end()) return std::nullopt;
    const auto length = static_cast<std::size_t>(end - bytes.begin());
    std::string text = TextOf(bytes.first(length));
    bytes = bytes.subspan(length + 1);
    return text;
}

std::optional<std::string> Inflate(ByteView packed, std::size_t room) {
    std::string text;
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) return std::nullopt;
    stream.next_in = const_cast<Bytef*>(packed.data());  // zlib does not write there
    stream.avail_in = static_cast<uInt>(std::min<std::size_t>(packed.size(), 1U << 30));
    int result = Z_OK;
    while (result == Z_OK && text.size() < room) {
        char block[16384];
        stream.next_out = reinterpret_cast<Bytef*>(block);
        stream.avail_out = sizeof block;
        result = inflate(&stream, Z_NO_FLUSH);
        text.append(block, sizeof block - stream.avail_out);
    }
    inflateEnd(&stream);
    if (result != Z_STREAM_END || text.size() > room) return std::nullopt;
    return text;
}

/// UTF-8 as Latin-1; none where a character is beyond it or the bytes are no UTF-8.
std::optional<std::string> ToLatin1(std::string_view utf8) {
    std::string text;
    text.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(utf8[i]);
        if (byte < 0x80) {
            text += utf8[i];
            continue;
        }
        const bool twoBytes = (byte == 0xC2 || byte == 0xC3) && i + 1 < utf8.size();
        const std::uint8_t next = twoBytes ? static_cast<std::uint8_t>(utf8[i + 1]) : 0;
        if ((next & 0xC0U) != 0x80U) return std::nullopt;
        text += static_cast<char>((byte & 0x03U) << 6 | (next & 0x3FU));
        ++i;
    }
    return text;
}

/// The text behind the key of an international chunk: flags, language and translated key first.
std::optional<std::string> InternationalText(ByteView body, std::size_t room) {
    if (body.size() < 2) return std::nullopt;
    const bool packed = body[0] == 1;
    body = body.subspan(2);
    if (!TakeTerminated(body) || !TakeTerminated(body)) return std::nullopt;
    const auto text = packed ? Inflate(body, room) : std::optional(TextOf(body));
    if (!text) return std::nullopt;
    const auto latin1 = ToLatin1(*text);
    return latin1 ? latin1 : text;
}

std::optional<std::string> TextOfChunk(std::string_view type, ByteView body, std::size_t room) {
    if (type == "tEXt") return TextOf(body);
    if (type == "zTXt") {
        if (body.empty() || body[0] != 0) return std::nullopt;  // the one method there is
        return Inflate(body.subspan(1), room);
    }
    return InternationalText(body, room);
}

constexpr std::string_view kProfile("ICC_PROFILE\0", 12), kIndex("MPF\0", 4);

bool HasPrefix(const std::pair<int, Bytes>& marker, int code, std::string_view prefix) {
    return marker.first == code && marker.second.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), marker.second.begin());
}

bool IsProfile(const std::pair<int, Bytes>& marker) {
    return HasPrefix(marker, kApp2, kProfile);
}

/// True for the first part of a profile (they are numbered from 1) whose header names RGB.
bool StartsRgbProfile(const Bytes& payload) {
    constexpr std::size_t kNumberAt = 12, kHeaderAt = 14, kSpaceAt = kHeaderAt + 16;
    constexpr std::string_view kRgb = "RGB ";
    return payload.size() >= kSpaceAt + kRgb.size() && payload[kNumberAt] == 1 &&
           std::equal(kRgb.begin(), kRgb.end(), payload.begin() + kSpaceAt);
}

}  // namespace

JpegMarkers ReadJpegMarkers(ByteView file) {
    JpegMarkers markers;
    for (const auto& [code, whole, payload] : ReadJpegHead(file).segments)
        if ((code >= kApp0 && code <= kApp15) || code == kComment)
            markers.emplace_back(code, Bytes(payload.begin(), payload.end()));
    return markers;
}

JpegMarkers MarkersForNewPicture(const JpegMarkers& markers) {
    const bool rgbProfile = std::ranges::any_of(markers, [](const auto& marker) {
        return IsProfile(marker) && StartsRgbProfile(marker.second);
    });
    JpegMarkers kept;
    for (const auto& marker : markers) {
        if (marker.first == kApp0 || marker.first == kApp14 || HasPrefix(marker, kApp2, kIndex))
            continue;
        if (IsProfile(marker) && !rgbProfile) continue;
        kept.push_back(marker);
    }
    return kept;
}

std::vector<std::pair<std::string, std::string>> ReadPngTexts(ByteView file) {
    constexpr std::size_t kAroundBody = 12;  // length, type and checksum
    std::vector<std::pair<std::string, std::string>> texts;
    if (FormatOfContent(file) != Format::Png) return texts;
    std::size_t room = kMaxTextBytes;
    for (std::size_t at = 8; file.size() - at >= kAroundBody;) {
        const std::size_t length = BigEndian32(file, at);
        if (length > file.size() - at - kAroundBody) break;
        const std::string type = TextOf(file.subspan(at + 4, 4));
        if (type == "tEXt" || type == "zTXt" || type == "iTXt") {
            ByteView body = file.subspan(at + 8, length);
            auto key = TakeTerminated(body);
            auto text = key ? TextOfChunk(type, body, room) : std::nullopt;
            if (text && text->size() + key->size() <= room) {
                room -= text->size() + key->size();
                texts.emplace_back(std::move(*key), std::move(*text));
            }
        }
        at += kAroundBody + length;
    }
    return texts;
}

}  // namespace lumo::imaging::codecs

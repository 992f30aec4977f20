#include "imaging/codecs/jpeg_segments.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/mpf_index.h"
#include "imaging/codecs/stored_metadata.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_view_literals;
using platform::Error;

constexpr int kStartOfImage = 0xD8, kEndOfImage = 0xD9, kStartOfScan = 0xDA;
constexpr int kRestartFirst = 0xD0, kTemporary = 0x01;
constexpr std::string_view kExifPrefix = "Exif\0\0"sv;

bool StandsAlone(int code) {
    return code == kTemporary || (code >= kRestartFirst && code <= kStartOfImage);
}

bool CarriesNoPicture(int code) {
    return (code >= kApp0 && code <= kApp15) || code == kComment;
}

bool BelongsToPicture(int code) {
    return !CarriesNoPicture(code) || code == kApp0 || code == kApp2 || code == kApp14;
}

/// Where an old segment comes to stand, or a new one.
struct Piece {
    int code = 0;
    ByteView payload;
    const JpegSegment* old = nullptr;
    std::size_t Length() const { return old != nullptr ? old->whole.size() : payload.size() + 4; }
};

using Pieces = std::vector<Piece>;

Pieces OldPieces(const JpegHead& head, const JpegChanges& changes) {
    Pieces pieces;
    bool exifIsIn = !changes.exif;
    for (const JpegSegment& segment : head.segments) {
        if (!changes.keepAll && !BelongsToPicture(segment.code)) continue;
        Piece piece{segment.code, segment.payload, &segment};
        if (!exifIsIn && segment.code == kApp1 && IsExifPayload(segment.payload)) {
            piece = {kApp1, *changes.exif};
            exifIsIn = true;
        }
        pieces.push_back(piece);
    }
    if (!exifIsIn) {
        const auto behindApp0 =
            std::ranges::find_if(pieces, [](const Piece& piece) { return piece.code != kApp0; });
        pieces.insert(behindApp0, Piece{kApp1, *changes.exif});
    }
    return pieces;
}

void InsertNew(Pieces& pieces, const JpegMarkers& added) {
    const auto at = std::ranges::find_if(
        pieces, [](const Piece& piece) { return piece.code != kApp0 && piece.code != kApp1; });
    Pieces fresh;
    for (const auto& [code, payload] : added) fresh.push_back({code, payload});
    pieces.insert(at, fresh.begin(), fresh.end());
}

/// The payloads of old indexes of further pictures, put right for the new length of what stands
/// before those pictures. Kept in `storage`.
void CorrectIndexes(const JpegHead& head, Pieces& pieces, std::vector<Bytes>& storage) {
    std::size_t length = 2;  // the marker of the start
    for (const Piece& piece : pieces) length += piece.Length();
    const std::size_t oldLength = head.file.size() - head.rest.size();
    storage.reserve(pieces.size());  // views into it must stay good
    std::size_t at = 2;
    for (Piece& piece : pieces) {
        const std::size_t behind = at + piece.Length();
        if (piece.old != nullptr && piece.code == kApp2) {
            const std::size_t oldBehind = static_cast<std::size_t>(
                piece.old->whole.data() + piece.old->whole.size() - head.file.data());
            const MpfMove move{.payloadAt = oldBehind - piece.payload.size(),
                               .headLength = oldLength,
                               .grownHead = static_cast<std::int64_t>(length) -
                                            static_cast<std::int64_t>(oldLength),
                               .grownBehind = static_cast<std::int64_t>(length - behind) -
                                              static_cast<std::int64_t>(oldLength - oldBehind)};
            if (auto corrected = CorrectMpfIndex(head.file, piece.payload, move)) {
                storage.push_back(std::move(*corrected));
                piece = {piece.code, storage.back()};
            }
        }
        at = behind;
    }
}

std::string Refuse(const JpegHead& head, const JpegChanges& changes) {
    if (!head.damage.empty()) return head.damage;
    const auto tooLong = [](std::size_t bytes) {
        return fmt::format("JPG: a marker of {} bytes is too long, {} is the most", bytes,
                           kMaxMarkerBytes);
    };
    for (const auto& [code, payload] : changes.added)
        if (payload.size() > kMaxMarkerBytes) return tooLong(payload.size());
    if (changes.exif && changes.exif->size() > kMaxMarkerBytes)
        return tooLong(changes.exif->size());
    return {};
}

}  // namespace

JpegHead ReadJpegHead(ByteView file) {
    JpegHead head{.file = file};
    const auto damaged = [&head](std::string why) {
        head.damage = "JPG: " + std::move(why);
        return head;
    };
    if (file.size() < 2 || file[0] != 0xFF || file[1] != kStartOfImage)
        return damaged("the file does not begin as a JPG");
    ByteReader reader(file, 2);
    while (head.segments.size() < kMaxSegments) {
        const std::size_t from = reader.Position();
        if (reader.Left() < 2) return damaged("the file ends before the picture data");
        if (reader.U8() != 0xFF) return damaged(fmt::format("no marker at byte {}", from));
        int code = reader.U8();
        while (code == 0xFF && reader.Left() > 0) code = reader.U8();  // fill bytes
        if (code == 0x00 || code == 0xFF) return damaged(fmt::format("no marker at byte {}", from));
        if (code == kEndOfImage) return damaged("the file holds no picture data");
        if (code == kStartOfScan) {
            head.rest = file.subspan(from);
            return head;
        }
        ByteView payload;
        if (!StandsAlone(code)) {
            const std::size_t length = reader.U16Be();  // counts itself
            if (length >= 2) payload = reader.Take(length - 2);
            if (reader.Failed() || length < 2)
                return damaged(
                    fmt::format("marker {:#x} at byte {} has a wrong length", code, from));
        }
        head.segments.push_back({code, file.subspan(from, reader.Position() - from), payload});
    }
    return damaged(fmt::format("more than {} markers", kMaxSegments));
}

bool IsExifPayload(ByteView payload) {
    return payload.size() > kExifPrefix.size() &&
           std::equal(kExifPrefix.begin(), kExifPrefix.end(), payload.begin());
}

Result<Bytes> SpliceJpegHead(const JpegHead& head, const JpegChanges& changes) {
    if (std::string refusal = Refuse(head, changes); !refusal.empty()) return Error{refusal};
    Pieces pieces = OldPieces(head, changes);
    InsertNew(pieces, changes.added);
    std::vector<Bytes> corrected;
    CorrectIndexes(head, pieces, corrected);
    std::size_t length = 2;
    for (const Piece& piece : pieces) length += piece.Length();
    return BuildFile(length, [&](ByteWriter& out) {
        out.U16Be(0xFF00U | kStartOfImage);
        for (const Piece& piece : pieces) {
            if (piece.old != nullptr) {
                out.Append(piece.old->whole);
                continue;
            }
            out.U16Be(0xFF00U | static_cast<unsigned>(piece.code));
            out.U16Be(static_cast<unsigned>(piece.payload.size() + 2));
            out.Append(piece.payload);
        }
    });
}

std::vector<Bytes> CommentPayloads(std::string_view text) {
    constexpr std::size_t kLongestCharacter = 4;
    std::vector<Bytes> payloads;
    while (!text.empty()) {
        std::size_t length = std::min(text.size(), kMaxMarkerBytes);
        if (length < text.size()) {
            std::size_t cut = length;
            const auto continues = [&](std::size_t at) {
                return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
            };
            while (length - cut < kLongestCharacter && continues(cut)) --cut;
            if (!continues(cut)) length = cut;  // else it is no UTF-8
        }
        payloads.emplace_back(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
        text.remove_prefix(length);
    }
    return payloads;
}

}  // namespace lumo::imaging::codecs

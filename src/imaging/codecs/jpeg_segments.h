#pragma once

// The segments of a JPG before its picture data, and the same picture with other ones. Nothing is
// decoded: what the file holds from its first scan on stays as it is, byte for byte.

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Markers that hold no part of the picture itself, with their payloads, in the order of a file.
using JpegMarkers = std::vector<std::pair<int, Bytes>>;

/// The longest payload: the length in front of it has 16 bits, and counts itself.
inline constexpr std::size_t kMaxMarkerBytes = 65533;
/// More segments than this are damage; a long colour profile and a long XMP need some hundred.
inline constexpr std::size_t kMaxSegments = 65536;

struct JpegSegment {
    int code = 0;      // second byte of the marker
    ByteView whole;    // with the marker, its length, and any fill bytes before it
    ByteView payload;  // without; empty for a marker that stands alone
};

/// Views into the file that was read.
struct JpegHead {
    ByteView file;
    std::vector<JpegSegment> segments;  // all up to the first scan, or up to the damage
    ByteView rest;                      // from the marker of the first scan to the end of the file
    std::string damage;                 // why there is no first scan; empty if there is one
};

JpegHead ReadJpegHead(ByteView file);

/// In front of the block of tables in the payload of an EXIF marker.
inline constexpr std::size_t kExifPrefixBytes = 6;
bool IsExifPayload(ByteView payload);

struct JpegChanges {
    /// Every old marker stays where it is. Otherwise of the application markers and comments only
    /// those stay that the picture needs: APP0 (density), APP2 (colour profile, index of further
    /// pictures in the file) and APP14 (colour coding).
    bool keepAll = false;
    /// New ones, each of at most kMaxMarkerBytes. They go behind the APP0, and the APP1 that stay,
    /// at the beginning.
    JpegMarkers added;
    /// With keepAll: an EXIF payload for the place of the first old one; if there is none it goes
    /// before all other markers but APP0.
    std::optional<Bytes> exif;
};

/// The bytes that go before `head.rest`. Refuses a damaged head and payloads that are too long.
/// Where an index of further pictures tells their true places, it goes on doing so.
Result<Bytes> SpliceJpegHead(const JpegHead& head, const JpegChanges& changes);

/// A comment as payloads, cut between characters where it is too long for one. None if empty.
std::vector<Bytes> CommentPayloads(std::string_view text);

}  // namespace lumo::imaging::codecs

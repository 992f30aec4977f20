#pragma once

// The resource block that image editors keep in the APP13 markers of a JPG: numbered pieces, one of
// which holds the IPTC data. A block may be longer than one marker; it then goes on in the next.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/jpeg_segments.h"

namespace lumo::imaging::codecs {

inline constexpr std::uint16_t kIptcResource = 0x404;
inline constexpr std::uint16_t kCopyrightResource = 0x40A;  // one byte: 1 for a protected picture

/// Of the blocks of all APP13 markers together; what is beyond is not read.
inline constexpr std::size_t kMaxResourceBytes = std::size_t{16} << 20;

/// Appends a resource to a block. Of the name the first 255 bytes count.
void AppendResource(Bytes& block, std::uint16_t number, std::string_view name, ByteView data);

/// A block as payloads of APP13 markers, as many as it takes. None for an empty one.
std::vector<Bytes> ResourcePayloads(ByteView block);

/// The block that the APP13 markers of a file hold together; those of other programs are left out.
Bytes JoinResources(const JpegMarkers& markers);

struct ImageResource {
    std::uint16_t number = 0;
    ByteView data;
};
/// The resources of a block, views into it; damage ends the list.
std::vector<ImageResource> ReadResources(ByteView block);

/// The data of all resources with IPTC, one behind the other.
Bytes IptcOf(ByteView block);

}  // namespace lumo::imaging::codecs

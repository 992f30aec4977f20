// Any bytes as the EXIF block that takes properties. The corpus holds whole payloads and, since
// the first bytes of a payload never vary, blocks without them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "imaging/codecs/exif_properties.h"
#include "imaging/codecs/exif_tables.h"
#include "imaging/codecs/jpeg_segments.h"

namespace {

using namespace lumo::imaging::codecs;

void Check(bool holds) {
    if (!holds) std::abort();
}

Bytes JpegWith(const Bytes& payload) {
    Bytes file{0xFF,
               0xD8,
               0xFF,
               0xE1,
               static_cast<std::uint8_t>((payload.size() + 2) >> 8),
               static_cast<std::uint8_t>((payload.size() + 2) & 0xFF)};
    file.insert(file.end(), payload.begin(), payload.end());
    file.insert(file.end(), {0xFF, 0xDA});
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::string_view kPrefix("Exif\0\0", kExifPrefixBytes);
    const ByteView input(data, size);
    Bytes payload(input.begin(), input.end());
    if (!IsExifPayload(payload)) payload.insert(payload.begin(), kPrefix.begin(), kPrefix.end());
    const PropertyTexts texts{.title = "A title", .author = "B", .comments = "C\xE9"};
    const auto added = AddProperties(payload, texts);
    if (!added) return 0;
    Check(IsExifPayload(*added));
    // Nothing but the place of the main table is another; an end of our own may have gone.
    const std::size_t from = kExifPrefixBytes + 8;
    const auto [before, after] = std::ranges::mismatch(payload.begin() + from, payload.end(),
                                                       added->begin() + from, added->end());
    const std::uint8_t* table = added->data() + kExifPrefixBytes + 4;
    const bool highFirst = payload[kExifPrefixBytes] == 'M';
    std::size_t place = 0;
    for (int i = 0; i < 4; ++i) place |= std::size_t{table[i]} << 8 * (highFirst ? 3 - i : i);
    Check(static_cast<std::size_t>(after - added->begin()) + 1 >= kExifPrefixBytes + place ||
          before == payload.end());
    // What was written is sound: it takes texts again.
    Check(static_cast<bool>(AddProperties(*added, texts)));
    if (added->size() <= kMaxMarkerBytes)
        static_cast<void>(ReadExifTables(JpegWith(*added), kExifTableCount));
    return 0;
}

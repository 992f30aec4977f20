// Any bytes as the resource block of a JPG, and its IPTC data as a report.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "imaging/codecs/image_resources.h"
#include "imaging/codecs/iptc.h"
#include "imaging/codecs/stored_metadata.h"
#include "imaging/codecs/unicode.h"

namespace {

void Check(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumo::imaging::codecs;
    const ByteView block(data, size);
    std::size_t bytes = 0;
    Bytes rebuilt;
    for (const auto& [number, resource] : ReadResources(block)) {
        bytes += resource.size() + 12;
        AppendResource(rebuilt, number, "", resource);
    }
    Check(bytes <= size);
    // What was read once is read again the same way.
    const auto first = ReadResources(block), second = ReadResources(rebuilt);
    Check(std::ranges::equal(first, second, [](const ImageResource& a, const ImageResource& b) {
        return a.number == b.number && std::ranges::equal(a.data, b.data);
    }));
    // In markers and out of them.
    JpegMarkers markers;
    for (Bytes& payload : ResourcePayloads(block)) {
        Check(payload.size() <= kMaxMarkerBytes);
        markers.emplace_back(kApp13, std::move(payload));
    }
    if (size < kMaxResourceBytes / 2) Check(std::ranges::equal(JoinResources(markers), block));

    for (const std::string& text : {IptcText(block), IptcText(IptcOf(block))}) {
        Check(text.empty() || text.back() == '\n');
        Check(DecodeUtf8(text).has_value());
        for (const char c : text) Check(c == '\n' || static_cast<unsigned char>(c) >= 0x20);
    }
    return 0;
}

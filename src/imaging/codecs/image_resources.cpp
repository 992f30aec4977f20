#include "imaging/codecs/image_resources.h"

#include <algorithm>
#include <array>
#include <string>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/stored_metadata.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kPrefix = "Photoshop 3.0\0"sv;
constexpr std::string_view kSignature = "8BIM"sv;
// Two image editors and a page maker sign resources of their own; the layout is the same.
constexpr std::array kSignatures{kSignature, "AgHg"sv, "DCSR"sv, "PHUT"sv};
constexpr std::size_t kLongestName = 255;

bool IsSignature(ByteView bytes) {
    return std::ranges::any_of(kSignatures, [&](std::string_view signature) {
        return std::ranges::equal(bytes, signature, [](std::uint8_t a, char b) {
            return a == static_cast<std::uint8_t>(b);
        });
    });
}

}  // namespace

void AppendResource(Bytes& block, std::uint16_t number, std::string_view name, ByteView data) {
    name = name.substr(0, kLongestName);
    ByteWriter out(name.size() + data.size() + 16);
    out.Text(kSignature);
    out.U16Be(number);
    out.U8(static_cast<unsigned>(name.size()));
    out.Text(name);
    out.Zeros(1 - name.size() % 2);  // with its length the name is even
    out.U32Be(static_cast<std::uint32_t>(data.size()));
    out.Append(data);
    out.Zeros(data.size() % 2);
    const Bytes resource = out.Finish();
    block.insert(block.end(), resource.begin(), resource.end());
}

std::vector<Bytes> ResourcePayloads(ByteView block) {
    constexpr std::size_t kRoom = kMaxMarkerBytes - kPrefix.size();
    std::vector<Bytes> payloads;
    while (!block.empty()) {
        const ByteView part = block.first(std::min(block.size(), kRoom));
        Bytes& payload = payloads.emplace_back(kPrefix.begin(), kPrefix.end());
        payload.insert(payload.end(), part.begin(), part.end());
        block = block.subspan(part.size());
    }
    return payloads;
}

Bytes JoinResources(const JpegMarkers& markers) {
    Bytes block;
    for (const auto& [code, payload] : markers) {
        if (code != kApp13 || payload.size() < kPrefix.size()) continue;
        if (!std::equal(kPrefix.begin(), kPrefix.end(), payload.begin())) continue;
        if (payload.size() > kMaxResourceBytes - block.size()) break;
        block.insert(block.end(), payload.begin() + kPrefix.size(), payload.end());
    }
    return block;
}

std::vector<ImageResource> ReadResources(ByteView block) {
    constexpr std::size_t kShortest = 12;  // signature, number, empty name, length
    std::vector<ImageResource> resources;
    ByteReader reader(block);
    while (reader.Left() >= kShortest) {
        if (!IsSignature(reader.Take(kSignature.size()))) break;
        const std::uint16_t number = reader.U16Be();
        const std::size_t nameLength = reader.U8();
        reader.Skip(nameLength + (1 - nameLength % 2));
        const std::uint32_t length = reader.U32Be();
        const ByteView data = reader.Take(length);
        if (reader.Failed()) break;
        if (length % 2 != 0 && reader.Left() > 0) reader.Skip(1);  // the last one may lack it
        resources.push_back({number, data});
    }
    return resources;
}

Bytes IptcOf(ByteView block) {
    Bytes iptc;
    for (const auto& [number, data] : ReadResources(block))
        if (number == kIptcResource) iptc.insert(iptc.end(), data.begin(), data.end());
    return iptc;
}

}  // namespace lumo::imaging::codecs

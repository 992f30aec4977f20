#include "imaging/codecs/mpf_index.h"

#include <limits>
#include <string_view>

#include "imaging/codecs/tiff_words.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kPrefix = "MPF\0"sv;
constexpr std::uint16_t kEntryTag = 0xB002;
constexpr std::size_t kEntryBytes = 16;  // attribute, length, place, two dependent pictures
constexpr std::size_t kLengthAt = 4, kPlaceAt = 8;

/// The list of pictures inside a block, or none.
std::optional<ByteView> PictureList(ByteView block, const TiffWords& words) {
    const std::size_t table = words.Get32(&block[4]);
    if (table > block.size() || block.size() - table < 2) return std::nullopt;
    const std::size_t count = words.Get16(&block[table]);
    if ((block.size() - table - 2) / kTiffEntryBytes < count) return std::nullopt;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* entry = &block[table + 2 + i * kTiffEntryBytes];
        if (words.Get16(entry) != kEntryTag) continue;
        const std::size_t bytes = words.Get32(entry + 4), at = words.Get32(entry + 8);
        if (bytes < 2 * kEntryBytes || at > block.size() || block.size() - at < bytes)
            return std::nullopt;
        return block.subspan(at, bytes / kEntryBytes * kEntryBytes);
    }
    return std::nullopt;
}

/// Adds to a number of 32 bits; false if it does not fit.
bool Add(const TiffWords& words, std::uint8_t* at, std::int64_t change) {
    const std::int64_t value = std::int64_t{words.Get32(at)} + change;
    if (value < 0 || value > std::numeric_limits<std::uint32_t>::max()) return false;
    words.Put32(at, static_cast<std::uint32_t>(value));
    return true;
}

}  // namespace

std::optional<Bytes> CorrectMpfIndex(ByteView oldFile, ByteView payload, const MpfMove& move) {
    if (move.grownHead == 0 && move.grownBehind == 0) return std::nullopt;
    if (payload.size() < kPrefix.size() ||
        !std::equal(kPrefix.begin(), kPrefix.end(), payload.begin()))
        return std::nullopt;
    const ByteView block = payload.subspan(kPrefix.size());
    const auto words = TiffWords::Of(block);
    if (!words) return std::nullopt;
    const auto list = PictureList(block, *words);
    if (!list) return std::nullopt;

    Bytes corrected(payload.begin(), payload.end());
    const auto listAt = static_cast<std::size_t>(list->data() - payload.data());
    const std::uint64_t countsFrom = std::uint64_t{move.payloadAt} + kPrefix.size();
    for (std::size_t i = 0; i < list->size(); i += kEntryBytes) {
        std::uint8_t* entry = &corrected[listAt + i];
        const std::uint32_t place = words->Get32(entry + kPlaceAt);
        if (i == 0) {
            // The picture that the index stands in.
            if (place != 0 || !Add(*words, entry + kLengthAt, move.grownHead)) return std::nullopt;
            continue;
        }
        const std::uint64_t at = countsFrom + place;
        if (at < move.headLength || at + 2 > oldFile.size() || oldFile[at] != 0xFF ||
            oldFile[at + 1] != 0xD8)
            return std::nullopt;
        if (!Add(*words, entry + kPlaceAt, move.grownBehind)) return std::nullopt;
    }
    return corrected;
}

}  // namespace lumo::imaging::codecs

#include "imaging/codecs/packbits.h"

#include <algorithm>
#include <cstring>

#include "imaging/codecs/byte_words.h"

namespace lumo::imaging::codecs {
namespace {

constexpr std::size_t kMaxCount = 128;
constexpr std::size_t kMinRun = 3;  // two equal bytes cost as much as two of the literals

// The next place from `at` on where three equal bytes stand, or the end.
std::size_t FindRun(ByteView bytes, std::size_t at) {
    if constexpr (kUseWords) {
        for (; at + kWordBytes + 2 <= bytes.size(); at += kWordBytes) {
            const std::uint64_t first = LoadWord(&bytes[at]);
            const std::uint64_t differs =
                (first ^ LoadWord(&bytes[at + 1])) | (first ^ LoadWord(&bytes[at + 2]));
            const std::uint64_t runs = ZeroBytes(differs);
            if (runs != 0) return at + BytesBeforeBit(runs);
        }
    }
    for (; at + kMinRun <= bytes.size(); ++at)
        if (bytes[at] == bytes[at + 1] && bytes[at] == bytes[at + 2]) return at;
    return bytes.size();
}

}  // namespace

bool UnpackBits(ByteView codes, std::uint8_t* bytes, std::size_t count) {
    std::size_t at = 0;
    std::uint8_t* const end = bytes + count;
    while (bytes < end && at + 1 < codes.size()) {
        const std::size_t code = codes[at++];
        if (code == 128) continue;  // does nothing, by definition
        const auto room = static_cast<std::size_t>(end - bytes);
        if (code > 128) {
            const std::size_t run = std::min(257 - code, room);
            std::memset(bytes, codes[at++], run);
            bytes += run;
        } else {
            const std::size_t literals = std::min({code + 1, room, codes.size() - at});
            std::memcpy(bytes, &codes[at], literals);
            at += literals;
            bytes += literals;
        }
    }
    std::fill(bytes, end, std::uint8_t{0});
    return bytes == end;
}

void PackBits(ByteView bytes, std::vector<std::uint8_t>& codes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t runAt = FindRun(bytes, at);
        while (at < runAt) {
            const std::size_t count = std::min(runAt - at, kMaxCount);
            codes.push_back(static_cast<std::uint8_t>(count - 1));
            codes.insert(codes.end(), &bytes[at], &bytes[at] + count);
            at += count;
        }
        if (at == bytes.size()) break;
        const std::size_t count = CountEqual(&bytes[at], std::min(bytes.size() - at, kMaxCount));
        codes.push_back(static_cast<std::uint8_t>(257 - count));
        codes.push_back(bytes[at]);
        at += count;
    }
}

}  // namespace lumo::imaging::codecs

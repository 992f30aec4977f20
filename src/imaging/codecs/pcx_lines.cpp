#include "imaging/codecs/pcx_lines.h"

#include <algorithm>
#include <cstring>

#include "imaging/codecs/byte_words.h"

namespace lumo::imaging::codecs {
namespace {

constexpr std::uint8_t kRunMark = 0xC0;
// The top bit of each byte that says or must be said with a run.
std::uint64_t MarkedBytes(std::uint64_t word) {
    return word & word << 1 & 0x8080808080808080U;
}

}  // namespace

PcxLines::PcxLines(ByteView bytes, std::size_t lineBytes, bool runLengths)
    : bytes_(bytes),
      lineBytes_(lineBytes),
      runLengths_(runLengths),
      line_(runLengths ? lineBytes + kWordBytes : 0) {}

const std::uint8_t* PcxLines::Next() {
    if (runLengths_) return Unpack() ? line_.data() : nullptr;
    if (bytes_.size() - at_ < lineBytes_) return nullptr;
    at_ += lineBytes_;
    return bytes_.data() + at_ - lineBytes_;
}

bool PcxLines::Unpack() {
    std::uint8_t* out = line_.data();
    const std::uint8_t* const end = out + lineBytes_;
    while (out < end) {
        if (run_ > 0) {
            const std::size_t count = std::min(run_, static_cast<std::size_t>(end - out));
            std::memset(out, value_, count);
            run_ -= count;
            out += count;
            continue;
        }
        CopyWords(out, end);
        if (out == end) break;
        if (at_ >= bytes_.size()) return false;
        const std::uint8_t code = bytes_[at_];
        if (code < kRunMark) {
            *out++ = code;
            ++at_;
            continue;
        }
        if (bytes_.size() - at_ < 2) return false;
        run_ = code & kMaxPcxRun;
        value_ = bytes_[at_ + 1];
        at_ += 2;
    }
    return true;
}

// Unpacks while a word of literals or a whole short run fits; the line has a word of slack.
void PcxLines::CopyWords(std::uint8_t*& out, const std::uint8_t* end) {
    if constexpr (!kUseWords) return;
    const std::uint8_t* in = bytes_.data() + at_;
    const std::uint8_t* const inEnd = bytes_.data() + bytes_.size();
    while (end - out >= static_cast<std::ptrdiff_t>(kWordBytes) &&
           inEnd - in >= static_cast<std::ptrdiff_t>(kWordBytes) + 2) {
        const std::uint64_t word = LoadWord(in);
        std::memcpy(out, &word, kWordBytes);
        const std::size_t literals = BytesBeforeBit(MarkedBytes(word));
        in += literals;
        out += literals;
        if (literals == kWordBytes) continue;
        const std::size_t count = *in & kMaxPcxRun;
        if (count > kWordBytes || count > static_cast<std::size_t>(end - out)) break;
        const std::uint64_t run = in[1] * 0x0101010101010101U;
        std::memcpy(out, &run, kWordBytes);
        in += 2;
        out += count;
    }
    at_ = static_cast<std::size_t>(in - bytes_.data());
}

ByteView PcxRuns(ByteView plane, std::vector<std::uint8_t>& codes) {
    codes.resize(std::max(codes.size(), 2 * plane.size() + kWordBytes));
    const std::uint8_t* in = plane.data();
    const std::uint8_t* const end = in + plane.size();
    std::uint8_t* out = codes.data();
    while (in < end) {
        if (kUseWords && end - in > static_cast<std::ptrdiff_t>(kWordBytes)) {
            // Up to the first byte that is marked or the same as the next one.
            const std::uint64_t word = LoadWord(in);
            const std::uint64_t stops = MarkedBytes(word) | ZeroBytes(word ^ LoadWord(in + 1));
            const std::size_t literals = BytesBeforeBit(stops);
            std::memcpy(out, &word, kWordBytes);
            in += literals;
            out += literals;
            if (literals == kWordBytes) continue;
        }
        const std::uint8_t value = *in;
        const std::size_t left = static_cast<std::size_t>(end - in);
        const std::size_t count = CountEqual(in, std::min(left, kMaxPcxRun));
        if (count > 1 || value >= kRunMark) *out++ = static_cast<std::uint8_t>(kRunMark | count);
        *out++ = value;
        in += count;
    }
    return ByteView(codes).first(static_cast<std::size_t>(out - codes.data()));
}

}  // namespace lumo::imaging::codecs

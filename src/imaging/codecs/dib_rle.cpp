#include <algorithm>
#include <cstring>
#include <vector>

#include "imaging/codecs/dib.h"

namespace lumo::imaging::codecs {
namespace {

enum Escape : std::uint8_t { kEndOfLine = 0, kEndOfBitmap = 1, kDelta = 2 };

// One row at a time is decoded into `row_`, which starts as zeros: codes only ever move forward.
class Rows {
  public:
    Rows(int bits, const Palette& palette, bool topDown, ImageView image)
        : bits_(bits),
          unit_(bits == 24 ? 3 : 1),
          palette_(palette),
          topDown_(topDown),
          image_(image),
          row_(static_cast<std::size_t>(image.Width() * unit_)) {}

    bool AreDone() const { return y_ >= image_.Height(); }
    bool RowIsFull() const { return x_ >= image_.Width(); }
    int Count() const { return y_; }

    /// Room for up to `wanted` pixels, which are then taken as written.
    std::uint8_t* Advance(int wanted, int& granted) {
        granted = std::min(wanted, image_.Width() - x_);
        std::uint8_t* at = row_.data() + static_cast<std::size_t>(x_) * unit_;
        x_ += granted;
        return at;
    }
    void Skip(int pixels) { x_ = std::min(x_ + pixels, image_.Width()); }
    /// Ends the row; the next one begins where this one ended, as a vertical move asks.
    void NextRow() {
        std::uint8_t* target = RowInFileOrder(image_, y_, topDown_);
        if (bits_ == 24)
            RgbFromBgr(row_.data(), image_.Width(), target);
        else
            palette_.Expand(row_.data(), image_.Width(), target);
        std::fill(row_.begin(), row_.end(), std::uint8_t{0});
        ++y_;
    }
    void ToRowStart() { x_ = 0; }

  private:
    int bits_;
    int unit_;
    const Palette& palette_;
    bool topDown_;
    ImageView image_;
    std::vector<std::uint8_t> row_;  // indices, or blue, green, red
    int x_ = 0;
    int y_ = 0;
};

// `value` is one byte of 8 bits or two pixels of 4, or three bytes.
void WriteRun(Rows& rows, int bits, int count, const std::uint8_t* value) {
    int room = 0;
    std::uint8_t* out = rows.Advance(count, room);
    if (bits == 8) {
        std::memset(out, *value, static_cast<std::size_t>(room));
    } else if (bits == 4) {
        const auto high = static_cast<std::uint8_t>(*value >> 4);
        const auto low = static_cast<std::uint8_t>(*value & 15);
        for (int i = 0; i < room; ++i) out[i] = i % 2 == 0 ? high : low;
    } else {
        for (int i = 0; i < room; ++i) std::memcpy(out + std::ptrdiff_t{3} * i, value, 3);
    }
}

void WriteLiterals(Rows& rows, int bits, int count, const std::uint8_t* values) {
    int room = 0;
    std::uint8_t* out = rows.Advance(count, room);
    if (bits == 24)
        std::memcpy(out, values, static_cast<std::size_t>(room) * 3);
    else
        UnpackIndices(values, bits, room, out);
}

}  // namespace

int DecodeDibRuns(ByteView codes, int bits, const Palette& palette, bool topDown, ImageView image) {
    Rows rows(bits, palette, topDown, image);
    const std::size_t runBytes = bits == 24 ? 4 : 2;
    std::size_t at = 0;
    const auto left = [&] { return codes.size() - at; };
    while (!rows.AreDone() && left() >= 2) {
        const int count = codes[at];
        if (count > 0) {
            if (left() < runBytes) break;
            WriteRun(rows, bits, count, &codes[at + 1]);
            at += runBytes;
            continue;
        }
        const int escape = codes[at + 1];
        at += 2;
        if (escape == kEndOfLine) {
            rows.NextRow();
            rows.ToRowStart();
        } else if (escape == kEndOfBitmap) {
            while (!rows.AreDone()) rows.NextRow();
        } else if (escape == kDelta) {
            if (left() < 2) break;
            rows.Skip(codes[at]);
            for (int dy = codes[at + 1]; dy > 0 && !rows.AreDone(); --dy) rows.NextRow();
            at += 2;
        } else {
            const std::size_t bytes = PackedRowBytes(escape, bits);
            if (left() < bytes) break;
            WriteLiterals(rows, bits, escape, codes.data() + at);
            at += std::min(left(), bytes + bytes % 2);  // padded to an even count
        }
    }
    // Many writers leave out the codes behind the last pixel.
    if (!rows.AreDone() && rows.RowIsFull()) rows.NextRow();
    return rows.Count();
}

}  // namespace lumo::imaging::codecs

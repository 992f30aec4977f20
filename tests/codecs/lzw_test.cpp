#include "imaging/codecs/lzw.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace lumo::imaging::codecs {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Reads codes back by the book: a list of strings, a new one for every code but the first.
template <LzwDialect kDialect>
class PlainDecoder {
  public:
    explicit PlainDecoder(const Bytes& codes) : codes_(codes) {}

    Bytes Read() {
        Bytes out;
        EXPECT_EQ(Next(), 256) << "no clear code first";
        for (;;) {
            const int code = Next();
            if (code == 257) break;
            if (code == 256) {
                strings_.resize(258);
                width_ = 9;
                previous_.clear();
                continue;
            }
            if (code > static_cast<int>(strings_.size())) {
                ADD_FAILURE() << "code " << code << " of " << strings_.size();
                break;
            }
            Bytes string;
            if (code < 256) {
                string = {static_cast<std::uint8_t>(code)};
            } else if (code < static_cast<int>(strings_.size())) {
                string = strings_[static_cast<std::size_t>(code)];
            } else {
                string = previous_;
                string.push_back(previous_.front());
            }
            if (!previous_.empty()) {
                previous_.push_back(string.front());
                strings_.push_back(previous_);
                EXPECT_LE(strings_.size(), 4096U);
            }
            previous_ = string;
            out.insert(out.end(), string.begin(), string.end());
            const std::size_t early = kDialect == LzwDialect::Tiff ? 1 : 0;
            if (strings_.size() + early >= std::size_t{1} << width_ && width_ < 12) ++width_;
        }
        EXPECT_EQ((bit_ + 7) / 8, codes_.size()) << "bytes behind the end code";
        return out;
    }

  private:
    int Next() {
        int code = 0;
        for (int i = 0; i < width_; ++i, ++bit_) {
            if (bit_ / 8 >= codes_.size()) {
                ADD_FAILURE() << "no end code";
                return 257;
            }
            if constexpr (kDialect == LzwDialect::Gif)
                code |= (codes_[bit_ / 8] >> bit_ % 8 & 1) << i;
            else
                code = code << 1 | (codes_[bit_ / 8] >> (7 - bit_ % 8) & 1);
        }
        return code;
    }

    const Bytes& codes_;
    std::size_t bit_ = 0;
    int width_ = 9;
    std::vector<Bytes> strings_{258};
    Bytes previous_;
};

template <LzwDialect kDialect>
void CheckRoundTrip(const Bytes& data, std::size_t piece) {
    Bytes codes;
    LzwEncoder<kDialect> encoder(codes);
    for (std::size_t at = 0; at < data.size(); at += piece)
        encoder.Add(std::span(data).subspan(at, std::min(piece, data.size() - at)));
    encoder.Finish();
    ASSERT_EQ(PlainDecoder<kDialect>(codes).Read(), data);
}

/// Data that fills the table at every pace, of every length around the turns of the code width.
void CheckAll(void (*check)(const Bytes&, std::size_t)) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length < 20; ++length) check(Bytes(length, 7), 3);
    for (const std::uint32_t values : {1U, 2U, 7U, 256U})
        for (const std::size_t length : {250U, 253U, 254U, 255U, 256U, 257U, 258U, 700U, 1790U,
                                         3836U, 3837U, 3838U, 3839U, 3840U, 20000U, 100001U}) {
            Bytes data(length);
            for (auto& byte : data) byte = static_cast<std::uint8_t>(random() % values);
            check(data, 1 + random() % 5000);
        }
}

TEST(LzwEncoder, GifCodesReadBack) {
    CheckAll(CheckRoundTrip<LzwDialect::Gif>);
}
TEST(LzwEncoder, TiffCodesReadBack) {
    CheckAll(CheckRoundTrip<LzwDialect::Tiff>);
}

// The strip that the description of the TIF format works through.
TEST(LzwEncoder, WritesTheBookExample) {
    Bytes codes;
    LzwEncoder<LzwDialect::Tiff> encoder(codes);
    encoder.Add(Bytes{7, 7, 7, 8, 8, 7, 7, 6, 6});
    encoder.Finish();
    // 256, 7, 258, 8, 8, 258, 6, 6, 257 in nine bits each
    const int expected[] = {256, 7, 258, 8, 8, 258, 6, 6, 257};
    std::size_t bit = 0;
    for (const int code : expected)
        for (int i = 8; i >= 0; --i, ++bit)
            ASSERT_EQ(codes[bit / 8] >> (7 - bit % 8) & 1, code >> i & 1) << "bit " << bit;
    EXPECT_EQ(codes.size(), (bit + 7) / 8);
}

TEST(LzwEncoder, KeepsWhatTheTargetHolds) {
    Bytes codes{1, 2, 3};
    LzwEncoder<LzwDialect::Gif> encoder(codes);
    encoder.Finish();
    EXPECT_EQ(codes, (Bytes{1, 2, 3, 0x00, 0x03, 0x02}));  // 256 and 257, low bits first
}

}  // namespace
}  // namespace lumo::imaging::codecs

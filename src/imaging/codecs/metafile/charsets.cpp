#include "imaging/codecs/metafile/charsets.h"

#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cerrno>

#include "imaging/codecs/metafile/record_reader.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr char32_t kUnknown = 0xFFFD;

const char* NameOf(std::uint8_t charset) {
    switch (charset) {
        case 77:
            return "MACINTOSH";
        case 128:
            return "CP932";
        case 129:
            return "CP949";
        case 130:
            return "JOHAB";
        case 134:
            return "CP936";
        case 136:
            return "CP950";
        case 161:
            return "CP1253";
        case 162:
            return "CP1254";
        case 163:
            return "CP1258";
        case 177:
            return "CP1255";
        case 178:
            return "CP1256";
        case 186:
            return "CP1257";
        case 204:
            return "CP1251";
        case 222:
            return "CP874";
        case 238:
            return "CP1250";
        case 255:
            return "CP437";
        default:
            return nullptr;  // Western European
    }
}

class Converter {
  public:
    explicit Converter(const char* from)
        : handle_(iconv_open(std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE",
                             from)) {}
    ~Converter() {
        if (IsOpen()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool IsOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    // The character that the bytes begin with.
    Character Next(ByteView bytes) const {
        for (std::size_t length = 1; length <= std::min<std::size_t>(2, bytes.size()); ++length) {
            char32_t code = 0;
            // iconv takes its input through a pointer that is not const, and does not write to it.
            char* in = const_cast<char*>(reinterpret_cast<const char*>(bytes.data()));
            char* out = reinterpret_cast<char*>(&code);
            std::size_t inLeft = length, outLeft = sizeof code;
            iconv(handle_, nullptr, nullptr, nullptr, nullptr);
            std::size_t done = iconv(handle_, &in, &inLeft, &out, &outLeft);
            // Some sets hold a letter back until they see that no accent follows.
            if (done != static_cast<std::size_t>(-1) && outLeft > 0)
                done = iconv(handle_, nullptr, nullptr, &out, &outLeft);
            if (done != static_cast<std::size_t>(-1) && outLeft == 0 && code != 0xFEFF)
                return {code, static_cast<int>(length)};
        }
        return {kUnknown, 1};
    }

  private:
    iconv_t handle_;
};

}  // namespace

std::vector<Character> DecodeBytes(ByteView bytes, std::uint8_t charset) {
    std::vector<Character> text;
    const char* name = NameOf(charset);
    if (name != nullptr) {
        const Converter converter(name);
        if (converter.IsOpen()) {
            while (!bytes.empty()) {
                const bool ascii = bytes[0] < 0x80;
                text.push_back(ascii ? Character{bytes[0], 1} : converter.Next(bytes));
                bytes = bytes.subspan(static_cast<std::size_t>(text.back().units));
            }
            return text;
        }
    }
    for (const std::uint8_t byte : bytes) text.push_back({FromWestern(byte), 1});
    return text;
}

std::vector<Character> DecodeUtf16(ByteView bytes) {
    std::vector<Character> text;
    RecordReader reader(bytes);
    while (reader.Left() >= 2) {
        const char32_t unit = reader.U16();
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        if (high && reader.Left() >= 2) {
            const std::size_t at = reader.Position();
            const char32_t low = reader.U16();
            if (low >= 0xDC00 && low < 0xE000) {
                text.push_back({0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00), 2});
                continue;
            }
            reader.Seek(at);
        }
        text.push_back({unit >= 0xD800 && unit < 0xE000 ? kUnknown : unit, 1});
    }
    return text;
}

}  // namespace lumo::imaging::codecs::metafile

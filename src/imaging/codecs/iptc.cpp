#include "imaging/codecs/iptc.h"

#include <fmt/format.h>

#include <algorithm>
#include <exiv2/exiv2.hpp>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/byte_writer.h"
#include "imaging/codecs/one_line.h"
#include "imaging/codecs/unicode.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_view_literals;
using platform::Done;
using platform::Error;
using platform::Status;

constexpr std::uint8_t kMark = 0x1C;
constexpr std::uint8_t kEnvelope = 1, kApplication = 2;
constexpr std::uint8_t kCharacterSet = 90;
constexpr std::string_view kUtf8 = "\x1B%G"sv;  // the escape sequence that announces UTF-8
constexpr unsigned kLongForm = 0x8000;   // bit of a length: it counts the bytes of the length
constexpr std::size_t kMaxShown = 4000;  // bytes of a value

void Put(ByteWriter& out, std::uint8_t record, int dataset, std::string_view text) {
    out.U8(kMark);
    out.U8(record);
    out.U8(static_cast<unsigned>(dataset));
    out.U16Be(static_cast<unsigned>(text.size()));
    out.Text(text);
}

/// The length of a dataset of the longer form; nothing if no file can be as long.
std::size_t LongLength(ByteReader& reader, std::size_t bytes) {
    std::uint64_t length = 0;
    for (const std::uint8_t byte : reader.Take(std::min<std::size_t>(bytes, 8)))
        length = length << 8 | byte;
    if (bytes > 8) reader.Skip(reader.Left() + 1);  // fails
    return static_cast<std::size_t>(length);
}

bool IsNumber(std::uint16_t dataset, std::uint16_t record) {
    const Exiv2::TypeId type = Exiv2::IptcDataSets::dataSetType(dataset, record);
    return type == Exiv2::unsignedShort || type == Exiv2::unsignedByte;
}

std::string ValueText(std::uint8_t record, std::uint8_t dataset, ByteView value) {
    if (IsNumber(dataset, record) && value.size() <= 2) {
        unsigned number = 0;
        for (const std::uint8_t byte : value) number = number << 8 | byte;
        return std::to_string(number);
    }
    const std::string_view bytes(reinterpret_cast<const char*>(value.data()), value.size());
    return OneLine(TextAsUtf8(bytes.substr(0, kMaxShown + 4)), kMaxShown);
}

}  // namespace

Status IptcBlock::Add(int dataset, std::string_view text) {
    if (text.empty()) return Done{};
    if (text.size() > kMaxIptcText)
        return Error{fmt::format("IPTC: a text of {} bytes is too long, {} is the most",
                                 text.size(), kMaxIptcText)};
    const bool ascii = std::ranges::none_of(text, [](char c) { return (c & 0x80) != 0; });
    allAscii_ = allAscii_ && ascii;
    allUtf8_ = allUtf8_ && (ascii || DecodeUtf8(text));
    ByteWriter out(text.size() + 5);
    Put(out, kApplication, dataset, text);
    const Bytes bytes = out.Finish();
    datasets_.insert(datasets_.end(), bytes.begin(), bytes.end());
    return Done{};
}

Bytes IptcBlock::Export() const {
    ByteWriter out(datasets_.size() + 8);
    if (allUtf8_ && !allAscii_) Put(out, kEnvelope, kCharacterSet, kUtf8);
    out.Append(datasets_);
    return out.Finish();
}

std::string IptcText(ByteView block) {
    constexpr std::size_t kShortest = 5;
    std::string text;
    ByteReader reader(block);
    while (reader.Left() >= kShortest && reader.U8() == kMark) {
        const std::uint8_t record = reader.U8(), dataset = reader.U8();
        std::size_t length = reader.U16Be();
        if ((length & kLongForm) != 0)
            length = LongLength(reader, length & ~std::size_t{kLongForm});
        const ByteView value = reader.Take(length);
        if (reader.Failed()) break;
        const std::string name = Exiv2::IptcDataSets::dataSetName(dataset, record);
        const bool named = !name.starts_with("0x");
        text += fmt::format("{}:{}{}{}: {}\n", record, dataset, named ? " " : "", named ? name : "",
                            ValueText(record, dataset, value));
    }
    return text;
}

}  // namespace lumo::imaging::codecs

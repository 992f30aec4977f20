#include "imaging/codecs/tga_rows.h"

#include <algorithm>
#include <cstring>

#include "imaging/codecs/decoders.h"

namespace lumo::imaging::codecs {
namespace {

Rgb LaidOverWhite(Rgb colour, std::uint8_t coverage, TgaAlpha alpha) {
    if (alpha == TgaAlpha::None) return colour;
    const auto channel = [&](std::uint8_t v) {
        if (alpha == TgaAlpha::Premultiplied)
            return static_cast<std::uint8_t>(std::min(255, v + 255 - coverage));
        return OverWhite(v, coverage);
    };
    return {channel(colour.red), channel(colour.green), channel(colour.blue)};
}

std::uint8_t CoverageOf(const std::uint8_t* pixel, int bits) {
    if (bits == 32) return pixel[3];
    return bits == 16 && (pixel[1] & 0x80) == 0 ? 0 : 255;
}

Rgb ColourOf(const std::uint8_t* pixel, int bits) {
    if (bits >= 24) return {pixel[2], pixel[1], pixel[0]};
    std::array<std::uint8_t, 3> rgb{};
    RgbFrom555(pixel, 1, rgb.data());
    return {rgb[0], rgb[1], rgb[2]};
}

void Store(Rgb colour, std::uint8_t* rgb) {
    rgb[0] = colour.red;
    rgb[1] = colour.green;
    rgb[2] = colour.blue;
}

template <std::size_t Unit>
void Repeat(const std::uint8_t* value, std::uint8_t* out, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; i += Unit) std::memcpy(out + i, value, Unit);
}

}  // namespace

std::vector<Rgb> ReadTgaMap(const TgaHeader& header, ByteView map, TgaAlpha alpha) {
    std::vector<Rgb> colours(std::size_t{1} << header.bits);
    const std::size_t entryBytes = header.MapEntryBytes();
    const auto entryAt = [&](std::size_t i) { return map.data() + i * entryBytes; };
    const std::size_t count = map.size() / entryBytes;
    bool anyCoverage = false;
    for (std::size_t i = 0; i < count && !anyCoverage; ++i)
        anyCoverage = CoverageOf(entryAt(i), header.mapBits) != 0;
    if (!anyCoverage) alpha = TgaAlpha::None;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t index = i + static_cast<std::size_t>(header.mapFirst);
        if (index >= colours.size()) break;
        colours[index] = LaidOverWhite(ColourOf(entryAt(i), header.mapBits),
                                       CoverageOf(entryAt(i), header.mapBits), alpha);
    }
    return colours;
}

TgaStoredRows::TgaStoredRows(ByteView bytes, const TgaHeader& header)
    : bytes_(bytes),
      unit_(static_cast<std::size_t>(header.PixelBytes())),
      rowBytes_(unit_ * static_cast<std::size_t>(header.width)),
      runLengths_(header.runLengths),
      row_(header.runLengths ? rowBytes_ : 0) {}

const std::uint8_t* TgaStoredRows::Next() {
    if (!runLengths_) {
        if (bytes_.size() - at_ < rowBytes_) return nullptr;
        at_ += rowBytes_;
        return bytes_.data() + at_ - rowBytes_;
    }
    for (std::size_t filled = 0; filled < rowBytes_;) {
        if (left_ == 0 && !NextPacket()) return nullptr;
        const std::size_t count = std::min(left_ * unit_, rowBytes_ - filled);
        if (isRun_) {
            FillRun(row_.data() + filled, count);
        } else {
            if (bytes_.size() - at_ < count) return nullptr;
            std::memcpy(row_.data() + filled, bytes_.data() + at_, count);
            at_ += count;
        }
        left_ -= count / unit_;
        filled += count;
    }
    return row_.data();
}

bool TgaStoredRows::NextPacket() {
    if (bytes_.size() - at_ < 1 + unit_) return false;
    const std::uint8_t head = bytes_[at_++];
    left_ = (head & 0x7FU) + 1U;
    isRun_ = (head & 0x80) != 0;
    if (isRun_) {
        std::memcpy(value_.data(), bytes_.data() + at_, unit_);
        at_ += unit_;
    }
    return true;
}

void TgaStoredRows::FillRun(std::uint8_t* out, std::size_t count) const {
    switch (unit_) {
        case 1:
            std::memset(out, value_[0], count);
            break;
        case 2:
            Repeat<2>(value_.data(), out, count);
            break;
        case 3:
            Repeat<3>(value_.data(), out, count);
            break;
        default:
            Repeat<4>(value_.data(), out, count);
            break;
    }
}

TgaRowConverter::TgaRowConverter(const TgaHeader& header, std::vector<Rgb> map, TgaAlpha alpha)
    : header_(header), map_(std::move(map)), alpha_(alpha) {
    if (header.kind != TgaKind::Indexed || header.bits != 8) return;
    for (int i = 0; i < 256; ++i) palette_.Set(i, map_[static_cast<std::size_t>(i)]);
}

void TgaRowConverter::Convert(const std::uint8_t* row, std::uint8_t* rgb) {
    const int width = header_.width;
    if (header_.kind == TgaKind::Indexed) return Indexed(row, rgb);
    if (header_.kind == TgaKind::Grey)
        return header_.bits == 8 ? RgbFromGrey(row, width, rgb) : Grey16(row, rgb);
    if (header_.bits == 24) return RgbFromBgr(row, width, rgb);
    if (alpha_ != TgaAlpha::None && header_.bits != 15) return WithAlpha(row, rgb);
    header_.bits == 32 ? RgbFromBgrx(row, width, rgb) : RgbFrom555(row, width, rgb);
}

void TgaRowConverter::Indexed(const std::uint8_t* row, std::uint8_t* rgb) const {
    if (header_.bits == 8) return palette_.Expand(row, header_.width, rgb);
    for (int x = 0; x < header_.width; ++x, row += 2, rgb += 3)
        Store(map_[row[0] | static_cast<std::size_t>(row[1]) << 8], rgb);
}

// Grey and coverage; or, without attribute bits, one sample of 16 bits, low byte first.
void TgaRowConverter::Grey16(const std::uint8_t* row, std::uint8_t* rgb) {
    LookForCoverage(row);
    if (alpha_ == TgaAlpha::Coverage) return RgbFromGreyAlpha(row, header_.width, rgb);
    for (int x = 0; x < header_.width; ++x, row += 2, rgb += 3) {
        const auto sample = static_cast<std::uint16_t>(row[0] | row[1] << 8);
        const std::uint8_t v = header_.HasAttributes() ? row[0] : Round16To8(sample);
        Store(LaidOverWhite({v, v, v}, row[1], alpha_), rgb);
    }
}

void TgaRowConverter::WithAlpha(const std::uint8_t* row, std::uint8_t* rgb) {
    LookForCoverage(row);
    const int bits = header_.bits;
    if (bits == 32 && alpha_ == TgaAlpha::Coverage) return RgbFromBgra(row, header_.width, rgb);
    for (int x = 0; x < header_.width; ++x, row += header_.PixelBytes(), rgb += 3)
        Store(LaidOverWhite(ColourOf(row, bits), CoverageOf(row, bits), alpha_), rgb);
}

void TgaRowConverter::LookForCoverage(const std::uint8_t* row) {
    const int unit = header_.PixelBytes();
    for (int x = 0; x < header_.width && !anyCoverage_; ++x, row += unit)
        anyCoverage_ =
            header_.kind == TgaKind::Grey ? row[1] != 0 : CoverageOf(row, header_.bits) != 0;
}

}  // namespace lumo::imaging::codecs

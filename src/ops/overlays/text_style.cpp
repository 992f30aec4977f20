#include "ops/overlays/text_style.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace lumo::ops::overlays {
namespace {

using imaging::ImageView;
using imaging::Rect;
using imaging::Size;
using imaging::Smoothing;
using imaging::TextFont;

constexpr std::size_t kLongestFace = 31;  // bytes: what the font records of old Scripts held

std::string_view FaceOf(std::string_view face) {
    if (face.size() <= kLongestFace) return face;
    std::size_t end = kLongestFace;
    while (end > 0 && (static_cast<unsigned char>(face[end]) & 0xC0U) == 0x80U) --end;
    return face.substr(0, end);
}

}  // namespace

TextFont ReadFont(const script::Fields& fields, int first) {
    return {.face = std::string(FaceOf(fields.Text(first + 5))),
            .height = fields.Integer(first),
            .weight = fields.Integer(first + 1),
            .italic = fields.Is(first + 2, "T"),
            .underline = fields.Is(first + 3, "T"),
            .strikeOut = fields.Is(first + 4, "T")};
}

double OpacityOf(const script::Fields& fields, int field) {
    return fields.IsEmpty(field) ? 1.0 : fields.Integer(field) / 100.0;
}

TextFont WithHeight(TextFont font, std::int64_t height) {
    font.height = LimitPixels(height);
    return font;
}

int LimitPixels(std::int64_t pixels) {
    return static_cast<int>(std::clamp<std::int64_t>(pixels, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

bool DrawStyled(ImageView image, std::string_view text, const TextStyle& style, Rect rect,
                double opacity, const TextServices& services) {
    const auto& draw = style.smoothing == Smoothing::Smooth ? services.drawSmooth : services.draw;
    return draw(image, text, style.font, rect, style.colour, opacity);
}

bool LayBlock(ImageView image, int x, int y, Size size, const TextStyle& style,
              const BlockWords& words, const ReportFailure& report, const TextServices& services,
              const std::function<void(ImageView block)>& write) {
    auto block = imaging::Image::TryCreate(size);
    if (!block) {
        report(words.memory);
        return false;
    }
    if (!services.fill(block->View(), {0, 0, size.width, size.height}, style.background))
        report(words.fill);
    write(block->View());
    if (!services.overlay(image, std::as_const(*block).View(), x, y, style.opacity))
        report(words.overlay);
    return true;
}

}  // namespace lumo::ops::overlays

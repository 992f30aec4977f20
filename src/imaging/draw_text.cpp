#include "imaging/draw_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "imaging/last_error.h"
#include "imaging/text_layout.h"
#include "imaging/text_lines.h"

namespace lumo::imaging {
namespace {

int ToInt(std::int64_t pixels) {
    return static_cast<int>(std::min<std::int64_t>(pixels, std::numeric_limits<int>::max()));
}

std::int64_t RoundedUp(double pixels) {
    return static_cast<std::int64_t>(std::ceil(pixels));
}

/// The lines of a text below each other. Only one is laid out at a time, so that a long text takes
/// no more memory than its bytes.
class TextBlock {
  public:
    TextBlock(TextLayout layout, std::string_view text)
        : layout_(std::move(layout)), lines_(SplitTextLines(text)) {
        boxes_.reserve(lines_.size());
        for (const std::string& line : lines_) {
            const TextLayout::Extent extent = layout_.SetLine(line);
            width_ = std::max(width_, RoundedUp(extent.width));
            step_ = std::max(step_, RoundedUp(extent.ascent + extent.descent));
            const auto baseline = static_cast<std::int64_t>(std::floor(extent.ascent + 0.5));
            boxes_.push_back({baseline, baseline + static_cast<std::int64_t>(extent.inkTop) - 1,
                              baseline + RoundedUp(extent.inkBottom) + 1});
        }
    }

    Size Extent() const {
        return {ToInt(width_), ToInt(step_ * static_cast<std::int64_t>(lines_.size()))};
    }

    /// The part of `clip` that ink may reach if the block stands at (x, y).
    Rect InkIn(Rect clip, int x, int y) const {
        std::int64_t top = 0, bottom = 0;
        for (std::size_t i = 0; i < boxes_.size(); ++i) {
            top = std::min(top, InkTop(i));
            bottom = std::max(bottom, InkBottom(i));
        }
        // Slanted letters and marks lean out of the line by less than its height.
        const auto part = [](std::int64_t from, std::int64_t to, int low, int high) {
            return std::pair(static_cast<int>(std::clamp<std::int64_t>(from, low, high)),
                             static_cast<int>(std::clamp<std::int64_t>(to, low, high)));
        };
        if (clip.left >= clip.right || clip.top >= clip.bottom) return {};
        const auto [left, right] = part(x - step_, x + width_ + step_, clip.left, clip.right);
        const auto [first, last] = part(y + top, y + bottom, clip.top, clip.bottom);
        return {left, first, right, last};
    }

    /// Draws the lines that have ink in `visible`, the block at (x, y).
    void Draw(cairo_t* cr, int x, int y, Rect visible) {
        for (std::size_t i = 0; i < lines_.size(); ++i) {
            if (y + InkTop(i) >= visible.bottom || y + InkBottom(i) <= visible.top) continue;
            layout_.SetLine(lines_[i]);
            layout_.Draw(cr, x, y + Top(i) + boxes_[i].baseline, visible);
        }
    }

  private:
    // Downwards from the top of the line.
    struct Box {
        std::int64_t baseline, inkTop, inkBottom;
    };

    std::int64_t Top(std::size_t line) const { return static_cast<std::int64_t>(line) * step_; }
    std::int64_t InkTop(std::size_t line) const {
        return Top(line) + std::min<std::int64_t>(boxes_[line].inkTop, 0);
    }
    std::int64_t InkBottom(std::size_t line) const {
        return Top(line) + std::max(boxes_[line].inkBottom, step_);
    }

    TextLayout layout_;
    std::vector<std::string> lines_;
    std::vector<Box> boxes_;
    std::int64_t width_ = 0;
    std::int64_t step_ = 0;  // from line to line
};

std::optional<TextBlock> MakeBlock(std::string_view text, const TextFont& font,
                                   Smoothing smoothing) {
    auto layout = TextLayout::Create(font, smoothing);
    if (!layout) return std::nullopt;
    return TextBlock(std::move(*layout), text);
}

/// What ink makes of the pixels that it covers.
class Inker {
  public:
    Inker(Rgb colour, double opacity)
        : colour_{double{1} * colour.red, double{1} * colour.green, double{1} * colour.blue} {
        for (std::size_t i = 0; i < shares_.size(); ++i)
            shares_[i] = static_cast<double>(i) / kFull * opacity;
        for (std::size_t c = 0; c < kChannels; ++c)
            for (std::size_t value = 0; value < 256; ++value)
                full_[c][value] =
                    Mixed(colour_[c], static_cast<std::uint8_t>(value), shares_[kFull]);
    }

    /// Lays ink on pixels in a row, for each as much as the mask says.
    void Lay(const std::uint8_t* mask, int count, std::uint8_t* pixel) const {
        for (int x = 0; x < count;) {
            if (count - x >= 8 && IsZero(mask + x)) {
                x += 8;
                continue;
            }
            const int end = std::min(x + 8, count);
            for (; x < end; ++x)
                LayOne(mask[x], pixel + static_cast<std::ptrdiff_t>(x) * kChannels);
        }
    }

  private:
    static constexpr std::size_t kFull = 255;

    static std::uint8_t Mixed(double colour, std::uint8_t value, double share) {
        return static_cast<std::uint8_t>(colour * share + value * (1.0 - share) + 0.5);
    }
    static bool IsZero(const std::uint8_t* eight) {
        std::uint64_t all;
        std::memcpy(&all, eight, sizeof all);
        return all == 0;
    }
    void LayOne(std::uint8_t ink, std::uint8_t* pixel) const {
        if (ink == kFull) {
            for (std::size_t c = 0; c < kChannels; ++c) pixel[c] = full_[c][pixel[c]];
        } else if (ink != 0) {
            for (std::size_t c = 0; c < kChannels; ++c)
                pixel[c] = Mixed(colour_[c], pixel[c], shares_[ink]);
        }
    }

    std::array<double, kChannels> colour_;
    std::array<double, 256> shares_;  // of the colour, by the ink on a pixel
    std::array<std::array<std::uint8_t, 256>, kChannels> full_;
};

// Pixels of the mask that is drawn and laid on the picture at once.
constexpr int kMaskWidth = 16384;
constexpr int kMaskArea = 4 << 20;

bool DrawText(ImageView image, std::string_view text, const TextFont& font, Rect rect, Rgb colour,
              double opacity, Smoothing smoothing) {
    if (image.IsEmpty()) {
        SetLastError("there is no picture to write on");
        return false;
    }
    auto block = MakeBlock(text, font, smoothing);
    if (!block) return false;
    const Rect ink =
        block->InkIn({std::max(rect.left, 0), std::max(rect.top, 0),
                      std::min(rect.right, image.Width()), std::min(rect.bottom, image.Height())},
                     rect.left, rect.top);
    if (ink.Extent().IsEmpty()) return true;
    const int width = std::min(ink.Extent().width, kMaskWidth);
    const int height = std::min(ink.Extent().height, kMaskArea / width);
    const CairoSurface mask(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height));
    const CairoContext cr(cairo_create(mask.get()));
    cairo_set_antialias(
        cr.get(), smoothing == Smoothing::Aliased ? CAIRO_ANTIALIAS_NONE : CAIRO_ANTIALIAS_GRAY);
    const Inker inker(colour, std::clamp(opacity, 0.0, 1.0));
    for (int top = ink.top; top < ink.bottom; top += height)
        for (int left = ink.left; left < ink.right; left += width) {
            const Rect part{left, top, std::min(left + width, ink.right),
                            std::min(top + height, ink.bottom)};
            cairo_set_operator(cr.get(), CAIRO_OPERATOR_CLEAR);
            cairo_paint(cr.get());
            cairo_set_operator(cr.get(), CAIRO_OPERATOR_OVER);
            cairo_save(cr.get());
            cairo_translate(cr.get(), -left, -top);
            block->Draw(cr.get(), rect.left, rect.top, part);
            cairo_restore(cr.get());
            cairo_surface_flush(mask.get());
            if (const cairo_status_t status = cairo_status(cr.get());
                status != CAIRO_STATUS_SUCCESS) {
                SetLastError(cairo_status_to_string(status));
                return false;
            }
            const std::uint8_t* row = cairo_image_surface_get_data(mask.get());
            for (int y = part.top; y < part.bottom; ++y) {
                inker.Lay(row, part.right - part.left, image.At(part.left, y));
                row += cairo_image_surface_get_stride(mask.get());
            }
        }
    return true;
}

}  // namespace

std::optional<Size> GetTextLineSize2(std::string_view text, const TextFont& font,
                                     Smoothing smoothing) {
    const auto block = MakeBlock(text, font, smoothing);
    if (!block) return std::nullopt;
    return block->Extent();
}

bool DrawTextOnRGB2(ImageView image, std::string_view text, const TextFont& font, Rect rect,
                    Rgb colour, double opacity) {
    return DrawText(image, text, font, rect, colour, opacity, Smoothing::Aliased);
}

bool DrawSmoothTextOnRGB2(ImageView image, std::string_view text, const TextFont& font, Rect rect,
                          Rgb colour, double opacity) {
    return DrawText(image, text, font, rect, colour, opacity, Smoothing::Smooth);
}

}  // namespace lumo::imaging

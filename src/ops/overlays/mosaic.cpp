#include "ops/overlays/mosaic.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <tuple>
#include <utility>

#include "imaging/compose.h"
#include "imaging/parallel.h"
#include "imaging/simd.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::kChannels;
using imaging::Rect;
using imaging::Size;

enum Field { kWidth, kHeight, kUnit };

constexpr std::string_view kUnitNames[] = {"Pixel size of mosaic blocks",
                                           "Number of mosaic blocks"};
constexpr std::array kFields{Integer("Width:", "8").Clamp(0, 400),
                             Integer("Height:", "8").Clamp(0, 400),
                             Choice("Measured", "0", kUnitNames)};
constexpr DialogSpec kDialog{
    .title = "Convert image to mosaic", .windowState = "WS31", .helpTopic = "Effect_mosaic"};

std::string PanelOf(const Fields& fields) {
    const bool byNumber = fields.Is(kUnit, "1");
    return PanelLines()
        .Line(kUnitNames[byNumber ? 1 : 0])
        .Line(byNumber ? "Across: " : "Width: ", fields.Text(kWidth))
        .Line(byNumber ? "Down: " : "Height: ", fields.Text(kHeight))
        .Text();
}

// The size of a block, none where no block has a pixel.
std::optional<Size> BlockOf(Size image, const Fields& fields) {
    Size block{fields.Integer(kWidth), fields.Integer(kHeight)};
    if (fields.Is(kUnit, "1")) {
        if (block.width == 0 || block.height == 0) return std::nullopt;
        block = {std::max(image.width / block.width, 2), std::max(image.height / block.height, 2)};
    }
    if (block.IsEmpty()) return std::nullopt;
    return block;
}

Outcome RunMosaic(CLumoscriptView& view, const Fields& fields) {
    const auto block = BlockOf(view.working.main.Extent(), fields);
    if (!block) return Outcome::Failed;
    MosaicImage(view.working.main.View(), *block);
    return Outcome::Succeeded;
}

Image PreviewMosaic(ConstImageView before, Size sample, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) {
        auto block = BlockOf(fields.Is(kUnit, "1") ? before.Extent() : sample, fields);
        if (!block) return;
        if (!fields.Is(kUnit, "1"))
            block = Size{PreviewLength(block->width, before.Width(), sample.width, 1),
                         PreviewLength(block->height, before.Height(), sample.height, 1)};
        MosaicImage(after, *block);
    });
}

constexpr int kStripPixels = 1024;
constexpr std::size_t kStripBytes = std::size_t{kStripPixels} * kChannels;

struct Sums {
    std::uint64_t channel[kChannels] = {};
};

// A column of a picture holds at most 2^31 - 1 rows of 255: rows are added in parts that 32 bits
// hold.
constexpr int kRowsPerSum = 1 << 24;

LUMO_SIMD_CLONES void AddRow(const std::uint8_t* row, std::size_t bytes, std::uint32_t* sums) {
    for (std::size_t i = 0; i < bytes; ++i) sums[i] += row[i];
}

// Blocks of few pixels, on which one by one most of the time would go: sums, averages and the
// spreading of an average over its block are made for every byte of a strip, as if a block began
// at each pixel, and only those of the blocks that do are kept.
constexpr int kSmallWidth = 4;
// Up to here the product below is the truncated quotient for every sum of that many bytes.
constexpr std::int64_t kSmallArea = 16;
constexpr std::size_t kSmallReach = std::size_t{kSmallWidth - 1} * kChannels;

bool IsSmall(Size block) {
    return block.width <= kSmallWidth && block.Area() <= kSmallArea && block.Area() > 1;
}

LUMO_SIMD_CLONES void AddShortRow(const std::uint8_t* row, std::size_t bytes, std::uint16_t* sums) {
    for (std::size_t i = 0; i < bytes; ++i) sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
}

// Averages of `width` columns from each byte on; there are kSmallReach sums more than bytes.
LUMO_SIMD_CLONES void AverageFromEach(const std::uint16_t* sums, std::size_t bytes, int width,
                                      std::uint16_t share, std::uint8_t* averages) {
    std::array<std::uint16_t, kStripBytes> totals;
    std::copy_n(sums, bytes, totals.begin());
    for (int column = 1; column < width; ++column) {
        const std::uint16_t* const next = sums + std::ptrdiff_t{column} * kChannels;
        for (std::size_t i = 0; i < bytes; ++i)
            totals[i] = static_cast<std::uint16_t>(totals[i] + next[i]);
    }
    for (std::size_t i = 0; i < bytes; ++i)
        averages[i] = static_cast<std::uint8_t>((std::uint32_t{totals[i]} * share) >> 16U);
}

// Adds what the blocks' pixels at one place in them take of the averages `place` pixels before.
LUMO_SIMD_CLONES void SpreadPlace(const std::uint8_t* averages, const std::uint8_t* mask,
                                  std::size_t bytes, std::uint8_t* line) {
    for (std::size_t i = 0; i < bytes; ++i)
        line[i] = static_cast<std::uint8_t>(line[i] | (averages[i] & mask[i]));
}

// As FlattenStrip, for small blocks that fill the width of the strip.
class SmallBlocks {
  public:
    SmallBlocks(Size block) : block_(block) {
        for (std::size_t place = 0; place < masks_.size(); ++place)
            for (std::size_t i = 0; i < kStripBytes; ++i)
                masks_[place][i] =
                    i / kChannels % static_cast<std::size_t>(block.width) == place ? 0xFF : 0;
    }

    void Flatten(ImageView image, Rect strip) const {
        const std::size_t bytes = imaging::StrideOf(strip.Extent());
        std::array<std::uint16_t, kStripBytes + kSmallReach> sums;
        std::fill_n(sums.begin(), bytes + kSmallReach, std::uint16_t{0});
        for (int y = strip.top; y < strip.bottom; ++y)
            AddShortRow(image.At(strip.left, y), bytes, sums.data());
        // The averages stand behind as many zeros as a block reaches to the right.
        std::array<std::uint8_t, kSmallReach + kStripBytes> averages;
        std::fill_n(averages.begin(), kSmallReach, std::uint8_t{0});
        std::uint8_t* const first = averages.data() + kSmallReach;
        const int area = block_.width * (strip.bottom - strip.top);
        const auto share = static_cast<std::uint16_t>((0x10000 + area - 1) / area);
        AverageFromEach(sums.data(), bytes, block_.width, share, first);
        std::array<std::uint8_t, kStripBytes> line;
        std::fill_n(line.begin(), bytes, std::uint8_t{0});
        for (int place = 0; place < block_.width; ++place)
            SpreadPlace(first - std::ptrdiff_t{place} * kChannels,
                        masks_[static_cast<std::size_t>(place)].data(), bytes, line.data());
        for (int y = strip.top; y < strip.bottom; ++y)
            std::memcpy(image.At(strip.left, y), line.data(), bytes);
    }

  private:
    Size block_;
    std::array<std::array<std::uint8_t, kStripBytes>, kSmallWidth> masks_;  // by place in the block
};

// Adds the sums of each run of `width` columns (the last may be shorter) to `blocks`.
void SumBlocks(ConstImageView image, Rect strip, int width, Sums* blocks) {
    std::array<std::uint32_t, kStripBytes> columns;
    const std::size_t bytes = imaging::StrideOf(strip.Extent());
    for (int from = strip.top; from < strip.bottom;) {
        const int to = strip.bottom - from > kRowsPerSum ? from + kRowsPerSum : strip.bottom;
        std::fill_n(columns.begin(), bytes, 0U);
        for (; from < to; ++from) AddRow(image.At(strip.left, from), bytes, columns.data());
        const std::uint32_t* sum = columns.data();
        Sums* block = blocks;
        for (int x = strip.left; x < strip.right; ++block) {
            const int end = std::min(x + width, strip.right);
            for (; x < end; ++x)
                for (std::uint64_t& total : block->channel) total += *sum++;
        }
    }
}

// Sums divided by the area of a block, truncated. The half keeps a whole quotient on its side of
// the rounding: it lies 0.5 / area above, any other at least as far below the next whole number.
class Averages {
  public:
    explicit Averages(Size block) : share_(1.0 / static_cast<double>(block.Area())) {}
    std::uint8_t Of(std::uint64_t sum) const {
        return static_cast<std::uint8_t>(
            (static_cast<double>(static_cast<std::int64_t>(sum)) + 0.5) * share_);
    }

  private:
    double share_;
};

// A block wider than a strip.
void FlattenBlock(ImageView image, Rect block) {
    Sums sums;
    for (int x = block.left; x < block.right; x += kStripPixels)
        SumBlocks(image, {x, block.top, std::min(x + kStripPixels, block.right), block.bottom},
                  kStripPixels, &sums);
    const Averages average(block.Extent());
    std::ignore = imaging::FillSolidRect(  // a block has pixels
        image, block,
        {average.Of(sums.channel[0]), average.Of(sums.channel[1]), average.Of(sums.channel[2])});
}

// As many whole blocks as a strip holds.
void FlattenStrip(ImageView image, Rect strip, int width) {
    std::array<Sums, kStripPixels> blocks;
    std::array<std::uint8_t, kStripBytes> line;
    std::fill_n(blocks.begin(), (strip.right - strip.left + width - 1) / width, Sums{});
    SumBlocks(image, strip, width, blocks.data());
    std::uint8_t* out = line.data();
    const Sums* block = blocks.data();
    const int height = strip.bottom - strip.top;
    const Averages whole({width, height});
    for (int x = strip.left; x < strip.right; ++block) {
        const int end = std::min(x + width, strip.right);
        const Averages average = end - x == width ? whole : Averages({end - x, height});
        std::uint8_t colour[kChannels];
        for (int c = 0; c < kChannels; ++c) colour[c] = average.Of(block->channel[c]);
        for (; x < end; ++x)
            for (const std::uint8_t value : colour) *out++ = value;
    }
    const std::size_t bytes = imaging::StrideOf(strip.Extent());
    for (int y = strip.top; y < strip.bottom; ++y)
        std::memcpy(image.At(strip.left, y), line.data(), bytes);
}

}  // namespace

void MosaicImage(ImageView image, Size block) {
    if (image.IsEmpty()) return;
    const int width = std::min(block.width, image.Width());
    const int height = std::min(block.height, image.Height());
    const int step = width > kStripPixels ? width : kStripPixels / width * width;
    const int bands = (image.Height() - 1) / height + 1;
    std::optional<SmallBlocks> small;
    if (IsSmall({width, height})) small.emplace(Size{width, height});
    // A block cut off at the right, and a row of single pixels, which have no share in 16 bits.
    const auto fits = [&](Rect strip) {
        return small && strip.Extent().width >= width && width * strip.Extent().height > 1;
    };
    const std::size_t bandBytes = image.Stride() * static_cast<std::size_t>(height);
    imaging::ForRows(bands, bandBytes, [&](int first, int last) {
        for (int band = first; band < last; ++band) {
            const int top = band * height;
            const int bottom = std::min(image.Height() - top, height) + top;
            for (int x = 0; x < image.Width(); x += step) {
                Rect strip{x, top, std::min(image.Width() - x, step) + x, bottom};
                if (width > kStripPixels) {
                    FlattenBlock(image, strip);
                    continue;
                }
                if (fits(strip)) {
                    const int whole = strip.left + strip.Extent().width / width * width;
                    small->Flatten(image, {strip.left, top, whole, bottom});
                    strip.left = whole;
                }
                if (strip.left < strip.right) FlattenStrip(image, strip, width);
            }
        }
    });
}

const Command kMosaicCommand{
    .spec = {.name = names::kMosaic, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunMosaic,
    .preview = PreviewMosaic};

}  // namespace lumo::ops::overlays

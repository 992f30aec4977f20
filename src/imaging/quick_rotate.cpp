#include "imaging/quick_rotate.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include "imaging/flip.h"
#include "imaging/last_error.h"
#include "imaging/parallel.h"

namespace lumo::imaging {
namespace {

constexpr int kTile = 32;  // pixels: the rows of a tile stay in the cache until all are read

// Columns [first, last) of the source as rows of the target.
void TurnColumns(ConstImageView source, bool clockwise, int first, int last, ImageView target) {
    const int width = source.Width(), height = source.Height();
    for (int tileY = 0; tileY < height; tileY += kTile)
        for (int x = first; x < last; ++x)
            for (int y = tileY; y < std::min(tileY + kTile, height); ++y)
                std::memcpy(clockwise ? target.At(height - 1 - y, x) : target.At(y, width - 1 - x),
                            source.At(x, y), kChannels);
}

void ReverseRow(std::uint8_t* row, int width) {
    (void)HorizontalFlipImage(ImageView(row, {width, 1}));
}

// Row by row, so that a row is turned while it is in the cache.
void HalfTurn(ImageView image) {
    const int width = image.Width(), height = image.Height();
    ForRows((height + 1) / 2, 4 * image.Stride(), [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            std::uint8_t* const above = image.Row(y);
            std::uint8_t* const below = image.Row(height - 1 - y);
            ReverseRow(above, width);
            if (above == below) continue;  // the middle row of an odd height
            ReverseRow(below, width);
            std::swap_ranges(above, above + image.Stride(), below);
        }
    });
}

// Transposes rows x columns pixels within their own memory, with one spare row or column. After
// Catanzaro, Keller and Garland, "A decomposition for in-place matrix transposition", 2014.
class InPlaceTranspose {
  public:
    InPlaceTranspose(std::uint8_t* pixels, std::size_t rows, std::size_t columns)
        : pixels_(pixels),
          rows_(rows),
          columns_(columns),
          common_(std::gcd(rows, columns)),
          spare_(std::max(rows, columns)) {}

    void Run() {
        const std::size_t rowGroup = rows_ / common_, columnGroup = columns_ / common_;
        if (common_ > 1)
            for (std::size_t column = 0; column < columns_; ++column)
                GatherColumn(column,
                             [&](std::size_t row) { return (row + column / columnGroup) % rows_; });
        for (std::size_t row = 0; row < rows_; ++row)
            ScatterRow(row, [&](std::size_t column) {
                return ((row + column / columnGroup) % rows_ + column * rows_) % columns_;
            });
        for (std::size_t column = 0; column < columns_; ++column)
            GatherColumn(column, [&](std::size_t row) {
                return (column + row * columns_ - row / rowGroup) % rows_;
            });
    }

  private:
    struct Pixel {
        std::uint8_t bytes[kChannels];
    };

    std::uint8_t* At(std::size_t row, std::size_t column) const {
        return pixels_ + (row * columns_ + column) * kChannels;
    }
    template <typename From>
    void GatherColumn(std::size_t column, From from) {
        for (std::size_t row = 0; row < rows_; ++row)
            std::memcpy(&spare_[row], At(from(row), column), kChannels);
        for (std::size_t row = 0; row < rows_; ++row)
            std::memcpy(At(row, column), &spare_[row], kChannels);
    }
    template <typename To>
    void ScatterRow(std::size_t row, To to) {
        for (std::size_t column = 0; column < columns_; ++column)
            std::memcpy(&spare_[to(column)], At(row, column), kChannels);
        std::memcpy(At(row, 0), spare_.data(), columns_ * kChannels);
    }

    std::uint8_t* pixels_;
    std::size_t rows_, columns_, common_;
    std::vector<Pixel> spare_;
};

void TurnInPlace(Image& image, QuarterTurn turn) {
    const Size size = image.Extent();
    if (turn == QuarterTurn::By90) (void)VerticalFlipImage(image.View());
    InPlaceTranspose(image.View().Bytes().data(), static_cast<std::size_t>(size.height),
                     static_cast<std::size_t>(size.width))
        .Run();
    image.ExchangeSides();
    if (turn == QuarterTurn::By270) (void)VerticalFlipImage(image.View());
}

}  // namespace

void QuickRotate(ConstImageView source, QuarterTurn turn, ImageView target) {
    if (turn == QuarterTurn::By180) {
        ForRows(target.Height(), target.Stride(), [&](int first, int last) {
            for (int y = first; y < last; ++y) {
                std::memcpy(target.Row(y), source.Row(source.Height() - 1 - y), target.Stride());
                ReverseRow(target.Row(y), target.Width());
            }
        });
        return;
    }
    const bool clockwise = turn == QuarterTurn::By90;
    TurnColumns(source, clockwise, 0, source.Width(), target);
}

bool QuickRotateImageInPlace(Image& image, QuarterTurn turn) {
    if (image.IsEmpty()) {
        SetLastError("there is no picture to turn");
        return false;
    }
    if (turn == QuarterTurn::By180) {
        HalfTurn(image.View());
        return true;
    }
    if (auto target = Image::TryCreate({image.Height(), image.Width()})) {
        QuickRotate(std::as_const(image).View(), turn, target->View());
        image = std::move(*target);
    } else {
        TurnInPlace(image, turn);
    }
    return true;
}

}  // namespace lumo::imaging

#include "imaging/quick_rotate.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>
#include <vector>

#include "imaging/flip.h"
#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/quick_rotate_kernels.h"

namespace lumo::imaging {
namespace {

// Rows y and height - 1 - y change places, each reversed.
void HalfTurn(ImageView image) {
    const int height = image.Height();
    ForRows((height + 1) / 2, 4 * image.Stride(), [&](int first, int last) {
        std::vector<std::uint8_t> spare(image.Stride());
        for (int y = first; y < last; ++y) {
            std::uint8_t* const above = image.Row(y);
            std::uint8_t* const below = image.Row(height - 1 - y);
            std::memcpy(spare.data(), above, spare.size());
            if (above != below)  // no middle row of an odd height
                kernels::ReverseRow(below, image.Width(), above);
            kernels::ReverseRow(spare.data(), image.Width(), below);
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

bool TurnInPlace(Image& image, QuarterTurn turn) {
    const Size size = image.Extent();
    if (turn == QuarterTurn::By90 && !VerticalFlipImage(image.View())) return false;
    InPlaceTranspose(image.View().Bytes().data(), static_cast<std::size_t>(size.height),
                     static_cast<std::size_t>(size.width))
        .Run();
    image.ExchangeSides();
    return turn == QuarterTurn::By90 || VerticalFlipImage(image.View());
}

}  // namespace

void QuickRotate(ConstImageView source, QuarterTurn turn, ImageView target) {
    if (turn == QuarterTurn::By180) {
        ForRows(target.Height(), 2 * target.Stride(), [&](int first, int last) {
            for (int y = first; y < last; ++y)
                kernels::ReverseRow(source.Row(source.Height() - 1 - y), source.Width(),
                                    target.Row(y));
        });
        return;
    }
    const bool clockwise = turn == QuarterTurn::By90;
    ForRows(source.Width(), 2 * target.Stride(), [&](int first, int last) {
        kernels::TurnColumns(source, clockwise, first, last, target);
    });
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
        return true;
    }
    return TurnInPlace(image, turn);
}

}  // namespace lumo::imaging

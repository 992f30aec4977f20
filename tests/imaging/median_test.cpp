#include "imaging/median.h"

#include <gtest/gtest.h>

#include "imaging/last_error.h"
#include "reference/colour_reference.h"
#include "support/each_pixel.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

Image Filtered(const Image& source) {
    Image target = test::FlatImage(source.Extent(), {1, 2, 3});
    EXPECT_TRUE(MedianFilterImage(source.View(), target.View()));
    return target;
}

TEST(MedianFilterImage, AgreesWithSortingOnAllSmallSizes) {
    for (int width = 1; width <= 9; ++width)
        for (int height = 1; height <= 7; ++height) {
            const Image source = test::RandomImage({width, height}, 1);
            EXPECT_TRUE(
                test::SamePixels(Filtered(source), test::reference::Median3x3(source.View())))
                << width << " x " << height;
        }
    for (const Size size : test::kOddSizes) {
        const Image source = test::RandomImage({size.width, size.height + 3}, 2);
        EXPECT_TRUE(test::SamePixels(Filtered(source), test::reference::Median3x3(source.View())));
    }
    const Image photo = test::PhotoLikeImage({211, 97});
    EXPECT_TRUE(test::SamePixels(Filtered(photo), test::reference::Median3x3(photo.View())));
}

/// Dark on the left, bright from column 5 on.
Image EdgeImage() {
    Image image = test::FlatImage({9, 9}, {20, 20, 20});
    const ImageView view = image.View();
    for (int i = 0; i < 81; ++i)
        if (i % 9 >= 5) view.SetPixel(i % 9, i / 9, {200, 200, 200});
    return image;
}

TEST(MedianFilterImage, DropsASpeckAndKeepsAnEdge) {
    Image image = EdgeImage();
    const ImageView view = image.View();
    view.SetPixel(2, 4, {255, 0, 255});
    EXPECT_TRUE(test::SamePixels(Filtered(image), EdgeImage()));
}

TEST(MedianFilterImage, RefusesSizesThatDiffer) {
    const Image source = test::FlatImage({3, 3}, {});
    Image target = test::FlatImage({3, 2}, {});
    EXPECT_FALSE(MedianFilterImage(source.View(), target.View()));
    EXPECT_FALSE(MedianFilterImage({}, {}));
    EXPECT_EQ(LastError(), "the pictures of a median filter differ in size or are empty");
}

}  // namespace
}  // namespace lumo::imaging

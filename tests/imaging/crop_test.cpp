#include "imaging/crop.h"

#include <gtest/gtest.h>

#include <climits>

#include "imaging/last_error.h"
#include "support/test_images.h"

namespace lumo::imaging {
namespace {

TEST(CropImage, CopiesTheRectangleByteForByte) {
    const Image source = test::CoordinateImage({20, 10});
    for (const Rect rect : {Rect{0, 0, 20, 10}, Rect{3, 2, 17, 9}, Rect{0, 4, 20, 6},
                            Rect{19, 9, 20, 10}, Rect{0, 0, 1, 1}}) {
        Image target = test::FlatImage(rect.Extent(), {});
        EXPECT_TRUE(CropImage(source.View(), rect, target.View()));
        EXPECT_TRUE(
            test::SamePixels(target, test::CoordinateImage(rect.Extent(), {rect.left, rect.top})));
    }
}

TEST(CropImage, RefusesWhatIsNotInsideAndLeavesTheTargetAlone) {
    const Image source = test::CoordinateImage({20, 10});
    Image target = test::FlatImage({5, 5}, {9, 9, 9});
    for (const Rect rect :
         {Rect{-1, 0, 4, 5}, Rect{0, -1, 5, 4}, Rect{16, 0, 21, 5}, Rect{0, 6, 5, 11},
          Rect{5, 0, 5, 5}, Rect{6, 0, 1, 5}, Rect{INT_MIN, INT_MIN, INT_MAX, INT_MAX}}) {
        ClearLastError();
        EXPECT_FALSE(CropImage(source.View(), rect, target.View())) << rect.left;
        EXPECT_EQ(LastError(), "the rectangle to crop is not inside of the picture");
    }
    EXPECT_TRUE(test::SamePixels(target, test::FlatImage({5, 5}, {9, 9, 9})));
}

TEST(CropImage, RefusesATargetOfAnotherSize) {
    const Image source = test::CoordinateImage({20, 10});
    Image target = test::FlatImage({5, 5}, {9, 9, 9});
    ClearLastError();
    EXPECT_FALSE(CropImage(source.View(), {0, 0, 5, 6}, target.View()));
    EXPECT_EQ(LastError(), "the target does not have the size of the rectangle to crop");
    EXPECT_TRUE(test::SamePixels(target, test::FlatImage({5, 5}, {9, 9, 9})));
}

}  // namespace
}  // namespace lumo::imaging

// The HSL routines against the plain formulas, on everything that they can meet.

#include <gtest/gtest.h>

#include "imaging/colour.h"
#include "reference/colour_reference.h"

namespace lumo::imaging {
namespace {

namespace reference = test::reference;

TEST(RgbToHsl, AgreesWithThePlainFormulaOnEveryColour) {
    int wrong = 0;
    for (int red = 0; red < 256; ++red)
        for (int green = 0; green < 256; ++green)
            for (int blue = 0; blue < 256; ++blue) {
                const Rgb p{static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
                            static_cast<std::uint8_t>(blue)};
                wrong += RgbToHsl(p) != reference::ToHsl(p);
            }
    EXPECT_EQ(wrong, 0);
}

TEST(HslToRgb, AgreesWithThePlainFormulaOnEveryRecord) {
    int wrong = 0;
    for (int hue = 0; hue <= 360; ++hue)
        for (int saturation = 0; saturation <= 100; ++saturation)
            for (int lightness = 0; lightness <= 100; ++lightness) {
                const Hsl colour{hue, saturation, lightness};
                wrong += HslToRgb(colour) != reference::ToRgb(colour);
            }
    EXPECT_EQ(wrong, 0);
}

TEST(HslToRgb, BeyondFullSaturationTheLowByteStays) {
    // 1.5 * 255 is 382, -0.5 * 255 is -127.
    EXPECT_EQ(HslToRgb({0, 200, 50}), (Rgb{126, 129, 129}));
}

}  // namespace
}  // namespace lumo::imaging

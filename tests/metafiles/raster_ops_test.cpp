#include "imaging/codecs/metafile/raster_ops.h"

#include <gtest/gtest.h>

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr std::uint32_t kP = 0xF0F0F0, kS = 0xCCCCCC, kD = 0xAAAAAA;

TEST(RasterOps, CodeIsItsOwnResultOnTheThreeMasks) {
    for (unsigned rop = 0; rop < 256; ++rop)
        EXPECT_EQ(ApplyRop(static_cast<Rop3>(rop), kP, kS, kD) & 0xFF, rop);
}

TEST(RasterOps, DrawingModesInTheirOrder) {
    const std::uint32_t expected[16] = {
        0,       ~(kP | kD), kD & ~kP, ~kP,      kP & ~kD, ~kD,      kP ^ kD, ~(kP & kD),
        kP & kD, ~(kP ^ kD), kD,       kD | ~kP, kP,       kP | ~kD, kP | kD, 0xFFFFFFFF};
    for (unsigned mode = 1; mode <= 16; ++mode)
        EXPECT_EQ(ApplyRop(RopOfMode(mode), kP, kS, kD), expected[mode - 1]) << mode;
    EXPECT_EQ(RopOfMode(0), kPatternCopy);
    EXPECT_EQ(RopOfMode(17), kPatternCopy);
}

TEST(RasterOps, PatternAsSourceGivesTheSameWithTheRolesChanged) {
    for (unsigned mode = 1; mode <= 16; ++mode) {
        const Rop3 rop = RopOfMode(mode);
        EXPECT_EQ(ApplyRop(PatternAsSource(rop), 0x123456, kP, kD), ApplyRop(rop, kP, 0, kD));
    }
}

TEST(RasterOps, SoftFormAgreesOnBlackAndWhite) {
    for (unsigned rop = 0; rop < 16; ++rop) {
        const Rop3 code = static_cast<Rop3>(rop | rop << 4);  // no pattern in it
        for (const std::uint32_t s : {0U, 255U})
            for (const std::uint32_t d : {0U, 255U})
                EXPECT_EQ(ApplySoftRop(code, s, d), ApplyRop(code, 0, s, d) & 255);
    }
    EXPECT_EQ(ApplySoftRop(0x88, 128, 255), 128U) << "a half-covered mask keeps half";
}

TEST(RasterOps, KnowsWhatAnOperationReads) {
    EXPECT_FALSE(UsesSource(kPatternCopy));
    EXPECT_TRUE(UsesPattern(kPatternCopy));
    EXPECT_TRUE(UsesSource(kSourceCopy));
    EXPECT_FALSE(UsesDestination(kSourceCopy));
    EXPECT_TRUE(InvertsDestination(0x66));
    EXPECT_TRUE(InvertsDestination(0x55));
    EXPECT_FALSE(InvertsDestination(0x88));
}

}  // namespace
}  // namespace lumo::imaging::codecs::metafile

#include "support/golden.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "support/test_files.h"

namespace lumo::test {
namespace {

using imaging::ConstImageView;
using imaging::kChannels;

// Pixels of which a byte differs by more than the tolerance.
std::size_t OtherPixels(ConstImageView actual, ConstImageView expected, int tolerance,
                        std::string& first) {
    std::size_t others = 0;
    for (int y = 0; y < actual.Height(); ++y)
        for (int x = 0; x < actual.Width(); ++x) {
            const std::uint8_t *a = actual.At(x, y), *e = expected.At(x, y);
            int worst = 0;
            for (int c = 0; c < kChannels; ++c) worst = std::max(worst, std::abs(a[c] - e[c]));
            if (worst <= tolerance) continue;
            if (others++ == 0)
                first = "(" + std::to_string(x) + ", " + std::to_string(y) + ") by " +
                        std::to_string(worst);
        }
    return others;
}

}  // namespace

testing::AssertionResult MatchesGolden(ConstImageView actual, std::string_view name,
                                       GoldenTolerance tolerance) {
    if (std::getenv("LUMO_WRITE_GOLDENS") != nullptr) {
        const auto png = imaging::codecs::EncodePng(actual, {});
        if (!png || !platform::WriteFile((DataFolder() / name).string(), *png))
            return testing::AssertionFailure() << "cannot write " << name;
        return testing::AssertionSuccess();
    }
    const auto expected = imaging::codecs::Decode(ReadTestFile(name), imaging::codecs::Format::Png);
    if (!expected) return testing::AssertionFailure() << "cannot read " << name;
    const ConstImageView golden = expected->image.View();
    if (actual.Extent() != golden.Extent())
        return testing::AssertionFailure()
               << name << " is " << golden.Width() << "x" << golden.Height() << ", this is "
               << actual.Width() << "x" << actual.Height();
    std::string first;
    const std::size_t others = OtherPixels(actual, golden, tolerance.byte, first);
    if (static_cast<double>(others) <=
        tolerance.otherShare * static_cast<double>(golden.Extent().Area()))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << name << " differs in " << others << " pixels, first at " << first;
}

}  // namespace lumo::test

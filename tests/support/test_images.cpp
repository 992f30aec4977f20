#include "support/test_images.h"

#include <cmath>
#include <cstdlib>
#include <random>

namespace lumo::test {

using imaging::ConstImageView;
using imaging::Image;
using imaging::Rgb;
using imaging::Size;

namespace {
Image Make(Size size) {
    // What a test compares with does not count against the budget that it tests.
    const ScopedMemoryBudget unlimited(SIZE_MAX);
    auto image = Image::TryCreate(size);
    if (!image) std::abort();
    return std::move(*image);
}
}  // namespace

Image CoordinateImage(Size size, Size origin) {
    Image image = Make(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            image.View().SetPixel(x, y,
                                  {static_cast<std::uint8_t>(x + origin.width),
                                   static_cast<std::uint8_t>(y + origin.height), 7});
    return image;
}

Image FlatImage(Size size, Rgb colour) {
    Image image = Make(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) image.View().SetPixel(x, y, colour);
    return image;
}

Image RandomImage(Size size, std::uint32_t seed) {
    Image image = Make(size);
    std::mt19937 random(seed);
    for (auto& byte : image.View().Bytes()) byte = static_cast<std::uint8_t>(random() >> 24);
    return image;
}

Image PhotoLikeImage(Size size, std::uint32_t seed) {
    Image image = Make(size);
    std::mt19937 random(seed);
    const double phase = static_cast<double>(random() % 1000) / 100.0;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const double u = 6.0 * x / size.width, v = 6.0 * y / size.height;
            const bool inside = std::hypot(u - 3, v - 3) < 1.5;
            const auto value = [&](double shift) {
                const double wave = 110 + 70 * std::sin(u + shift + phase) * std::cos(v - shift);
                const double grain = static_cast<double>(random() % 9) - 4;
                return static_cast<std::uint8_t>(std::lround(wave + grain + (inside ? 60 : 0)));
            };
            const Rgb colour{value(0), value(1), value(2)};
            image.View().SetPixel(x, y, colour);
        }
    return image;
}

Image Copy(ConstImageView view) {
    const ScopedMemoryBudget unlimited(SIZE_MAX);
    auto image = Image::TryCopy(view);
    if (!image) std::abort();
    return std::move(*image);
}

testing::AssertionResult SamePixels(ConstImageView actual, ConstImageView expected) {
    return NearPixels(actual, expected, 0);
}

testing::AssertionResult NearPixels(ConstImageView actual, ConstImageView expected, int tolerance) {
    if (actual.Extent() != expected.Extent())
        return testing::AssertionFailure()
               << "size " << actual.Width() << " x " << actual.Height() << ", expected "
               << expected.Width() << " x " << expected.Height();
    for (int y = 0; y < actual.Height(); ++y)
        for (int x = 0; x < actual.Width(); ++x)
            for (int c = 0; c < 3; ++c)
                if (std::abs(actual.At(x, y)[c] - expected.At(x, y)[c]) > tolerance)
                    return testing::AssertionFailure()
                           << "pixel (" << x << ", " << y << ") is " << int{actual.At(x, y)[0]}
                           << ", " << int{actual.At(x, y)[1]} << ", " << int{actual.At(x, y)[2]}
                           << ", expected " << int{expected.At(x, y)[0]} << ", "
                           << int{expected.At(x, y)[1]} << ", " << int{expected.At(x, y)[2]};
    return testing::AssertionSuccess();
}

}  // namespace lumo::test

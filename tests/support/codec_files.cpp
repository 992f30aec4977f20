#include "support/codec_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::test {

using imaging::Image;
using imaging::Size;
using imaging::codecs::Bytes;
using imaging::codecs::Decoded;
using platform::Result;

Bytes HeadOfPng(imaging::ConstImageView picture) {
    Bytes png = *imaging::codecs::EncodePng(picture, {});
    constexpr std::string_view kPixels = "IDAT";
    png.erase(std::ranges::search(png, kPixels).end(), png.end());
    return png;
}

Bytes BytesOf(std::initializer_list<int> values) {
    Bytes bytes;
    for (const int value : values) bytes.push_back(static_cast<std::uint8_t>(value));
    return bytes;
}

Bytes Joined(std::initializer_list<Bytes> parts) {
    Bytes whole;
    for (const Bytes& part : parts) whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

Pixels PixelsOf(const Result<Decoded>& result) {
    if (!result) {
        ADD_FAILURE() << "refused: " << result.Message();
        return {};
    }
    Pixels pixels;
    const auto view = result->image.View();
    for (int y = 0; y < view.Height(); ++y)
        for (int x = 0; x < view.Width(); ++x) pixels.push_back(view.Pixel(x, y));
    return pixels;
}

std::string LineOf(const Result<Decoded>& result) {
    return result ? result->warning : "refused: " + result.Message();
}

void CheckRoundTrips(Encoder encode, Decoder decode) {
    std::vector<Size> sizes{{640, 3}, {3, 640}, {257, 129}, {128, 128}, {1000, 11}};
    for (int height = 1; height <= 9; ++height)
        for (int width = 1; width <= 9; ++width) sizes.push_back({width, height});
    std::uint32_t seed = 0;
    for (const Size size : sizes) {
        Image flat = FlatImage(size, {200, 10, 255});
        const Image images[] = {RandomImage(size, ++seed), PhotoLikeImage(size, seed),
                                std::move(flat), CoordinateImage(size)};
        for (const Image& image : images) {
            const auto file = encode(image.View());
            ASSERT_TRUE(file) << file.Message();
            const auto back = decode(*file, {});
            ASSERT_EQ(LineOf(back), "") << size.width << " x " << size.height;
            ASSERT_TRUE(SamePixels(back->image, image)) << size.width << " x " << size.height;
        }
    }
}

void CheckKnownFiles(Decoder decode, std::string_view folder, const std::vector<KnownFile>& files) {
    std::set<std::string> missing;
    for (const auto& path : TestFilesIn(folder)) missing.insert(path.filename().string());
    for (const KnownFile& file : files) {
        missing.erase(std::string(file.name));
        const auto result = decode(ReadTestFile(fmt::format("{}/{}", folder, file.name)), {});
        ASSERT_TRUE(result) << file.name << ": " << result.Message();
        EXPECT_EQ(result->image.Extent(), file.size) << file.name;
        const std::uint64_t hash = PixelHash(result->image.View());
        EXPECT_EQ(hash, file.hash)
            << fmt::format("{{\"{}\", {{{}, {}}}, 0x{:016X}}},", file.name, result->image.Width(),
                           result->image.Height(), hash);
    }
    for (const std::string& name : missing) ADD_FAILURE() << name << " has no known picture";
}

}  // namespace lumo::test

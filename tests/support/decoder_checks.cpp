#include "support/decoder_checks.h"

#include <algorithm>
#include <utility>

#include "support/mutate.h"
#include "support/test_files.h"
#include "support/test_images.h"

namespace lumo::test {

using imaging::codecs::Bytes;
using imaging::codecs::ByteView;
using imaging::codecs::Decoded;
using imaging::codecs::DecodeOptions;

namespace {

// A damaged header may ask for much; what matters here is how it ends, not how large it is.
constexpr DecodeOptions kSmall{.limits = {.maxPixels = 4'000'000, .maxMemory = 64U << 20}};

std::vector<Bytes> ReadAll(std::string_view folder) {
    std::vector<Bytes> files;
    for (const auto& path : TestFilesIn(folder)) files.push_back(ReadWholeFile(path));
    return files;
}

}  // namespace

testing::AssertionResult IsPictureOrReason(const platform::Result<Decoded>& result) {
    const std::string& line = result ? result->warning : result.Message();
    if (line.find('\n') != std::string::npos)
        return testing::AssertionFailure() << "more than one line: " << line;
    if (result && result->image.IsEmpty())
        return testing::AssertionFailure() << "a picture without pixels";
    if (!result && line.empty()) return testing::AssertionFailure() << "refused without a reason";
    return testing::AssertionSuccess();
}

Decoded MustDecode(Decoder decode, ByteView file) {
    auto result = decode(file, {});
    if (result) return std::move(*result);
    ADD_FAILURE() << result.Message();
    return Decoded{.image = FlatImage({1, 1}, {1, 2, 3})};
}

void CheckFilesEndWell(Decoder decode, std::string_view folder) {
    std::vector<Bytes> files = ReadAll(folder);
    testing::internal::CaptureStderr();
    for (std::size_t i = 0; i < files.size(); ++i)
        EXPECT_TRUE(IsPictureOrReason(decode(files[i], kSmall))) << TestFilesIn(folder)[i];
    const Bytes& smallest = *std::ranges::min_element(files, {}, &Bytes::size);
    for (std::size_t length = 0; length < smallest.size(); ++length)
        EXPECT_TRUE(IsPictureOrReason(decode(ByteView(smallest).first(length), kSmall)))
            << "first " << length << " bytes of the smallest file";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

void CheckMutationsEndWell(Decoder decode, std::string_view folder, std::uint32_t count) {
    const std::vector<Bytes> files = ReadAll(folder);
    testing::internal::CaptureStderr();
    for (std::uint32_t seed = 0; seed < count; ++seed) {
        const Bytes damaged = Mutate(files[seed % files.size()], seed);
        EXPECT_TRUE(IsPictureOrReason(decode(damaged, kSmall)))
            << TestFilesIn(folder)[seed % files.size()] << " with seed " << seed;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

std::uint64_t PixelHash(imaging::ConstImageView image) {
    std::uint64_t hash = 14695981039346656037U;
    const auto add = [&hash](std::uint8_t byte) { hash = (hash ^ byte) * 1099511628211U; };
    for (const int side : {image.Width(), image.Height()})
        for (int shift = 0; shift < 32; shift += 8) add(static_cast<std::uint8_t>(side >> shift));
    for (const std::uint8_t byte : image.Bytes()) add(byte);
    return hash;
}

}  // namespace lumo::test

#include "io/writer_preferences.h"

#include <gtest/gtest.h>

#include "support/run_bench.h"

namespace lumo::io {
namespace {

constexpr std::string_view kParams =
    "24,150,96,70,1,10,x,y,z,5906,1,1,1,\"Author\",k2,k3,k4,\"A, B\",t2,t3,t4,8,2,1,1,";

TEST(WriterPreferences, OverwritesEverySetting) {
    test::RunBench bench;
    EXPECT_EQ(bench.Execute(kWriterPreferencesCommand, kParams), engine::Outcome::Succeeded);
    const settings::WriterSettings& writer = bench.view.settings.writer;
    EXPECT_EQ(writer.tifDpi, "150");
    EXPECT_EQ(writer.jpgDpi, "96");
    EXPECT_EQ(writer.jpgQuality, "70");
    EXPECT_EQ(writer.jpgEncoding, "1");
    EXPECT_EQ(writer.jpgSmoothing, "10");
    EXPECT_EQ(writer.pngDotsPerMetre, "5906");
    EXPECT_TRUE(writer.pngCopyText);
    EXPECT_TRUE(writer.pngInterlaced);
    EXPECT_TRUE(writer.pngAddText);
    EXPECT_EQ(writer.pngKeys, (std::array<std::string, 4>{"Author", "k2", "k3", "k4"}));
    EXPECT_EQ(writer.pngTexts, (std::array<std::string, 4>{"A, B", "t2", "t3", "t4"}));
    EXPECT_EQ(writer.tifCompression, 32773);
    EXPECT_EQ(writer.gifPalette, 2);
    EXPECT_TRUE(writer.gifDither);
    EXPECT_TRUE(writer.gifInterlaced);
}

TEST(WriterPreferences, OtherTextsFallOnTheDefaultSide) {
    test::RunBench bench;
    bench.Execute(kWriterPreferencesCommand, "24,,,,,,,,,,yes,2,x,,,,,,,,,5,x,,,");
    const settings::WriterSettings& writer = bench.view.settings.writer;
    EXPECT_FALSE(writer.pngCopyText);
    EXPECT_FALSE(writer.pngInterlaced);
    EXPECT_FALSE(writer.pngAddText);
    EXPECT_EQ(writer.tifCompression, 5);
    EXPECT_EQ(writer.gifPalette, 0);
    bench.Execute(kWriterPreferencesCommand, "24,,,,,,,,,,,,,,,,,,,,,7,1,,,");
    EXPECT_EQ(writer.tifCompression, 1);
    EXPECT_EQ(writer.gifPalette, 1);
}

TEST(WriterPreferences, TestsOnTheSampleLeaveTheSettingsAlone) {
    for (const engine::RunMode mode : {engine::RunMode::OneCommand, engine::RunMode::WholeScript}) {
        test::RunBench bench;
        bench.view.run.mode = mode;
        EXPECT_EQ(bench.Execute(kWriterPreferencesCommand, kParams), engine::Outcome::Succeeded);
        EXPECT_EQ(bench.view.settings.writer.jpgQuality, "85");
    }
    test::RunBench bench;
    bench.view.run.mode = engine::RunMode::BatchOnSample;
    bench.Execute(kWriterPreferencesCommand, kParams);
    EXPECT_EQ(bench.view.settings.writer.jpgQuality, "70");
}

TEST(WriterPreferences, NeedsNoImage) {
    test::RunBench bench;
    ASSERT_TRUE(bench.view.working.main.IsEmpty());
    EXPECT_EQ(bench.Execute(kWriterPreferencesCommand, kParams), engine::Outcome::Succeeded);
    EXPECT_EQ(bench.view.run.pc, 1);
}

}  // namespace
}  // namespace lumo::io

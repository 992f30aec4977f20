// Colour, tone and depth of a 12-megapixel picture. Everything works in place, so that the picture
// drifts from round to round; the cost does not depend on it but where a line says so.

#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_images.h"
#include "imaging/colour.h"
#include "imaging/measures.h"
#include "imaging/median.h"
#include "imaging/tone.h"
#include "ops/colour/adjust_hsl.h"
#include "ops/colour/adjust_rgb.h"
#include "ops/colour/bw_dither.h"
#include "ops/colour/bw_threshold.h"
#include "ops/colour/channels.h"
#include "ops/colour/colour_curve.h"
#include "ops/colour/replace_colour.h"
#include "ops/colour/solarize.h"
#include "ops/colour/toners.h"

namespace lumo::bench {
namespace {

using imaging::Image;
using imaging::ImageView;
using namespace ops::colour;

/// Each round starts from the same picture; the copy is not timed.
template <typename Change>
void InPlace(benchmark::State& state, const Change& change) {
    const Image source = NoisyImage(k12Megapixels);
    Image image = NoisyImage(k12Megapixels);
    for (auto _ : state) {
        state.PauseTiming();
        std::memcpy(image.View().Bytes().data(), source.View().Bytes().data(),
                    source.View().Bytes().size());
        state.ResumeTiming();
        change(image.View());
        benchmark::ClobberMemory();
    }
}

imaging::Lut Curve() {
    imaging::Lut lut{};
    for (std::size_t i = 0; i < 256; ++i) lut[i] = static_cast<std::uint8_t>((i * i + i) / 257);
    return lut;
}

#define IN_PLACE(name, ...)                                   \
    void BM_##name(benchmark::State& state) {                 \
        InPlace(state, [](ImageView image) { __VA_ARGS__; }); \
    }                                                         \
    BENCHMARK(BM_##name)->Unit(benchmark::kMillisecond)

IN_PLACE(AddToChannels, AddToChannels(image, 10, -20, 30));
IN_PLACE(Negative, InvertImage(image));
IN_PLACE(SwapRedBlue, (void)imaging::RGBToBGR(image));
IN_PLACE(SwapRedGreen, SwapRedGreen(image));
IN_PLACE(SwapGreenBlue, SwapGreenBlue(image));
IN_PLACE(Threshold, ThresholdImage(image, 120));
IN_PLACE(ThresholdMean, benchmark::DoNotOptimize(ThresholdMean(image)));
IN_PLACE(Solarize, Solarize(image, 120));
IN_PLACE(ReplaceColour, ReplaceColour(image, {{120, 120, 120}, {1, 2, 3}, 30}));
IN_PLACE(Grey, (void)imaging::ImageToGrayScale(image));
IN_PLACE(SepiaOfColour, (void)SepiaImage(image, ToneSource::Colour));
IN_PLACE(SepiaOfGrey, (void)SepiaImage(image, ToneSource::Grey));
IN_PLACE(ToneOfColour, (void)ToneImage(image, ToneSource::Colour, 30, 50));
IN_PLACE(ToneOfUngreyGrey, (void)ToneImage(image, ToneSource::Grey, 30, 50));
IN_PLACE(Gamma, (void)imaging::AdjustGamma(image, 1.8));
IN_PLACE(ContrastBrightness, (void)imaging::AdjustBrightnessContrast(image, 0.1, 0.2));
IN_PLACE(LutOfRed, const imaging::Lut lut = Curve();
         (void)imaging::ApplyLUTsToImage(image, {&lut, nullptr, nullptr}));
IN_PLACE(Stretch, (void)imaging::AutoBrightnessRGB(image, 0, 255, imaging::HistogramMode::Stretch));
IN_PLACE(Equalize,
         (void)imaging::AutoBrightnessRGB(image, 0, 255, imaging::HistogramMode::Equalize));
IN_PLACE(CurveOfBrightness, ApplyCurveToBrightness(image, Curve()));
IN_PLACE(AdjustHsl, AdjustHslOfImage(image, 30, 20, -10));
IN_PLACE(Dither, (void)DitherImage(image));
IN_PLACE(CountColours, benchmark::DoNotOptimize(imaging::CountImageColors(image)));

/// Every pixel another place of the table.
void BM_CountRandomColours(benchmark::State& state) {
    Image image = NoisyImage(k12Megapixels);
    std::uint32_t random = 1;
    for (std::uint8_t& byte : image.View().Bytes()) {
        random = random * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(random >> 24);
    }
    for (auto _ : state) benchmark::DoNotOptimize(imaging::CountImageColors(image.View()));
}
BENCHMARK(BM_CountRandomColours)->Unit(benchmark::kMillisecond);

void BM_MedianOf9(benchmark::State& state) {
    const Image source = NoisyImage(k12Megapixels);
    Image target = NoisyImage(k12Megapixels);
    for (auto _ : state) {
        (void)imaging::MedianFilterImage(source.View(), target.View());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_MedianOf9)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumo::bench

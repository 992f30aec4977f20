// Kernels that many commands share, on 12 megapixels.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "bench_images.h"
#include "imaging/colour.h"
#include "imaging/compose.h"
#include "imaging/crop.h"
#include "imaging/flip.h"

namespace lumo::bench {
namespace {

using imaging::Image, imaging::ImageView;

// Runs an operation that works in place.
template <typename Operation>
void InPlace(benchmark::State& state, const Operation& operation) {
    Image image = NoisyImage(k12Megapixels);
    for (auto _ : state) {
        if (!operation(image.View())) std::abort();
        benchmark::ClobberMemory();
    }
}

void BM_HorizontalFlipImage(benchmark::State& state) {
    InPlace(state, imaging::HorizontalFlipImage);
}
void BM_VerticalFlipImage(benchmark::State& state) {
    InPlace(state, imaging::VerticalFlipImage);
}
void BM_ImageToGrayScale(benchmark::State& state) {
    InPlace(state, imaging::ImageToGrayScale);
}
void BM_ApplyLUTsToImage(benchmark::State& state) {
    imaging::Lut table{};
    for (std::size_t i = 0; i < 256; ++i) table[i] = static_cast<std::uint8_t>(i * 3 + 1);
    InPlace(state, [&](ImageView image) {
        return imaging::ApplyLUTsToImage(image, {&table, &table, &table});
    });
}
void BM_FillSolidRect(benchmark::State& state) {
    InPlace(state, [](ImageView image) {
        return imaging::FillSolidRect(image, {0, 0, image.Width(), image.Height()}, {1, 2, 3});
    });
}
void BM_CropHalf(benchmark::State& state) {
    const Image source = NoisyImage(k12Megapixels);
    Image target = NoisyImage({2000, 3000});
    for (auto _ : state) {
        if (!imaging::CropImage(source.View(), {1000, 0, 3000, 3000}, target.View())) std::abort();
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_HorizontalFlipImage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VerticalFlipImage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImageToGrayScale)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ApplyLUTsToImage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FillSolidRect)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CropHalf)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumo::bench

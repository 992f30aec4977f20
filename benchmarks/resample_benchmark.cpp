// Changing the size of a 12-megapixel picture, and of a small one to that size.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "bench_images.h"
#include "imaging/parallel.h"
#include "imaging/resample.h"

namespace lumo::bench {
namespace {

using imaging::ResampleFilter;
using imaging::Size;

constexpr Size k2Megapixels{1633, 1225};

void Resize(benchmark::State& state, Size from, Size to, ResampleFilter filter) {
    const imaging::Image source = NoisyImage(from);
    imaging::Image target = NoisyImage(to);
    for (auto _ : state) {
        if (!imaging::ResizeImage(source.View(), target.View(), filter)) std::abort();
        benchmark::ClobberMemory();
    }
}

void BM_ResizeOnTwoThreads(benchmark::State& state) {
    imaging::SetKernelThreads(2);
    Resize(state, k12Megapixels, {1280, 960}, ResampleFilter::Bicubic);
    imaging::SetKernelThreads(1);
}
BENCHMARK(BM_ResizeOnTwoThreads)->Unit(benchmark::kMillisecond)->UseRealTime();

#define RESIZE(name, filter)                                                    \
    BENCHMARK_CAPTURE(Resize, name##_12MP_to_1280, k12Megapixels, {1280, 960},  \
                      ResampleFilter::filter)                                   \
        ->Unit(benchmark::kMillisecond);                                        \
    BENCHMARK_CAPTURE(Resize, name##_12MP_to_160, k12Megapixels, {160, 120},    \
                      ResampleFilter::filter)                                   \
        ->Unit(benchmark::kMillisecond);                                        \
    BENCHMARK_CAPTURE(Resize, name##_12MP_to_half, k12Megapixels, {2000, 1500}, \
                      ResampleFilter::filter)                                   \
        ->Unit(benchmark::kMillisecond);                                        \
    BENCHMARK_CAPTURE(Resize, name##_2MP_to_12MP, k2Megapixels, k12Megapixels,  \
                      ResampleFilter::filter)                                   \
        ->Unit(benchmark::kMillisecond)

RESIZE(nearest, Nearest);
RESIZE(box, Box);
RESIZE(bilinear, Bilinear);
RESIZE(bicubic, Bicubic);
RESIZE(lanczos3, Lanczos3);

BENCHMARK_CAPTURE(Resize, bicubic_width_only, k12Megapixels, {1280, 3000}, ResampleFilter::Bicubic)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Resize, bicubic_height_only, k12Megapixels, {4000, 960}, ResampleFilter::Bicubic)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumo::bench

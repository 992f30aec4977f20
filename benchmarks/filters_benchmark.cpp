// The filters on a 12-megapixel picture.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

#include "bench_images.h"
#include "imaging/blur_gaussian.h"
#include "imaging/simple_filters.h"
#include "ops/filters/box_blurs.h"
#include "ops/filters/convolution.h"
#include "ops/filters/extremum.h"
#include "ops/filters/median.h"
#include "ops/filters/unsharp.h"

namespace lumo::bench {
namespace {

using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using ops::filters::Extremum;
using ops::filters::MakeDisc;

template <typename Kernel>
void Filter(benchmark::State& state, const Kernel& kernel) {
    const Image source = NoisyImage(k12Megapixels);
    Image target = NoisyImage(k12Megapixels);
    for (auto _ : state) {
        if (!kernel(source.View(), target.View())) std::abort();
        benchmark::ClobberMemory();
    }
}

double Radius(const benchmark::State& state) {
    return static_cast<double>(state.range(0));
}

void Median(benchmark::State& state) {
    Filter(state, [&](ConstImageView source, ImageView target) {
        return ops::filters::FilterMedian(source, target, MakeDisc(Radius(state)));
    });
}
BENCHMARK(Median)->Arg(1)->Arg(3)->Arg(10)->Unit(benchmark::kMillisecond);

// Threshold 5: on this grain about a third of all pixels stand out.
void Dust(benchmark::State& state) {
    Filter(state, [&](ConstImageView source, ImageView target) {
        return ops::filters::RemoveDust(source, target, MakeDisc(Radius(state)), 5);
    });
}
BENCHMARK(Dust)->Arg(1)->Arg(3)->Arg(10)->Unit(benchmark::kMillisecond);

void Maximum(benchmark::State& state) {
    Filter(state, [&](ConstImageView source, ImageView target) {
        return ops::filters::FilterExtremum(source, target, MakeDisc(Radius(state)),
                                            Extremum::Maximum);
    });
}
BENCHMARK(Maximum)->Arg(1)->Arg(5)->Arg(10)->Unit(benchmark::kMillisecond);

void Minimum(benchmark::State& state) {
    Filter(state, [&](ConstImageView source, ImageView target) {
        return ops::filters::FilterExtremum(source, target, MakeDisc(Radius(state)),
                                            Extremum::Minimum);
    });
}
BENCHMARK(Minimum)->Arg(1)->Arg(5)->Arg(10)->Unit(benchmark::kMillisecond);

void Gaussian(benchmark::State& state) {
    Filter(state, [&](ConstImageView source, ImageView target) {
        return imaging::BlurGaussian(source, target, Radius(state));
    });
}
BENCHMARK(Gaussian)->Arg(1)->Arg(5)->Arg(9)->Arg(20)->Arg(200)->Unit(benchmark::kMillisecond);

// With the blur of radius 1 that comes before it; the argument tells the mode.
void Unsharp(benchmark::State& state) {
    const bool luminance = state.range(0) != 0;
    const int threshold = static_cast<int>(state.range(1));
    Filter(state, [&](ConstImageView source, ImageView target) {
        return imaging::BlurGaussian(source, target, 1.0) &&
               ops::filters::UnsharpMask(source, target, {100, threshold, luminance});
    });
}
BENCHMARK(Unsharp)
    ->ArgNames({"luminance", "threshold"})
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({1, 5})
    ->Unit(benchmark::kMillisecond);

// All 25 weights, small ones (16-bit sums) and large ones.
void Convolution5x5(benchmark::State& state) {
    ops::filters::Convolution convolution;
    int sum = 0;
    for (std::size_t i = 0; i < 25; ++i)
        sum += convolution.weights[i] =
            static_cast<int>((i % 5 + 1) * (i / 5 + 1)) * (state.range(0) != 0 ? 10 : 1) / 4 + 1;
    convolution.scale = sum;
    Filter(state, [&](ConstImageView, ImageView target) {
        return !ops::filters::Convolve(target, convolution);
    });
}
BENCHMARK(Convolution5x5)->ArgName("large")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void Outward(benchmark::State& state) {
    Filter(state, [&](ConstImageView source, ImageView target) {
        return ops::filters::BlurOutward(source, target, 40, Radius(state));
    });
}
BENCHMARK(Outward)->Arg(1)->Arg(5)->Arg(10)->Unit(benchmark::kMillisecond);

void BlurMore(benchmark::State& state) {
    Filter(state, [](ConstImageView source, ImageView target) {
        ops::filters::BlurMore(source, target);
        return true;
    });
}
BENCHMARK(BlurMore)->Unit(benchmark::kMillisecond);

void Blur(benchmark::State& state) {
    Filter(state, [](ConstImageView source, ImageView target) {
        return imaging::BlurImage(source, target, 100);
    });
}
BENCHMARK(Blur)->Unit(benchmark::kMillisecond);

void Despeckle(benchmark::State& state) {
    Filter(state, [](ConstImageView, ImageView target) { return imaging::DespeckleImage(target); });
}
BENCHMARK(Despeckle)->Unit(benchmark::kMillisecond);

void Memcpy(benchmark::State& state) {
    Filter(state, [](ConstImageView source, ImageView target) {
        std::memcpy(target.Row(0), source.Row(0), source.Bytes().size());
        return true;
    });
}
BENCHMARK(Memcpy)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumo::bench

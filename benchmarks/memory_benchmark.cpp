// The floor under every other figure: one warm copy of a 12-megapixel picture.

#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_images.h"

namespace lumo::bench {
namespace {

void BM_Memcpy12MP(benchmark::State& state) {
    const imaging::Image source = NoisyImage(k12Megapixels);
    imaging::Image target = NoisyImage(k12Megapixels);
    for (auto _ : state) {
        std::memcpy(target.View().Bytes().data(), source.View().Bytes().data(),
                    source.View().Bytes().size());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Memcpy12MP)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumo::bench

// BMP, PCX, TGA and PSD of 12 megapixels, in memory. BM_Memcpy12MP is the floor.

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "bench_images.h"
#include "imaging/codecs/decoders.h"

namespace lumo::bench {
namespace {

using namespace imaging::codecs;

using Encoder = Result<Bytes> (*)(imaging::ConstImageView);
using Decoder = Result<Decoded> (*)(ByteView, const DecodeOptions&);

// Large areas of one colour, as drawings and screen shots have: mostly runs.
imaging::Image Drawing(imaging::Size size) {
    auto image = imaging::Image::TryCreate(size);
    if (!image) std::abort();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const auto shade = static_cast<std::uint8_t>((x / 97 + y / 61) % 5 * 50);
            image->View().SetPixel(x, y, {shade, 200, static_cast<std::uint8_t>(255 - shade)});
        }
    return std::move(*image);
}

imaging::Image Picture(std::int64_t kind) {
    return kind == 0 ? NoisyImage(k12Megapixels) : Drawing(k12Megapixels);
}

template <Encoder encode>
void BM_Encode(benchmark::State& state) {
    const imaging::Image image = Picture(state.range(0));
    std::size_t bytes = 0;
    for (auto _ : state) {
        const auto file = encode(image.View());
        if (!file) std::abort();
        bytes = file->size();
    }
    state.counters["MB"] = static_cast<double>(bytes) / 1e6;
}

template <Encoder encode, Decoder decode>
void BM_Decode(benchmark::State& state) {
    const auto file = encode(Picture(state.range(0)).View());
    if (!file) std::abort();
    for (auto _ : state) {
        const auto decoded = decode(*file, {});
        if (!decoded) std::abort();
        benchmark::DoNotOptimize(decoded->image.View().Bytes().data());
    }
}

// 0: a photograph with grain, 1: a drawing.
#define LUMO_BENCHMARK_FORMAT(name)                                                    \
    BENCHMARK(BM_Encode<Encode##name>)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond); \
    BENCHMARK(BM_Decode<Encode##name, Decode##name>)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)

LUMO_BENCHMARK_FORMAT(Bmp);
LUMO_BENCHMARK_FORMAT(Pcx);
LUMO_BENCHMARK_FORMAT(Tga);
LUMO_BENCHMARK_FORMAT(Psd);

}  // namespace
}  // namespace lumo::bench

// Overlays and generated effects on 12 megapixels, with the second picture in memory.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "bench_images.h"
#include "imaging/colour.h"
#include "imaging/colour_key.h"
#include "imaging/resample.h"
#include "imaging/resize_masked.h"
#include "ops/overlays/blend_kernel.h"
#include "ops/overlays/grid.h"
#include "ops/overlays/mask.h"
#include "ops/overlays/mosaic.h"
#include "ops/overlays/noise.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/overlays/tile_grid.h"
#include "ops/overlays/tile_image.h"
#include "ops/overlays/tile_over.h"
#include "ops/overlays/watermark.h"
#include "silent_interface.h"

namespace lumo::bench {
namespace {

using namespace ops::overlays;
using imaging::ColourKey;
using imaging::Image;
using imaging::PixelBuffer;
using imaging::ResampleFilter;

template <typename Operation>
void On12Megapixels(benchmark::State& state, const Operation& operation) {
    Image image = NoisyImage(k12Megapixels);
    for (auto _ : state) {
        operation(image.View());
        benchmark::ClobberMemory();
    }
}

// What everything below is held against.
void BM_OverlayMemcpy(benchmark::State& state) {
    const Image source = NoisyImage(k12Megapixels);
    On12Megapixels(state, [&](imaging::ImageView image) {
        std::memcpy(image.Row(0), source.View().Row(0), image.Bytes().size());
    });
}
BENCHMARK(BM_OverlayMemcpy)->Unit(benchmark::kMillisecond);

// Argument: the method; at its usual scale or at another one, at full or half opacity.
void Blend(benchmark::State& state, double scaleFactor, int opacity) {
    const auto method = static_cast<BlendMethod>(state.range(0));
    const Image second = NoisyImage(k12Megapixels);
    const BlendParams params{method, 0, opacity, UsualScale(method) * scaleFactor, false};
    On12Megapixels(state,
                   [&](imaging::ImageView image) { BlendImages(image, second.View(), params); });
    state.SetLabel(std::string(kBlendNames[static_cast<std::size_t>(method)]));
}
BENCHMARK_CAPTURE(Blend, usual, 1.0, 100)->DenseRange(1, 13)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Blend, usual_half, 1.0, 50)->DenseRange(0, 8)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Blend, other_scale, 1.3, 100)->DenseRange(1, 8)->Unit(benchmark::kMillisecond);

void BM_Watermark20Percent(benchmark::State& state) {
    const bool useKey = state.range(0) != 0;
    const Image file = NoisyImage({1200, 900});
    const imaging::Rgb key{0, 0, 255};
    On12Megapixels(state, [&](imaging::ImageView image) {
        auto snapped = Image::TryCopy(file.View());
        auto resized = Image::TryCreate({800, 600});
        if (!snapped || !resized) std::abort();
        if (useKey) imaging::SnapToKey(snapped->View(), imaging::KeyWithin(key, 10));
        const bool ok = useKey ? imaging::ResizeImageMasked(std::as_const(*snapped).View(),
                                                            resized->View(), key)
                               : imaging::ResizeImage(std::as_const(*snapped).View(),
                                                      resized->View(), ResampleFilter::Bicubic);
        if (!ok) std::abort();
        CompositeWatermark(image, std::as_const(*resized).View(), 400, 300, 70,
                           useKey ? &key : nullptr);
    });
}
BENCHMARK(BM_Watermark20Percent)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_TileOver(benchmark::State& state) {
    const Image tile = NoisyImage({200, 150});
    const ColourKey key = imaging::KeyWithin({100, 100, 100}, static_cast<int>(state.range(0)));
    On12Megapixels(state, [&](imaging::ImageView image) {
        TileOver(image, tile.View(), 50, state.range(0) == 0 ? nullptr : &key);
    });
}
BENCHMARK(BM_TileOver)->Arg(0)->Arg(10)->Arg(90)->Unit(benchmark::kMillisecond);

void BM_Frame(benchmark::State& state) {
    const Image file = NoisyImage({1200, 900});
    const ColourKey key = imaging::KeyWithin({100, 100, 100}, static_cast<int>(state.range(0)));
    On12Megapixels(state, [&](imaging::ImageView image) {
        auto frame = Image::TryCreate(image.Extent());
        if (!frame || !imaging::ResizeImage(file.View(), frame->View(), ResampleFilter::Nearest) ||
            !imaging::OverlayRGBTrans(image, std::as_const(*frame).View(), key))
            std::abort();
    });
}
BENCHMARK(BM_Frame)->Arg(0)->Arg(10)->Unit(benchmark::kMillisecond);

void BM_Mask(benchmark::State& state) {
    const Image file = NoisyImage({1200, 900});
    On12Megapixels(state, [&](imaging::ImageView image) {
        auto stretched = Image::TryCreate(image.Extent());
        const std::size_t pixels = image.Extent().Area();
        const PixelBuffer grey = PixelBuffer::TryAllocate(pixels);
        if (!stretched || !grey ||
            !imaging::ResizeImage(file.View(), stretched->View(), ResampleFilter::Nearest) ||
            !imaging::ImageToGrayScale8Bit(std::as_const(*stretched).View(), {grey.Data(), pixels}))
            std::abort();
        ApplyMask(image, grey.Data(), {{10, 20, 30}, state.range(0) != 0, false});
    });
}
BENCHMARK(BM_Mask)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Mosaic(benchmark::State& state) {
    const int block = static_cast<int>(state.range(0));
    On12Megapixels(state, [&](imaging::ImageView image) { MosaicImage(image, {block, block}); });
}
BENCHMARK(BM_Mosaic)->Arg(2)->Arg(8)->Arg(100)->Arg(2000)->Unit(benchmark::kMillisecond);

void BM_Grid(benchmark::State& state) {
    On12Megapixels(state,
                   [](imaging::ImageView image) { DrawGrid(image, {10, 10, 4, {1, 2, 3}}); });
}
BENCHMARK(BM_Grid)->Unit(benchmark::kMillisecond);

// Argument: the side of a tile.
void BM_TileGrid(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    const TileGridParams params{side, side, side / 16 + 1, 0, 50};
    On12Megapixels(state, [&](imaging::ImageView image) { DrawTileGrid(image, params); });
}
BENCHMARK(BM_TileGrid)->Arg(16)->Arg(100)->Arg(666)->Unit(benchmark::kMillisecond);

void BM_TileImage(benchmark::State& state) {
    const Image picture = NoisyImage({640, 480});
    On12Megapixels(state, [&](imaging::ImageView canvas) {
        if (!TileImage(canvas, picture.View())) std::abort();
    });
}
BENCHMARK(BM_TileImage)->Unit(benchmark::kMillisecond);

using NoiseMode = void (*)(imaging::ImageView image, int amount, engine::Random& random);

void Noise(benchmark::State& state, NoiseMode mode) {
    engine::Random random;
    On12Megapixels(state, [&](imaging::ImageView image) { mode(image, 10, random); });
}
BENCHMARK_CAPTURE(Noise, replace_channels, ReplaceChannels)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Noise, replace_brightness, ReplaceBrightness)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Noise, vary_channels, VaryChannels)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Noise, vary_brightness, VaryBrightness)->Unit(benchmark::kMillisecond);

// A whole command on a 12-megapixel picture that is put back each time.
void Command(benchmark::State& state, const engine::Command& command, std::string_view params) {
    SilentInterface silence;
    engine::CLumoscriptView view(silence);
    const Image picture = NoisyImage(k12Megapixels);
    for (auto _ : state) {
        state.PauseTiming();
        view.working.main = std::move(*Image::TryCopy(picture.View()));
        state.ResumeTiming();
        if (command.run(view, script::ParseParams(params)) != engine::Outcome::Succeeded)
            std::abort();
    }
}
BENCHMARK_CAPTURE(Command, drop_shadow, kDropShadowCommand, "8,192,192,192,40,50,0,1,50,")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Command, drop_shadow_hard, kDropShadowCommand, "8,192,192,192,40,0,0,1,50,")
    ->Unit(benchmark::kMillisecond);
// One line, 5 percent of the height high: bare, on a block, and smooth.
BENCHMARK_CAPTURE(Command, text, kTextOverlayCommand,
                  "21,5,90,Copyright 2024 A. Photographer,1,30,30,30,5,1,-24,700,F,F,F,arial,"
                  "255,255,255,0,0,60,")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Command, text_block, kTextOverlayCommand,
                  "21,5,90,Copyright 2024 A. Photographer,0,30,30,30,5,1,-24,700,F,F,F,arial,"
                  "255,255,255,0,0,60,")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Command, text_smooth, kTextOverlayCommand,
                  "21,5,90,Copyright 2024 A. Photographer,1,30,30,30,5,1,-24,700,F,F,F,arial,"
                  "255,255,255,1,0,60,")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Command, text_smooth_block, kTextOverlayCommand,
                  "21,5,90,Copyright 2024 A. Photographer,0,30,30,30,5,1,-24,700,F,F,F,arial,"
                  "255,255,255,1,0,60,")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Command, text_lines, kTextOverlayAbsoluteCommand,
                  "18,100,100,0,30,30,30,-96,700,F,F,F,arial,255,255,255,"
                  "\"Sample $(size)$xFilename: $(filename)$xDate: $(date)\",1,60,")
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumo::bench

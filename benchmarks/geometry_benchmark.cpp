// The commands that move pixels, on 12 megapixels: BM_Memcpy12MP is their measure.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "bench_images.h"
#include "engine/dispatch.h"
#include "ops/geometry/geometry_commands.h"
#include "silent_interface.h"

namespace lumo::bench {
namespace {

using imaging::Image;

// Runs a command again and again on the same picture, with its buffers out of the pool. What it
// makes is freed, and the picture copied anew, outside of the time taken.
void RunCommand(benchmark::State& state, const engine::Command& command,
                const std::string& params) {
    const Image source = NoisyImage(k12Megapixels);
    SilentInterface ui;
    engine::CLumoscriptView view(ui);
    for (auto _ : state) {
        state.PauseTiming();
        auto copy = Image::TryCopy(source.View());
        if (!copy) std::abort();
        view.working.main = std::move(*copy);
        state.ResumeTiming();
        if (engine::ExecuteCommand(view, &command, command.spec.name, params) ==
            engine::Outcome::Failed)
            state.SkipWithError("the command failed");
    }
    state.counters["MP out"] = static_cast<double>(view.working.main.Extent().Area()) / 1e6;
}

#define GEOMETRY_BENCHMARK(name, command, params)          \
    void BM_##name(benchmark::State& state) {              \
        RunCommand(state, ops::geometry::command, params); \
    }                                                      \
    BENCHMARK(BM_##name)->Unit(benchmark::kMillisecond)->Iterations(20)

GEOMETRY_BENCHMARK(Crop, kCropCommand, "6,100,100,100,100,0,0,");
GEOMETRY_BENCHMARK(BorderFind, kBorderFindAndCropCommand, "5,10,0,0,0,1,");
GEOMETRY_BENCHMARK(AddBorder, kAddBorderCommand, "8,10,10,10,10,1,2,3,0,");
GEOMETRY_BENCHMARK(CanvasSize, kCanvasSizeCommand, "7,4400,3300,0,1,1,2,3,");
GEOMETRY_BENCHMARK(NewCanvas, kNewCanvasCommand, "6,4000,3000,0,1,2,3,");
GEOMETRY_BENCHMARK(Rotate90, kRotateQuarterCommand, "1,90,");
GEOMETRY_BENCHMARK(Rotate180, kRotateQuarterCommand, "1,180,");
GEOMETRY_BENCHMARK(Rotate270, kRotateQuarterCommand, "1,270,");
GEOMETRY_BENCHMARK(RotateFree1, kRotateSpecifyCommand, "4,1,2,3,1,");
GEOMETRY_BENCHMARK(RotateFree20, kRotateSpecifyCommand, "4,1,2,3,20,");
GEOMETRY_BENCHMARK(RotateFree45, kRotateSpecifyCommand, "4,1,2,3,45,");
GEOMETRY_BENCHMARK(RotateFree100, kRotateSpecifyCommand, "4,1,2,3,100,");
GEOMETRY_BENCHMARK(SkewVertical10, kSkewCommand, "5,0,10,1,2,3,");
GEOMETRY_BENCHMARK(SkewVertical45, kSkewCommand, "5,0,-45,1,2,3,");
GEOMETRY_BENCHMARK(SkewHorizontal10, kSkewCommand, "5,10,0,1,2,3,");
GEOMETRY_BENCHMARK(HorizontalPerspective, kHorizontalPerspectiveCommand, "4,1,2,3,30,");
GEOMETRY_BENCHMARK(VerticalPerspective, kVerticalPerspectiveCommand, "4,1,2,3,30,");
GEOMETRY_BENCHMARK(ShiftLeftWrap, kShiftImageCommand, "7,3,0,1000,1,1,2,3,");
GEOMETRY_BENCHMARK(ShiftDownFill, kShiftImageCommand, "7,1,0,1000,0,1,2,3,");

}  // namespace
}  // namespace lumo::bench

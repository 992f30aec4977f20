// A whole run beside the bare picture library: 40 photographs of 12 megapixels, read, scaled to
// 1280 wide and written, on one core.

#include <benchmark/benchmark.h>

// jpeglib.h needs stdio's FILE before it.
#include <cstdio>
// clang-format off
#include <jpeglib.h>
// clang-format on

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench_images.h"
#include "engine/run_batch.h"
#include "engine/view.h"
#include "imaging/codecs/codec.h"
#include "imaging/resample.h"
#include "platform/files.h"
#include "script/names.h"
#include "silent_interface.h"

namespace lumo::bench {
namespace {

namespace fs = std::filesystem;
namespace names = script::names;
using imaging::codecs::Bytes;

constexpr int kPictures = 40;
constexpr imaging::Size kTarget{1280, 960};
constexpr int kQuality = 85;

/// Waves, edges and grain: the entropy of a photograph.
imaging::Image PhotoLike(imaging::Size size, std::uint32_t seed) {
    imaging::Image image = NoisyImage(size);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const double wave = std::sin(0.004 * x + seed) * std::cos(0.005 * y - seed);
            const bool inside = std::hypot(x - 1500.0 - 10 * seed, y - 1200.0) < 700;
            std::uint8_t* p = image.View().At(x, y);
            for (int c = 0; c < 3; ++c)
                p[c] = static_cast<std::uint8_t>(120 + 60 * wave + (inside ? 40 : 0) + p[c] % 16);
        }
    return image;
}

/// A folder with the photographs, made once for the whole program and removed at its end.
class PhotoFolder {
  public:
    PhotoFolder() : path_(fs::temp_directory_path() / ("lumo-run-" + std::to_string(getpid()))) {
        fs::create_directories(path_ / "in");
        std::vector<Bytes> different;
        for (std::uint32_t seed = 0; seed < 4; ++seed) {
            auto bytes =
                imaging::codecs::EncodeJpeg(PhotoLike(k12Megapixels, seed).View(), {.quality = 90});
            if (!bytes) std::abort();
            different.push_back(std::move(*bytes));
        }
        for (int i = 0; i < kPictures; ++i) {
            const Bytes& bytes = different[static_cast<std::size_t>(i) % different.size()];
            const std::string name = (path_ / "in" / (std::to_string(i) + ".jpg")).string();
            if (!platform::WriteFile(name, bytes)) std::abort();
        }
    }
    ~PhotoFolder() { fs::remove_all(path_); }
    PhotoFolder(const PhotoFolder&) = delete;
    PhotoFolder& operator=(const PhotoFolder&) = delete;

    std::string In() const { return (path_ / "in").string(); }
    std::string Out() const { return (path_ / "out").string(); }

    static const PhotoFolder& Get() {
        static const PhotoFolder folder;
        return folder;
    }

  private:
    fs::path path_;
};

void BareDecode(const Bytes& file, std::vector<std::uint8_t>& pixels) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_RGB;
    jpeg_start_decompress(&info);
    const std::size_t stride = std::size_t{info.output_width} * 3;
    pixels.resize(stride * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.data() + stride * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
}

std::size_t BareEncode(imaging::ConstImageView image) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* out = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &out, &size);
    info.image_width = static_cast<JDIMENSION>(image.Width());
    info.image_height = static_cast<JDIMENSION>(image.Height());
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, kQuality, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto* row = const_cast<JSAMPROW>(image.Row(static_cast<int>(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::free(out);
    return size;
}

/// Decoding and encoding alone, of the same files, with nothing between them.
void BM_BareDecodeAndEncode(benchmark::State& state) {
    const PhotoFolder& folder = PhotoFolder::Get();
    const imaging::Image small = PhotoLike(kTarget, 1);
    std::vector<std::uint8_t> pixels;
    for (auto _ : state)
        for (int i = 0; i < kPictures; ++i) {
            const auto file = platform::ReadFile(folder.In() + "/" + std::to_string(i) + ".jpg");
            BareDecode(*file, pixels);
            benchmark::DoNotOptimize(BareEncode(small.View()));
        }
}
BENCHMARK(BM_BareDecodeAndEncode)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_WholeRun(benchmark::State& state) {
    const PhotoFolder& folder = PhotoFolder::Get();
    for (auto _ : state) {
        SilentInterface ui;
        engine::CLumoscriptView view(ui);
        view.run.noPrompts = true;
        view.settings.folders.logs = folder.Out() + "/logs";
        script::Script& script = view.script.commands;
        script.Add(names::kStartImageLoop,
                   "32,2,,\"" + folder.In() +
                       "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,"
                       "4.0,0,");
        script.Add(names::kScale, "6,1,0,1280,960,3,0,");
        script.Add(names::kOutputSetup, "11,0,\"" + folder.Out() + "\",0,jpg,0,0,,,0,0,1,");
        script.Add(names::kEndImageLoop, "0");
        if (!engine::PrepareBatch(view)) std::abort();
        engine::RunThreadEntry(view);
        if (view.run.statOutputs != kPictures) std::abort();
    }
}
BENCHMARK(BM_WholeRun)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_FlowCommands(benchmark::State& state) {
    for (auto _ : state) {
        SilentInterface ui;
        engine::CLumoscriptView view(ui);
        view.run.noPrompts = true;
        view.settings.logs.batchLog = view.settings.logs.errorLog = false;
        script::Script& script = view.script.commands;
        script.Add(names::kDoWhile, "5,4,1,500000,0,0,");
        script.Add(names::kCounter, "3,1,1,0,");
        script.Add(names::kDoEnd, "0");
        script.Add(names::kStartImageLoop, "32,2,,\"/nonexistent\",");
        script.Add(names::kEndImageLoop, "0");
        if (!engine::PrepareBatch(view)) std::abort();
        engine::RunThreadEntry(view);
    }
    state.SetItemsProcessed(state.iterations() * 1'500'000);
}
BENCHMARK(BM_FlowCommands)->Unit(benchmark::kMillisecond)->Iterations(2);

/// Every command of the flow, a million in all, on a picture of one pixel.
void BM_AllFlowCommands(benchmark::State& state) {
    for (auto _ : state) {
        SilentInterface ui;
        engine::CLumoscriptView view(ui);
        view.run.noPrompts = view.run.onLeftImage = true;
        view.sample.left = NoisyImage({1, 1});
        view.settings.logs.batchLog = view.settings.logs.errorLog = false;
        script::Script& script = view.script.commands;
        const auto add = [&](std::string_view name, std::string_view params = "0") {
            script.Add(name, params);
        };
        constexpr auto kAddToB = "3,1,1,1,";
        add(names::kStartImageLoop, "32,2,,\"/nonexistent\",");
        add(names::kDoWhile, "5,4,1,50000,0,0,");  // twenty commands a pass
        add(names::kIfCondition, "5,1,2,1,0,0,");  // true
        add(names::kCounter, kAddToB);
        add(names::kIfEnd);
        add(names::kElseStart);
        add(names::kElseEnd);
        add(names::kLoopStart, "1,3,");
        add(names::kCounter, kAddToB);
        add(names::kLoopEnd);
        add(names::kSubroutineExecute, "1,S,");
        add(names::kIfCondition, "5,3,0,1,0,0,");  // false
        add(names::kIfEnd);
        add(names::kElseStart);
        add(names::kCounter, kAddToB);
        add(names::kElseEnd);
        add(names::kCounter, "3,1,1,0,");
        add(names::kDoEnd);
        add(names::kEndImageLoop);
        add(names::kSubroutineStart, "1,S,");
        add(names::kCounter, kAddToB);
        add(names::kSubroutineEnd);
        if (!engine::PrepareBatch(view)) std::abort();
        engine::RunThreadEntry(view);
    }
    state.SetItemsProcessed(state.iterations() * 1'000'000);
}
BENCHMARK(BM_AllFlowCommands)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace lumo::bench

// Decoding and encoding of the formats that libraries read and write, at 12 megapixels; JPG beside
// the bare library, which reads into memory that it never gives back.

#include <benchmark/benchmark.h>
#include <jpeglib.h>  // needs <cstdio> before it

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench_images.h"
#include "imaging/codecs/decoders.h"

namespace lumo::bench {
namespace {

using namespace imaging::codecs;

const imaging::Image& Picture() {
    static const imaging::Image picture = NoisyImage(k12Megapixels);
    return picture;
}

template <class Encode>
void RunEncode(benchmark::State& state, const Encode& encode) {
    std::size_t bytes = 0;
    for (auto _ : state) {
        const Result<Bytes> file = encode(Picture().View());
        if (!file) return state.SkipWithError(file.Message().c_str());
        bytes = file->size();
    }
    state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}

template <class Decode>
void RunDecode(benchmark::State& state, const Result<Bytes>& file, const Decode& decode) {
    if (!file) return state.SkipWithError(file.Message().c_str());
    for (auto _ : state) {
        const Result<Decoded> decoded = decode(*file, DecodeOptions{});
        if (!decoded) return state.SkipWithError(decoded.Message().c_str());
    }
}

// ---- JPG -------------------------------------------------------------------------------------

void BareDecode(const Bytes& file, std::vector<unsigned char>& pixels) {
    jpeg_decompress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, file.data(), file.size());
    jpeg_read_header(&codec, TRUE);
    jpeg_start_decompress(&codec);
    const std::size_t stride = std::size_t{codec.output_width} * 3;
    pixels.resize(stride * codec.output_height);
    while (codec.output_scanline < codec.output_height) {
        JSAMPROW row = pixels.data() + codec.output_scanline * stride;
        jpeg_read_scanlines(&codec, &row, 1);
    }
    jpeg_destroy_decompress(&codec);
}

void BareEncode(imaging::ConstImageView image, bool progressive) {
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* data = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&codec, &data, &length);
    codec.image_width = static_cast<JDIMENSION>(image.Width());
    codec.image_height = static_cast<JDIMENSION>(image.Height());
    codec.input_components = 3;
    codec.in_color_space = JCS_RGB;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, 85, TRUE);
    if (progressive) jpeg_simple_progression(&codec);
    jpeg_start_compress(&codec, TRUE);
    for (int y = 0; y < image.Height(); ++y) {
        auto* row = const_cast<JSAMPROW>(image.Row(y));
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    std::free(data);
}

void BM_JpegDecode12MP(benchmark::State& state) {
    RunDecode(state, EncodeJpeg(Picture().View(), {.progressive = state.range(0) != 0}),
              DecodeJpeg);
}
void BM_JpegDecodeBare12MP(benchmark::State& state) {
    const auto file = EncodeJpeg(Picture().View(), {.progressive = state.range(0) != 0});
    std::vector<unsigned char> pixels;
    for (auto _ : state) BareDecode(*file, pixels);
}
void BM_JpegEncode12MP(benchmark::State& state) {
    RunEncode(state, [&](imaging::ConstImageView image) {
        return EncodeJpeg(image, {.progressive = state.range(0) != 0});
    });
}
void BM_JpegEncodeBare12MP(benchmark::State& state) {
    for (auto _ : state) BareEncode(Picture().View(), state.range(0) != 0);
}
BENCHMARK(BM_JpegDecode12MP)
    ->ArgName("progressive")
    ->DenseRange(0, 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JpegDecodeBare12MP)
    ->ArgName("progressive")
    ->DenseRange(0, 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JpegEncode12MP)
    ->ArgName("progressive")
    ->DenseRange(0, 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JpegEncodeBare12MP)
    ->ArgName("progressive")
    ->DenseRange(0, 1)
    ->Unit(benchmark::kMillisecond);

// ---- PNG, TIF, GIF ---------------------------------------------------------------------------

void BM_PngDecode12MP(benchmark::State& state) {
    RunDecode(state, EncodePng(Picture().View(), {}), DecodePng);
}
void BM_PngEncode12MP(benchmark::State& state) {
    RunEncode(state, [](imaging::ConstImageView image) { return EncodePng(image, {}); });
}
BENCHMARK(BM_PngDecode12MP)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PngEncode12MP)->Unit(benchmark::kMillisecond);

TiffWriteOptions TiffOptions(const benchmark::State& state) {
    return {.compression = static_cast<TiffCompression>(state.range(0))};
}
void BM_TiffDecode12MP(benchmark::State& state) {
    RunDecode(state, EncodeTiff(Picture().View(), TiffOptions(state)), DecodeTiff);
}
void BM_TiffEncode12MP(benchmark::State& state) {
    RunEncode(state,
              [&](imaging::ConstImageView image) { return EncodeTiff(image, TiffOptions(state)); });
}
BENCHMARK(BM_TiffDecode12MP)
    ->ArgName("scheme")
    ->Arg(1)
    ->Arg(5)
    ->Arg(32773)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TiffEncode12MP)
    ->ArgName("scheme")
    ->Arg(1)
    ->Arg(5)
    ->Arg(32773)
    ->Unit(benchmark::kMillisecond);

void BM_GifDecode12MP(benchmark::State& state) {
    RunDecode(state, EncodeGif(Picture().View(), {}), DecodeGif);
}
void BM_GifEncode12MP(benchmark::State& state) {
    RunEncode(state, [&](imaging::ConstImageView image) {
        return EncodeGif(image, {.palette = static_cast<GifPalette>(state.range(0)),
                                 .dither = state.range(1) != 0});
    });
}
BENCHMARK(BM_GifDecode12MP)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GifEncode12MP)
    ->ArgNames({"palette", "dither"})
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({1, 1})
    ->Args({2, 1})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace lumo::bench

#include "imaging/recursive_gaussian.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <complex>
#include <cstddef>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/pixel_buffer.h"
#include "imaging/simd.h"

namespace lumo::imaging {
namespace {

using Complex = std::complex<double>;

// Lines that are filtered side by side, one in each lane.
constexpr std::size_t kLanes = 32;
// What the intermediate picture counts in: fractions of a level.
constexpr float kFractions = 128.0F;

// z(n) = weight * x(n) + pole * z(n - 1), of which the real part counts; two of them added up.
struct Pole {
    float poleReal, poleImaginary, weightReal, weightImaginary;
    float restReal, restImaginary;  // z after an endless run of x = 1
};
struct Filter {
    std::array<Pole, 2> forward;   // with the sample itself
    std::array<Pole, 2> backward;  // z(n) = weight * x(n + 1) + pole * z(n + 1): without it
};

Pole MakePole(Complex pole, Complex weight) {
    const Complex rest = weight / (1.0 - pole);
    return {static_cast<float>(pole.real()),   static_cast<float>(pole.imag()),
            static_cast<float>(weight.real()), static_cast<float>(weight.imag()),
            static_cast<float>(rest.real()),   static_cast<float>(rest.imag())};
}

Filter MakeFilter(double deviation) {
    const std::array<Complex, 2> poles{std::exp(Complex(-1.783, 0.6318) / deviation),
                                       std::exp(Complex(-1.723, 1.997) / deviation)};
    const std::array<Complex, 2> weights{Complex(1.68, -3.735), Complex(-0.6803, 0.2598)};
    double gain = 0;
    for (std::size_t k = 0; k < 2; ++k)
        gain += (weights[k] * (1.0 + poles[k]) / (1.0 - poles[k])).real();
    Filter filter{};
    for (std::size_t k = 0; k < 2; ++k) {
        filter.forward[k] = MakePole(poles[k], weights[k] / gain);
        filter.backward[k] = MakePole(poles[k], weights[k] * poles[k] / gain);
    }
    return filter;
}

struct Lanes {
    alignas(64) std::array<std::array<float, kLanes>, 2> real, imaginary;
};

void Rest(Lanes& state, const std::array<Pole, 2>& poles, const float* x) {
    for (std::size_t k = 0; k < 2; ++k)
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            state.real[k][lane] = poles[k].restReal * x[lane];
            state.imaginary[k][lane] = poles[k].restImaginary * x[lane];
        }
}

// One step of both poles in every lane; the sum of their real parts goes to `out`.
inline void Step(Lanes& state, const std::array<Pole, 2>& poles, const float* x, float* out) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        float sum = 0;
        for (std::size_t k = 0; k < 2; ++k) {
            const Pole& p = poles[k];
            const float real = state.real[k][lane], imaginary = state.imaginary[k][lane];
            const float nextReal =
                p.weightReal * x[lane] + (p.poleReal * real - p.poleImaginary * imaginary);
            state.real[k][lane] = nextReal;
            state.imaginary[k][lane] =
                p.weightImaginary * x[lane] + (p.poleReal * imaginary + p.poleImaginary * real);
            sum += nextReal;
        }
        out[lane] = sum;
    }
}

// Both directions along `length` steps of kLanes samples; `out` gets their sum.
LUMO_SIMD_CLONES
void FilterLanes(const Filter& filter, const float* in, std::size_t length, float* out) {
    Lanes state;
    Rest(state, filter.forward, in);
    for (std::size_t n = 0; n < length; ++n)
        Step(state, filter.forward, in + n * kLanes, out + n * kLanes);
    const float* last = in + (length - 1) * kLanes;
    Rest(state, filter.backward, last);
    alignas(64) std::array<float, kLanes> sum{};
    for (std::size_t n = length; n-- > 0;) {
        Step(state, filter.backward, n + 1 < length ? in + (n + 1) * kLanes : last, sum.data());
        for (std::size_t lane = 0; lane < kLanes; ++lane) out[n * kLanes + lane] += sum[lane];
    }
}

LUMO_SIMD_CLONES
void LoadBytes(const std::uint8_t* in, std::size_t count, float* out) {
    for (std::size_t i = 0; i < count; ++i) out[i] = in[i];
}
LUMO_SIMD_CLONES
void LoadFractions(const std::int16_t* in, std::size_t count, float* out) {
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<float>(in[i]);
}

constexpr std::size_t kTile = 16;

// Calls `store(lane, n, value)` for all samples of a strip, in tiles that suit the caches.
template <typename Store>
void StoreTransposed(const float* strip, std::size_t length, std::size_t lanes, Store store) {
    for (std::size_t begin = 0; begin < length; begin += kTile) {
        const std::size_t end = std::min(length, begin + kTile);
        for (std::size_t lane = 0; lane < lanes; ++lane)
            for (std::size_t n = begin; n < end; ++n) store(lane, n, strip[n * kLanes + lane]);
    }
}

// Runs `body(begin, lanes, strip, filtered)` for all strips of `count` lines of `length` samples.
template <typename Body>
bool ForStrips(std::size_t count, std::size_t length, const Body& body) {
    const auto strips = static_cast<int>((count + kLanes - 1) / kLanes);
    std::atomic<bool> ok{true};
    ForRows(strips, length * kLanes * 8, [&](int first, int last) {
        const std::size_t bytes = length * kLanes * sizeof(float);
        const PixelBuffer memory = PixelBuffer::TryAllocate(2 * bytes);
        if (!memory) {
            ok = false;
            return;
        }
        auto* strip = reinterpret_cast<float*>(memory.Data());
        std::fill_n(strip, length * kLanes, 0.0F);
        for (int i = first; i < last; ++i) {
            const std::size_t begin = static_cast<std::size_t>(i) * kLanes;
            body(begin, std::min(kLanes, count - begin), strip, strip + length * kLanes);
        }
    });
    return ok;
}

}  // namespace

bool RecursiveGaussian(ConstImageView source, ImageView target, double deviation) {
    const Filter filter = MakeFilter(deviation);
    const auto width = static_cast<std::size_t>(source.Width());
    const auto height = static_cast<std::size_t>(source.Height());
    const std::size_t stride = source.Stride();
    const PixelBuffer memory = PixelBuffer::TryAllocate(2 * stride * height);
    if (!memory) return false;
    // The picture between the passes lies on its side: one row for each sample of a source row,
    // three for a pixel.
    auto* turned = reinterpret_cast<std::int16_t*>(memory.Data());

    const bool down = ForStrips(
        stride, height, [&](std::size_t begin, std::size_t lanes, float* strip, float* filtered) {
            for (std::size_t y = 0; y < height; ++y)
                LoadBytes(source.Row(static_cast<int>(y)) + begin, lanes, strip + y * kLanes);
            FilterLanes(filter, strip, height, filtered);
            StoreTransposed(filtered, height, lanes, [&](auto lane, auto y, float value) {
                const float scaled = std::clamp(value, 0.0F, 255.0F) * kFractions + 0.5F;
                turned[(begin + lane) * height + y] = static_cast<std::int16_t>(scaled);
            });
        });
    if (!down) return false;

    const std::size_t lines = kChannels * height;
    return ForStrips(
        lines, width, [&](std::size_t begin, std::size_t lanes, float* strip, float* filtered) {
            for (std::size_t x = 0; x < width; ++x)
                LoadFractions(turned + x * lines + begin, lanes, strip + x * kLanes);
            FilterLanes(filter, strip, width, filtered);
            std::array<std::uint8_t*, kLanes> out{};
            for (std::size_t lane = 0; lane < lanes; ++lane)
                out[lane] =
                    target.Row(static_cast<int>((begin + lane) % height)) + (begin + lane) / height;
            StoreTransposed(filtered, width, lanes, [&](auto lane, auto x, float value) {
                const float level = value * (1.0F / kFractions) + 0.5F;
                out[lane][x * kChannels] =
                    static_cast<std::uint8_t>(std::clamp(level, 0.0F, 255.0F));
            });
        });
}

}  // namespace lumo::imaging

#include "ops/overlays/blend_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "imaging/pixel_runs.h"
#include "imaging/simd.h"
#include "ops/overlays/mix.h"

namespace lumo::ops::overlays {
namespace {

constexpr std::size_t kPart = 4096;  // bytes that are blended and mixed while they are at hand

// Toward zero. Beyond 32 bits any value limits the byte in the same way.
std::int64_t Truncate(double quotient) {
    constexpr double kMost = 2147483648.0;
    if (std::isnan(quotient)) return 0;
    return static_cast<std::int64_t>(std::clamp(quotient, -kMost, kMost));
}

std::int64_t ScreenTerm(int a, int b, double scale) {
    return 255 - Truncate((255 - a) * (255 - b) / scale);
}

std::int64_t Term(BlendMethod method, int a, int b, double scale) {
    switch (method) {
        case BlendMethod::Addition:
            return Truncate((a + b) / scale);
        case BlendMethod::Subtract:
            return Truncate((a - b) / scale);
        case BlendMethod::Difference:
            return Truncate(std::abs(a - b) / scale);
        case BlendMethod::Lightest:
            return Truncate(std::max(a, b) / scale);
        case BlendMethod::Darkest:
            return Truncate(std::min(a, b) / scale);
        case BlendMethod::Multiply:
            return Truncate(a * b / scale);
        case BlendMethod::Screen:
            return ScreenTerm(a, b, scale);
        default:  // Overlay
            return a > b ? ScreenTerm(a, b, scale) : Truncate(a * b / scale);
    }
}

int SoftDodge(int a, int b) {
    if (a + b >= 256) return std::max(255 - (255 - b) * 128 / a, 0);
    return b == 255 ? 255 : std::min(a * 128 / (255 - b), 255);
}

int SoftLight(int a, int b) {
    constexpr int kOne = 255 * 255;
    const int screen = kOne - (255 - a) * (255 - b);
    return ((255 - a) * a * b + a * screen + kOne / 2) / kOne;
}

// The usual divisors in integers of 16 bits, an offset of at most 510 either way.

using Byte = std::uint8_t;
using Word = std::uint16_t;

inline std::int16_t Product(Byte a, Byte b) {
    return static_cast<std::int16_t>(By255(static_cast<Word>(a * b)));
}
inline std::int16_t Screened(Byte a, Byte b) {
    return static_cast<std::int16_t>(
        255 - Product(static_cast<Byte>(255 - a), static_cast<Byte>(255 - b)));
}
inline Byte Limited(std::int16_t term, std::int16_t offset) {
    const auto sum = static_cast<std::int16_t>(term + offset);
    const auto low = static_cast<std::int16_t>(sum < 0 ? 0 : sum);
    return static_cast<Byte>(low > 255 ? 255 : low);
}

LUMO_SIMD_CLONES void Add(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i)
        a[i] = Limited(static_cast<std::int16_t>((a[i] + b[i]) >> 1), offset);
}
LUMO_SIMD_CLONES void Subtract(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i)
        a[i] = Limited(static_cast<std::int16_t>(a[i] - b[i]), offset);
}
LUMO_SIMD_CLONES void Differ(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i)
        a[i] = Limited(
            static_cast<std::int16_t>(a[i] > b[i] ? Byte(a[i] - b[i]) : Byte(b[i] - a[i])), offset);
}
LUMO_SIMD_CLONES void Lighten(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = Limited(a[i] > b[i] ? a[i] : b[i], offset);
}
LUMO_SIMD_CLONES void Darken(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = Limited(a[i] < b[i] ? a[i] : b[i], offset);
}
LUMO_SIMD_CLONES void Multiply(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = Limited(Product(a[i], b[i]), offset);
}
LUMO_SIMD_CLONES void Screen(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = Limited(Screened(a[i], b[i]), offset);
}
LUMO_SIMD_CLONES void Overlay(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset) {
    for (std::size_t i = 0; i < bytes; ++i) {
        const std::int16_t dark = Product(a[i], b[i]), light = Screened(a[i], b[i]);
        a[i] = Limited(a[i] > b[i] ? light : dark, offset);
    }
}
// The same bytes as BlendByte for the methods without a divisor, in loops of vectors.

// n / d, truncated, limited to 255, for n up to 65025; d is not 0. A float holds n and d, and below
// 256 its quotient errs by far less than the 1 / 255 that lie between two of these.
inline int Quotient(int n, int d) {
    const int whole = static_cast<int>(static_cast<float>(n) / static_cast<float>(d));
    return whole < 255 ? whole : 255;
}

inline int QuickDodge(int a, int b) {
    const int dark = a + b < 256 ? 1 : 0;
    const int over = dark != 0 ? a : 255 - b, under = dark != 0 ? 255 - b : a;
    // Only a of 0 under b of 255 has nothing to divide by; it becomes 255.
    const int none = under == 0 ? 1 : 0;
    const int quotient = Quotient((over + 2 * none) * 128, under + none);
    return dark != 0 ? quotient : 255 - quotient;
}

// Twice divided by 255, each time truncated, is once divided by 65025.
inline int QuickLight(int a, int b) {
    constexpr int kOne = 255 * 255;
    const int sum = a * (kOne - (255 - a) * (255 - 2 * b)) + kOne / 2 + 1;
    const int once = (sum + ((sum + (sum >> 8)) >> 8)) >> 8;  // for sums up to 2^24
    return (once + 1 + (once >> 8)) >> 8;
}

inline int QuickGlow(int a, int b) {
    const int none = a == 255 ? 1 : 0;
    return none != 0 ? 255 : Quotient(b * b, 255 - a + none);
}

inline int QuickFreeze(int a, int b) {
    const int none = b == 0 ? 1 : 0;
    return none != 0 ? 0 : 255 - Quotient((255 - a) * (255 - a), b + none);
}

// These know no offset.
LUMO_SIMD_CLONES void DodgeSoftly(Byte* a, const Byte* b, std::size_t bytes, std::int16_t) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = static_cast<Byte>(QuickDodge(a[i], b[i]));
}
LUMO_SIMD_CLONES void BurnSoftly(Byte* a, const Byte* b, std::size_t bytes, std::int16_t) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = static_cast<Byte>(QuickDodge(b[i], a[i]));
}
LUMO_SIMD_CLONES void LightSoftly(Byte* a, const Byte* b, std::size_t bytes, std::int16_t) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = static_cast<Byte>(QuickLight(a[i], b[i]));
}
LUMO_SIMD_CLONES void MakeGlow(Byte* a, const Byte* b, std::size_t bytes, std::int16_t) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = static_cast<Byte>(QuickGlow(a[i], b[i]));
}
LUMO_SIMD_CLONES void MakeFrozen(Byte* a, const Byte* b, std::size_t bytes, std::int16_t) {
    for (std::size_t i = 0; i < bytes; ++i) a[i] = static_cast<Byte>(QuickFreeze(a[i], b[i]));
}
LUMO_SIMD_CLONES void Invert(const Byte* from, Byte* to, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) to[i] = static_cast<Byte>(255 - from[i]);
}

using UsualLoop = void (*)(Byte* a, const Byte* b, std::size_t bytes, std::int16_t offset);

// Null for a method or a divisor that has none.
UsualLoop UsualLoopOf(const BlendParams& params) {
    switch (params.method) {
        case BlendMethod::SoftDodge:
            return DodgeSoftly;
        case BlendMethod::SoftBurn:
            return BurnSoftly;
        case BlendMethod::SoftLight:
            return LightSoftly;
        case BlendMethod::Glow:
            return MakeGlow;
        case BlendMethod::Freeze:
            return MakeFrozen;
        default:
            break;
    }
    if (params.scale != UsualScale(params.method)) return nullptr;
    switch (params.method) {
        case BlendMethod::Addition:
            return Add;
        case BlendMethod::Subtract:
            return Subtract;
        case BlendMethod::Difference:
            return Differ;
        case BlendMethod::Lightest:
            return Lighten;
        case BlendMethod::Darkest:
            return Darken;
        case BlendMethod::Multiply:
            return Multiply;
        case BlendMethod::Screen:
            return Screen;
        case BlendMethod::Overlay:
            return Overlay;
        default:
            return nullptr;
    }
}

/// BlendByte of every pair of bytes.
class BlendTable {
  public:
    explicit BlendTable(const BlendParams& params) {
        for (int b = 0; b < 256; ++b)
            for (int a = 0; a < 256; ++a)
                results_[static_cast<std::size_t>(b * 256 + a)] = BlendByte(params, a, b);
    }
    void Apply(Byte* a, const Byte* b, std::size_t bytes) const {
        for (std::size_t i = 0; i < bytes; ++i) a[i] = results_[b[i] * 256U + a[i]];
    }

  private:
    std::array<Byte, 65536> results_;
};

// Walks the pictures in parts: inverts a copy of the second one's where asked, blends, mixes.
template <typename Blend>
void ForParts(imaging::ImageView image, imaging::ConstImageView second, const BlendParams& params,
              const Blend& blend) {
    imaging::ForPixelRuns(image, [&](Byte* first, std::size_t pixels) {
        std::array<Byte, kPart> inverted;
        const Byte* other = second.Row(0) + (first - image.Row(0));
        for (std::size_t left = pixels * imaging::kChannels; left > 0;) {
            const std::size_t bytes = std::min(left, kPart);
            const Byte* b = other;
            if (params.invert) {
                Invert(other, inverted.data(), bytes);
                b = inverted.data();
            }
            blend(first, b, bytes);
            if (params.opacity != 100) MixDividedApart(first, b, bytes, params.opacity);
            first += bytes;
            other += bytes;
            left -= bytes;
        }
    });
}

}  // namespace

BlendMethod BlendMethodOf(std::string_view name) {
    for (std::size_t i = 0; i < kBlendNames.size(); ++i)
        if (name == kBlendNames[i]) return static_cast<BlendMethod>(i);
    return BlendMethod::Normal;
}

double UsualScale(BlendMethod method) {
    switch (method) {
        case BlendMethod::Addition:
            return 2.0;
        case BlendMethod::Multiply:
        case BlendMethod::Screen:
        case BlendMethod::Overlay:
            return 255.0;
        default:
            return 1.0;
    }
}

std::uint8_t BlendByte(const BlendParams& params, int a, int b) {
    switch (params.method) {
        case BlendMethod::Normal:
            return static_cast<Byte>(a);
        case BlendMethod::SoftDodge:
            return static_cast<Byte>(SoftDodge(a, b));
        case BlendMethod::SoftBurn:
            return static_cast<Byte>(SoftDodge(b, a));
        case BlendMethod::SoftLight:
            return static_cast<Byte>(SoftLight(a, b));
        case BlendMethod::Glow:
            return static_cast<Byte>(a == 255 ? 255 : std::min(b * b / (255 - a), 255));
        case BlendMethod::Freeze:
            return static_cast<Byte>(b == 0 ? 0 : std::max(255 - (255 - a) * (255 - a) / b, 0));
        default:
            return static_cast<Byte>(std::clamp<std::int64_t>(
                Term(params.method, a, b, params.scale) + params.offset, 0, 255));
    }
}

void BlendImages(imaging::ImageView image, imaging::ConstImageView second,
                 const BlendParams& params) {
    if (params.method == BlendMethod::Normal) {
        if (params.opacity != 100) ForParts(image, second, params, [](auto...) {});
    } else if (const UsualLoop loop = UsualLoopOf(params)) {
        const auto offset = static_cast<std::int16_t>(std::clamp(params.offset, -510, 510));
        ForParts(image, second, params,
                 [&](Byte* a, const Byte* b, std::size_t bytes) { loop(a, b, bytes, offset); });
    } else {
        const BlendTable table(params);
        ForParts(image, second, params,
                 [&](Byte* a, const Byte* b, std::size_t bytes) { table.Apply(a, b, bytes); });
    }
}

}  // namespace lumo::ops::overlays

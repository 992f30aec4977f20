#include "imaging/rotate.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include "imaging/last_error.h"
#include "imaging/parallel.h"
#include "imaging/quick_rotate.h"
#include "imaging/rotate_kernels.h"

namespace lumo::imaging {
namespace {

using kernels::kPhaseBits;
using kernels::kPositionBits;

constexpr double kAllowance = 6e-6;  // 359 degrees by a pi of six figures are 5.3e-6 off
constexpr int kLongestSide = 1 << 26;
constexpr std::int64_t kOne = std::int64_t{1} << kPositionBits;
constexpr std::int64_t kHalf = kOne / 2;
constexpr std::int64_t kHalfPhase = kHalf >> kPhaseBits;
constexpr int kStripWidth = 256;  // see DrawRows

// 0 to 3 clockwise quarter turns, if the angle is one of them.
std::optional<int> QuarterTurns(double radians) {
    constexpr double kQuarter = 1.5707963267948966;
    const double turns = std::round(radians / kQuarter);
    if (std::fabs(radians - turns * kQuarter) > kAllowance) return std::nullopt;
    return static_cast<int>(std::fmod(std::fmod(turns, 4) + 4, 4));
}

Size TurnedQuarters(Size size, int turns) {
    return turns % 2 == 0 ? size : Size{size.height, size.width};
}

void CopyTurned(ConstImageView source, int turns, ImageView target) {
    if (turns == 0)
        std::memcpy(target.Bytes().data(), source.Bytes().data(), source.Bytes().size());
    else
        QuickRotate(source,
                    turns == 1   ? QuarterTurn::By90
                    : turns == 2 ? QuarterTurn::By180
                                 : QuarterTurn::By270,
                    target);
}

struct Span {
    int first = 0, last = 0;  // last is exclusive
};

Span Intersect(Span a, Span b) {
    const int first = std::max(a.first, b.first);
    return {first, std::max(first, std::min(a.last, b.last))};
}

std::int64_t FloorDivide(std::int64_t a, std::int64_t positive) {
    return a / positive - (a % positive < 0 ? 1 : 0);
}

// The x of [0, count) for which low <= start + x * step < high.
Span Solve(std::int64_t start, std::int64_t step, std::int64_t low, std::int64_t high, int count) {
    std::int64_t first = 0, last = count;
    if (step > 0) {
        first = -FloorDivide(start - low, step);
        last = -FloorDivide(start - high, step);
    } else if (step < 0) {
        first = FloorDivide(start - high, -step) + 1;
        last = FloorDivide(start - low, -step) + 1;
    } else if (start < low || start >= high) {
        last = 0;
    }
    const auto limit = [&](std::int64_t x) {
        return static_cast<int>(std::clamp<std::int64_t>(x, 0, count));
    };
    return {limit(first), std::max(limit(first), limit(last))};
}

// Where the pixels of the target lie in the source, in units of 1 / kOne: the centre of pixel (x,
// y) at (u + x * du - y * dv, v + x * dv + y * du), in which u = 0 is the left edge of the source.
struct Mapping {
    std::int64_t u, v, du, dv;

    Mapping(Size source, Size target, double radians) {
        const double cosine = std::cos(radians), sine = std::sin(radians);
        const double x = 0.5 - target.width / 2.0, y = 0.5 - target.height / 2.0;
        const auto fixed = [](double value) {
            return std::llround(value * static_cast<double>(kOne));
        };
        u = fixed(source.width / 2.0 + x * cosine + y * sine);
        v = fixed(source.height / 2.0 - x * sine + y * cosine);
        du = fixed(cosine);
        dv = fixed(-sine);
    }
    std::int64_t U(int x, int y) const { return u + x * du - y * dv; }
    std::int64_t V(int x, int y) const { return v + x * dv + y * du; }
};

class Rotation {
  public:
    Rotation(ConstImageView source, ImageView target, double radians)
        : source_(source), target_(target), map_(source.Extent(), target.Extent(), radians) {}

    // Strip by strip, so that what one row reads of the source is still in the cache when the next
    // row reads beside it.
    void DrawRows(int top, int bottom) const {
        std::vector<RowSpans> spans;
        spans.reserve(static_cast<std::size_t>(bottom - top));
        for (int y = top; y < bottom; ++y) spans.push_back(SpansOf(y));
        for (int first = 0; first < target_.Width(); first += kStripWidth) {
            const Span strip{first, std::min(first + kStripWidth, target_.Width())};
            for (int y = top; y < bottom; ++y) {
                const RowSpans& row = spans[static_cast<std::size_t>(y - top)];
                const Span touched = Intersect(row.touched, strip);
                Span inner = Intersect(row.inner, touched);
                if (inner.first == inner.last) inner = {touched.last, touched.last};
                DrawEdge({touched.first, inner.first}, y);
                DrawInner(inner, y);
                DrawEdge({inner.last, touched.last}, y);
            }
        }
    }

  private:
    struct RowSpans {
        Span touched;  // pixels that the picture covers in part at least
        Span inner;    // of those the ones far from its edges
    };

    RowSpans SpansOf(int y) const {
        const int count = target_.Width();
        const auto solve = [&](std::int64_t low, std::int64_t right, std::int64_t bottom) {
            return Intersect(Solve(map_.U(0, y), map_.du, low, right, count),
                             Solve(map_.V(0, y), map_.dv, low, bottom, count));
        };
        const std::int64_t right = source_.Width() * kOne, bottom = source_.Height() * kOne;
        // Sixteen neighbours, two pixels that are read in vain, and the rounding to a phase.
        const Span inner = solve(2 * kOne, right - 4 * kOne, bottom - 3 * kOne);
        return {solve(-kHalf, right + kHalf, bottom + kHalf), inner};
    }

    void DrawInner(Span span, int y) const {
        if (span.first >= span.last) return;
        kernels::RotatedRun run;
        run.pixels = source_.Bytes().data();
        run.stride = source_.Stride();
        run.table = kernels::CubicTable();
        run.u = Sample(map_.U(span.first, y));
        run.v = Sample(map_.V(span.first, y));
        run.du = map_.du;
        run.dv = map_.dv;
        run.count = span.last - span.first;
        run.out = target_.At(span.first, y);
        kernels::DrawRun(run);
    }

    // From a position on the plane to one that counts from the centre of the first pixel.
    static std::int64_t Sample(std::int64_t position) { return position - kHalf + kHalfPhase; }

    void DrawEdge(Span span, int y) const {
        for (int x = span.first; x < span.last; ++x) {
            const std::int64_t u = map_.U(x, y), v = map_.V(x, y);
            const std::int32_t share = Share(u, source_.Width()) * Share(v, source_.Height());
            if (share > 0) BlendPixel(u, v, share, target_.At(x, y));
        }
    }

    // Of a pixel's width, centred at `position`, the part that lies within [0, side], in 1 / 256. A
    // turn keeps distances, so the pixel may be thought upright in the source.
    static std::int32_t Share(std::int64_t position, int side) {
        const std::int64_t low = std::max<std::int64_t>(position - kHalf, 0);
        const std::int64_t high = std::min(position + kHalf, side * kOne);
        return static_cast<std::int32_t>(std::max<std::int64_t>(high - low, 0) >>
                                         (kPositionBits - 8));
    }

    void BlendPixel(std::int64_t u, std::int64_t v, std::int32_t share, std::uint8_t* out) const {
        const std::int64_t x = Sample(u), y = Sample(v);
        const auto nearest = [](std::int64_t index, int side) {
            return static_cast<int>(std::clamp<std::int64_t>(index, 0, side - 1));
        };
        const std::uint8_t* rows[4];
        std::size_t columns[4];
        for (int k = 0; k < 4; ++k) {
            rows[k] = source_.Row(nearest((y >> kPositionBits) + k - 1, source_.Height()));
            columns[k] =
                static_cast<std::size_t>(nearest((x >> kPositionBits) + k - 1, source_.Width())) *
                kChannels;
        }
        const auto weights = [](std::int64_t position) {
            return kernels::CubicTable()[(position >> (kPositionBits - kPhaseBits)) &
                                         ((1 << kPhaseBits) - 1)];
        };
        std::uint8_t drawn[kChannels];
        kernels::plain::DrawPixel(rows, columns, weights(x), weights(y), drawn);
        constexpr std::int32_t kWhole = 1 << 16;
        for (std::size_t c = 0; c < kChannels; ++c)
            out[c] = static_cast<std::uint8_t>(
                (drawn[c] * share + out[c] * (kWhole - share) + kWhole / 2) >> 16);
    }

    ConstImageView source_;
    ImageView target_;
    Mapping map_;
};

}  // namespace

bool GetRotatedPixelSize(double radians, Size size, Size& turned) {
    if (size.IsEmpty() || !std::isfinite(radians)) {
        SetLastError("there is no picture to turn");
        return false;
    }
    if (const auto turns = QuarterTurns(radians)) {
        turned = TurnedQuarters(size, *turns);
        return true;
    }
    const double cosine = std::fabs(std::cos(radians)), sine = std::fabs(std::sin(radians));
    const double width = size.width, height = size.height;
    const double slack = kAllowance * (width + height);
    const double turnedWidth = std::ceil(width * cosine + height * sine - slack);
    const double turnedHeight = std::ceil(width * sine + height * cosine - slack);
    if (std::max(turnedWidth, turnedHeight) > kLongestSide) {
        SetLastError("the turned picture is too large");
        return false;
    }
    turned = {static_cast<int>(turnedWidth), static_cast<int>(turnedHeight)};
    return true;
}

bool RotateImage(ConstImageView source, ImageView target, double radians) {
    const auto tooLong = [](Size size) { return std::max(size.width, size.height) > kLongestSide; };
    if (source.IsEmpty() || target.IsEmpty() || tooLong(source.Extent()) ||
        tooLong(target.Extent()) || !std::isfinite(radians)) {
        SetLastError("the picture cannot be turned");
        return false;
    }
    const auto turns = QuarterTurns(radians);
    if (turns && target.Extent() == TurnedQuarters(source.Extent(), *turns)) {
        CopyTurned(source, *turns, target);
        return true;
    }
    const Rotation rotation(source, target, radians);
    ForRows(target.Height(), target.Stride(),
            [&](int top, int bottom) { rotation.DrawRows(top, bottom); });
    return true;
}

}  // namespace lumo::imaging

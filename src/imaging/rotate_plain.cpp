#include <algorithm>

#include "imaging/image.h"
#include "imaging/rotate_kernels.h"

namespace lumo::imaging::kernels {
namespace {

// Keys' cubic for a = -0.5 at t = p / n, times 2 n^3: whole numbers, so that the table is the same
// everywhere.
std::array<CubicWeights, 1 << kPhaseBits> MakeTable() {
    constexpr std::int64_t n = 1 << kPhaseBits;
    constexpr std::int64_t kScale = 2 * n * n * n, kOne = 1 << kWeightBits;
    std::array<CubicWeights, n> table;
    for (std::int64_t p = 0; p < n; ++p) {
        const std::int64_t exact[] = {
            -p * p * p + 2 * p * p * n - p * n * n, 3 * p * p * p - 5 * p * p * n + 2 * n * n * n,
            -3 * p * p * p + 4 * p * p * n + p * n * n, p * p * p - p * p * n};
        CubicWeights& weights = table[static_cast<std::size_t>(p)];
        std::int64_t rest = kOne;
        for (std::size_t k = 0; k < 4; ++k) {
            const std::int64_t scaled = exact[k] * kOne;
            const std::int64_t half = scaled < 0 ? -kScale / 2 : kScale / 2;
            weights[k] = static_cast<std::int16_t>((scaled + half) / kScale);
            rest -= weights[k];
        }
        // What rounding took or gave goes to the heavier of the two middle ones.
        std::int16_t& heavier = weights[p < n / 2 ? 1 : 2];
        heavier = static_cast<std::int16_t>(heavier + rest);
    }
    return table;
}

}  // namespace

const CubicWeights* CubicTable() {
    static const auto table = MakeTable();
    return table.data();
}

namespace plain {

void DrawPixel(const std::uint8_t* const* rows, const std::size_t* columns,
               const CubicWeights& across, const CubicWeights& down, std::uint8_t* out) {
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
        std::int32_t sum = 1 << (kSecondShift - 1);
        for (std::size_t r = 0; r < 4; ++r) {
            std::int32_t row = 1 << (kFirstShift - 1);
            for (std::size_t k = 0; k < 4; ++k) row += across[k] * rows[r][columns[k] + channel];
            sum += down[r] * (row >> kFirstShift);
        }
        out[channel] = static_cast<std::uint8_t>(std::clamp(sum >> kSecondShift, 0, 255));
    }
}

void DrawRun(const RotatedRun& run) {
    constexpr int kPhaseShift = kPositionBits - kPhaseBits;
    constexpr std::int64_t kPhaseMask = (1 << kPhaseBits) - 1;
    std::int64_t u = run.u, v = run.v;
    std::uint8_t* out = run.out;
    for (int i = 0; i < run.count; ++i, u += run.du, v += run.dv, out += kChannels) {
        const auto x = static_cast<std::size_t>(u >> kPositionBits) - 1;
        const auto y = static_cast<std::size_t>(v >> kPositionBits) - 1;
        const std::uint8_t* const first = run.pixels + y * run.stride + x * kChannels;
        const std::uint8_t* const rows[] = {first, first + run.stride, first + 2 * run.stride,
                                            first + 3 * run.stride};
        constexpr std::size_t kColumns[] = {0, 3, 6, 9};
        DrawPixel(rows, kColumns, run.table[(u >> kPhaseShift) & kPhaseMask],
                  run.table[(v >> kPhaseShift) & kPhaseMask], out);
    }
}

}  // namespace plain
}  // namespace lumo::imaging::kernels

#include "imaging/resample_columns.h"

namespace lumo::imaging {

using kernels::kPairSize;

bool PlanColumns(const AxisWeights& axis, ColumnPlan& plan) {
    const auto width = static_cast<std::size_t>(axis.target);
    // Few taps for each of many pixels: a spare pair would cost more than a second layout of the
    // row.
    plan.twoPhases = axis.target > axis.source;
    plan.phaseSize = (static_cast<std::size_t>(axis.source) / 2 + 3) * kPairSize;
    plan.rowSize = plan.twoPhases ? 2 * plan.phaseSize : plan.phaseSize;
    const int pairCount = plan.twoPhases ? axis.stride / 2 : axis.taps / 2 + 1;
    const std::size_t perPixel = static_cast<std::size_t>(pairCount) * kPairSize;
    plan.memory = PixelBuffer::TryAllocate(Scratch::Room<std::int16_t>(width * perPixel) +
                                           Scratch::Room<std::int32_t>(width));
    if (!plan.memory) return false;
    auto* weights = reinterpret_cast<std::int16_t*>(plan.memory.Data());
    auto* offsets = reinterpret_cast<std::int32_t*>(plan.memory.Data() +
                                                    Scratch::Room<std::int16_t>(width * perPixel));
    std::fill_n(weights, width * perPixel, std::int16_t{0});
    plan.sum = {axis.target, offsets, weights, pairCount, 0};
    for (int x = 0; x < axis.target; ++x, weights += perPixel) {
        const int first = axis.First(x);
        const int odd = first % 2;
        offsets[x] = first / 2 * static_cast<int>(kPairSize) +
                     (plan.twoPhases && odd ? static_cast<int>(plan.phaseSize) : 0);
        const int lead = plan.twoPhases ? 0 : odd;
        for (int k = 0; k < axis.taps; ++k) {
            std::int16_t* pair = weights + static_cast<std::size_t>((k + lead) / 2) * kPairSize;
            for (int channel = 0; channel < 4; ++channel)
                pair[2 * channel + (k + lead) % 2] = axis.Weights(x)[k];
        }
    }
    return true;
}

}  // namespace lumo::imaging

#include "reference/gaussian_reference.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/test_images.h"

namespace lumo::reference {
namespace {

// Weights of the positions 0 to size - 1 for each position, what lies beyond the ends included.
std::vector<std::vector<double>> WeightsOf(int size, double deviation) {
    const int reach = static_cast<int>(std::ceil(10 * deviation));
    std::vector<std::vector<double>> all(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        auto& weights = all[static_cast<std::size_t>(i)];
        weights.assign(static_cast<std::size_t>(size), 0.0);
        double sum = 0;
        for (int k = -reach; k <= reach; ++k) {
            const double weight = std::exp(-0.5 * (k / deviation) * (k / deviation));
            weights[static_cast<std::size_t>(std::clamp(i + k, 0, size - 1))] += weight;
            sum += weight;
        }
        for (double& weight : weights) weight /= sum;
    }
    return all;
}

}  // namespace

imaging::Image Gaussian(imaging::ConstImageView source, double deviation) {
    imaging::Image target = test::Copy(source);
    const auto across = WeightsOf(source.Width(), deviation);
    const auto down = WeightsOf(source.Height(), deviation);
    const auto width = static_cast<std::size_t>(source.Width());
    const auto height = static_cast<std::size_t>(source.Height());
    std::vector<double> middle(width * height * 3);
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            for (std::size_t c = 0; c < 3; ++c) {
                double sum = 0;
                for (std::size_t k = 0; k < width; ++k)
                    sum += across[x][k] * source.Row(static_cast<int>(y))[3 * k + c];
                middle[(y * width + x) * 3 + c] = sum;
            }
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t i = 0; i < width * 3; ++i) {
            double sum = 0;
            for (std::size_t k = 0; k < height; ++k) sum += down[y][k] * middle[k * width * 3 + i];
            target.View().Row(static_cast<int>(y))[i] = static_cast<std::uint8_t>(sum + 0.5);
        }
    return target;
}

}  // namespace lumo::reference

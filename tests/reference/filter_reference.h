#pragma once

// The filters without a disc, step by step as their rules tell them.

#include <array>

#include "imaging/image.h"

namespace lumo::reference {

imaging::Image BlurOutward(imaging::ConstImageView source, int percent, double radius);
imaging::Image BlurMore(imaging::ConstImageView source);
imaging::Image Convolve(imaging::ConstImageView source, const std::array<int, 25>& weights,
                        int scale, int offset);
imaging::Image UnsharpMask(imaging::ConstImageView source, imaging::ConstImageView blurred,
                           int amount, int threshold, bool luminance);

}  // namespace lumo::reference

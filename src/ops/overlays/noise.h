#pragma once

#include "engine/view.h"
#include "imaging/image.h"

namespace lumo::ops::overlays {

/// (random * (high - low)) / 32767 + low in 32 bits, truncated: `high` comes only with the greatest
/// random number.
int RandomInRange(engine::Random& random, int low, int high);

// Each walks the pixels in order and takes its random numbers one after the other, so that the
// same generator gives the same picture. In place. The luminance is
// 0.299 red + 0.587 green + 0.114 blue, truncated, and 1 where that is 0.

/// Every channel for itself: replaced by a random value where RandomInRange(0, 100) is at most
/// `percent`.
void ReplaceChannels(imaging::ImageView image, int percent, engine::Random& random);
/// Every pixel: its luminance becomes a random one where RandomInRange(0, 100) is at most
/// `percent`, its colour stays.
void ReplaceBrightness(imaging::ImageView image, int percent, engine::Random& random);
/// Every channel for itself: RandomInRange(-amount, amount) is added.
void VaryChannels(imaging::ImageView image, int amount, engine::Random& random);
/// Every pixel: RandomInRange(-amount, amount) is added to its luminance, which stays within
/// 1 to 255; its colour stays.
void VaryBrightness(imaging::ImageView image, int amount, engine::Random& random);

}  // namespace lumo::ops::overlays

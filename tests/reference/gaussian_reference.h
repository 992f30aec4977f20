#pragma once

#include "imaging/image.h"

namespace lumo::reference {

/// The gaussian blur as its formula stands: in doubles, over ten deviations, edges replicated,
/// rounded once at the end.
imaging::Image Gaussian(imaging::ConstImageView source, double deviation);

}  // namespace lumo::reference

#include "imaging/crop.h"

#include <cstring>

#include "imaging/last_error.h"
#include "imaging/parallel.h"

namespace lumo::imaging {

bool CropImage(ConstImageView source, Rect rect, ImageView target) {
    // In this order no difference of two sides can overflow.
    const bool inside = rect.left >= 0 && rect.top >= 0 && rect.right <= source.Width() &&
                        rect.bottom <= source.Height() && rect.left < rect.right &&
                        rect.top < rect.bottom;
    if (!inside) {
        SetLastError("the rectangle to crop is not inside of the picture");
        return false;
    }
    if (target.Extent() != rect.Extent()) {
        SetLastError("the target does not have the size of the rectangle to crop");
        return false;
    }
    const std::size_t bytes = target.Stride();
    ForRows(target.Height(), 2 * bytes, [&](int first, int last) {
        if (bytes == source.Stride()) {  // whole rows lie in one run
            std::memcpy(target.Row(first), source.Row(rect.top + first),
                        bytes * static_cast<std::size_t>(last - first));
            return;
        }
        for (int y = first; y < last; ++y)
            std::memcpy(target.Row(y), source.At(rect.left, rect.top + y), bytes);
    });
    return true;
}

}  // namespace lumo::imaging

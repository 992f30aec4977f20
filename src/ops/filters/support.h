#pragma once

// What the handlers and previews of this folder share.

#include <string_view>
#include <utility>

#include "engine/command.h"
#include "imaging/image.h"

namespace lumo::ops::filters {

/// Lets `kernel(source, target)` fill a new image of the working image's size and installs it. If
/// the memory for it or for the kernel cannot be had, reports `failure` and leaves the working
/// image alone.
template <typename Kernel>
engine::Outcome RunIntoNewImage(engine::CLumoscriptView& view, std::string_view failure,
                                const Kernel& kernel) {
    const imaging::ConstImageView source = std::as_const(view.working.main).View();
    auto target = imaging::Image::TryCreate(source.Extent());
    if (!target || !kernel(source, target->View())) {
        engine::OnCommandFailure(view, failure, engine::LibraryError::Append);
        return engine::Outcome::Failed;
    }
    engine::ReplaceMainImage(view, std::move(*target));
    return engine::Outcome::Succeeded;
}

/// What `kernel(before, after)` makes of the scaled-down sample; empty without memory.
template <typename Kernel>
imaging::Image PreviewInto(imaging::ConstImageView before, const Kernel& kernel) {
    auto after = imaging::Image::TryCreate(before.Extent());
    if (!after || !kernel(before, after->View())) return {};
    return std::move(*after);
}

/// A radius in pixels of the sample, in pixels of its scaled-down copy.
inline double ScaleRadius(double radius, imaging::Size sample, imaging::Size preview) {
    return sample.width > 0 ? radius * preview.width / sample.width : radius;
}

}  // namespace lumo::ops::filters

#pragma once

// Steps that the handlers of several families share.

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "engine/command.h"
#include "imaging/image.h"

namespace lumo::ops {

/// Reports `text` with the last error of the imaging folder, and fails.
inline engine::Outcome FailWith(engine::CLumoscriptView& view, std::string_view text) {
    engine::OnCommandFailure(view, text, engine::LibraryError::Append);
    return engine::Outcome::Failed;
}

/// The outcome of an operation of the imaging folder; `text` is reported if it failed.
inline engine::Outcome ReportIfFailed(engine::CLumoscriptView& view, bool ok,
                                      std::string_view text) {
    return ok ? engine::Outcome::Succeeded : FailWith(view, text);
}

/// Marks the working image as grey with that depth, 8 or 1, for the writers and for the toners.
inline void SetGreyDepth(engine::CLumoscriptView& view, int bits) {
    view.working.imageBits = bits;
    view.working.imageBitsForced = 1;
    view.working.grey = true;
}

/// A picture of the working image's size with undefined pixels; none, after `memoryFailure` was
/// reported, if the memory cannot be had.
inline std::optional<imaging::Image> NewImage(engine::CLumoscriptView& view,
                                              std::string_view memoryFailure) {
    auto image = imaging::Image::TryCreate(view.working.main.Extent());
    if (!image) FailWith(view, memoryFailure);
    return image;
}

/// Lets `kernel(source, target)` fill a new image of the working image's size and installs it. If
/// the memory for it or for the kernel cannot be had, reports `memoryFailure` and leaves the
/// working image alone.
template <typename Kernel>
engine::Outcome RunIntoNewImage(engine::CLumoscriptView& view, std::string_view memoryFailure,
                                const Kernel& kernel) {
    auto target = NewImage(view, memoryFailure);
    if (!target) return engine::Outcome::Failed;
    if (!kernel(std::as_const(view.working.main).View(), target->View()))
        return FailWith(view, memoryFailure);
    engine::ReplaceMainImage(view, std::move(*target));
    return engine::Outcome::Succeeded;
}

/// What a command says if it gets no memory for its new image, and if the operation fails.
struct NewImageFailures {
    std::string_view memory, operation;
};

/// As RunIntoNewImage, but the new image is installed even if the operation failed: black then, so
/// that what the memory held before never shows.
template <typename Operation>
engine::Outcome RunOperationIntoNewImage(engine::CLumoscriptView& view,
                                         const NewImageFailures& failures,
                                         const Operation& operation) {
    auto target = NewImage(view, failures.memory);
    if (!target) return engine::Outcome::Failed;
    const bool ok = operation(std::as_const(view.working.main).View(), target->View());
    if (!ok) std::ranges::fill(target->View().Bytes(), std::uint8_t{0});
    engine::ReplaceMainImage(view, std::move(*target));
    return ReportIfFailed(view, ok, failures.operation);
}

}  // namespace lumo::ops

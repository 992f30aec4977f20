#pragma once

// What the handlers and previews of this family share.

#include <string_view>
#include <utility>

#include "engine/command.h"

namespace lumo::ops::colour {

/// Marks the working image as grey with that depth, 8 or 1, for the writers and for the toners.
inline void SetGreyDepth(engine::CLumoscriptView& view, int bits) {
    view.working.imageBits = bits;
    view.working.imageBitsForced = 1;
    view.working.grey = true;
}

/// The outcome of an operation of the imaging folder; `text` is reported if it failed.
inline engine::Outcome ReportIfFailed(engine::CLumoscriptView& view, bool ok,
                                      std::string_view text) {
    if (!ok) engine::OnCommandFailure(view, text, engine::LibraryError::Append);
    return engine::ToOutcome(ok);
}

/// A preview: `change` applied to a copy of the sample.
template <typename Change>
imaging::Image PreviewOf(imaging::ConstImageView before, const Change& change) {
    auto after = imaging::Image::TryCopy(before);
    if (!after) return {};
    change(after->View());
    return std::move(*after);
}

}  // namespace lumo::ops::colour

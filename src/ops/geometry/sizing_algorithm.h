#pragma once

// The choice of a resampling filter, shared by "Scale" and "Size and crop".

#include <span>
#include <string_view>

#include "imaging/geometry.h"
#include "imaging/resample.h"

namespace lumo::ops::geometry {

/// The stored texts, in the order of the combo box, and the names that it shows for them.
std::span<const std::string_view> SizingCodes();
std::span<const std::string_view> SizingDialogNames();

/// The name that the panel shows; any unknown text is bilinear.
std::string_view SizingPanelName(std::string_view code);

/// The two commands hand different numbers to the resampler for the same text.
enum class SizingTable { Scale, SizeAndCrop };

/// The resampler's number for a stored text. Decimation can only shrink: where a side grows from
/// `from` to `to`, bilinear takes its place.
int SizingCode(SizingTable table, std::string_view text, imaging::Size from, imaging::Size to);

}  // namespace lumo::ops::geometry

#pragma once

#include <optional>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Decodes the most common kind of PNG in one go: 8-bit RGB or RGBA, not interlaced. Nothing for
/// files of another kind, with the least flaw or beyond the limits: those are libpng's to judge.
std::optional<Decoded> TryDecodePlainPng(ByteView file, const DecodeLimits& limits);

}  // namespace lumo::imaging::codecs

#pragma once

// The device-independent bitmap: what a BMP file holds behind its file header, and what the
// records of metafiles hold as well.

#include <cstddef>
#include <optional>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {

/// Decodes the bitmap whose header is the first byte of `dib`: OS/2 headers of 12 and 16 to 64
/// bytes, Windows headers from 40 bytes on; 1, 2, 4, 8, 16, 24 and 32 bits, bit masks of any
/// shape, run lengths of 4, 8 and 24 bits, an embedded JPEG or PNG. `pixelOffset` counts from
/// the header; without one, or with one that cannot be, the pixels follow the colour table.
/// An alpha mask counts if any pixel has a bit in it. `format` of the result is Bmp.
Result<Decoded> DecodeDib(ByteView dib, std::optional<std::size_t> pixelOffset,
                          const DecodeOptions& options);

/// Run-length codes of 4, 8 or 24 bits a pixel. Pixels that the codes pass over are entry 0 of the
/// palette, or black with 24 bits; runs are cut at the end of their row. Gives the rows that are
/// complete, in file order; the rest of the image is left as it was.
int DecodeDibRuns(ByteView codes, int bits, const Palette& palette, bool topDown, ImageView image);

}  // namespace lumo::imaging::codecs

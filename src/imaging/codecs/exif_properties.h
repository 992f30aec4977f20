#pragma once

// The texts that desktops show as properties of a picture, inside its EXIF block. The block is
// changed at its end and nowhere else: what the camera wrote stays in its place byte for byte,
// because the notes of camera makers hold places that nobody else can correct.

#include <string>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Empty ones are not written; but a block in which something is written always has a title.
struct PropertyTexts {
    std::string title, subject, author, keywords, comments;
    bool IsEmpty() const {
        return title.empty() && subject.empty() && author.empty() && keywords.empty() &&
               comments.empty();
    }
};

/// The payload of an EXIF marker with these texts (tags 0x9C9B to 0x9C9F, UTF-16 with a closing
/// zero), or a new one if `payload` is empty. Texts take the place of older ones. The title stands
/// in the main, the EXIF and the interoperability table, the others in the main one; tables that
/// are missing are made, an EXIF or interoperability table that cannot be read is left alone. An
/// empty title is one blank, unless the block has a title, which then stays.
/// Refuses a damaged block; the caller sees whether the result fits into a marker.
Result<Bytes> AddProperties(ByteView payload, const PropertyTexts& texts);

}  // namespace lumo::imaging::codecs

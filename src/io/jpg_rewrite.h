#pragma once

// Another header for a JPG on disk, around the same picture data.

#include <functional>
#include <string>

#include "imaging/codecs/jpeg_segments.h"

namespace lumo::io {

enum class Rewrite {
    Done,
    NotFound,        // nothing is there
    NotCopied,       // the file is no sound JPG, or its copy could not be written whole
    NotReplaceable,  // the file may not be replaced
    NotRenamed,      // the copy is whole, but did not get the file's name
};

struct RewriteResult {
    Rewrite outcome = Rewrite::Done;
    int systemError = 0;  // where something failed; nearest errno
};

/// What is to change in the head that was read.
using HeadChanges = std::function<imaging::codecs::JpegChanges(const imaging::codecs::JpegHead&)>;

/// Writes the file with its new head beside itself ("temp83S04L51.jpg", opened exclusively),
/// syncs it and renames it over the file in one step. Mode, owner, labels and access lists stay,
/// the time of the last change becomes the present. Whatever fails, the file stands as it was,
/// nothing is left beside it, and imaging::LastError() has the reason.
RewriteResult RewriteJpegHeader(const std::string& path, const HeadChanges& changes);

}  // namespace lumo::io

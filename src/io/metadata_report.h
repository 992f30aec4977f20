#pragma once

// What a camera wrote into a picture file, for the log and for the window "Metadata display".

#include <string>
#include <utility>
#include <vector>

namespace lumo::io {

/// The non-empty ones of the first `tables` EXIF tables of a JPG or TIF: title ("--Main IFD--",
/// "--EXIF IFD--", "--Interoperability IFD--", "--Thumbnail IFD--", "--GPS IFD--") and text, a
/// line feed behind each line. Empty if none of them names the maker of a camera: other EXIF data
/// counts as none.
std::vector<std::pair<std::string, std::string>> ExifReport(const std::string& path,
                                                            int tables = 5);

}  // namespace lumo::io

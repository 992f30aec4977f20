#pragma once

// What a picture file says beside its pixels, for the log and for the window "Metadata display".

#include <string>
#include <utility>
#include <vector>

#include "engine/view.h"

namespace lumo::io {

/// The non-empty ones of the first `tables` EXIF tables of a JPG or TIF: title ("--Main IFD--",
/// "--EXIF IFD--", "--Interoperability IFD--", "--Thumbnail IFD--", "--GPS IFD--") and text, a
/// line feed behind each line. Empty if none of them names the maker of a camera: other EXIF data
/// counts as none.
std::vector<std::pair<std::string, std::string>> ExifReport(const std::string& path,
                                                            int tables = 5);

/// The camera's notes in the file of the sample image, or the words that there are none.
std::string ExifReportText(const std::string& path);
/// The comments and the IPTC data in the file of the sample image, or the words that there are
/// none. Comments keep their lines; texts that are no UTF-8 are read as Western European.
std::string IptcReportText(const std::string& path);

/// The two menu commands: the text for the sample image, in the window "Metadata display".
void ShowExifReport(engine::CLumoscriptView& view);
void ShowIptcReport(engine::CLumoscriptView& view);

}  // namespace lumo::io

#pragma once

// Paths as texts. Scripts, lists and settings may use "\" or "/"; files on disk have native paths.
// A path that the file system delivered is never translated. Where a function here looks for the
// last separator, a path with a "/" in it counts as native, its "\" as part of a name.

#include <string>
#include <string_view>

namespace lumo::platform {

/// Type number of an extension, given with its dot or as the last four characters of a name
/// ("jpeg"); case does not matter. 1 JPG (.jpg .jpeg .jpe .jif), 2 TIF (.tif .tiff), 3 BMP, 4 PNG,
/// 5 GIF, 6 PCX, 7 TGA, 8 PSD, 9 WMF, 10 EMF, 11 APM, 13 camera RAW; 0 for any other.
int GetExtType(std::string_view extension);

/// True for the extensions of camera RAW files.
bool IsRaw(std::string_view path);

/// Name without folder and extension.
std::string GetFileTitle(std::string_view path);
/// Up to, not including, the last separator; empty if there is none.
std::string GetFolderPath(std::string_view path);
/// With exactly one separator at its end added if none is there; empty stays empty.
std::string AddBackSlash(std::string_view path);

/// A stated path made native: `<INSTALL_FOLDER>` and `<TEMP_FOLDER>` replaced, "\" turned into "/".
std::string ParsePath(std::string_view stated, std::string_view installFolder,
                      std::string_view tempFolder);

/// Control characters shown as "?", for logs and terminals; never for paths in use.
std::string Printable(std::string_view text);

}  // namespace lumo::platform

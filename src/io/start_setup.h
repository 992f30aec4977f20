#pragma once

// "START image loop (setup)": its fields, dialog and panel. The run loop itself knows the command
// by name, so it has no handler.

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "engine/command.h"

namespace lumo::io {

/// Fields of the START command, behind the count. The date is stored day first.
namespace start {
enum Field {
    kLocation,
    kListPath,
    kFolderPath,
    kUseRaw,
    kUseBmp,
    kUseJpg,
    kUseTga,
    kUseTif,
    kUseGif,
    kUseWmf,
    kUsePsd,
    kUsePcx,
    kUsePng,
    kBeforeDay,
    kBeforeMonth,
    kBeforeYear,
    kAfterDay,
    kAfterMonth,
    kAfterYear,
    kMinWidth,
    kMinHeight,
    kMaxWidth,
    kMaxHeight,
    kBeforeOn,
    kAfterOn,
    kMinSizeOn,
    kMaxSizeOn,
    kMinAspectOn,
    kMaxAspectOn,
    kMinAspect,
    kMaxAspect,
    kSubfolders,
    kFieldCount
};
// Of kLocation; "0" at run time.
inline constexpr std::string_view kFromList = "1", kFromFolder = "2";
}  // namespace start

/// A type of input file and the field that takes it or leaves it out.
struct FileTypeFlag {
    int field;
    int firstType, lastType;  // as GetExtType numbers them
    std::string_view name;    // for the lines of Batch.log
};
/// In the order in which the filters look at them.
inline constexpr std::array kFileTypeFlags{
    FileTypeFlag{start::kUseBmp, 3, 3, "BMP"}, FileTypeFlag{start::kUseJpg, 1, 1, "JPG"},
    FileTypeFlag{start::kUseTga, 7, 7, "TGA"}, FileTypeFlag{start::kUseTif, 2, 2, "TIF"},
    FileTypeFlag{start::kUsePcx, 6, 6, "PCX"}, FileTypeFlag{start::kUsePng, 4, 4, "PNG"},
    FileTypeFlag{start::kUseGif, 5, 5, "GIF"}, FileTypeFlag{start::kUseWmf, 9, 11, "WMF"},
    FileTypeFlag{start::kUsePsd, 8, 8, "PSD"}, FileTypeFlag{start::kUseRaw, 13, 13, "RAW"},
};

/// Reads a START parameter string of any age: strings with a count of "31" have no subfolder
/// field (it reads as "0"), others but "32" lack the metafile and PSD flags too (empty).
script::Fields ParseStartParams(std::string_view params);

/// The parameter string for these texts, one for each field, in the present layout whatever the
/// old one was: paths quoted, no separator at the end of the folder, subfolders "0" unless stated.
std::string BuildStartParams(std::span<const std::string> texts);

/// True if a type of file is switched off or one of the date, size and aspect tests is on.
bool FiltersActive(const script::Fields& fields);

extern const engine::Command kStartCommand;

}  // namespace lumo::io

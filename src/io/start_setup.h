#pragma once

// "START image loop (setup)": its fields, dialog and panel. The run loop itself knows the command
// by name, so it has no handler.

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
inline constexpr std::string_view kFromList = "1";  // of kLocation; "0" at run time, "2" a folder
}  // namespace start

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

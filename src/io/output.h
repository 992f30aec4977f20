#pragma once

// Picture files out of a run.

#include <string>
#include <string_view>

#include "engine/view.h"
#include "imaging/image.h"

namespace lumo::io {

/// Fields of "Output setup", behind the count.
namespace output {
enum Field {
    kAtRunTime,
    kFolder,
    kOriginalFolder,
    kExtension,
    kReserved,
    kNameMode,  // "0" input title, "1" AutoNumeric, "2" both, "3" neither
    kSuffix,
    kPrefix,
    kIncremental,
    kSkip,
    kOverwrite,
    kFieldCount
};
}  // namespace output

/// True if an "Output setup" with these parameters would write and names no folder to write to: a
/// run is refused with it.
bool OutputFolderLeftOpen(std::string_view params);

/// Writes the working image in the format that the last four characters of the path tell, with
/// the writer settings of the view. Non-zero on success. The file appears whole or not at all: a
/// failure leaves an older one as it was. An extension without a writer gives 0 and leaves an
/// empty file where none stood. In a batch run, a file that cannot be written at all is logged as
/// "Unable to open file." and both logs are saved.
int WriteMainImage(engine::CLumoscriptView& view, const std::string& path);

/// The same for any picture of the sample panes; nothing is logged.
int WriteSampleImage(engine::CLumoscriptView& view, imaging::ConstImageView picture,
                     const std::string& path);

}  // namespace lumo::io

#pragma once

// Where the pictures of a run come from: the settings of the START command, the list of input
// files, and the opening of the next one.

#include <optional>
#include <string>
#include <string_view>

#include "engine/view.h"
#include "imaging/codecs/codec.h"

namespace lumo::io {

using engine::CLumoscriptView;

/// What stands for an input path outside of the image loop, so that name macros have something
/// to read.
inline constexpr std::string_view kPathBeforeImages = "Pre_image_loop.";
inline constexpr std::string_view kPathAfterImages = "Post_image_loop.";

/// Results of OpenNextImage. 1 and 9 are errors that the run loop counts; with anything but 0 it
/// goes on with the next file.
enum NextImage : int {
    kImageOpened = 0,
    kImageNotOpened = 1,
    kFileFiltered = 2,   // by extension or date
    kImageFiltered = 4,  // by size or aspect
    kFileMissing = 9,
};

/// Reads the START command of the Script into view.inputSettings and counts its input files, for
/// the line "Total input images: ". The list itself is built anew when the run reaches START.
/// False if the Script has no such command.
bool PrepareInput(CLumoscriptView& view);

/// Fills view.run.inputList and sets imageCount and statFiles to its length: with onLeftImage the
/// sample's path, else the files that view.inputSettings names.
void BuildInputList(CLumoscriptView& view);

/// Appends the accepted files of a folder to the input list, in the order of ListFolder; with
/// `recursive` each subfolder stands where its name does, depth first. A folder is scanned once
/// even if links lead to it again. Nothing for a folder that is not there.
void ScanFolder(CLumoscriptView& view, const std::string& path, bool recursive);

/// True if the START command takes files of this extension (or last four characters of a name).
bool ExtensionAccepted(const CLumoscriptView& view, std::string_view extension);

/// Sets view.input from a native path. If the file exists its name is spelt as the folder has it.
void SplitInputPath(CLumoscriptView& view, std::string_view path);

/// A path that a user or a file states, made native: as it stands if it exists so, else with its
/// tokens replaced and "\" turned into "/".
std::string NativePath(const CLumoscriptView& view, std::string_view stated);

/// Opens the file at view.run.imageIndex into the working image and logs what happens; the run
/// loop has moved the index on. Gives one of NextImage.
int OpenNextImage(CLumoscriptView& view);

/// Reads and decodes any picture file under the limits of the settings. None on failure, with the
/// reason in imaging::LastError.
std::optional<imaging::codecs::Decoded> OpenImageFile(const CLumoscriptView& view,
                                                      const std::string& path);

/// As OpenImageFile; the markers and texts of the file go into the input stores of the view. A
/// metafile without a size of its own is drawn into the box of the hint.
std::optional<imaging::codecs::Decoded> OpenImageFileAndMetadata(
    CLumoscriptView& view, const std::string& path, imaging::Size metafileHint = {400, 400});

/// Width and height of a picture file, from its head alone. None on failure, with the reason in
/// imaging::LastError.
std::optional<imaging::Size> GetImageDims(const std::string& path);

/// "33% Done" in the title of the window.
void UpdateProgress(CLumoscriptView& view);
/// The counters of the progress group.
void ShowCounts(CLumoscriptView& view);

}  // namespace lumo::io

#pragma once

// The sample image from and to files, and what there is to say of it.

#include <string>

#include "engine/open_sample.h"
#include "ui/desk.h"

namespace lumo::ui {

enum class Side { Left, Right };

/// "Open...": asks for a picture file and opens it as the sample.
void OpenSampleImage(const Desk& desk);
/// Opens it without a dialog and puts it first among the recent pictures.
bool OpenSamplePath(const Desk& desk, const std::string& path,
                    engine::SampleFrom from = engine::SampleFrom::Dialog);
/// Opens entry n of the recent pictures; one that cannot be opened loses its place.
void OpenRecentPicture(const Desk& desk, int n);

/// Asks for a name and writes the image of a frame in the format of its extension.
void SaveSampleImage(const Desk& desk, Side side);

/// Makes the sample the picture that the program opens when it starts.
void SetDefaultSample(const Desk& desk);

/// Size and colours of the image of a frame, in lines.
std::string ImageInfoText(const engine::CLumoscriptView& view, Side side);
/// The sample's file: where it is, its size and its times, in lines.
std::string FilePropertiesText(const engine::CLumoscriptView& view);

}  // namespace lumo::ui

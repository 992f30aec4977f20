#pragma once

// A picture of the core, scaled for the screen.

#include <QImage>

#include "imaging/image.h"

namespace lumo::ui {

/// The size in which a picture is shown in a frame: its shape kept, fitted into the frame less four
/// pixels, in whole numbers that truncate; never below 1 x 1.
imaging::Size FitIntoFrame(imaging::Size picture, imaging::Size frame);

/// The same pixels; null for an empty picture or if the memory cannot be had.
QImage ToQImage(imaging::ConstImageView picture);

/// What a frame paints.
struct DisplayPicture {
    QImage pixels;         // in pixels of the screen; null: no picture
    imaging::Size source;  // size of the picture itself
    imaging::Size frame;   // that it was made for, in pixels of the screen
};

/// Reads the picture on the calling thread and resamples it bilinearly. Without pixels where there
/// is no picture or no memory.
DisplayPicture MakeDisplayPicture(imaging::ConstImageView picture, imaging::Size frame);

/// The picture at exactly this size, resampled bilinearly; null if the memory cannot be had.
QImage ScaledPicture(imaging::ConstImageView picture, imaging::Size size);

}  // namespace lumo::ui

#pragma once

// The names of all commands, as stored in Scripts and compared everywhere: exactly, byte for byte.
// The misspellings "horizonal" and "overly", the colon of "Vertical perspective:" and the odd
// capitals are part of them: a name put right would orphan every Script that holds it.

#include <string_view>

namespace lumo::script::names {

inline constexpr std::string_view kAddBorder = "Add border";
inline constexpr std::string_view kAdjustContrastBrightness = "Adjust: contrast-brightness";
inline constexpr std::string_view kAdjustColourHsl = "Adjust: Color(HSL)";
inline constexpr std::string_view kAdjustColourRgb = "Adjust: Color(RGB)";
inline constexpr std::string_view kAdjustHistogramLuminance = "Adjust: histogram luminance";
inline constexpr std::string_view kBatchLogComments = "Batch Log comments";
inline constexpr std::string_view kBlendImages = "Blend images";
inline constexpr std::string_view kBlur = "Blur";
inline constexpr std::string_view kBlurMore = "Blur_more";
inline constexpr std::string_view kBlurGaussian = "Blur (gaussian)";
inline constexpr std::string_view kBlurOutward = "Blur (outward)";
inline constexpr std::string_view kBorderFindAndCrop = "Border (find and crop)";
inline constexpr std::string_view kCanvasSize = "Canvas size";
inline constexpr std::string_view kColourCurveAdjust = "Color curve adjust";
inline constexpr std::string_view kConvertGreyscale = "Convert: Grayscale - 8bit";
inline constexpr std::string_view kConvertBwDither = "Convert: BW (dither - 1bit)";
inline constexpr std::string_view kConvertBwThreshold = "Convert: BW (threshold-1bit)";
inline constexpr std::string_view kConvertOneColourTone = "Convert: one color tone";
inline constexpr std::string_view kConvertSepiaTone = "Convert: sepia tone";
inline constexpr std::string_view kCopyMove = "Copy/Move";
inline constexpr std::string_view kCounter = "Counter (reset or increment)";
inline constexpr std::string_view kCountColours = "Count colors";
inline constexpr std::string_view kCrop = "Crop";
inline constexpr std::string_view kCustomFilter = "Custom filter";
inline constexpr std::string_view kDeleteInputFile = "Delete input file";
inline constexpr std::string_view kDespeckle = "Despeckle";
inline constexpr std::string_view kDoWhile = "DO_WHILE (condition)";
inline constexpr std::string_view kDoEnd = "DO_END";
inline constexpr std::string_view kDropShadow = "Drop Shadow effect";
inline constexpr std::string_view kDustRemove = "Dust (remove)";
inline constexpr std::string_view kMosaic = "Effect: mosaic blocks";
inline constexpr std::string_view kElseStart = "ELSE_START";
inline constexpr std::string_view kElseEnd = "ELSE_END";
inline constexpr std::string_view kEmboss = "Emboss filter";
inline constexpr std::string_view kEndImageLoop = "END image loop";
inline constexpr std::string_view kExit = "Exit (get next image)";
inline constexpr std::string_view kFlipHorizontal = "Flip - horizonal";
inline constexpr std::string_view kFlipVertical = "Flip - vertical";
inline constexpr std::string_view kFrameOverlay = "Frame overlay";
inline constexpr std::string_view kGammaAdjust = "Gamma adjust";
inline constexpr std::string_view kGrid = "Grid overly";
inline constexpr std::string_view kHighlightMidtoneShadow = "Highlight - midtone - shadow";
inline constexpr std::string_view kHistogramEqualize = "Histogram (equalize)";
inline constexpr std::string_view kHistogramStretch = "Histogram (stretch)";
inline constexpr std::string_view kHorizontalPerspective = "Horizontal perspective";
inline constexpr std::string_view kIfCondition = "IF_START (condition)";
inline constexpr std::string_view kIfFirstFile = "IF_START (first file)";
inline constexpr std::string_view kIfLastFile = "IF_START (last file)";
inline constexpr std::string_view kIfEnd = "IF_END";
inline constexpr std::string_view kInputTemporary = "Input (temporary)";
inline constexpr std::string_view kInputFixedImage = "Input fixed image";
inline constexpr std::string_view kJpgFileHeader = "JPG file header";
inline constexpr std::string_view kLoopStart = "Loop Start (by number)";
inline constexpr std::string_view kLoopEnd = "Loop End (by number)";
inline constexpr std::string_view kMaskOverlay = "Mask overlay: single color";
inline constexpr std::string_view kMaximumFilter = "Maximum filter";
inline constexpr std::string_view kMedianCut = "Median cut";
inline constexpr std::string_view kMedianFilter = "Median filter";
inline constexpr std::string_view kMinimumFilter = "Minimum filter";
inline constexpr std::string_view kNegative = "Negative - inverted rgb";
inline constexpr std::string_view kNewCanvas = "New (canvas)";
inline constexpr std::string_view kNoiseAdd = "Noise (add)";
inline constexpr std::string_view kOutputSetup = "Output setup";
inline constexpr std::string_view kOutputTemporary = "Output (temporary)";
inline constexpr std::string_view kReloadImageFile = "Reload image file";
inline constexpr std::string_view kReplaceColour = "Replace (1) color";
inline constexpr std::string_view kRotate90 = "Rotate (90 - 180 - 270)";
inline constexpr std::string_view kRotateSpecify = "Rotate (specify)";
inline constexpr std::string_view kScale = "Scale: change image size";
inline constexpr std::string_view kScriptInfo = "Script info";
inline constexpr std::string_view kSharpen = "Sharpen";
inline constexpr std::string_view kShiftImage = "Shift image";
inline constexpr std::string_view kSizeAndCrop = "Size and crop (absolute)";
inline constexpr std::string_view kSkew = "Skew";
inline constexpr std::string_view kSolarize = "Solarize";
inline constexpr std::string_view kStartImageLoop = "START image loop (setup)";
inline constexpr std::string_view kSubroutineExecute = "SUBROUTINE Execute";
inline constexpr std::string_view kSubroutineStart = "SUBROUTINE_START";
inline constexpr std::string_view kSubroutineEnd = "SUBROUTINE_END";
inline constexpr std::string_view kSwapRedBlue = "Swap - red and blue";
inline constexpr std::string_view kSwapRedGreen = "Swap - red and green";
inline constexpr std::string_view kSwapGreenBlue = "Swap - green and blue";
inline constexpr std::string_view kTextOverlay = "Text overlay";
inline constexpr std::string_view kTextOverlayAbsolute = "Text overlay (absolute)";
inline constexpr std::string_view kTileGrid = "Tile grid";
inline constexpr std::string_view kTileImage = "Tile image";
inline constexpr std::string_view kTileOverAbsolute = "Tile over absolute";
inline constexpr std::string_view kUnsharpMask = "Unsharp mask";
inline constexpr std::string_view kVerticalPerspective = "Vertical perspective:";
inline constexpr std::string_view kWatermark = "Watermark - overlay image";
inline constexpr std::string_view kWriterPreferences = "Writer preferences";

}  // namespace lumo::script::names

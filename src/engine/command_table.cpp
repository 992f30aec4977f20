#include "engine/command_table.h"

#include <array>

#include "engine/flow/flow_commands.h"
#include "io/batch_log_comments.h"
#include "io/jpg_header.h"
#include "io/output_setup.h"
#include "io/start_setup.h"
#include "io/writer_preferences.h"
#include "ops/colour/colour_commands.h"
#include "ops/files/files_commands.h"
#include "ops/filters/filters_commands.h"
#include "ops/geometry/flip.h"
#include "ops/geometry/geometry_commands.h"
#include "ops/geometry/scale.h"
#include "ops/geometry/size_and_crop.h"
#include "ops/overlays/overlay_commands.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

// The one list of all commands. A null row is the run loop's own (END) or a command that is still
// to come; it fails.
constexpr std::array<CommandRow, 91> kCommands{{
    {names::kAddBorder, &ops::geometry::kAddBorderCommand},
    {names::kAdjustContrastBrightness, &ops::colour::kAdjustContrastBrightnessCommand},
    {names::kAdjustColourHsl, &ops::colour::kAdjustColourHslCommand},
    {names::kAdjustColourRgb, &ops::colour::kAdjustColourRgbCommand},
    {names::kAdjustHistogramLuminance, &ops::colour::kAdjustHistogramLuminanceCommand},
    {names::kBatchLogComments, &io::kBatchLogCommentsCommand},
    {names::kBlendImages, &ops::overlays::kBlendImagesCommand},
    {names::kBlur, &ops::filters::kBlurCommand},
    {names::kBlurMore, &ops::filters::kBlurMoreCommand},
    {names::kBlurGaussian, &ops::filters::kBlurGaussianCommand},
    {names::kBlurOutward, &ops::filters::kBlurOutwardCommand},
    {names::kBorderFindAndCrop, &ops::geometry::kBorderFindAndCropCommand},
    {names::kCanvasSize, &ops::geometry::kCanvasSizeCommand},
    {names::kColourCurveAdjust, &ops::colour::kColourCurveAdjustCommand},
    {names::kConvertGreyscale, &ops::colour::kConvertGreyscaleCommand},
    {names::kConvertBwDither, &ops::colour::kConvertBwDitherCommand},
    {names::kConvertBwThreshold, &ops::colour::kConvertBwThresholdCommand},
    {names::kConvertOneColourTone, &ops::colour::kConvertOneColourToneCommand},
    {names::kConvertSepiaTone, &ops::colour::kConvertSepiaToneCommand},
    {names::kCopyMove, &ops::files::kCopyMoveCommand},
    {names::kCounter, &flow::kCounterCommand},
    {names::kCountColours, &ops::colour::kCountColoursCommand},
    {names::kCrop, &ops::geometry::kCropCommand},
    {names::kCustomFilter, &ops::filters::kCustomFilterCommand},
    {names::kDeleteInputFile, &ops::files::kDeleteInputFileCommand},
    {names::kDespeckle, &ops::filters::kDespeckleCommand},
    {names::kDoWhile, &flow::kDoWhileCommand},
    {names::kDoEnd, &flow::kDoEndCommand},
    {names::kDropShadow, &ops::overlays::kDropShadowCommand},
    {names::kDustRemove, &ops::filters::kDustRemoveCommand},
    {names::kMosaic, &ops::overlays::kMosaicCommand},
    {names::kElseStart, &flow::kElseStartCommand},
    {names::kElseEnd, &flow::kElseEndCommand},
    {names::kEmboss, &ops::filters::kEmbossCommand},
    {names::kEndImageLoop, nullptr},
    {names::kExit, &flow::kExitCommand},
    {names::kFlipHorizontal, &ops::geometry::kFlipHorizontalCommand},
    {names::kFlipVertical, &ops::geometry::kFlipVerticalCommand},
    {names::kFrameOverlay, &ops::overlays::kFrameOverlayCommand},
    {names::kGammaAdjust, &ops::colour::kGammaAdjustCommand},
    {names::kGrid, &ops::overlays::kGridCommand},
    {names::kHighlightMidtoneShadow, &ops::colour::kHighlightMidtoneShadowCommand},
    {names::kHistogramEqualize, &ops::colour::kHistogramEqualizeCommand},
    {names::kHistogramStretch, &ops::colour::kHistogramStretchCommand},
    {names::kHorizontalPerspective, &ops::geometry::kHorizontalPerspectiveCommand},
    {names::kIfCondition, &flow::kIfConditionCommand},
    {names::kIfFirstFile, &flow::kIfFirstFileCommand},
    {names::kIfLastFile, &flow::kIfLastFileCommand},
    {names::kIfEnd, &flow::kIfEndCommand},
    {names::kInputTemporary, &ops::files::kInputTemporaryCommand},
    {names::kInputFixedImage, &ops::files::kInputFixedImageCommand},
    {names::kJpgFileHeader, &io::kJpgHeaderCommand},
    {names::kLoopStart, &flow::kLoopStartCommand},
    {names::kLoopEnd, &flow::kLoopEndCommand},
    {names::kMaskOverlay, &ops::overlays::kMaskOverlayCommand},
    {names::kMaximumFilter, &ops::filters::kMaximumFilterCommand},
    {names::kMedianCut, &ops::colour::kMedianCutCommand},
    {names::kMedianFilter, &ops::filters::kMedianFilterCommand},
    {names::kMinimumFilter, &ops::filters::kMinimumFilterCommand},
    {names::kNegative, &ops::colour::kNegativeCommand},
    {names::kNewCanvas, &ops::geometry::kNewCanvasCommand},
    {names::kNoiseAdd, &ops::overlays::kNoiseAddCommand},
    {names::kOutputSetup, &io::kOutputSetupCommand},
    {names::kOutputTemporary, &ops::files::kOutputTemporaryCommand},
    {names::kReloadImageFile, &ops::files::kReloadImageFileCommand},
    {names::kReplaceColour, &ops::colour::kReplaceColourCommand},
    {names::kRotate90, &ops::geometry::kRotateQuarterCommand},
    {names::kRotateSpecify, &ops::geometry::kRotateSpecifyCommand},
    {names::kScale, &ops::geometry::kScaleCommand},
    {names::kScriptInfo, &flow::kScriptInfoCommand},
    {names::kSharpen, &ops::filters::kSharpenCommand},
    {names::kShiftImage, &ops::geometry::kShiftImageCommand},
    {names::kSizeAndCrop, &ops::geometry::kSizeAndCropCommand},
    {names::kSkew, &ops::geometry::kSkewCommand},
    {names::kSolarize, &ops::colour::kSolarizeCommand},
    {names::kStartImageLoop, &io::kStartCommand},
    {names::kSubroutineExecute, &flow::kSubroutineExecuteCommand},
    {names::kSubroutineStart, &flow::kSubroutineStartCommand},
    {names::kSubroutineEnd, &flow::kSubroutineEndCommand},
    {names::kSwapRedBlue, &ops::colour::kSwapRedBlueCommand},
    {names::kSwapRedGreen, &ops::colour::kSwapRedGreenCommand},
    {names::kSwapGreenBlue, &ops::colour::kSwapGreenBlueCommand},
    {names::kTextOverlay, &ops::overlays::kTextOverlayCommand},
    {names::kTextOverlayAbsolute, &ops::overlays::kTextOverlayAbsoluteCommand},
    {names::kTileGrid, &ops::overlays::kTileGridCommand},
    {names::kTileImage, &ops::overlays::kTileImageCommand},
    {names::kTileOverAbsolute, &ops::overlays::kTileOverAbsoluteCommand},
    {names::kUnsharpMask, &ops::filters::kUnsharpMaskCommand},
    {names::kVerticalPerspective, &ops::geometry::kVerticalPerspectiveCommand},
    {names::kWatermark, &ops::overlays::kWatermarkCommand},
    {names::kWriterPreferences, &io::kWriterPreferencesCommand},
}};

}  // namespace

std::span<const CommandRow> CommandTable() {
    return kCommands;
}

}  // namespace lumo::engine

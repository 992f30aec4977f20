// The command tree. The lists repeat commands on purpose: a user looks for "Blur (gaussian)" under
// blurring, under noise and under filters alike.

#include <algorithm>

#include "script/catalogue.h"
#include "script/names.h"

namespace lumo::script {

namespace {

using Names = std::vector<std::string_view>;

/// Every command but the markers of the image loop, which no user adds.
Names AllOffered() {
    Names offered;
    for (const CatalogueRow& row : Catalogue())
        if (row.fieldCount != kNotOffered) offered.push_back(row.name);
    return offered;
}

CategoryNode HistogramNode() {
    return {"Histogram",
            {names::kAdjustHistogramLuminance, names::kHistogramEqualize, names::kHistogramStretch},
            {}};
}

CategoryNode NoiseNode() {
    return {"Noise",
            {names::kBlurGaussian, names::kDespeckle, names::kDustRemove, names::kMedianCut,
             names::kMedianFilter, names::kNoiseAdd},
            {}};
}

CategoryNode ImageAppearance() {
    return {"Image appearance",
            {},
            {{"Brightness/Contrast",
              {names::kAdjustContrastBrightness, names::kAdjustColourHsl,
               names::kHighlightMidtoneShadow, names::kGammaAdjust, names::kColourCurveAdjust},
              {}},
             {"Blur/Sharpen",
              {names::kAdjustContrastBrightness, names::kBlur, names::kBlurMore,
               names::kBlurGaussian, names::kBlurOutward, names::kSharpen, names::kUnsharpMask},
              {}},
             {"Color",
              {names::kAdjustColourRgb, names::kAdjustColourHsl, names::kReplaceColour,
               names::kColourCurveAdjust},
              {}},
             HistogramNode(),
             NoiseNode()}};
}

CategoryNode ImageEffects() {
    return {"Image effects",
            {names::kBlurOutward, names::kSwapRedBlue, names::kSwapRedGreen, names::kSwapGreenBlue,
             names::kNegative, names::kMosaic, names::kGrid, names::kTileGrid, names::kTileImage,
             names::kTileOverAbsolute, names::kShiftImage, names::kSolarize, names::kDropShadow,
             names::kFrameOverlay},
            {{"Size modify cmds",
              {names::kAddBorder, names::kHorizontalPerspective, names::kVerticalPerspective,
               names::kSkew, names::kRotateSpecify, names::kRotate90},
              {}},
             {"Filters",
              {names::kMaximumFilter, names::kMinimumFilter, names::kCustomFilter, names::kEmboss},
              {}}}};
}

std::vector<CategoryNode> BuildTree() {
    return {
        {"All commands", AllOffered(), {}},
        ImageAppearance(),
        {"Color depth",
         {names::kConvertGreyscale, names::kConvertBwThreshold, names::kConvertBwDither,
          names::kConvertOneColourTone, names::kConvertSepiaTone, names::kCountColours},
         {}},
        ImageEffects(),
        {"Image overlays",
         {names::kMaskOverlay, names::kWatermark, names::kBlendImages, names::kTextOverlay,
          names::kTextOverlayAbsolute, names::kTileOverAbsolute, names::kFrameOverlay},
         {}},
        NoiseNode(),
        {"Size modify cmds",
         {names::kCanvasSize, names::kCrop, names::kAddBorder, names::kBorderFindAndCrop,
          names::kScale, names::kSizeAndCrop, names::kSkew, names::kNewCanvas},
         {}},
        {"Rotate image cmds",
         {names::kFlipHorizontal, names::kFlipVertical, names::kRotate90, names::kRotateSpecify},
         {}},
        {"Filters",
         {names::kBlur, names::kBlurMore, names::kBlurGaussian, names::kSharpen,
          names::kUnsharpMask, names::kMaximumFilter, names::kMinimumFilter, names::kMedianCut,
          names::kMedianFilter, names::kCustomFilter, names::kEmboss},
         {}},
        HistogramNode(),
        {"Input/Output",
         {names::kCopyMove, names::kDeleteInputFile, names::kInputTemporary,
          names::kInputFixedImage, names::kJpgFileHeader, names::kOutputSetup,
          names::kOutputTemporary, names::kReloadImageFile, names::kWriterPreferences},
         {}},
        {"Execution",
         {names::kLoopStart, names::kLoopEnd, names::kIfCondition, names::kIfFirstFile,
          names::kIfLastFile, names::kIfEnd, names::kElseStart, names::kElseEnd, names::kDoWhile,
          names::kDoEnd, names::kCounter, names::kCountColours, names::kExit,
          names::kSubroutineExecute, names::kSubroutineStart, names::kSubroutineEnd},
         {}},
        {"Other", {names::kScriptInfo, names::kBatchLogComments}, {}},
    };
}

bool Holds(const std::vector<CategoryNode>& nodes, std::string_view name) {
    return std::ranges::any_of(nodes, [name](const CategoryNode& node) {
        return node.name == name || Holds(node.children, name);
    });
}

}  // namespace

const std::vector<CategoryNode>& CategoryTree() {
    static const std::vector<CategoryNode> tree = BuildTree();
    return tree;
}

bool IsCategoryName(std::string_view name) {
    return Holds(CategoryTree(), name);
}

}  // namespace lumo::script

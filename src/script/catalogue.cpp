#include "script/catalogue.h"

#include <algorithm>
#include <array>

#include "script/names.h"
#include "script/numbers.h"

namespace lumo::script {

namespace {

constexpr std::string_view kNone;

constexpr std::array<CatalogueRow, kCommandCount> kRows{{
    {1, names::kAddBorder, "Add border...", "Border", "8,10,10,10,10,0,0,0,0,", 7, true,
     "AddBorder"},
    {2, names::kAdjustContrastBrightness, "Adjust: Contrast-brightness...", "BrCont", "2,0,0,", 2,
     true, "AdjustContrastBrightness"},
    {3, names::kAdjustColourHsl, "Adjust: Color HSL...", "HSL", "3,0,0,0,", 3, true,
     "AdjustcolorHSL"},
    {4, names::kAdjustColourRgb, "Adjust: Color RGB...", "ColorRGB", "3,0,0,0,", 3, true,
     "AdjustcolorRGB"},
    {5, names::kAdjustHistogramLuminance, "Adjust: histogram luminance...", "LumHist", "3,0,255,1,",
     3, true, "Adjusthistogrmluminance"},
    {6, names::kBatchLogComments, "Batch Log comments...", "BatCom", "5,1,1,1,,0,", 5, true,
     "BatchLogcomments"},
    {7, names::kBlendImages, "Blend images...", "Blend",
     "6,Normal,0,100,1,0,\"<INSTALL_FOLDER>\\Masks\\Mask-1.bmp\",", 6, true, "Blend"},
    {8, names::kBlur, "Blur", kNone, kNone, 1, false, "Blur"},
    {9, names::kBlurMore, "Bur_more", kNone, kNone, 1, false, "Blur_more"},
    {10, names::kBlurGaussian, "Blur (gaussian)...", "BlurGaus", "1,1.0,", 1, true, "Blurgaussian"},
    {11, names::kBlurOutward, "Blur (outward),,,", "BlurO", "2,40,5.0,", 2, true, "Bluroutward"},
    {12, names::kBorderFindAndCrop, "Border (find and crop)...", "AutoCrop", "5,10,0,0,0,0,", 5,
     true, "Borderfindandcrop"},
    {13, names::kCanvasSize, "Canvas size...", "Canvas", "7,100,100,0,1,0,0,0,", 7, true, "Canvas"},
    {14, names::kColourCurveAdjust, "Color curve adjust...", "ColCurve",
     "18,5,0,16,32,48,64,80,96,112,128,144,160,176,192,208,224,240,255,", 18, true, kNone},
    {15, names::kConvertGreyscale, "Convert: Grayscale", kNone, kNone, 0, false, kNone},
    {16, names::kConvertBwDither, "Convert: BW dither...", "BWdith", "1,0,", 1, true,
     "ConvertBWdither"},
    {17, names::kConvertBwThreshold, "Convert: BW threshold...", "BWThres", "3,120,0,0,", 3, true,
     "ConvertBWthreshold"},
    {18, names::kConvertOneColourTone, "Convert: one color...", "Tint", "2,0,50,", 2, true,
     "Convertonecolor"},
    {19, names::kConvertSepiaTone, "Convert: sepia tone", kNone, kNone, 0, false, kNone},
    {20, names::kCopyMove, "Copy/move...", "Copy", "6,1,,0,,,1,", 6, true, "Copymove"},
    {21, names::kCounter, "Counter (reset or increment)", kNone, kNone, 3, true, kNone},
    {22, names::kCountColours, "Count colors...", "ColCnt", "2,0,1,", 2, true, "Countcolors"},
    {23, names::kCrop, "Crop...", "Crop", "6,10,10,10,10,0,0,", 6, true, "Crop"},
    {24, names::kCustomFilter, "Custom filter...", "CustFilt",
     "28,0,0,0,0,0,0,-1,0,-1,0,0,0,6,0,0,0,-1,0,-1,0,0,0,0,0,0,2,0,\"Sharpen\",", 28, true, kNone},
    {25, names::kDeleteInputFile, "Delete input file...", "Delete", "2,1,1,", 2, true,
     "Deleteinputfile"},
    {26, names::kDespeckle, "Despeckle", kNone, kNone, 0, false, kNone},
    {27, names::kDoWhile, "DO_WHILE (condition)", "DoCond", "5,0,0,1.0,2.0,0,", 5, true,
     "DO_WHILEcondition"},
    {28, names::kDoEnd, "DO_END", kNone, kNone, 0, false, kNone},
    {29, names::kDropShadow, "Drop shadow...", "DropShad", "8,192,192,192,10,50,0,1,50,", 8, true,
     "Dropshadoweffect"},
    {30, names::kDustRemove, "Dust (remove)...", "DustRemove", "2,40,1.0,", 2, true, "Dustremove"},
    {31, names::kMosaic, "Effect: Mosaic...", "Mosaic", "3,8,8,0,", 3, true, "Effect_mosaic"},
    {32, names::kElseStart, "ELSE_START", kNone, kNone, 0, false, kNone},
    {33, names::kElseEnd, "ELSE_END", kNone, kNone, 0, false, kNone},
    {34, names::kEmboss, "Emboss filter...", "Emboss", "2,50,0,", 2, true, "Emboss"},
    {35, names::kEndImageLoop, "END image loop", kNone, kNone, kNotOffered, false, kNone},
    {36, names::kExit, "Exit (get next image)", kNone, kNone, 0, false, kNone},
    {37, names::kFlipHorizontal, "Flip - horizontal", kNone, kNone, 0, false, kNone},
    {38, names::kFlipVertical, "Flip - vertical", kNone, kNone, 0, false, kNone},
    {39, names::kFrameOverlay, "Frame overlay...", "Frame",
     "6,255,255,255,\"<INSTALL_FOLDER>\\Frames\\frame.bmp\",0,0,", 6, true, "Frameoverlay"},
    {40, names::kGammaAdjust, "Gamma adjust...", "Gamma", "1,1.0,", 1, true, "Gammaadjust"},
    {41, names::kGrid, "Grid overlay...", "Grid", "6,10,10,1,0,0,0,", 6, true, "Gridoverlay"},
    {42, names::kHighlightMidtoneShadow, "Highlight- midtone- shadow...", "HMS", "3,100,50,0,", 3,
     true, "highlightmidtoneshadow"},
    {43, names::kHistogramEqualize, "Histogram (equalize)", kNone, kNone, 0, false, kNone},
    {44, names::kHistogramStretch, "Histogram (stretch)", kNone, kNone, 0, false, kNone},
    {45, names::kHorizontalPerspective, "Horizontal perspective...", "Horz", "4,255,255,255,0,", 4,
     true, "Horizontalperspective"},
    {46, names::kIfCondition, "IF_START (condition)", "IfCond", "5,0,0,1.0,2.0,0,", 5, true,
     "IF_STARTcondition"},
    {47, names::kIfFirstFile, "IF_START (first file)", kNone, kNone, 0, false, kNone},
    {48, names::kIfLastFile, "IF_START (last file)", kNone, kNone, 0, false, kNone},
    {49, names::kIfEnd, "IF_END", kNone, kNone, 0, false, kNone},
    {50, names::kInputTemporary, "Input (temporary)", kNone, kNone, 2, true, "Inputtemporary"},
    {51, names::kInputFixedImage, "Input fixed image...", "FixedIn", kNone, 1, true,
     "Inputfixedimage"},
    {52, names::kJpgFileHeader, "JPG header info...", "JPGheader",
     "29,1,0,0,0,0,0,0,\"Place your comments here (1,000 characters maximum).\r\nIn IPTC date tag, "
     "$(date%Y%m%d) will be replaced by the current date in form yyyymmdd when executed\r\nPress "
     "help for details of this command.\",0,,\"$(date%Y%m%d)\",,,,,,,,,,,,,0,,,,,,",
     29, true, "JPGHeaderinfo"},
    {53, names::kLoopStart, "Loop Start (by number)...", kNone, kNone, 1, true,
     "LoopStartEndbynumber"},
    {54, names::kLoopEnd, "Loop End (by number)", kNone, kNone, 0, false, kNone},
    {55, names::kMaskOverlay, "Mask overlay: single color...", "EdgeMask",
     "6,0,0,0,\"<INSTALL_FOLDER>\\Masks\\Mask-1.bmp\",1,0,", 6, true, "Maskoverlay"},
    {56, names::kMaximumFilter, "Maximum filter...", "MaxFilt", "1,1.0,", 1, true, "Maximumfilter"},
    {57, names::kMedianCut, "Median cut", kNone, kNone, 0, false, kNone},
    {58, names::kMedianFilter, "Median filter...", "MedianF", "1,1.0,", 1, true, "medianfilter"},
    {59, names::kMinimumFilter, "Minimum filter...", "MinFilt", "1,1.0,", 1, true, "Minimumfilter"},
    {60, names::kNegative, "Negative - invert rgb", kNone, kNone, 0, false, kNone},
    {61, names::kNewCanvas, "New (canvas)...", "NewCanv", "6,640,480,0,0,0,0,", 6, true,
     "Newcanvas"},
    {62, names::kNoiseAdd, "Noise (add)...", "Noise", "3,0,0,10,", 3, true, "Noiseadd"},
    {63, names::kOutputSetup, "Ouput setup", "OutlocDef", "11,0,,0,jpg,0,0,,,0,0,0,", 11, true,
     "Outputsetup"},
    {64, names::kOutputTemporary, "Output (temporary)", kNone, kNone, 2, true, "Outputtemporary"},
    {65, names::kReloadImageFile, "Reload image file", kNone, kNone, 0, false, kNone},
    {66, names::kReplaceColour, "Replace (1) color...", "Replace", "7,255,255,255,255,255,255,0,",
     7, true, "Replace1color"},
    {67, names::kRotate90, "Rotate - (90 - 180 - 270)", "Rot90", "1,90,", 1, true,
     "Rotate90180270"},
    {68, names::kRotateSpecify, "Rotate (specify)...", "RotFree", "4,255,255,255,20,", 4, true,
     "Rotatespecify"},
    {69, names::kScale, "Scale: change size...", "Scale", "6,1,0,128,96,3,0,", 6, true,
     "Scalechangesize"},
    {70, names::kScriptInfo, "Script info...", "Info",
     "7,Place your short,comments and text,here.,,,,,", 7, true, "Scriptinfo"},
    {71, names::kSharpen, "Sharpen...", "Sharpen", "1,0,", 1, true, "Sharpen"},
    {72, names::kShiftImage, "Shift image...", "Shift", "7,0,0,0,1,255,255,255,", 7, true,
     "Shiftimage"},
    {73, names::kSizeAndCrop, "Size and crop (absolute)...", "Resize", "3,128,96,3,", 3, true,
     "Sizeandcropabsolute"},
    {74, names::kSkew, "Skew...", "Skew", "5,0,0,255,255,255,", 5, true, "Skew"},
    {75, names::kSolarize, "Solarize...", "Solar", "1,255,", 1, true, "Solarize"},
    {76, names::kStartImageLoop, "START image loop (setup)", "STARTDef",
     "32,0,,,0,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,",
     kNotOffered, true, "StartInputsetup"},
    {77, names::kSubroutineExecute, "SUBROUTINE Execute...", kNone, kNone, 1, true, "subroutines"},
    {78, names::kSubroutineStart, "SUBROUTINE_START...", kNone, kNone, 1, true,
     "SUBROUTINE_START_END"},
    {79, names::kSubroutineEnd, "SUBROUTINE_END", kNone, kNone, 0, false, kNone},
    {80, names::kSwapRedBlue, "Swap: red - blue", kNone, kNone, 0, false, kNone},
    {81, names::kSwapRedGreen, "Swap: red - green", kNone, kNone, 0, false, kNone},
    {82, names::kSwapGreenBlue, "Swap: green - blue", kNone, kNone, 0, false, kNone},
    {83, names::kTextOverlay, "Text overlay...", "TextOver",
     "21,10,10,Put message here,0,30,30,30,10,1,-24,700,F,F,F,arial,255,255,255,0,0,100,", 20, true,
     kNone},
    {84, names::kTextOverlayAbsolute, "Text overlay (absolute)...", "TextOvAb",
     "18,10,10,0,30,30,30,-24,700,F,F,F,arial,255,255,255,\"Sample $(size)\r\nFilename: "
     "$(filename)\r\nDate: $(date)\",1,100,",
     18, true, "Textoverlayabsolute"},
    {85, names::kTileGrid, "Tile grid...", "TileGrid", "7,6,6,1,0,1,0,50,", 6, true, "Tilegrid"},
    {86, names::kTileImage, "Tile image...", "TileImg", "2,640,480,", 2, true, "Tileimage"},
    {87, names::kTileOverAbsolute, "Tile over absolute...", "TileAbs",
     "7,50,1,10,\"<INSTALL_FOLDER>\\Overlays\\HalcyraWorks.bmp\",0,255,255,", 7, true,
     "Tileoverabsolute"},
    {88, names::kUnsharpMask, "Unsharp mask...", "UnSharp", "4,1.0,100,0,1,", 4, true,
     "Unsharpmask"},
    {89, names::kVerticalPerspective, "Vertical perspective...", "Vert", "4,255,255,255,0,", 4,
     true, "Verticalperspective"},
    {90, names::kWatermark, "Watermark - image overlay...", "Water",
     "12,10,10,20,100,1,0,0,255,10,\"<INSTALL_FOLDER>\\Overlays\\HalcyraWorks.bmp\",0,0,", 12, true,
     "Watermarkimageoverlay"},
    {91, names::kWriterPreferences, "Writer preferences...", kNone, kNone, 24, true,
     "Writeroptions"},
}};

constexpr bool NumbersFollowTheOrder() {
    for (std::size_t i = 0; i < kRows.size(); ++i)
        if (kRows[i].number != static_cast<int>(i) + 1) return false;
    return true;
}
static_assert(NumbersFollowTheOrder());

const CatalogueRow* FindBy(std::string_view CatalogueRow::* column, std::string_view text) {
    const auto row = std::ranges::find(kRows, text, column);
    return row == kRows.end() ? nullptr : &*row;
}

}  // namespace

std::span<const CatalogueRow> Catalogue() {
    return kRows;
}

const CatalogueRow* FindByName(std::string_view name) {
    return FindBy(&CatalogueRow::name, name);
}

const CatalogueRow* FindByKey(std::string_view defaultsKey) {
    return defaultsKey.empty() ? nullptr : FindBy(&CatalogueRow::defaultsKey, defaultsKey);
}

bool IsKnownCommand(std::string_view name) {
    return FindByName(name) != nullptr;
}

std::string FieldCountText(std::string_view name) {
    if (name == "Null") return "N";
    if (IsCategoryName(name)) return "D";
    const CatalogueRow* row = FindByName(name);
    if (!row || row->fieldCount == kNotOffered) return {};
    return IntegerToString(row->fieldCount);
}

std::string NumberedMenuText(const CatalogueRow& row) {
    const std::string number = IntegerToString(row.number);
    return (number.size() < 2 ? "0" + number : number) + " " + std::string(row.menuText);
}

std::string_view FactoryParams(std::string_view name) {
    const CatalogueRow* row = FindByName(name);
    return row && !row->factory.empty() ? row->factory : "0";
}

bool IsCurrentLayout(const CatalogueRow& row, std::string_view storedDefault) {
    constexpr std::size_t kHead = 2;
    if (!row.factory.empty()) return storedDefault.substr(0, kHead) == row.factory.substr(0, kHead);
    // A command that ships without a default has one as soon as the user sets it.
    return storedDefault.empty() ||
           storedDefault.starts_with(IntegerToString(row.fieldCount) + ",");
}

}  // namespace lumo::script

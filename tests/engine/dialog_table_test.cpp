// Caption, window state and help topic of every command's dialog.

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/command.h"
#include "script/catalogue.h"

namespace lumo::engine {
namespace {

struct Row {
    std::string_view command, title, windowState, helpTopic;
};

// In the order of the menu. Blanks at the end and inside of captions are theirs. Two dialogs share
// the state 77, and those of one family share the caption of its first.
constexpr Row kDialogs[] = {
    {"Add border", "Add border ", "WS01", "AddBorder"},
    {"Adjust: contrast-brightness", "Adjust: Contrast - Brightness", "WS02",
     "AdjustContrastBrightness"},
    {"Adjust: Color(HSL)", "Adjust Hue-Saturation-Luminance", "WS03", "AdjustcolorHSL"},
    {"Adjust: Color(RGB)", "Adjust: color RGB", "WS04", "AdjustcolorRGB"},
    {"Adjust: histogram luminance", "Adjust: luminance histogram ", "WS05",
     "Adjusthistogrmluminance"},
    {"Batch Log comments", "Batch Log comments", "WS06", "BatchLogcomments"},
    {"Blend images", "Blend target and source images", "WS07", "Blend"},
    {"Blur (gaussian)", "Blur (gaussian)", "WS08", "Blurgaussian"},
    {"Blur (outward)", "Median filter", "WS11", "Bluroutward"},
    {"Border (find and crop)", "Border (find and crop)", "WS12", "Borderfindandcrop"},
    {"Canvas size", "Set canvas size", "WS13", "Canvas"},
    {"Color curve adjust", "Color curve adjustment", "WS14", "Colorcurveadjust"},
    {"Convert: BW (dither - 1bit)", "Convert to black and white (1bit dithered)", "WS16",
     "ConvertBWdither"},
    {"Convert: BW (threshold-1bit)", "Convert to Black and White (threshold)", "WS17",
     "ConvertBWthreshold"},
    {"Convert: one color tone", "Set single color tone (first made grayscale)", "WS18",
     "Convertonecolor"},
    {"Copy/Move", "Copy - Move (original image file)", "WS20", "Copymove"},
    {"Counter (reset or increment)", "Reset or increment Counter", "", "Counterresetorincrement"},
    {"Count colors", "Color count - check color depth and count colors", "", "Countcolors"},
    {"Crop", "Crop", "WS23", "Crop"},
    {"Custom filter", "Custom filter", "WS24", "Customfilter"},
    {"Delete input file", "Delete input file", "", "Deleteinputfile"},
    {"DO_WHILE (condition)", "DO_WHILE (condition)", "", "DO_WHILEcondition"},
    {"Drop Shadow effect", "Drop Shadow effect", "WS29", "Dropshadoweffect"},
    {"Dust (remove)", "Median filter", "WS11", "Dustremove"},
    {"Effect: mosaic blocks", "Convert image to mosaic", "WS31", "Effect_mosaic"},
    {"Emboss filter", "Emboss filter", "WS34", "Emboss"},
    {"Frame overlay", "Frame - Place frame on image", "WS39", "Frameoverlay"},
    {"Gamma adjust", "Gamma adjust", "WS40", "Gammaadjust"},
    {"Grid overly", "Grid overlay (lay grid over image)", "WS41", "Gridoverlay"},
    {"Highlight - midtone - shadow", "Highlight - Midtone - Shadow", "WS04",
     "highlightmidtoneshadow"},
    {"Horizontal perspective", "Horizontal perspective", "WS45", "Horizontalperspective"},
    {"IF_START (condition)", "IF_START (condition)", "", "IF_STARTcondition"},
    {"Input (temporary)", "Input (temporary) - must be created earlier in script", "",
     "Inputtemporary"},
    {"Input fixed image", "Input fixed image file", "WS51", "Inputfixedimage"},
    {"JPG file header", "JPG header comments/info", "", "JPGHeaderinfo"},
    {"Loop Start (by number)", "Loop Start (by number)", "", "LoopStartEndbynumber"},
    {"Mask overlay: single color", "Apply a mask overlay  (single color)", "WS55", "Maskoverlay"},
    {"Maximum filter", "Blur (gaussian)", "WS08", "Maximumfilter"},
    {"Median filter", "Median filter", "WS11", "medianfilter"},
    {"Minimum filter", "Blur (gaussian)", "WS08", "Minimumfilter"},
    {"New (canvas)", "New (canvas)   Replace current image with canvas", "", "Newcanvas"},
    {"Noise (add)", "Add noise to image", "WS62", "Noiseadd"},
    {"Output setup", "Output setup", "WS63", "Outputsetup"},
    {"Output (temporary)", "Output tempory file - for use later in script", "", "Outputtemporary"},
    {"Replace (1) color", "Replace one color   RGB (0 - 255)", "WS66", "Replace1color"},
    {"Rotate (90 - 180 - 270)", "Rotate  (90 - 180 - 270)", "WS67", "Rotate90180270"},
    {"Rotate (specify)", "Rotate ( 1-359 )", "WS68", "Rotatespecify"},
    {"Scale: change image size", "Scale image - change image size", "WS69", "Scalechangesize"},
    {"Script info", "Script info", "", "Scriptinfo"},
    {"Sharpen", "Sharpen", "WS71", "Sharpen"},
    {"Shift image", "Shift image", "WS72", "Shiftimage"},
    {"Size and crop (absolute)", "Size and crop (absolute size)", "WS77", "Sizeandcropabsolute"},
    {"Skew", "Skew", "WS74", "Skew"},
    {"Solarize", "Solarize (threshold 0 - 255)", "WS75", "Solarize"},
    {"START image loop (setup)", "Start: input setup", "WS76", "StartInputsetup"},
    {"SUBROUTINE Execute", "Call subroutine", "WS77", "subroutines"},
    {"SUBROUTINE_START", "SUBROUTINE_START", "WS78", "SUBROUTINE_START_END"},
    {"Text overlay", "Text overlay (single line)", "WS83", "Textoverlay"},
    {"Text overlay (absolute)", "Text overlay (absolute) - multiple lines", "WS84",
     "Textoverlayabsolute"},
    {"Tile grid", "Tile grid ", "WS85", "Tilegrid"},
    {"Tile image", "Tile image (repeats image to fill canvas)", "WS86", "Tileimage"},
    {"Tile over absolute", "Tile over absolute", "WS87", "Tileoverabsolute"},
    {"Unsharp mask", "Unsharp mask", "WS88", "Unsharpmask"},
    {"Vertical perspective:", "Vertical perspective", "WS89", "Verticalperspective"},
    {"Watermark - overlay image", "Watermark - image overlay", "WS90", "Watermarkimageoverlay"},
};

TEST(DialogTable, EachDialogHasItsCaptionStateAndTopic) {
    for (const Row& row : kDialogs) {
        ASSERT_NE(script::FindByName(row.command), nullptr) << row.command;
        const Command* command = FindCommand(row.command);
        if (command == nullptr) continue;  // still to come
        const script::DialogSpec* dialog = command->spec.dialog;
        ASSERT_NE(dialog, nullptr) << row.command;
        EXPECT_EQ(dialog->title, row.title) << row.command;
        EXPECT_EQ(dialog->windowState, row.windowState) << row.command;
        EXPECT_EQ(dialog->helpTopic, row.helpTopic) << row.command;
    }
}

// "Blur" and "Blur_more" show a dialog when they are added, and cannot be edited; "Writer
// preferences" has pages.
TEST(DialogTable, FewOtherCommandsHaveADialog) {
    constexpr std::string_view kOthers[] = {"Blur", "Blur_more", "Writer preferences"};
    for (const script::CatalogueRow& row : script::Catalogue()) {
        const Command* command = FindCommand(row.name);
        if (command == nullptr || command->spec.dialog == nullptr) continue;
        const bool listed =
            std::ranges::find(kDialogs, row.name, &Row::command) != std::end(kDialogs);
        const bool other = std::ranges::find(kOthers, row.name) != std::end(kOthers);
        EXPECT_NE(listed, other) << row.name;
    }
}

}  // namespace
}  // namespace lumo::engine

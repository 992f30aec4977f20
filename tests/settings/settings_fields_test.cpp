#include "settings/settings_fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "settings/command_defaults.h"

namespace lumo::settings {
namespace {

Settings Factory() {
    Settings settings;
    settings.installFolder = "/inst";
    settings.userFolderSet = true;
    settings.userFolder = "/data";
    settings.userMode = 2;
    ReadFields(Document(), settings);
    return settings;
}

Document Parsed(std::string_view text) {
    auto document = ParseDocument(text);
    EXPECT_TRUE(document) << text;
    return document ? *document : Document();
}

Settings ReadFrom(std::string_view text) {
    Settings settings = Factory();
    const Document document = Parsed(text);
    ReadUsers(document, settings);
    ReadWindowsAndLimits(document, settings);
    ReadFields(document, settings);
    return settings;
}

/// Every text with another ending, every number another number, every flag the other way.
struct Alter {
    int count = 0;
    void operator()(std::string& text) { text += "/x\xFF\n\"" + std::to_string(++count); }
    void operator()(bool& flag) { flag = !flag; }
    template <class Number>
    void operator()(Number& number) {
        number = static_cast<Number>(number + static_cast<Number>(++count));
    }
    template <class... Members>
    void All(Members&... members) {
        ((*this)(members), ...);
    }
};

Settings Altered() {
    Settings s = Factory();
    Alter alter;
    Folders& f = s.folders;
    alter.All(f.photos, f.temp, f.scripts, f.subroutines, f.masks, f.frames, f.customFilters,
              f.lists, f.overlays, f.logs);
    alter.All(s.files.overlay, s.files.mask, s.files.blend, s.files.frame, s.files.tile,
              s.files.sample);
    alter.All(s.incrementalStart, s.warnBeforeMakingFolder, s.warnOfNameCollision, s.dateFormat,
              s.autoPad);
    WriterSettings& w = s.writer;
    alter.All(w.jpgDpi, w.jpgQuality, w.jpgSmoothing, w.jpgEncoding, w.tifDpi, w.tifCompression,
              w.gifDither, w.gifInterlaced, w.pngDotsPerMetre, w.pngCopyText, w.pngAddText,
              w.pngGamma);
    w.gifPalette = 2;
    for (std::size_t i = 0; i < 4; ++i) {
        alter.All(w.pngKeys[i], w.pngTexts[i], s.recentLists[i], s.recentScripts[i],
                  s.recentPictures[i]);
    }
    ReaderSettings& r = s.reader;
    alter.All(r.wmfWidth, r.wmfHeight, r.emfWidth, r.emfHeight, r.pngAllowGamma, r.pngBackColour);
    LogSettings& l = s.logs;
    alter.All(l.errorLog, l.batchLog, l.header, l.inputName, l.inputSize, l.outputName,
              l.outputSize, l.errors);
    alter.All(s.statusBar, s.toolBar, s.showEachImage, s.lastOutFolder, s.lastInFolder);
    for (auto& [key, text] : s.commandDefaults) {
        text = key == "FixedIn" ? "1,\"/a\"," : text.substr(0, 40) + "\xC3";
    }
    s.windows["WS23"] = {true, 1, 2, -3, 4, 5, 6};
    s.windows["WS01"] = {false, 0, 0, 0, 0, 0, -1};
    alter.All(s.memoryBudgetMegabytes, s.maxPictureMegapixels, s.maxPictureSide);
    return s;
}

TEST(Fields, EveryValueIsWrittenAndReadBack) {
    const Settings before = Altered();
    const Document written = WriteFields(before, Document(), {.moment = 5});
    Settings after = Factory();
    const Document read = Parsed(written.Text());
    ReadUsers(read, after);
    ReadWindowsAndLimits(read, after);
    after.userFolderSet = true;  // these two are never written
    after.userFolder = "/data";
    ReadFields(read, after);
    EXPECT_EQ(after, before);
    EXPECT_EQ(WriteFields(after, Document(), {.moment = 5}).Text(), written.Text());
}

TEST(Fields, TheTestAboveLeavesNoValueAtItsDefault) {
    // Each altered value must show, or a value could be forgotten without a notice.
    const Document factory = WriteFields(Factory(), Document(), {.moment = 5});
    const Document altered = WriteFields(Altered(), Document(), {.moment = 6});
    const std::set<std::string> same{"Multiuser", "bFirstBoot"};
    for (const TablePath& table : {TablePath{"1.0"},
                                   {"1.0", "Logs"},
                                   {"Settings"},
                                   {"Dialogs"},
                                   {"MRU"},
                                   {"Cmds"},
                                   {"Limits"}}) {
        const Document lines = Parsed(factory.Text());
        ASSERT_TRUE(lines.HasTable(table));
    }
    std::size_t compared = 0;
    for (const char* name :
         {"PhotoPath",      "TempPath",       "ScriptPath",  "SubPath",      "MaskPath",
          "FramePath",      "CustFiltPath",   "ListPath",    "OverlayPath",  "LogPath",
          "IntCount",       "IntOverlayPath", "IntMaskPath", "IntBlendPath", "IntFramePath",
          "IntTileAbsPath", "DefaultImage",   "bFoldWarn",   "bNameColWarn", "DateFormat",
          "AutoPad",        "JPGdpi",         "GIFdith",     "GIFinter",     "GIFpal",
          "PNGdpm",         "bPNGadd",        "bPNGallow",   "PNGkey1",      "PNGkey4",
          "PNGtext1",       "PNGtext4",       "JPGcomp",     "JPGcomp2",     "JPGencode",
          "TIFdpi",         "TIFcomp",        "WMFwidth",    "WMFheight",    "EMFwidth",
          "EMFheight",      "PNGcom",         "PNGgamma",    "PNGbackcolor", "DATE"}) {
        ASSERT_NE(factory.Find({"1.0"}, name), nullptr) << name;
        EXPECT_NE(*factory.Find({"1.0"}, name), *altered.Find({"1.0"}, name)) << name;
        ++compared;
    }
    EXPECT_EQ(compared, 45U);
    for (const char* name : {"ErrorLog", "BatchLog", "Header", "InputName", "InputSize",
                             "OutputName", "OutputSize", "Errors"}) {
        EXPECT_NE(*factory.Find({"1.0", "Logs"}, name), *altered.Find({"1.0", "Logs"}, name))
            << name;
    }
    for (const std::string_view key : DefaultsKeys()) {
        EXPECT_NE(*factory.Find({"Cmds"}, key), *altered.Find({"Cmds"}, key)) << key;
    }
}

TEST(Fields, FactoryValuesAreAsTold) {
    const Settings s = Factory();
    EXPECT_EQ(s.folders.photos, "/inst/Photos");
    EXPECT_EQ(s.folders.temp, "/data/Temp");
    EXPECT_EQ(s.folders.scripts, "/data/Scripts");
    EXPECT_EQ(s.folders.subroutines, "/data/Subroutines");
    EXPECT_EQ(s.folders.masks, "/inst/Masks");
    EXPECT_EQ(s.folders.frames, "/inst/Frames");
    EXPECT_EQ(s.folders.customFilters, "/data/CustomFilters");
    EXPECT_EQ(s.folders.lists, "/data/Lists");
    EXPECT_EQ(s.folders.overlays, "/inst/Overlays");
    EXPECT_EQ(s.folders.logs, "/data/Logs");
    EXPECT_EQ(s.files.overlay, "/inst/Overlays/blue1.bmp");
    EXPECT_EQ(s.files.mask, "/inst/Masks/Mask-1.bmp");
    EXPECT_EQ(s.files.blend, "/inst/Masks/Mask-1.bmp");
    EXPECT_EQ(s.files.frame, "/inst/Frames/frame.bmp");
    EXPECT_EQ(s.files.tile, "/inst/Overlays/HalcyraWorks.bmp");
    EXPECT_EQ(s.files.sample, "/inst/Frame1.jpg");
    EXPECT_EQ(s.lastInFolder, "/inst/Photos/");
    EXPECT_EQ(s.lastOutFolder, "/inst/Photos/");
}

TEST(Fields, FactoryFileHasTheseTexts) {
    const std::string text = WriteFields(Factory(), Document(), {.moment = 99}).Text();
    const auto block = text.substr(text.find("IntCount"), text.find("[\"1.0\".Logs]"));
    EXPECT_THAT(block, testing::StartsWith(R"(IntCount = "0000"
IntOverlayPath = "/inst/Overlays/blue1.bmp"
IntMaskPath = "/inst/Masks/Mask-1.bmp"
IntBlendPath = "/inst/Masks/Mask-1.bmp"
IntFramePath = "/inst/Frames/frame.bmp"
IntTileAbsPath = "/inst/Overlays/HalcyraWorks.bmp"
DefaultImage = "/inst/Frame1.jpg"
bFirstBoot = "No"
bFoldWarn = "No"
bNameColWarn = "Yes"
DateFormat = "%m/%d/%y"
AutoPad = "0001"
JPGdpi = "72"
GIFdith = "No"
GIFinter = "No"
GIFpal = "1"
PNGdpm = "11811"
bPNGadd = "No"
bPNGallow = "No"
PNGkey1 = ""
PNGkey2 = ""
PNGkey3 = ""
PNGkey4 = ""
PNGtext1 = ""
PNGtext2 = ""
PNGtext3 = ""
PNGtext4 = ""
JPGcomp = "85"
JPGcomp2 = "0"
JPGencode = "0"
TIFdpi = "300"
TIFcomp = 1
WMFwidth = "100"
WMFheight = "100"
EMFwidth = "100"
EMFheight = "100"
PNGcom = "No"
PNGintlaced = "No"
PNGgamma = 2.2
PNGbackcolor = 8421504
DATE = 99

["1.0".Logs]
ErrorLog = "Yes"
BatchLog = "Yes"
Header = "Yes"
InputName = "No"
InputSize = "No"
OutputName = "Yes"
OutputSize = "Yes"
Errors = "Yes"

[Settings]
StatusBar = "Yes"
ToolBar = "Yes"
ShowFirstPic = "No"
Theme = 0

[Dialogs]
LastOutFolder = "/inst/Photos/"
LastInFolder = "/inst/Photos/"

[MRU]
List1 = ""
)"));
    EXPECT_THAT(text, testing::StartsWith("[Multiuser]\nMultiuser = \"Yes\"\n\n[\"1.0\"]\n"
                                          "PhotoPath = \"/inst/Photos\"\nTempPath"));
    EXPECT_THAT(text, testing::HasSubstr("[Cmds]\nSTARTDef = \"32,0,,,0,1,"));
    EXPECT_THAT(text, testing::EndsWith("[Limits]\nMemoryBudgetMegabytes = 0\n"
                                        "MaxPictureMegapixels = 0\nMaxPictureSide = 0\n"));
}

TEST(Fields, AbsentValuesTakeTheirDefaultsFromTheFoldersThatStand) {
    const Settings s = ReadFrom(
        "[\"1.0\"]\nOverlayPath = \"/o\"\nMaskPath = \"/m\"\n"
        "IntMaskPath = \"/own.bmp\"\nPhotoPath = \"/p\"\n");
    EXPECT_EQ(s.files.overlay, "/o/blue1.bmp");
    EXPECT_EQ(s.files.tile, "/o/HalcyraWorks.bmp");
    EXPECT_EQ(s.files.mask, "/own.bmp");
    EXPECT_EQ(s.files.blend, "/own.bmp");
    EXPECT_EQ(s.lastInFolder, "/p/");
    EXPECT_EQ(s.writer.jpgQuality, "85");
}

TEST(Fields, AFlagLeavesItsDefaultForTheExactOppositeOnly) {
    const Settings s = ReadFrom(
        "[\"1.0\"]\nbNameColWarn = \"no\"\nbFoldWarn = \"YES\"\n"
        "GIFdith = \"Yes\"\nGIFinter = true\nPNGcom = 1\n"
        "[Settings]\nStatusBar = \"maybe\"\nToolBar = \"No\"\n"
        "ShowFirstPic = \"Yes\"\n[\"1.0\".Logs]\nErrors = false\n");
    EXPECT_TRUE(s.warnOfNameCollision);
    EXPECT_FALSE(s.warnBeforeMakingFolder);
    EXPECT_TRUE(s.writer.gifDither);
    EXPECT_TRUE(s.writer.gifInterlaced);
    EXPECT_FALSE(s.writer.pngCopyText);
    EXPECT_TRUE(s.statusBar);
    EXPECT_FALSE(s.toolBar);
    EXPECT_TRUE(s.showEachImage);
    EXPECT_FALSE(s.logs.errors);
}

TEST(Fields, InterlacedPngIsWrittenAndReadUnderDifferentNames) {
    Settings s = Factory();
    s.writer.pngInterlaced = true;
    const Document written = WriteFields(s, Document(), {});
    EXPECT_EQ(*written.Find({"1.0"}, "PNGintlaced"), Value("Yes"));
    EXPECT_EQ(written.Find({"1.0"}, "PNGinterlaced"), nullptr);
    EXPECT_FALSE(ReadFrom(written.Text()).writer.pngInterlaced);
    EXPECT_TRUE(ReadFrom("[\"1.0\"]\nPNGinterlaced = \"Yes\"\n").writer.pngInterlaced);
    // What a user wrote under the name that is read stays in the file.
    const Document again = WriteFields(s, Parsed("[\"1.0\"]\nPNGinterlaced = \"Yes\"\n"), {});
    EXPECT_EQ(*again.Find({"1.0"}, "PNGinterlaced"), Value("Yes"));
}

TEST(Fields, PaletteKnowsOneAndTwo) {
    const auto palette = [](std::string_view text) {
        return ReadFrom("[\"1.0\"]\nGIFpal = " + std::string(text) + "\n").writer.gifPalette;
    };
    EXPECT_EQ(palette("\"1\""), 1);
    EXPECT_EQ(palette("\"2\""), 2);
    EXPECT_EQ(palette("\"0\""), 0);
    EXPECT_EQ(palette("\"3\""), 0);
    EXPECT_EQ(palette("\"\""), 0);
    EXPECT_EQ(palette("2"), 2);
    EXPECT_EQ(palette("[2]"), 1);  // no text at all: as if absent
}

TEST(Fields, TextsAreReadUpTo255Bytes) {
    const auto pad = [](std::size_t length) {
        return ReadFrom("[\"1.0\"]\nAutoPad = \"" + std::string(length, 'x') + "\"\n")
            .autoPad.size();
    };
    EXPECT_EQ(pad(254), 254U);
    EXPECT_EQ(pad(255), 255U);
    EXPECT_EQ(pad(256), 255U);
    EXPECT_EQ(pad(100'000), 255U);
    EXPECT_EQ(ReadFrom("[\"1.0\"]\nAutoPad = \"ab\\u0000cd\"\n").autoPad, "ab");
    Settings s = Factory();
    s.autoPad = std::string(300, 'y');  // written whole, cut when it is read
    EXPECT_EQ(*WriteFields(s, Document(), {}).Find({"1.0"}, "AutoPad"), Value(s.autoPad));
}

TEST(Fields, ValuesTypedByHandAreUnderstood) {
    const Settings s = ReadFrom(
        "[\"1.0\"]\nJPGdpi = 300\nTIFcomp = \"5\"\nPNGgamma = 1\n"
        "PNGbackcolor = 0xFFFFFFFF\nJPGcomp = 90.5\n");
    EXPECT_EQ(s.writer.jpgDpi, "300");
    EXPECT_EQ(s.writer.tifCompression, 5);
    EXPECT_EQ(s.writer.pngGamma, 1.0);
    EXPECT_EQ(s.reader.pngBackColour, 0xFFFFFFFFU);
    EXPECT_EQ(s.writer.jpgQuality, "90.5");
}

TEST(Fields, SenselessValuesCountAsAbsent) {
    const Settings s = ReadFrom(
        "[\"1.0\"]\nJPGdpi = [300]\nTIFcomp = 4294967296\nPNGgamma = nan\nPNGbackcolor = -1\n"
        "PhotoPath = \"\"\nTempPath = 1979-05-27\nGIFdith = {a = 1}\nAutoPad = inf\n"
        "[Cmds.Crop]\nx = 1\n[MRU]\nList1 = []\n[WinState]\nWS01 = 5\n"
        "[Limits]\nMemoryBudgetMegabytes = -5\nMaxPictureSide = \"x\"\n");
    EXPECT_EQ(s, Factory());
    EXPECT_EQ(ReadFrom("[\"1.0\"]\nTIFcomp = \"5x\"\nPNGgamma = \"1,5\"\n"), Factory());
}

TEST(Fields, StatedPathsBecomeNative) {
    const Settings s = ReadFrom(
        "[\"1.0\"]\nPhotoPath = '<INSTALL_FOLDER>\\My Photos'\n"
        "MaskPath = 'C:\\Masks'\nFramePath = '/odd\\name'\n"
        "LogPath = '<INSTALL_FOLDER>/Logs'\n"
        "ScriptPath = '<TEMP_FOLDER>\\s'\n");
    EXPECT_EQ(s.folders.photos, "/inst/My Photos");
    EXPECT_EQ(s.folders.masks, "C:/Masks");
    EXPECT_EQ(s.folders.frames, "/odd\\name");  // a native name with a backslash in it
    EXPECT_EQ(s.folders.logs, "/inst/Logs");
    EXPECT_EQ(s.folders.scripts, "/data/Temp/s");
}

TEST(Fields, APathThatStillMeansTheSameKeepsItsForm) {
    const Document before = Parsed(
        "[\"1.0\"]\nPhotoPath = '<INSTALL_FOLDER>\\Photos'\n"
        "MaskPath = '<INSTALL_FOLDER>\\Masks'\n");
    Settings s = Factory();
    s.folders.masks = "/other";
    const Document after = WriteFields(s, before, {});
    EXPECT_EQ(*after.Find({"1.0"}, "PhotoPath"), Value("<INSTALL_FOLDER>\\Photos"));
    EXPECT_EQ(*after.Find({"1.0"}, "MaskPath"), Value("/other"));
}

TEST(Fields, UsersAreReadButTheirFolderIsNeverWritten) {
    const Document document = Parsed(
        "[Multiuser]\nMultiuser = \"No\"\nUserLSset = \"Yes\"\n"
        "UserLSpath = \"/net/u/\"\n");
    Settings s;
    s.installFolder = "/inst";
    ReadUsers(document, s);
    EXPECT_EQ(s.userMode, 1);
    EXPECT_EQ(DataFolder(s), "/net/u");
    const Document written = WriteFields(s, Document(), {});
    EXPECT_EQ(*written.Find({"Multiuser"}, "Multiuser"), Value("No"));
    EXPECT_EQ(written.Find({"Multiuser"}, "UserLSset"), nullptr);
    EXPECT_EQ(written.Find({"Multiuser"}, "UserLSpath"), nullptr);
    EXPECT_EQ(*WriteFields(s, document, {}).Find({"Multiuser"}, "UserLSpath"), Value("/net/u/"));

    Settings unset;
    ReadUsers(Parsed("[Multiuser]\nMultiuser = \"Yes\"\nUserLSpath = \"/net/u\"\n"), unset);
    EXPECT_EQ(unset.userMode, 2);
    EXPECT_FALSE(unset.userFolderSet);
    EXPECT_EQ(unset.userFolder, "");
    Settings none;
    ReadUsers(Document(), none);
    EXPECT_EQ(none.userMode, 0);
}

TEST(Fields, MainPathIsWrittenAtTheFirstStartOnly) {
    const Settings s = Factory();
    EXPECT_EQ(*WriteFields(s, Document(), {.firstBoot = true}).Find({"1.0"}, "MainPath"),
              Value("/inst"));
    EXPECT_EQ(WriteFields(s, Document(), {}).Find({"1.0"}, "MainPath"), nullptr);
}

TEST(Fields, WhatAnotherProgramWroteStays) {
    const Document before = Parsed(
        "[\"1.0\"]\nFuture = [1, 2]\n[New]\nx = \"y\"\n"
        "[WinState.WS05]\nLeft = 7\nSavedState = \"Yes\"\n");
    const Document after = WriteFields(Factory(), before, {});
    EXPECT_NE(after.Find({"1.0"}, "Future"), nullptr);
    EXPECT_EQ(*after.Find({"New"}, "x"), Value("y"));
    EXPECT_EQ(*after.Find({"WinState", "WS05"}, "Left"), Value(std::int64_t{7}));
}

TEST(Fields, RecentListsAndWindowsAreWrittenAlone) {
    Settings s = Factory();
    s.recentLists[1] = "/l.lst";
    s.recentScripts[0] = "/s.whs";
    const Document before = Parsed("[MRU]\nList2 = \"/old\"\nFile1 = \"/kept.whs\"\n");
    const Document lists = WriteRecentLists(s, before);
    EXPECT_EQ(*lists.Find({"MRU"}, "List2"), Value("/l.lst"));
    EXPECT_EQ(*lists.Find({"MRU"}, "File1"), Value("/kept.whs"));
    EXPECT_FALSE(lists.HasTable({"1.0"}));
    Settings read = Factory();
    ReadRecentLists(lists, read);
    EXPECT_EQ(read.recentLists[1], "/l.lst");
    EXPECT_EQ(read.recentScripts[0], "");

    s.windows["WS09"] = {true, 1, 2, 3, 4, 5, 6};
    const Document windows = WriteWindows(s, before);
    EXPECT_EQ(*windows.Find({"WinState", "WS09"}, "Bottom"), Value(std::int64_t{6}));
    EXPECT_EQ(*windows.Find({"WinState", "WS09"}, "ShowCmd"), Value(std::int64_t{2}));
    EXPECT_EQ(*windows.Find({"MRU"}, "List2"), Value("/old"));
}

TEST(Fields, FirstStartIsKnownByItsMark) {
    EXPECT_FALSE(IsSaved(Document()));
    EXPECT_FALSE(IsSaved(Parsed("[\"1.0\"]\n")));
    EXPECT_FALSE(IsSaved(Parsed("[\"1.0\"]\nbFirstBoot = \"Yes\"\n")));
    EXPECT_FALSE(IsSaved(Parsed("[\"1.0\"]\nbFirstBoot = \"no\"\n")));
    EXPECT_FALSE(IsSaved(Parsed("bFirstBoot = \"No\"\n")));
    EXPECT_TRUE(IsSaved(Parsed("[\"1.0\"]\nbFirstBoot = \"No\"\n")));
}

TEST(Fields, TheMomentOfSaveIsNowIfNoneIsTold) {
    EXPECT_EQ(LastSave(Parsed("[\"1.0\"]\nDATE = 77\n"), 1000), 77);
    EXPECT_EQ(LastSave(Parsed("[\"1.0\"]\nDATE = \"x\"\n"), 1000), 1000);
    EXPECT_EQ(LastSave(Document(), 1000), 1000);
}

}  // namespace
}  // namespace lumo::settings

#pragma once

// The one list of all values in the order of saving, told to a reader or a writer. Text: a text
// whose default stands in settings.h. Path: a text that is a path, with its default. Folder: the
// same, and an empty one counts as absent, since files would land in the current folder.

#include <string>

#include "settings/settings.h"

namespace lumo::settings {

template <class Visitor, class S>
void VisitFolders(Visitor& v, S& s, const std::string& data) {
    const std::string& shipped = s.installFolder;
    v.Folder("PhotoPath", s.folders.photos, shipped + "/Photos");
    v.Folder("TempPath", s.folders.temp, data + "/Temp");
    v.Folder("ScriptPath", s.folders.scripts, data + "/Scripts");
    v.Folder("SubPath", s.folders.subroutines, data + "/Subroutines");
    v.Folder("MaskPath", s.folders.masks, shipped + "/Masks");
    v.Folder("FramePath", s.folders.frames, shipped + "/Frames");
    v.Folder("CustFiltPath", s.folders.customFilters, data + "/CustomFilters");
    v.Folder("ListPath", s.folders.lists, data + "/Lists");
    v.Folder("OverlayPath", s.folders.overlays, shipped + "/Overlays");
    v.Folder("LogPath", s.folders.logs, data + "/Logs");
}

template <class Visitor, class S>
void VisitWriter(Visitor& v, S& w) {
    v.Text("JPGdpi", w.jpgDpi);
    v.Flag("GIFdith", w.gifDither);
    v.Flag("GIFinter", w.gifInterlaced);
    v.Palette("GIFpal", w.gifPalette);
    v.Text("PNGdpm", w.pngDotsPerMetre);
    v.Flag("bPNGadd", w.pngAddText);
}

template <class Visitor, class S>
void VisitMain(Visitor& v, S& s, const std::string& data) {
    v.Table({"1.0"});
    VisitFolders(v, s, data);
    v.Text("IntCount", s.incrementalStart);
    v.Path("IntOverlayPath", s.files.overlay, s.folders.overlays + "/blue1.bmp");
    v.Path("IntMaskPath", s.files.mask, s.folders.masks + "/Mask-1.bmp");
    v.Path("IntBlendPath", s.files.blend, s.files.mask);
    v.Path("IntFramePath", s.files.frame, s.folders.frames + "/frame.bmp");
    v.Path("IntTileAbsPath", s.files.tile, s.folders.overlays + "/HalcyraWorks.bmp");
    v.Path("DefaultImage", s.files.sample, s.installFolder + "/Frame1.jpg");
    v.StartMarks();
    v.Flag("bFoldWarn", s.warnBeforeMakingFolder);
    v.Flag("bNameColWarn", s.warnOfNameCollision);
    v.Text("DateFormat", s.dateFormat);
    v.Text("AutoPad", s.autoPad);
    VisitWriter(v, s.writer);
    v.Flag("bPNGallow", s.reader.pngAllowGamma);
    for (std::size_t i = 0; i < 4; ++i) {
        v.Text("PNGkey" + std::to_string(i + 1), s.writer.pngKeys[i]);
    }
    for (std::size_t i = 0; i < 4; ++i) {
        v.Text("PNGtext" + std::to_string(i + 1), s.writer.pngTexts[i]);
    }
    v.Text("JPGcomp", s.writer.jpgQuality);
    v.Text("JPGcomp2", s.writer.jpgSmoothing);
    v.Text("JPGencode", s.writer.jpgEncoding);
    v.Text("TIFdpi", s.writer.tifDpi);
    v.Integer("TIFcomp", s.writer.tifCompression);
    v.Text("WMFwidth", s.reader.wmfWidth);
    v.Text("WMFheight", s.reader.wmfHeight);
    v.Text("EMFwidth", s.reader.emfWidth);
    v.Text("EMFheight", s.reader.emfHeight);
    v.Flag("PNGcom", s.writer.pngCopyText);
    // Written under a name under which nothing reads it: this setting lasts for one program start,
    // as it always did. Who wants it for good writes the other name into the file.
    v.FlagUnderTwoNames({.written = "PNGintlaced", .read = "PNGinterlaced"},
                        s.writer.pngInterlaced);
    v.Real("PNGgamma", s.writer.pngGamma);
    v.Integer("PNGbackcolor", s.reader.pngBackColour);
    v.MomentOfSave();
}

template <class Visitor, class S>
void VisitLogs(Visitor& v, S& logs) {
    v.Table({"1.0", "Logs"});
    v.Flag("ErrorLog", logs.errorLog);
    v.Flag("BatchLog", logs.batchLog);
    v.Flag("Header", logs.header);
    v.Flag("InputName", logs.inputName);
    v.Flag("InputSize", logs.inputSize);
    v.Flag("OutputName", logs.outputName);
    v.Flag("OutputSize", logs.outputSize);
    v.Flag("Errors", logs.errors);
}

template <class Visitor, class S>
void VisitWindow(Visitor& v, S& s) {
    v.Table({"Settings"});
    v.Flag("StatusBar", s.statusBar);
    v.Flag("ToolBar", s.toolBar);
    v.Flag("ShowFirstPic", s.showEachImage);
    v.Integer("Theme", s.theme);
    v.Table({"Dialogs"});
    v.Path("LastOutFolder", s.lastOutFolder, s.folders.photos + "/");
    v.Path("LastInFolder", s.lastInFolder, s.folders.photos + "/");
}

template <class Visitor, class S>
void VisitRecentLists(Visitor& v, S& s) {
    v.Table({"MRU"});
    for (std::size_t i = 0; i < 4; ++i) {
        v.Path("List" + std::to_string(i + 1), s.recentLists[i], "");
    }
}

template <class Visitor, class S>
void VisitRecent(Visitor& v, S& s) {
    VisitRecentLists(v, s);
    for (std::size_t i = 0; i < 4; ++i) {
        v.Path("File" + std::to_string(i + 1), s.recentScripts[i], "");
    }
    for (std::size_t i = 0; i < 4; ++i) {
        v.Path("Pict" + std::to_string(i + 1), s.recentPictures[i], "");
    }
}

template <class Visitor, class S>
void VisitLimits(Visitor& v, S& s) {
    v.Table({"Limits"});
    v.Limit("MemoryBudgetMegabytes", s.memoryBudgetMegabytes);
    v.Limit("MaxPictureMegapixels", s.maxPictureMegapixels);
    v.Limit("MaxPictureSide", s.maxPictureSide);
}

}  // namespace lumo::settings

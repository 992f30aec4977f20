#pragma once

// Every lasting setting with its factory value. The names of the values stand beside them, their
// tables in visit_fields.h; paths are native.

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace lumo::settings {

struct Folders {
    std::string photos;         // PhotoPath
    std::string temp;           // TempPath
    std::string scripts;        // ScriptPath
    std::string subroutines;    // SubPath
    std::string masks;          // MaskPath
    std::string frames;         // FramePath
    std::string customFilters;  // CustFiltPath
    std::string lists;          // ListPath
    std::string overlays;       // OverlayPath
    std::string logs;           // LogPath
    friend bool operator==(const Folders&, const Folders&) = default;
};

struct DefaultFiles {
    std::string overlay;  // IntOverlayPath
    std::string mask;     // IntMaskPath
    std::string blend;    // IntBlendPath
    std::string frame;    // IntFramePath
    std::string tile;     // IntTileAbsPath
    std::string sample;   // DefaultImage
    friend bool operator==(const DefaultFiles&, const DefaultFiles&) = default;
};

/// How files are written. Texts become integers at each write.
struct WriterSettings {
    std::string jpgDpi = "72";              // JPGdpi
    std::string jpgQuality = "85";          // JPGcomp
    std::string jpgSmoothing = "0";         // JPGcomp2
    std::string jpgEncoding = "0";          // JPGencode: "0" standard, "1" progressive
    std::string tifDpi = "300";             // TIFdpi
    int tifCompression = 1;                 // TIFcomp: 1 none, 5 LZW, 32773 PackBits
    bool gifDither = false;                 // GIFdith
    bool gifInterlaced = false;             // GIFinter
    int gifPalette = 1;                     // GIFpal: 0 uniform, 1 median cut, 2 octree
    std::string pngDotsPerMetre = "11811";  // PNGdpm
    bool pngInterlaced = false;             // PNGinterlaced (read), PNGintlaced (written)
    bool pngCopyText = false;               // PNGcom
    bool pngAddText = false;                // bPNGadd
    std::array<std::string, 4> pngKeys;     // PNGkey1 ...
    std::array<std::string, 4> pngTexts;    // PNGtext1 ...
    double pngGamma = 2.2;                  // PNGgamma
    friend bool operator==(const WriterSettings&, const WriterSettings&) = default;
};

/// Settings of the reader pages; no decoder looks at them.
struct ReaderSettings {
    std::string wmfWidth = "100", wmfHeight = "100";
    std::string emfWidth = "100", emfHeight = "100";
    bool pngAllowGamma = false;              // bPNGallow
    std::uint32_t pngBackColour = 0x808080;  // PNGbackcolor
    friend bool operator==(const ReaderSettings&, const ReaderSettings&) = default;
};

struct LogSettings {
    bool errorLog = true;    // ErrorLog
    bool batchLog = true;    // BatchLog
    bool header = true;      // Header
    bool inputName = false;  // InputName
    bool inputSize = false;  // InputSize
    bool outputName = true;  // OutputName
    bool outputSize = true;  // OutputSize
    bool errors = true;      // Errors
    friend bool operator==(const LogSettings&, const LogSettings&) = default;
};

struct WindowState {
    bool saved = false;
    int flags = 0, showCommand = 0, left = 0, top = 0, right = 0, bottom = 0;
    friend bool operator==(const WindowState&, const WindowState&) = default;
};

struct Settings {
    std::string installFolder;  // not stored; native, without a trailing slash
    // 0: not known yet; 1: one user; 2: a folder for each user. A first start makes it 2, and the
    // folders with it.
    int userMode = 0;
    bool userFolderSet = false;  // UserLSset
    std::string userFolder;      // UserLSpath

    Folders folders;
    DefaultFiles files;
    std::string incrementalStart = "0000";  // IntCount
    bool warnBeforeMakingFolder = false;    // bFoldWarn
    bool warnOfNameCollision = true;        // bNameColWarn
    std::string dateFormat = "%m/%d/%y";    // DateFormat
    std::string autoPad = "0001";           // AutoPad
    WriterSettings writer;
    ReaderSettings reader;
    LogSettings logs;

    bool statusBar = true;       // StatusBar
    bool toolBar = true;         // ToolBar
    bool showEachImage = false;  // ShowFirstPic
    int theme = 0;               // Theme: 0 the desktop's colours, 1 light, 2 dark
    std::string lastOutFolder;   // LastOutFolder
    std::string lastInFolder;    // LastInFolder

    std::array<std::string, 4> recentLists;     // List1 ...
    std::array<std::string, 4> recentScripts;   // File1 ...
    std::array<std::string, 4> recentPictures;  // Pict1 ...

    /// Default parameter string of each command, by its defaults key ("Crop").
    std::map<std::string, std::string, std::less<>> commandDefaults;
    /// Placement of each dialog, by "WS23".
    std::map<std::string, WindowState, std::less<>> windows;

    // Limits of our own (table [Limits]), up to that of a 32-bit integer; 0: the default of the
    // code that uses it.
    std::int64_t memoryBudgetMegabytes = 0;
    std::int64_t maxPictureMegapixels = 0;
    std::int64_t maxPictureSide = 0;
    friend bool operator==(const Settings&, const Settings&) = default;
};

}  // namespace lumo::settings

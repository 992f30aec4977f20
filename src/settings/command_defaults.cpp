#include "settings/command_defaults.h"

#include <array>

#include "script/catalogue.h"
#include "script/fields.h"

namespace lumo::settings {
namespace {

constexpr std::array<std::string_view, 59> kKeys{
    "STARTDef", "OutlocDef", "TextOvAb",  "AutoCrop", "BatCom",   "BlurGaus", "MaxFilt", "MinFilt",
    "Blend",    "Border",    "BrCont",    "BWThres",  "BWdith",   "Canvas",   "ColCnt",  "ColCurve",
    "ColorRGB", "HMS",       "Copy",      "Crop",     "CustFilt", "Delete",   "DoCond",  "EdgeMask",
    "Emboss",   "LumHist",   "FixedIn",   "Frame",    "Gamma",    "Grid",     "Horz",    "HSL",
    "IfCond",   "JPGheader", "Info",      "MedianF",  "Mosaic",   "NewCanv",  "Noise",   "Rot90",
    "Replace",  "Resize",    "RotFree",   "Scale",    "DropShad", "Sharpen",  "Shift",   "Skew",
    "Solar",    "TextOver",  "TileGrid",  "TileAbs",  "TileImg",  "Tint",     "UnSharp", "Vert",
    "Water",    "BlurO",     "DustRemove"};

// As it ships, but with camera RAW files switched on. The catalogue's string has them off, and is
// the one that replaces a stored default of another layout.
constexpr std::string_view kFirstStart =
    "32,0,,,1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,";

// The quoted path of a factory string is its one quoted text.
std::string AroundPath(const std::string& factory, const std::string& path) {
    const std::size_t start = factory.find('"');
    const std::size_t end = factory.rfind('"');
    return factory.substr(0, start) + script::QuoteField(path, script::CarriageReturns::Keep) +
           factory.substr(end + 1);
}

}  // namespace

std::span<const std::string_view> DefaultsKeys() {
    return kKeys;
}

std::string FactoryDefault(std::string_view key) {
    const script::CatalogueRow* row = script::FindByKey(key);
    return row == nullptr ? std::string() : std::string(row->factory);
}

std::string CheckedDefault(std::string_view key, std::string_view stored) {
    const script::CatalogueRow* row = script::FindByKey(key);
    if (row != nullptr && script::IsCurrentLayout(*row, stored)) return std::string(stored);
    return FactoryDefault(key);
}

void SetFirstBootDefaults(Settings& settings) {
    settings.commandDefaults.clear();
    for (const std::string_view key : kKeys) {
        settings.commandDefaults.emplace(key, FactoryDefault(key));
    }
    settings.commandDefaults["STARTDef"] = kFirstStart;
    const DefaultFiles& files = settings.files;
    for (const auto& [key, path] : {std::pair{"Blend", &files.mask},
                                    {"EdgeMask", &files.mask},
                                    {"Frame", &files.frame},
                                    {"TileAbs", &files.tile},
                                    {"Water", &files.overlay}}) {
        std::string& text = settings.commandDefaults[key];
        text = AroundPath(text, *path);
    }
}

}  // namespace lumo::settings

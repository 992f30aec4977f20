#include "settings/command_defaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "script/catalogue.h"
#include "script/fields.h"

namespace lumo::settings {
namespace {

TEST(CommandDefaults, HaveAKeyForEachCommandThatStoresOne) {
    const auto keys = DefaultsKeys();
    EXPECT_EQ(keys.size(), 59U);
    EXPECT_EQ(std::set<std::string_view>(keys.begin(), keys.end()).size(), keys.size());
    for (const std::string_view key : keys) EXPECT_NE(script::FindByKey(key), nullptr) << key;
    for (const script::CatalogueRow& row : script::Catalogue()) {
        if (row.defaultsKey.empty()) continue;
        EXPECT_NE(std::find(keys.begin(), keys.end(), row.defaultsKey), keys.end())
            << row.defaultsKey;
    }
}

TEST(CheckedDefault, LooksAtTheCount) {
    const auto kept = [](std::string_view key, std::string_view text) {
        return CheckedDefault(key, text) == text;
    };
    EXPECT_TRUE(kept("Shift", "7,1,2"));  // too few fields, but the right count
    EXPECT_EQ(CheckedDefault("Shift", "6,1,2"), "7,0,0,0,1,255,255,255,");
    EXPECT_TRUE(kept("Border", "8,1,"));
    EXPECT_EQ(CheckedDefault("Border", "80,1,"), "8,10,10,10,10,0,0,0,0,");
    EXPECT_TRUE(kept("STARTDef", "32,1,"));
    EXPECT_TRUE(kept("STARTDef", "32"));
    EXPECT_FALSE(kept("STARTDef", "31,1,"));
    EXPECT_TRUE(kept("OutlocDef", "11,x"));
    EXPECT_FALSE(kept("OutlocDef", "1,1"));
    EXPECT_FALSE(kept("Crop", ""));
    EXPECT_FALSE(kept("Crop", "6"));
    EXPECT_FALSE(kept("Crop", " 6,"));
}

TEST(CheckedDefault, ReplacementsCarryTheToken) {
    EXPECT_EQ(CheckedDefault("Blend", "5,old"),
              "6,Normal,0,100,1,0,\"<INSTALL_FOLDER>\\Masks\\Mask-1.bmp\",");
    EXPECT_EQ(CheckedDefault("STARTDef", "2,x").substr(0, 10), "32,0,,,0,1");
}

TEST(FirstBootDefaults, AreTheFactoryStringsAroundThePathsOfTheSettings) {
    Settings settings;
    settings.files.mask = "/m/Mask, 1.bmp";
    settings.files.frame = "/f/frame.bmp";
    settings.files.tile = "/o/tile.bmp";
    settings.files.overlay = "/o/blue1.bmp";
    SetFirstBootDefaults(settings);
    EXPECT_EQ(settings.commandDefaults.size(), DefaultsKeys().size());
    const auto is = [&](const char* key) { return settings.commandDefaults.at(key); };
    EXPECT_EQ(is("Blend"), "6,Normal,0,100,1,0,\"/m/Mask, 1.bmp\",");
    EXPECT_EQ(is("EdgeMask"), "6,0,0,0,\"/m/Mask, 1.bmp\",1,0,");
    EXPECT_EQ(is("Frame"), "6,255,255,255,\"/f/frame.bmp\",0,0,");
    EXPECT_EQ(is("TileAbs"), "7,50,1,10,\"/o/tile.bmp\",0,255,255,");
    EXPECT_EQ(is("Water"), "12,10,10,20,100,1,0,0,255,10,\"/o/blue1.bmp\",0,0,");
    EXPECT_EQ(
        is("STARTDef"),
        "32,0,,,1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,");
    EXPECT_EQ(is("FixedIn"), "");
    EXPECT_EQ(script::ParseParams(is("Blend")).Text(5), "/m/Mask, 1.bmp");
    for (const auto& [key, text] : settings.commandDefaults) {
        EXPECT_EQ(text.find("<INSTALL_FOLDER>"), std::string::npos) << key;
        EXPECT_EQ(CheckedDefault(key, text), text);  // none is replaced at the next start
        const bool around = key == "Blend" || key == "EdgeMask" || key == "Frame" ||
                            key == "TileAbs" || key == "Water" || key == "STARTDef";
        EXPECT_EQ(text == FactoryDefault(key), !around) << key;
    }
}

}  // namespace
}  // namespace lumo::settings

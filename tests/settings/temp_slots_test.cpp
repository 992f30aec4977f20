#include "settings/temp_slots.h"

#include <filesystem>
#include <vector>

#include "store_fixture.h"

namespace lumo::settings {
namespace {

namespace fs = std::filesystem;
using test::PutFile;

TEST(StaleSlots, AreStaleAfterMoreThanEightWholeHours) {
    EXPECT_FALSE(AreSlotsStale(1000, 1000));
    EXPECT_FALSE(AreSlotsStale(1000, 1000 + 9 * 3600 - 1));
    EXPECT_TRUE(AreSlotsStale(1000, 1000 + 9 * 3600));
    EXPECT_TRUE(AreSlotsStale(0, 1'700'000'000));
    EXPECT_FALSE(AreSlotsStale(2000, 1000));
    EXPECT_FALSE(AreSlotsStale(-1, 1'700'000'000));
}

struct Slots : StoreFixture {
    Settings settings = Opened();
    int Empty(std::vector<std::string> alsoNever = {}) {
        const auto removed = EmptyTempFolder(settings, alsoNever);
        return removed ? *removed : -1;
    }
};

TEST_F(Slots, OfTheProgramsOwnFolderAreAllBmpFiles) {
    PutFile(data + "/Temp/mine.bmp", "");
    PutFile(data + "/Temp/Temp3.bmp", "");
    PutFile(data + "/Temp/mine.txt", "");
    settings.folders.temp += "/";
    EXPECT_EQ(Empty(), 2);
    EXPECT_TRUE(fs::exists(data + "/Temp/mine.txt"));
}

TEST_F(Slots, OfAnotherFolderAreTheNumberedOnes) {
    settings.folders.temp = root / "scratch";
    PutFile(root / "scratch/mine.bmp", "");
    PutFile(root / "scratch/Temp3.bmp", "");
    EXPECT_EQ(Empty(), 1);
    EXPECT_TRUE(fs::exists(root / "scratch/mine.bmp"));
}

TEST_F(Slots, AreNotLookedForWherePicturesAre) {
    const std::string pictures = root / "pictures";
    settings.folders.temp = pictures;
    PutFile(pictures + "/Temp1.bmp", "picture");
    const Settings plain = settings;
    const auto refused = [&] {
        const bool is = Empty() == -1 && fs::exists(pictures + "/Temp1.bmp");
        settings = plain;
        return is;
    };
    settings.folders.photos = pictures + "/";
    EXPECT_TRUE(refused());
    settings.lastInFolder = pictures;
    EXPECT_TRUE(refused());
    settings.lastOutFolder = pictures;
    EXPECT_TRUE(refused());
    settings.folders.overlays = pictures;
    EXPECT_TRUE(refused());
    settings.commandDefaults["STARTDef"] = "32,2,,\"" + pictures + "\",1,";
    EXPECT_TRUE(refused());
    settings.commandDefaults["OutlocDef"] = "11,0,\"" + pictures + "\",0,jpg,";
    EXPECT_TRUE(refused());
    settings.commandDefaults["Copy"] = "6,1,\"" + pictures + "\",0,,,1,";
    EXPECT_TRUE(refused());
    {
        const test::ScopedVariable elsewhere("HOME", pictures);
        EXPECT_TRUE(refused());
    }
    EXPECT_EQ(Empty({pictures}), -1);
    EXPECT_EQ(Empty(), 1);
}

}  // namespace
}  // namespace lumo::settings

#include "platform/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <vector>

#include "support/temp_folder.h"

namespace lumo::platform {
namespace {

namespace fs = std::filesystem;
using test::NamesIn;
using test::PutFile;
using testing::ElementsAre;

struct EmptyTemp : testing::Test {
    test::TempFolder root;
    std::string temp = root / "Temp";
    std::vector<std::string> never;

    void SetUp() override { fs::create_directory(temp); }
    void Put(const char* name) { PutFile(temp + "/" + name, name); }
    int Empty(TempSlots slots) {
        const auto removed = EmptyTempFolder(temp, slots, never);
        return removed ? *removed : -1;
    }
};

TEST_F(EmptyTemp, RemovesEverySlotOfTheProgramsOwnFolder) {
    for (const char* name :
         {"Temp1.bmp", "Temp9.bmp", "mine.bmp", "mine.bmp.bmp", "line\nbreak.bmp", "\xFF.bmp",
          "photo.jpg", "UPPER.BMP", ".bmp", "Temp1.bmp~", "bmp"}) {
        Put(name);
    }
    EXPECT_EQ(Empty(TempSlots::AllBmp), 6);
    EXPECT_THAT(NamesIn(temp), ElementsAre(".bmp", "Temp1.bmp~", "UPPER.BMP", "bmp", "photo.jpg"));
    EXPECT_EQ(Empty(TempSlots::AllBmp), 0);
}

TEST_F(EmptyTemp, RemovesTheSevenNumberedSlotsElsewhere) {
    for (const char* name : {"Temp0.bmp", "Temp1.bmp", "Temp7.bmp", "Temp8.bmp", "Temp10.bmp",
                             "temp2.bmp", "aTemp3.bmp", "Temp.bmp", "mine.bmp"}) {
        Put(name);
    }
    EXPECT_EQ(Empty(TempSlots::Numbered), 2);
    EXPECT_THAT(NamesIn(temp), ElementsAre("Temp.bmp", "Temp0.bmp", "Temp10.bmp", "Temp8.bmp",
                                           "aTemp3.bmp", "mine.bmp", "temp2.bmp"));
}

TEST_F(EmptyTemp, FollowsNoLinkAndLeavesWhatIsNoPlainFile) {
    PutFile(root / "original.bmp", "picture");
    fs::create_symlink(root / "original.bmp", temp + "/Temp1.bmp");
    fs::create_symlink(root / "gone", temp + "/Temp2.bmp");
    fs::create_directory(temp + "/Temp3.bmp");
    PutFile(temp + "/Temp3.bmp/Temp1.bmp", "below");
    ASSERT_EQ(mkfifo((temp + "/Temp4.bmp").c_str(), 0600), 0);
    Put("Temp5.bmp");
    EXPECT_EQ(Empty(TempSlots::AllBmp), 1);
    EXPECT_THAT(NamesIn(temp), ElementsAre("Temp1.bmp", "Temp2.bmp", "Temp3.bmp", "Temp4.bmp"));
    EXPECT_EQ(test::FileText(root / "original.bmp"), "picture");
    EXPECT_EQ(test::FileText(temp + "/Temp3.bmp/Temp1.bmp"), "below");
}

TEST_F(EmptyTemp, ALinkInPlaceOfTheFolderIsRefused) {
    Put("Temp1.bmp");
    fs::create_symlink(temp, root / "link");
    EXPECT_FALSE(EmptyTempFolder(root / "link", TempSlots::AllBmp, {}));
    EXPECT_FALSE(EmptyTempFolder(root / "link/", TempSlots::AllBmp, {}));
    EXPECT_THAT(NamesIn(temp), ElementsAre("Temp1.bmp"));
    EXPECT_EQ(*EmptyTempFolder(temp + "//", TempSlots::AllBmp, {}), 1);
}

TEST_F(EmptyTemp, AFolderOfPicturesIsRefusedUnderAnyPath) {
    Put("Temp1.bmp");
    fs::create_symlink(temp, root / "photos");
    never = {"", root / "none", root / "photos"};
    const auto refused = EmptyTempFolder(temp, TempSlots::AllBmp, never);
    ASSERT_FALSE(refused);
    EXPECT_THAT(refused.Message(), testing::StartsWith(temp + ": Not emptied"));
    EXPECT_THAT(NamesIn(temp), ElementsAre("Temp1.bmp"));
    never = {root.Path()};  // a folder of pictures that merely holds this one
    EXPECT_EQ(Empty(TempSlots::AllBmp), 1);
}

TEST_F(EmptyTemp, WithoutAFolderThereIsAReason) {
    const auto missing = EmptyTempFolder(root / "none", TempSlots::AllBmp, {});
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.Message(), root / "none: No such file or directory");
    PutFile(root / "plain", "");
    EXPECT_FALSE(EmptyTempFolder(root / "plain", TempSlots::AllBmp, {}));
    EXPECT_FALSE(EmptyTempFolder("", TempSlots::AllBmp, {}));
}

}  // namespace
}  // namespace lumo::platform

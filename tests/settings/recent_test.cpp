#include "settings/recent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumo::settings {
namespace {

using testing::ElementsAre;

TEST(AddRecent, PutsTheNewestFirstAndForgetsTheFifth) {
    RecentFiles files;
    for (const char* path : {"/a", "/b", "/c", "/d"}) AddRecent(files, path);
    EXPECT_THAT(files, ElementsAre("/d", "/c", "/b", "/a"));
    AddRecent(files, "/e");
    EXPECT_THAT(files, ElementsAre("/e", "/d", "/c", "/b"));
}

TEST(AddRecent, MovesAKnownPathUp) {
    RecentFiles files{"/a", "/b", "/c", "/d"};
    AddRecent(files, "/a");
    EXPECT_THAT(files, ElementsAre("/a", "/b", "/c", "/d"));
    AddRecent(files, "/c");
    EXPECT_THAT(files, ElementsAre("/c", "/a", "/b", "/d"));
    AddRecent(files, files[3]);  // a text that moves while it is added
    EXPECT_THAT(files, ElementsAre("/d", "/c", "/a", "/b"));
    AddRecent(files, "");
    EXPECT_THAT(files, ElementsAre("/d", "/c", "/a", "/b"));
}

TEST(AddRecent, ComparesExactly) {
    RecentFiles files{"/a"};
    AddRecent(files, "/A");
    EXPECT_THAT(files, ElementsAre("/A", "/a", "", ""));
}

TEST(RemoveRecent, MovesLaterEntriesUp) {
    RecentFiles files{"/a", "/b", "/c", "/d"};
    RemoveRecent(files, 2);
    EXPECT_THAT(files, ElementsAre("/a", "/c", "/d", ""));
    RemoveRecent(files, 1);
    EXPECT_THAT(files, ElementsAre("/c", "/d", "", ""));
    for (const int n : {0, 5, -1, 4}) RemoveRecent(files, n);
    EXPECT_THAT(files, ElementsAre("/c", "/d", "", ""));
}

TEST(AddRecent, KnowsThreeKinds) {
    Settings settings;
    AddRecentScript(settings, "/s");
    AddRecentPicture(settings, "/p");
    AddRecentList(settings, "/l");
    EXPECT_EQ(settings.recentScripts[0], "/s");
    EXPECT_EQ(settings.recentPictures[0], "/p");
    EXPECT_EQ(settings.recentLists[0], "/l");
}

TEST(RecentMenuText, ShowsShortPathsWhole) {
    EXPECT_EQ(RecentMenuText(1, "/scripts/thumb.whs"), "1  /scripts/thumb");
    EXPECT_EQ(RecentMenuText(2, "/2345678901234567890123.whs").size(),
              2U + 14 + 3 + 23);  // 27 long
    EXPECT_EQ(RecentMenuText(2, "/234567890123456789012.whs"), "2  /234567890123456789012");  // 26
    EXPECT_EQ(RecentMenuText(3, "abc"), "3  ");
    EXPECT_EQ(RecentMenuText(3, ""), "");
}

TEST(RecentMenuText, ShortensLongPathsInTheMiddle) {
    EXPECT_EQ(RecentMenuText(4, "/home/u/Documents/Lumoscript/Scripts/thumb.whs"),
              "4 /home/u/Docume.../thumb");
    EXPECT_EQ(RecentMenuText(1, "C:\\Scripts of mine\\and more\\thumb.whs"),
              "1 C:\\Scripts of ...\\thumb");
    EXPECT_EQ(RecentMenuText(1, "a name without any folder in it.whs"),
              "1 a name without...a name without any folder in it");
    EXPECT_EQ(RecentMenuText(1, "/and a name right below the root.whs"),
              "1 /and a name ri.../and a name right below the root");
}

TEST(RecentMenuText, CountsCharactersAndHidesControls) {
    std::string path;
    for (int n = 0; n < 20; ++n) path += "\xC3\xA9";
    EXPECT_EQ(RecentMenuText(1, path + ".whs"), "1  " + path);  // 24 characters in 44 bytes
    EXPECT_EQ(RecentMenuText(1, "/a\nb\x1b.whs"), "1  /a?b?");
}

TEST(RecentScriptFailure, HasWordsOfItsOwnForTheFirst) {
    EXPECT_EQ(RecentScriptFailure(1), "Unable to find or read script file?");
    for (const int n : {2, 3, 4}) {
        EXPECT_EQ(RecentScriptFailure(n), "Unable to open or read Lumoscript script file (.whs)?");
    }
}

}  // namespace
}  // namespace lumo::settings

#include "script/characters.h"

#include <gtest/gtest.h>

#include <string>

#include "support/random_text.h"

namespace lumo::script {
namespace {

TEST(Characters, AreCountedAsAUserCountsThem) {
    EXPECT_EQ(CountCharacters(""), 0u);
    EXPECT_EQ(CountCharacters("abc"), 3u);
    EXPECT_EQ(CountCharacters("\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80!"), 4u);  // ä, €, an emoji, !
}

TEST(Characters, AreNeverCutInHalf) {
    EXPECT_EQ(FirstCharacters("a\xc3\xa4"
                              "b",
                              2),
              "a\xc3\xa4");
    EXPECT_EQ(FirstCharacters("a\xc3\xa4"
                              "b",
                              1),
              "a");
    EXPECT_EQ(FirstCharacters("abc", 0), "");
    EXPECT_EQ(FirstCharacters("abc", 3), "abc");
    EXPECT_EQ(FirstCharacters("abc", 4), "abc");
    EXPECT_EQ(FirstCharacters("", 4), "");
}

TEST(Characters, CanBeCutInAnyBytes) {
    std::mt19937 random(5);
    for (int i = 0; i < 2000; ++i) {
        const std::string text = test::RandomBytes(random, 60);
        const std::size_t count = test::Below(random, 60);
        const std::string_view first = FirstCharacters(text, count);
        ASSERT_TRUE(std::string_view(text).starts_with(first));
        ASSERT_EQ(CountCharacters(first), std::min(count, CountCharacters(text)));
    }
}

}  // namespace
}  // namespace lumo::script

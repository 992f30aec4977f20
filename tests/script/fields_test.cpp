#include "script/fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "reference/plain_script_reader.h"
#include "support/random_text.h"

namespace lumo::script {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> FirstSlots(const Fields& fields, int count) {
    std::vector<std::string> slots;
    for (int i = 0; i < count; ++i) slots.push_back(GetField(fields, i));
    return slots;
}

std::vector<std::string> AllSlots(const Fields& fields) {
    return FirstSlots(fields, Fields::kSlots);
}

TEST(ParseParams, ReadsTheFieldsOfFactoryStrings) {
    const Fields border = ParseParams("8,10,10,10,10,0,0,0,0,");
    EXPECT_TRUE(border.complete);
    EXPECT_EQ(border.count, 8);
    EXPECT_THAT(FirstSlots(border, 9), ElementsAre("10", "10", "10", "10", "0", "0", "0", "0", ""));
    EXPECT_THAT(FirstSlots(ParseParams("1,1.0,"), 2), ElementsAre("1.0", ""));
    EXPECT_THAT(FirstSlots(ParseParams("7,Place your short,comments and text,here.,,,,,"), 8),
                ElementsAre("Place your short", "comments and text", "here.", "", "", "", "", ""));
}

TEST(ParseParams, KeepsCommasInsideOfQuotes) {
    EXPECT_THAT(FirstSlots(ParseParams("3,a,\"b,c\",d,"), 4), ElementsAre("a", "b,c", "d", ""));
}

TEST(ParseParams, SwitchesAtEachQuoteAndKnowsNoEscape) {
    EXPECT_THAT(FirstSlots(ParseParams("1,\"He said \"\"hi\"\",\""), 1),
                ElementsAre("He said hi,"));
    EXPECT_THAT(FirstSlots(ParseParams("2,\"He said \"\"hi\"\"\",x,"), 2),
                ElementsAre("He said hi", "x"));
    EXPECT_THAT(FirstSlots(ParseParams("2,a\"b,c\"d,e,"), 2), ElementsAre("ab,cd", "e"));
    EXPECT_THAT(FirstSlots(ParseParams("2,\"\",x,"), 2), ElementsAre("", "x"));
}

TEST(ParseParams, EndsAnUnclosedQuoteBeforeTheLastComma) {
    EXPECT_THAT(FirstSlots(ParseParams("1,\"He said \"\"hi\"\","), 1), ElementsAre("He said hi"));
    EXPECT_THAT(FirstSlots(ParseParams("3,a,\"b,c,d,"), 3), ElementsAre("a", "b,c,d", ""));
    EXPECT_THAT(FirstSlots(ParseParams("3,a,\"b,c,d"), 3), ElementsAre("a", "b,c,d", ""));
    EXPECT_THAT(FirstSlots(ParseParams("1,\","), 2), ElementsAre("", ""));
    EXPECT_THAT(FirstSlots(ParseParams("1,\",,"), 2), ElementsAre(",", ""));
    EXPECT_TRUE(ParseParams("3,a,\"b,c,d,").complete);
}

TEST(ParseParams, HasNoFieldsWithoutAComma) {
    for (const char* text : {"", "0", "5", "abc", "\"1\""}) {
        const Fields fields = ParseParams(text);
        EXPECT_FALSE(fields.complete) << text;
        EXPECT_EQ(fields.count, 0) << text;
        EXPECT_THAT(AllSlots(fields), Each(IsEmpty())) << text;
    }
}

TEST(ParseParams, IgnoresFieldsBeyondTheCount) {
    EXPECT_THAT(FirstSlots(ParseParams("2,1,2,3,4,"), 4), ElementsAre("1", "2", "", ""));
}

TEST(ParseParams, KeepsWhatAShortStringHas) {
    const Fields fields = ParseParams("5,1,2,");
    EXPECT_TRUE(fields.complete);
    EXPECT_EQ(fields.count, 5);
    EXPECT_THAT(FirstSlots(fields, 5), ElementsAre("1", "2", "", "", ""));
    EXPECT_THAT(FirstSlots(ParseParams("5,1,2"), 5), ElementsAre("1", "2", "", "", ""));
    EXPECT_TRUE(ParseParams("5,1").complete);
    EXPECT_TRUE(ParseParams("5,,").complete);
}

TEST(ParseParams, IsNotCompleteBeforeItsFirstField) {
    EXPECT_FALSE(ParseParams("5,").complete);
    EXPECT_EQ(ParseParams("5,").count, 5);
    EXPECT_TRUE(ParseParams("0,").complete);
    EXPECT_TRUE(ParseParams(",").complete);
}

TEST(ParseParams, ReadsNoMoreFieldsThanThereAreSlots) {
    std::string text = "40,";
    for (int i = 0; i < 40; ++i) text.append("x").append(std::to_string(i)).append(",");
    const Fields fields = ParseParams(text);
    EXPECT_TRUE(fields.complete);
    EXPECT_EQ(fields.count, 40);
    EXPECT_EQ(fields.Text(31), "x31");
    EXPECT_EQ(fields.Text(32), "");
    EXPECT_EQ(ParseParams("99999999999,a,b,").Text(1), "b");
}

TEST(ParseParams, ReadsNothingForACountThatIsNone) {
    for (const char* text : {"-3,a,b,", "0,a,b,", ",a,b,", "x,a,b,", "\"2\",a,b,"}) {
        EXPECT_THAT(AllSlots(ParseParams(text)), Each(IsEmpty())) << text;
        EXPECT_TRUE(ParseParams(text).complete) << text;
    }
    EXPECT_EQ(ParseParams("-3,a,").count, -3);
    EXPECT_EQ(ParseParams(" 2x,a,b,").Text(1), "b");
}

TEST(ParseParams, TakesAnyBytes) {
    const std::string text("2,a\0b,\"\n\xff,;\",", 14);
    EXPECT_THAT(FirstSlots(ParseParams(text), 2), ElementsAre(std::string("a\0b", 3), "\n\xff,;"));
}

TEST(ParseParams, AgreesWithAPlainReader) {
    std::mt19937 random(2);
    for (int i = 0; i < 200000; ++i) {
        std::string text = test::RandomText(random, 24, "0123,,,,\"\"ab \n");
        if (i % 2 == 0) text = std::to_string(random() % 40) + "," + text;
        const Fields fields = ParseParams(text);
        const reference::PlainFields plain = reference::ReadParams(text);
        ASSERT_EQ(fields.complete, plain.complete) << text;
        ASSERT_EQ(AllSlots(fields), plain.slots) << text;
    }
}

TEST(Fields, ConvertTheirTexts) {
    const Fields fields = ParseParams("5,-24,1.5,T,,99999999999,");
    EXPECT_EQ(fields.Integer(0), -24);
    EXPECT_EQ(fields.Integer(1), 1);
    EXPECT_EQ(fields.Real(1), 1.5);
    EXPECT_EQ(fields.Integer(2), 0);
    EXPECT_EQ(fields.Real(2), 0.0);
    EXPECT_TRUE(fields.Is(2, "T"));
    EXPECT_FALSE(fields.Is(2, "t"));
    EXPECT_TRUE(fields.IsEmpty(3));
    EXPECT_TRUE(fields.Is(3, ""));
    EXPECT_EQ(fields.Integer(3), 0);
    EXPECT_EQ(fields.Integer(4), INT_MAX);
}

TEST(Fields, AreEmptyOutsideOfTheSlots) {
    Fields fields = ParseParams("1,a,");
    for (const int index : {-1, INT_MIN, Fields::kSlots, INT_MAX}) {
        fields.Set(index, "lost");
        EXPECT_EQ(fields.Text(index), "");
        EXPECT_EQ(fields.Integer(index), 0);
        EXPECT_TRUE(fields.IsEmpty(index));
    }
    fields.Set(31, "kept");
    EXPECT_EQ(fields.Text(31), "kept");
    EXPECT_EQ(fields.Text(0), "a");
}

TEST(QuoteField, PutsQuotesAroundAndApostrophesInside) {
    EXPECT_EQ(QuoteField("a\"b", CarriageReturns::Keep), "\"a'b\"");
    EXPECT_EQ(QuoteField("a\"\"b\"c", CarriageReturns::Keep), "\"a''b'c\"");
    EXPECT_EQ(QuoteField("", CarriageReturns::Keep), "\"\"");
    EXPECT_EQ(QuoteField("a", CarriageReturns::Keep), "\"a\"");
    EXPECT_EQ(QuoteField("ab", CarriageReturns::Keep), "\"ab\"");
    EXPECT_EQ(QuoteField("a,b", CarriageReturns::Keep), "\"a,b\"");
}

TEST(QuoteField, LeavesATextThatBeginsWithAQuote) {
    EXPECT_EQ(QuoteField("\"a\"", CarriageReturns::Keep), "\"a\"");
    EXPECT_EQ(QuoteField("\"", CarriageReturns::Strip), "\"");
    EXPECT_EQ(QuoteField("\"a\r\n\"b", CarriageReturns::Strip), "\"a\r\n\"b");
}

TEST(QuoteField, KeepsTheQuoteNextToTheClosingOne) {
    EXPECT_EQ(QuoteField("ab\"", CarriageReturns::Keep), "\"ab\"\"");
    EXPECT_EQ(QuoteField("a\"\"", CarriageReturns::Keep), "\"a'\"\"");
}

TEST(QuoteField, StripsCarriageReturnsWhenAsked) {
    EXPECT_EQ(QuoteField("a\r\nb\r", CarriageReturns::Strip), "\"a\nb\"");
    EXPECT_EQ(QuoteField("a\r\nb", CarriageReturns::Keep), "\"a\r\nb\"");
}

TEST(QuoteField, LineBreaksSurviveWritingAndReading) {
    const std::string lineFeed = QuoteField("one\ntwo, three", CarriageReturns::Strip);
    EXPECT_EQ(ParseParams("1," + lineFeed + ",").Text(0), "one\ntwo, three");
    const std::string both = QuoteField("one\r\ntwo", CarriageReturns::Strip);
    EXPECT_EQ(ParseParams("1," + both + ",").Text(0), "one\ntwo");
}

TEST(QuoteField, ReadsBackAsTheTextForAnyTextWithoutQuotes) {
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        std::string text = test::RandomBytes(random, 40);
        std::erase(text, '"');
        const std::string params = "2," + QuoteField(text, CarriageReturns::Keep) + ",after,";
        ASSERT_EQ(ParseParams(params).Text(0), text);
        ASSERT_EQ(ParseParams(params).Text(1), "after");
    }
}

}  // namespace
}  // namespace lumo::script

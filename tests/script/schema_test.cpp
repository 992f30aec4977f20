#include "script/schema.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/random_text.h"

namespace lumo::script {
namespace {

constexpr std::string_view kUnitNames[] = {"Pixels", "Percent"};
constexpr std::string_view kMethodNames[] = {"Fast", "Good", "Best"};
constexpr std::string_view kMethodValues[] = {"3", "17", "8"};

constexpr std::array kFields{
    Integer("Width", "10").Clamp(0, 10000).ClampWhen(1, "1", 0, 100),
    Choice("Units", "0", kUnitNames),
    Choice("Method", "17", kMethodNames, kMethodValues),
    Real("Radius", "1.0").Clamp(0.5, 9).Unit("pixels"),
    Flag("Bold", "F").Stored("F", "T"),
    Text("Message", "Put it, here").Quoted(true).MultiLine().MaxLength(1000),
    Path("Mask", "").Filter("*.bmp"),
    Red("Colour", "1"),
    Green("2"),
    Blue("3"),
    Reserved("0"),
};

static_assert(kFields[0].low == 0 && kFields[0].high == 10000);
static_assert(kFields[0].whenField == 1 && kFields[0].whenText == "1" &&
              kFields[0].whenHigh == 100);
static_assert(kFields[1].values.empty() && kFields[2].values.size() == 3);
static_assert(kFields[3].unit == "pixels" && kFields[3].low == 0.5);
static_assert(kFields[4].on == "T" && kFields[4].off == "F");
static_assert(kFields[5].quoted && kFields[5].multiLine && kFields[5].maxLength == 1000);
static_assert(kFields[6].quoted && !kFields[6].quoteFactory && kFields[6].fileFilter == "*.bmp");
static_assert(kFields[7].high == 255 && kFields[8].high == 255 && kFields[9].high == 255);
static_assert(Folder("Output", "").quoted);

TEST(FactoryString, CountsTheFieldsAndQuotesWhereAsked) {
    EXPECT_EQ(FactoryString(kFields), "11,10,0,17,1.0,F,\"Put it, here\",,1,2,3,0,");
    EXPECT_EQ(FactoryString(std::array{Real("Gamma", "1.0")}), "1,1.0,");
}

TEST(FactoryString, IsZeroForACommandWithoutFields) {
    EXPECT_EQ(FactoryString({}), "0");
}

TEST(BuildParams, QuotesTextsAndPaths) {
    const std::vector<std::string> texts{"1",       "1", "8", "2.5", "T", "say \"hi\" to,\r\nall",
                                         "C:\\a,b", "9", "8", "7",   "0"};
    EXPECT_EQ(BuildParams(kFields, texts),
              "11,1,1,8,2.5,T,\"say 'hi' to,\nall\",\"C:\\a,b\",9,8,7,0,");
}

TEST(BuildParams, KeepsNamesOfFilesToTheByte) {
    constexpr std::array kPaths{Path("File", ""), Folder("Folder", ""), Text("Text", "").Quoted()};
    const std::vector<std::string> texts{"a\rb", "c\rd", "e\rf"};
    EXPECT_EQ(BuildParams(kPaths, texts), "3,\"a\rb\",\"c\rd\",\"ef\",");
}

TEST(BuildParams, FillsUpMissingTextsAndIgnoresFurtherOnes) {
    constexpr std::array kTwo{Integer("a", "1"), Path("b", "")};
    EXPECT_EQ(BuildParams(kTwo, std::vector<std::string>{}), "2,,\"\",");
    EXPECT_EQ(BuildParams(kTwo, std::vector<std::string>{"1", "p", "more"}), "2,1,\"p\",");
    EXPECT_EQ(BuildParams({}, std::vector<std::string>{"1"}), "0");
}

TEST(BuildParams, ReadsBackAsTheTextsItWasMadeOf) {
    std::mt19937 random(4);
    for (int round = 0; round < 3000; ++round) {
        std::vector<FieldSpec> specs;
        std::vector<std::string> texts;
        for (std::size_t n = test::Below(random, Fields::kSlots + 1); n > 0; --n) {
            const bool quoted = random() % 2 == 0;
            specs.push_back(quoted ? Path("file", "") : Integer("number", ""));
            std::string text = test::RandomBytes(random, 20);
            std::erase(text, '"');
            if (!quoted) std::erase(text, ',');
            texts.push_back(text);
        }
        const Fields fields = ParseParams(BuildParams(specs, texts));
        ASSERT_EQ(fields.count, static_cast<int>(specs.size()));
        ASSERT_EQ(fields.complete, !specs.empty());
        for (std::size_t i = 0; i < Fields::kSlots; ++i)
            ASSERT_EQ(fields.Text(static_cast<int>(i)), i < texts.size() ? texts[i] : "") << i;
    }
}

TEST(BuildParams, GivesTheFactoryStringForTheFactoryTexts) {
    constexpr std::array kAll{Integer("a", "10"), Text("b", "x, y").Quoted(true), Flag("c", "1")};
    const std::vector<std::string> texts{"10", "x, y", "1"};
    EXPECT_EQ(BuildParams(kAll, texts), FactoryString(kAll));
}

constexpr std::string_view kUnitLines[] = {"crop by pixels", "crop by percent"};
constexpr std::array kPanel{Fixed("Crop"), OneOf(1, kUnitLines), Value(0, "Top = ", " rows"),
                            WhenOn(2, "keep shape"), WhenOn(3, "bold", "T")};

TEST(PanelText, WritesOneLineForEach) {
    EXPECT_EQ(PanelText(kPanel, ParseParams("4,7,0,1,T,")),
              "Crop\ncrop by pixels\nTop = 7 rows\nkeep shape\nbold\n");
    EXPECT_EQ(PanelText(kPanel, ParseParams("4,7,1,1,1,")),
              "Crop\ncrop by percent\nTop = 7 rows\nkeep shape\n");
}

TEST(PanelText, LeavesOutWhatIsOff) {
    EXPECT_EQ(PanelText(kPanel, ParseParams("4,7,0,0,F,")), "Crop\ncrop by pixels\nTop = 7 rows\n");
}

TEST(PanelText, TakesTheLastLineForAnyOtherText) {
    constexpr std::array kOne{OneOf(0, kMethodNames)};
    EXPECT_EQ(PanelText(kOne, ParseParams("1,0,")), "Fast\n");
    EXPECT_EQ(PanelText(kOne, ParseParams("1,1,")), "Good\n");
    for (const char* params : {"1,2,", "1,3,", "1,00,", "1, 0,", "1,-1,", "1,x,", "0"})
        EXPECT_EQ(PanelText(kOne, ParseParams(params)), "Best\n") << params;
    constexpr std::array kNoLines{OneOf(0, {})};
    EXPECT_EQ(PanelText(kNoLines, ParseParams("1,0,")), "\n");
}

TEST(PanelText, IsMadeByTheCommandItselfWhereItHasAFunction) {
    CommandSpec spec;
    spec.panel = kPanel;
    EXPECT_EQ(PanelText(spec, ParseParams("1,5,")), "Crop\ncrop by percent\nTop = 5 rows\n");
    spec.panelText = [](const Fields& fields) { return "own " + fields.Text(0); };
    EXPECT_EQ(PanelText(spec, ParseParams("1,5,")), "own 5");
}

TEST(PanelText, IsEmptyWithoutLines) {
    EXPECT_EQ(PanelText(CommandSpec{}, ParseParams("1,5,")), "");
}

}  // namespace
}  // namespace lumo::script

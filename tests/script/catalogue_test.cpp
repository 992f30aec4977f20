#include "script/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "script/fields.h"
#include "script/names.h"
#include "script/schema.h"
#include "support/test_files.h"

namespace lumo::script {
namespace {

std::vector<std::string> LinesOf(const std::string& file) {
    std::ifstream stream(test::DataFolder() / "script" / file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string WithEscapes(std::string_view text) {
    std::string escaped;
    for (const char c : text) escaped += c == '\r' ? "\\r" : c == '\n' ? "\\n" : std::string(1, c);
    return escaped;
}

std::string AsLine(const CatalogueRow& row) {
    std::ostringstream line;
    line << (row.number < 10 ? "0" : "") << row.number << '\t' << row.name << '\t' << row.menuText
         << '\t' << row.defaultsKey << '\t' << WithEscapes(row.factory) << '\t'
         << (row.fieldCount == kNotOffered ? "-" : std::to_string(row.fieldCount)) << '\t'
         << (row.hasDialog ? "yes" : "no") << '\t' << row.helpTopic;
    return line.str();
}

TEST(Catalogue, HoldsEveryColumnOfEveryRowToTheByte) {
    const std::vector<std::string> lines = LinesOf("catalogue.tsv");  // with a line of headings
    ASSERT_EQ(lines.size(), Catalogue().size() + 1);
    for (std::size_t i = 0; i < Catalogue().size(); ++i)
        EXPECT_EQ(AsLine(Catalogue()[i]), lines[i + 1]);
}

TEST(Catalogue, HasNinetyOneDifferentNames) {
    std::set<std::string_view> names;
    for (const CatalogueRow& row : Catalogue()) names.insert(row.name);
    EXPECT_EQ(names.size(), 91u);
}

/// Fields behind the count; the string must end in the comma of the last one.
int FieldsIn(std::string_view params) {
    bool quoted = false;
    int commas = 0;
    for (const char c : params) {
        if (c == '"') quoted = !quoted;
        if (c == ',' && !quoted) ++commas;
    }
    EXPECT_FALSE(quoted) << params;
    EXPECT_TRUE(params.ends_with(',')) << params;
    return commas - 1;
}

TEST(Catalogue, FactoryStringsHoldAsManyFieldsAsTheyState) {
    for (const CatalogueRow& row : Catalogue()) {
        if (row.factory.empty()) continue;
        const Fields fields = ParseParams(row.factory);
        EXPECT_TRUE(fields.complete) << row.name;
        EXPECT_EQ(fields.count, FieldsIn(row.factory)) << row.name;
        EXPECT_LE(fields.count, Fields::kSlots) << row.name;
        EXPECT_TRUE(row.factory.starts_with(std::to_string(fields.count) + ",")) << row.name;
    }
}

TEST(Catalogue, FactoryStringsHoldTheFieldsThatTheCommandReads) {
    for (const CatalogueRow& row : Catalogue()) {
        if (row.factory.empty() || row.fieldCount == kNotOffered) continue;
        // Three commands came to read one field more than their column says.
        const bool oneMore = row.name == names::kAddBorder || row.name == names::kTextOverlay ||
                             row.name == names::kTileGrid;
        EXPECT_EQ(ParseParams(row.factory).count, row.fieldCount + (oneMore ? 1 : 0)) << row.name;
    }
    EXPECT_EQ(ParseParams(FactoryParams(names::kAddBorder)).count, 8);
    EXPECT_EQ(FieldCountText(names::kAddBorder), "7");
    EXPECT_EQ(ParseParams(FactoryParams(names::kTextOverlay)).count, 21);
    EXPECT_EQ(FieldCountText(names::kTextOverlay), "20");
    EXPECT_EQ(ParseParams(FactoryParams(names::kTileGrid)).count, 7);
    EXPECT_EQ(FieldCountText(names::kTileGrid), "6");
    EXPECT_EQ(ParseParams(FactoryParams(names::kStartImageLoop)).count, 32);
}

TEST(Catalogue, FactoryTextsReadAsWritten) {
    const Fields header = ParseParams(FactoryParams(names::kJpgFileHeader));
    EXPECT_EQ(header.Text(7),
              "Place your comments here (1,000 characters maximum).\r\nIn IPTC date tag, "
              "$(date%Y%m%d) will be replaced by the current date in form yyyymmdd when "
              "executed\r\nPress help for details of this command.");
    EXPECT_EQ(header.Text(10), "$(date%Y%m%d)");
    EXPECT_EQ(ParseParams(FactoryParams(names::kBlendImages)).Text(5),
              "<INSTALL_FOLDER>\\Masks\\Mask-1.bmp");
    EXPECT_EQ(ParseParams(FactoryParams(names::kCustomFilter)).Text(27), "Sharpen");
}

TEST(Catalogue, IsFoundByNameAndByKey) {
    for (const CatalogueRow& row : Catalogue()) {
        EXPECT_EQ(FindByName(row.name), &row);
        if (!row.defaultsKey.empty()) {
            EXPECT_EQ(FindByKey(row.defaultsKey), &row);
        }
    }
    EXPECT_EQ(FindByName(""), nullptr);
    EXPECT_EQ(FindByKey(""), nullptr);
    EXPECT_EQ(FindByKey("border"), nullptr);
    EXPECT_EQ(FindByKey("Crop "), nullptr);
}

TEST(IsKnownCommand, IsExact) {
    for (const CatalogueRow& row : Catalogue()) EXPECT_TRUE(IsKnownCommand(row.name)) << row.name;
    for (const char* text : {"", "blur", "Blur ", " Blur", "Ouput setup", "Flip - horizontal",
                             "Grid overlay", "Vertical perspective", "Null", "Image effects"})
        EXPECT_FALSE(IsKnownCommand(text)) << text;
    EXPECT_FALSE(IsKnownCommand(std::string_view("Blur\0", 5)));
}

TEST(FieldCountText, AnswersWhatWasPicked) {
    EXPECT_EQ(FieldCountText("Null"), "N");
    EXPECT_EQ(FieldCountText("JPG file header"), "29");
    EXPECT_EQ(FieldCountText("Writer preferences"), "24");
    EXPECT_EQ(FieldCountText("Counter (reset or increment)"), "3");
    EXPECT_EQ(FieldCountText("Blur"), "1");
    EXPECT_EQ(FieldCountText("Despeckle"), "0");
    for (const char* category :
         {"All commands", "Image appearance", "Brightness/Contrast", "Blur/Sharpen", "Color",
          "Histogram", "Noise", "Color depth", "Image effects", "Image overlays",
          "Size modify cmds", "Rotate image cmds", "Filters", "Input/Output", "Execution", "Other"})
        EXPECT_EQ(FieldCountText(category), "D") << category;
    for (const char* other : {"", "START image loop (setup)", "END image loop", "null", "color"})
        EXPECT_EQ(FieldCountText(other), "") << other;
}

TEST(FieldCountText, IsTheColumnOfTheRow) {
    for (const CatalogueRow& row : Catalogue()) {
        if (row.fieldCount == kNotOffered) continue;
        EXPECT_EQ(FieldCountText(row.name), std::to_string(row.fieldCount));
    }
}

TEST(Catalogue, CommandsWithoutFieldsHaveNeitherDialogNorDefault) {
    for (const CatalogueRow& row : Catalogue()) {
        if (row.fieldCount != 0) continue;
        EXPECT_FALSE(row.hasDialog) << row.name;
        EXPECT_TRUE(row.defaultsKey.empty() && row.factory.empty()) << row.name;
        EXPECT_EQ(FactoryParams(row.name), "0");
        EXPECT_EQ(FactoryParams(row.name), FactoryString({}));
    }
}

TEST(Catalogue, NamesWithoutAFactoryDefault) {
    EXPECT_EQ(FactoryParams(names::kInputFixedImage), "0");
    EXPECT_EQ(FindByName(names::kInputFixedImage)->defaultsKey, "FixedIn");
    for (const auto& name : {names::kInputTemporary, names::kOutputTemporary}) {
        EXPECT_TRUE(FindByName(name)->hasDialog);
        EXPECT_EQ(FindByName(name)->defaultsKey, "");
        EXPECT_EQ(FieldCountText(name), "2");
    }
    EXPECT_EQ(FactoryParams("no command"), "0");
}

TEST(NumberedMenuText, HasTwoDigits) {
    EXPECT_EQ(NumberedMenuText(Catalogue()[0]), "01 Add border...");
    EXPECT_EQ(NumberedMenuText(Catalogue()[62]), "63 Ouput setup");
    EXPECT_EQ(NumberedMenuText(Catalogue()[90]), "91 Writer preferences...");
}

TEST(IsCurrentLayout, ComparesTheCountWithItsComma) {
    const CatalogueRow& shift = *FindByKey("Shift");
    EXPECT_TRUE(IsCurrentLayout(shift, "7,1,2"));
    EXPECT_FALSE(IsCurrentLayout(shift, "6,1,2"));
    EXPECT_FALSE(IsCurrentLayout(shift, "70,1,2"));
    EXPECT_FALSE(IsCurrentLayout(shift, "7"));
    EXPECT_FALSE(IsCurrentLayout(shift, ""));
    const CatalogueRow& start = *FindByKey("STARTDef");
    EXPECT_TRUE(IsCurrentLayout(start, "32,0,"));
    EXPECT_FALSE(IsCurrentLayout(start, "31,0,"));
    EXPECT_FALSE(IsCurrentLayout(start, "3,0,"));
    for (const CatalogueRow& row : Catalogue()) {
        if (!row.defaultsKey.empty()) {
            EXPECT_TRUE(IsCurrentLayout(row, row.factory)) << row.name;
        }
    }
}

TEST(IsCurrentLayout, TakesAUsersDefaultWhereNoneIsShipped) {
    const CatalogueRow& fixed = *FindByKey("FixedIn");
    EXPECT_TRUE(IsCurrentLayout(fixed, "1,\"a.bmp\","));
    EXPECT_TRUE(IsCurrentLayout(fixed, ""));
    EXPECT_FALSE(IsCurrentLayout(fixed, "2,\"a.bmp\",0,"));
}

void Outline(const std::vector<CategoryNode>& nodes, const std::string& indent,
             std::vector<std::string>& lines) {
    for (const CategoryNode& node : nodes) {
        lines.push_back(indent + "[" + std::string(node.name) + "]");
        for (const std::string_view command : node.commands)
            lines.push_back(indent + "  " + std::string(command));
        Outline(node.children, indent + "  ", lines);
    }
}

TEST(CategoryTree, HoldsEveryNodeInOrder) {
    std::vector<std::string> lines;
    Outline(CategoryTree(), "", lines);
    EXPECT_EQ(lines, LinesOf("command_tree.txt"));
}

TEST(CategoryTree, OffersEveryCommandButTheMarkers) {
    const CategoryNode& all = CategoryTree().front();
    EXPECT_EQ(all.commands.size(), 89u);
    EXPECT_THAT(all.commands, testing::Not(testing::Contains(names::kStartImageLoop)));
    EXPECT_THAT(all.commands, testing::Not(testing::Contains(names::kEndImageLoop)));
}

TEST(CategoryTree, NamesNoCommandLikeACategory) {
    for (const CatalogueRow& row : Catalogue()) EXPECT_FALSE(IsCategoryName(row.name)) << row.name;
    EXPECT_FALSE(IsCategoryName(""));
}

}  // namespace
}  // namespace lumo::script

#include "engine/command_reference.h"

#include <gmock/gmock.h>

#include <fstream>
#include <set>

#include "script/catalogue.h"
#include "script/names.h"
#include "support/temp_folder.h"
#include "support/test_files.h"

namespace lumo::engine {
namespace {

using testing::HasSubstr;

// Written anew by: build/release/src/lumoscript-batch --commands > docs/commands.md
TEST(CommandReference, IsTheDocument) {
    EXPECT_EQ(test::FileText((test::SourceRoot() / "docs/commands.md").string()),
              CommandReference());
}

TEST(CommandReference, HoldsEachCommandWithItsSummary) {
    const std::string text = CommandReference();
    for (const auto& row : script::Catalogue()) {
        const std::string_view summary = CommandSummary(row.name);
        EXPECT_TRUE(summary.ends_with('.')) << row.name;
        EXPECT_THAT(text, HasSubstr("\n## " + std::to_string(row.number) + ". " +
                                    std::string(row.name) + "\n\n" + std::string(summary) +
                                    "\n\n```\n" + std::string(row.name) + "\n"));
    }
    EXPECT_EQ(CommandSummary("no such command"), "");
    // Neighbours in the table that are easily confused.
    EXPECT_THAT(CommandSummary(script::names::kFlipHorizontal), HasSubstr("left and right"));
    EXPECT_THAT(CommandSummary(script::names::kMaximumFilter), HasSubstr("brightest"));
    EXPECT_THAT(CommandSummary(script::names::kMinimumFilter), HasSubstr("darkest"));
    EXPECT_THAT(CommandSummary(script::names::kWriterPreferences), HasSubstr("quality"));
}

TEST(CommandReference, TellsFieldsFromTheSchema) {
    const std::string text = CommandReference();
    EXPECT_THAT(text, HasSubstr("```\nCrop\n6,10,10,10,10,0,0,\n```\n"));
    EXPECT_THAT(text, HasSubstr("| 1 | Top | whole number, 0 to 10000 (0 to 100 if field 5 is `1`) "
                                "| `10` |\n"));
    EXPECT_THAT(text, HasSubstr("| 5 | Units | `0` Pixels, `1` Percent | `0` |\n"));
    EXPECT_THAT(text, HasSubstr("| 14 | DD (of field 24) | whole number, 1 to 31 | `1` |\n"));
    EXPECT_EQ(text.find('\r'), std::string::npos);
}

}  // namespace
}  // namespace lumo::engine

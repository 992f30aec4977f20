// What holds for every command of the family.

#include <gtest/gtest.h>

#include "engine/command.h"
#include "ops/files/files_commands.h"
#include "script/catalogue.h"
#include "script/names.h"

namespace lumo::ops::files {
namespace {

const engine::Command* const kFamily[] = {&kOutputTemporaryCommand, &kInputTemporaryCommand,
                                          &kInputFixedImageCommand, &kReloadImageFileCommand,
                                          &kCopyMoveCommand,        &kDeleteInputFileCommand};

TEST(FilesSchemas, FactoryStringsAreThoseOfTheCatalogue) {
    for (const engine::Command* command : kFamily) {
        const script::CatalogueRow* row = script::FindByName(command->spec.name);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(static_cast<int>(command->spec.fields.size()), row->fieldCount) << row->name;
        if (!row->factory.empty()) {
            EXPECT_EQ(script::FactoryString(command->spec.fields), row->factory) << row->name;
        }
    }
    EXPECT_EQ(script::FactoryString(kOutputTemporaryCommand.spec.fields), "2,0,,");
    EXPECT_EQ(script::FactoryString(kInputTemporaryCommand.spec.fields), "2,0,,");
    EXPECT_EQ(script::FactoryString(kInputFixedImageCommand.spec.fields), "1,,");
    EXPECT_EQ(script::FactoryString(kCopyMoveCommand.spec.fields), "6,1,,0,,,1,");
    EXPECT_EQ(script::FactoryString(kDeleteInputFileCommand.spec.fields), "2,1,1,");
}

TEST(FilesSchemas, AreRegisteredWithDialogAndPanel) {
    for (const engine::Command* command : kFamily) {
        EXPECT_EQ(engine::FindCommand(command->spec.name), command) << command->spec.name;
        const script::CatalogueRow* row = script::FindByName(command->spec.name);
        if (!row->hasDialog) {
            EXPECT_EQ(command->spec.dialog, nullptr) << command->spec.name;
            continue;
        }
        ASSERT_NE(command->spec.dialog, nullptr) << command->spec.name;
        EXPECT_EQ(command->spec.dialog->helpTopic, row->helpTopic);
        EXPECT_NE(script::PanelText(command->spec, script::ParseParams("0")), "");
    }
}

TEST(FilesSchemas, DialogsAreTitledAsTold) {
    const auto expect = [](const engine::Command& command, std::string_view title,
                           std::string_view state) {
        EXPECT_EQ(command.spec.dialog->title, title);
        EXPECT_EQ(command.spec.dialog->windowState, state);
    };
    expect(kOutputTemporaryCommand, "Output tempory file - for use later in script", "");
    expect(kInputTemporaryCommand, "Input (temporary) - must be created earlier in script", "");
    expect(kInputFixedImageCommand, "Input fixed image file", "WS51");
    expect(kCopyMoveCommand, "Copy - Move (original image file)", "WS20");
    expect(kDeleteInputFileCommand, "Delete input file", "");
    EXPECT_EQ(kCopyMoveCommand.spec.fields[1].browseTitle, "Choose image folder for copy/move.");
}

TEST(FilesSchemas, CopyMoveAsksForAFolder) {
    const auto question = kCopyMoveCommand.spec.dialog->question;
    EXPECT_EQ(question(script::ParseParams("6,1,,0,,,1,")),
              "Warning, no output folder specified. Continue anyway?");
    EXPECT_EQ(question(script::ParseParams("6,1,/out,0,,,1,")), "");
}

}  // namespace
}  // namespace lumo::ops::files

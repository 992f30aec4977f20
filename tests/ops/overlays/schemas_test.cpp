// What holds for every command of the family.

#include <gtest/gtest.h>

#include "ops/overlays/overlay_commands.h"
#include "script/catalogue.h"
#include "support/command_runner.h"

namespace lumo::ops::overlays {
namespace {

const engine::Command* const kFamily[] = {&kMosaicCommand,
                                          &kTileImageCommand,
                                          &kTileGridCommand,
                                          &kGridCommand,
                                          &kNoiseAddCommand,
                                          &kBlendImagesCommand,
                                          &kWatermarkCommand,
                                          &kTileOverAbsoluteCommand,
                                          &kFrameOverlayCommand,
                                          &kMaskOverlayCommand,
                                          &kDropShadowCommand,
                                          &kTextOverlayCommand,
                                          &kTextOverlayAbsoluteCommand};

TEST(OverlaySchemas, FactoryStringsAreThoseOfTheCatalogue) {
    for (const engine::Command* command : kFamily) {
        EXPECT_EQ(script::FactoryString(command->spec.fields),
                  script::FactoryParams(command->spec.name));
    }
}

TEST(OverlaySchemas, AreRegisteredWithDialogAndPanel) {
    for (const engine::Command* command : kFamily) {
        EXPECT_EQ(engine::FindCommand(command->spec.name), command) << command->spec.name;
        ASSERT_NE(command->spec.dialog, nullptr) << command->spec.name;
        const script::CatalogueRow* row = script::FindByName(command->spec.name);
        EXPECT_EQ(command->spec.dialog->windowState,
                  (row->number < 10 ? "WS0" : "WS") + std::to_string(row->number));
        // One command has a topic only behind the button of its dialog.
        EXPECT_EQ(command->spec.dialog->helpTopic,
                  row->helpTopic.empty() ? "Textoverlay" : row->helpTopic);
        EXPECT_NE(script::PanelText(command->spec,
                                    script::ParseParams(script::FactoryParams(command->spec.name))),
                  "");
    }
}

TEST(OverlaySchemas, AnEmptyWorkingImageFails) {
    for (const engine::Command* command : kFamily) {
        test::CommandRunner runner{imaging::Image()};
        EXPECT_FALSE(runner.Run(*command, script::FactoryParams(command->spec.name)))
            << command->spec.name;
        EXPECT_TRUE(runner.messages.empty());
    }
}

TEST(OverlaySchemas, DegenerateParametersNeverHarm) {
    for (const engine::Command* command : kFamily)
        for (const char* params : {"", "0", "1,", "9,-1,-1,-1,-1,-1,-1,-1,-1,-1,",
                                   "9,2147483647,2147483647,2147483647,2147483647,2147483647,"
                                   "2147483647,2147483647,2147483647,2147483647,"}) {
            test::CommandRunner runner(test::RandomImage({7, 5}, 1));
            const test::ScopedMemoryBudget budget(1 << 20);
            runner.Execute(*command, params);
        }
}

}  // namespace
}  // namespace lumo::ops::overlays

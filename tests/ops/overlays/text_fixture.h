#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "imaging/draw_text.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/overlays/text_style.h"
#include "support/command_runner.h"
#include "support/ink.h"
#include "support/test_fonts.h"

namespace lumo::test {

/// Commands that write on pictures, in the shipped fonts.
class TextCommandTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { ASSERT_TRUE(HasTestFonts()); }

    static constexpr imaging::Rgb kGround{0, 0, 200};

    /// The flat picture after the command.
    static imaging::Image After(const engine::Command& command, std::string_view params,
                                imaging::Size size = {640, 480}) {
        CommandRunner runner(FlatImage(size, kGround));
        EXPECT_TRUE(runner.Run(command, params)) << params;
        EXPECT_TRUE(runner.messages.empty());
        EXPECT_EQ(runner.Main().Extent(), size);
        return std::move(runner.Main());
    }
    /// Where it changed that picture.
    static imaging::Rect Changed(const imaging::Image& after) {
        return ChangedIn(FlatImage(after.Extent(), kGround).View(), after.View());
    }
    /// Where it has that colour.
    static imaging::Rect BoxOf(const imaging::Image& after, imaging::Rgb colour) {
        imaging::Image rest = Copy(after.View());
        const imaging::Rgb other{static_cast<std::uint8_t>(~colour.red), colour.green, colour.blue};
        for (int y = 0; y < rest.Height(); ++y)
            for (int x = 0; x < rest.Width(); ++x)
                if (rest.View().Pixel(x, y) == colour) rest.View().SetPixel(x, y, other);
        return ChangedIn(after.View(), rest.View());
    }
    static imaging::Size Measured(std::string_view text, const imaging::TextFont& font,
                                  imaging::Smoothing smoothing) {
        const auto size = imaging::GetTextLineSize2(text, font, smoothing);
        EXPECT_TRUE(size);
        return size.value_or(imaging::Size{});
    }
    /// Services of which one kind always fails.
    static ops::overlays::TextServices WithoutMeasure() {
        ops::overlays::TextServices services;
        services.measure = [](auto&&...) { return std::nullopt; };
        return services;
    }
    static ops::overlays::TextServices WithoutLaying() {
        ops::overlays::TextServices services;
        services.draw = services.drawSmooth = [](auto&&...) { return false; };
        services.fill = [](auto&&...) { return false; };
        services.overlay = [](auto&&...) { return false; };
        return services;
    }
    /// The messages of a command on a picture of 100 x 80 where there is no font.
    static std::vector<std::string> MessagesWithoutFonts(const engine::Command& command,
                                                         std::string_view params) {
        std::vector<std::string> messages;
        WithoutFonts([&] {
            CommandRunner runner(FlatImage({100, 80}, kGround));
            EXPECT_TRUE(runner.Run(command, params));
            messages = runner.messages;
        });
        return messages;
    }
};

inline imaging::TextFont BoldSans(int height) {
    return {.face = "Lumo Test Sans", .height = height, .weight = 700};
}

}  // namespace lumo::test

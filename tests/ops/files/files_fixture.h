#pragma once

#include <gtest/gtest.h>

#include <string>

#include "engine/command.h"
#include "support/run_bench.h"

namespace lumo::test {

/// A batch run with the picture In/Cat.JPG, 8 by 6, in hand.
class FilesTest : public testing::Test {
  protected:
    FilesTest() {
        bench.PutPicture(input);
        bench.TakeInput(input);
    }

    engine::Outcome Run(const engine::Command& command, std::string_view params) {
        return bench.Execute(command, params);
    }
    /// Leaves the run: what follows is a test of one command on the sample.
    void LeaveRun(engine::RunMode mode = engine::RunMode::OneCommand) {
        view.run.inRun = false;
        view.run.batchRunning = false;
        view.run.mode = mode;
        view.sample.path = input;
        view.sample.left = CoordinateImage({5, 4});
    }
    /// Error.log's block of an error or warning on the only image; Batch.log's has a blank line
    /// ahead of it.
    std::vector<std::string> Block(std::string_view name, std::string_view detail,
                                   std::string_view text, bool batch) const {
        std::vector<std::string> lines;
        if (batch) lines.emplace_back();
        lines.push_back("Image number: 1   Command number: 1 " + std::string(name));
        lines.push_back("Input image: " + view.input.path);
        lines.push_back(
            (batch ? "No output from numbered command: " : "No output from command named: ") +
            std::string(detail));
        lines.emplace_back(text);
        lines.emplace_back();
        return lines;
    }
    void ExpectBlock(std::string_view name, std::string_view detail, std::string_view text) {
        EXPECT_EQ(bench.BatchLines(), Block(name, detail, text, true));
        EXPECT_EQ(bench.ErrorLines(), Block(name, detail, text, false));
    }

    RunBench bench;
    engine::CLumoscriptView& view = bench.view;
    const std::string input = bench.In("Cat.JPG");
};

}  // namespace lumo::test

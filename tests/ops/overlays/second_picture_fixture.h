#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "support/command_runner.h"
#include "support/temp_folder.h"

namespace lumo::test {

/// Picture files for commands that read one.
class SecondPictureTest : public testing::Test {
  protected:
    /// Writes the picture without loss and gives its path.
    std::string Put(std::string_view name, imaging::ConstImageView picture) const {
        const std::string path = folder / name;
        auto bytes = imaging::codecs::EncodeBmp(picture);
        EXPECT_TRUE(bytes && platform::WriteFile(path, *bytes));
        return path;
    }
    std::string Missing() const { return folder / "missing.bmp"; }

    TempFolder folder;
};

}  // namespace lumo::test

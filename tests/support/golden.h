#pragma once

#include <gtest/gtest.h>

#include <string_view>

#include "imaging/image.h"

namespace lumo::test {

/// How far a picture may be from the expected one.
struct GoldenTolerance {
    int byte = 0;             // of every byte that counts as the same
    double otherShare = 0.0;  // share of pixels that may differ by more
};

/// Compares with the picture tests/data/<name> (a PNG). With LUMO_WRITE_GOLDENS set in the
/// environment the picture is written there instead, to be looked at and committed.
testing::AssertionResult MatchesGolden(imaging::ConstImageView actual, std::string_view name,
                                       GoldenTolerance tolerance = {});

}  // namespace lumo::test

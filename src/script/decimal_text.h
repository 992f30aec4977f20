#pragma once

#include <string_view>

namespace lumo::script {

/// The number of a text by the rule of old Scripts. Whole part and fraction are read as integers
/// at the first point, so leading zeros of the fraction are lost: "1.05" is 1.5, "2.50" is 2.5,
/// "-1.5" is -0.5. A fraction of 10000 or more is divided by 10000 and may exceed 1. Without a
/// point the text is an integer.
double ParseDecimalText(std::string_view text);

}  // namespace lumo::script

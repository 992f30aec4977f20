#pragma once

// Numbers in texts, the same in every locale.

#include <string>
#include <string_view>

namespace lumo::script {

/// As C's atoi: blanks, a sign, digits up to the first other character. No number: 0. Beyond the
/// range of int: the nearest end of it.
int ParseInteger(std::string_view text);

/// A decimal number with a point, also with exponent; what follows it is ignored. No number, an
/// infinity or a NaN: 0.
double ConvertStringToDouble(std::string_view text);

/// The number in `text` as the shortest decimal text that reads back the same, with at least one
/// digit behind the point: "1" gives "1.0", ".5" gives "0.5".
std::string GetFloatValue(std::string_view text);

std::string IntegerToString(long long value);

}  // namespace lumo::script

#include "script/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace lumo::script {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The blanks of the C locale, whatever locale the program runs in.
std::string_view SkipBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
    return first == std::string_view::npos ? std::string_view{} : text.substr(first);
}

/// Takes one sign off the front; true for a minus.
bool TakeSign(std::string_view& text) {
    if (text.empty() || (text.front() != '-' && text.front() != '+')) return false;
    const bool negative = text.front() == '-';
    text.remove_prefix(1);
    return negative;
}

}  // namespace

int ParseInteger(std::string_view text) {
    text = SkipBlanks(text);
    const bool negative = TakeSign(text);
    const long long limit = negative ? -static_cast<long long>(std::numeric_limits<int>::min())
                                     : std::numeric_limits<int>::max();
    long long value = 0;
    for (const char c : text) {
        if (!IsDigit(c)) break;
        value = value * 10 + (c - '0');
        if (value >= limit) {
            value = limit;
            break;
        }
    }
    return static_cast<int>(negative ? -value : value);
}

double ConvertStringToDouble(std::string_view text) {
    text = SkipBlanks(text);
    const bool negative = TakeSign(text);
    // Only a digit or a point begins a number: from_chars would take a second minus, "inf", "nan".
    if (text.empty() || (!IsDigit(text.front()) && text.front() != '.')) return 0.0;
    double value = 0.0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec != std::errc{} || !std::isfinite(value) || value == 0.0) return 0.0;
    return negative ? -value : value;
}

std::string GetFloatValue(std::string_view text) {
    // The longest, the smallest denormal number, takes 327 characters.
    std::array<char, 400> buffer;
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                       ConvertStringToDouble(text), std::chars_format::fixed);
    std::string result(buffer.data(), written.ptr);
    if (result.find('.') == std::string::npos) result += ".0";
    return result;
}

std::string IntegerToString(long long value) {
    return std::to_string(value);
}

}  // namespace lumo::script

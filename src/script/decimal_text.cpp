#include "script/decimal_text.h"

#include "script/numbers.h"

namespace lumo::script {

double ParseDecimalText(std::string_view text) {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) return ParseInteger(text);
    const int whole = ParseInteger(text.substr(0, point));
    const int digits = ParseInteger(text.substr(point + 1));
    double fraction = digits / (digits < 10 ? 10.0 : 100.0);
    if (digits > 99) fraction = digits / 1000.0;
    if (digits > 999) fraction = digits / 10000.0;
    return whole + fraction;
}

}  // namespace lumo::script

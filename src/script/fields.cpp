#include "script/fields.h"

#include <algorithm>
#include <utility>

#include "script/numbers.h"

namespace lumo::script {

namespace {

constexpr char kQuote = '"';

/// Takes one field off the front of `text`, which begins behind the comma before it. On return
/// `text` begins at the comma that ends the field, or is empty.
std::string TakeField(std::string_view& text) {
    std::string field;
    bool quoted = false;
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c == kQuote) {
            quoted = !quoted;
        } else if (c == ',' && !quoted) {
            break;
        } else {
            field += c;
        }
    }
    // Every field is followed by a comma, so the last one of the string stands outside of a quote
    // that nobody closed.
    if (quoted && field.ends_with(',') && text.back() == ',') field.pop_back();
    text.remove_prefix(i);
    return field;
}

}  // namespace

const std::string& Fields::Text(int index) const {
    static const std::string kEmpty;
    return index >= 0 && index < kSlots ? slots_[static_cast<std::size_t>(index)] : kEmpty;
}

int Fields::Integer(int index) const {
    return ParseInteger(Text(index));
}

double Fields::Real(int index) const {
    return ConvertStringToDouble(Text(index));
}

void Fields::Set(int index, std::string text) {
    if (index >= 0 && index < kSlots) slots_[static_cast<std::size_t>(index)] = std::move(text);
}

Fields ParseParams(std::string_view text) {
    Fields fields;
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return fields;
    fields.count = ParseInteger(text.substr(0, comma));
    text.remove_prefix(comma);

    const int wanted = std::min(fields.count, Fields::kSlots);
    for (int i = 0; i < wanted; ++i) {
        text.remove_prefix(1);  // the comma before the field
        // A string that is nothing but its count has no fields; one that ends after some of them
        // leaves the rest empty.
        if (text.empty() && i == 0) return fields;
        fields.Set(i, TakeField(text));
        if (text.empty()) break;
    }
    fields.complete = true;
    return fields;
}

std::string QuoteField(std::string_view text, CarriageReturns carriageReturns) {
    if (!text.empty() && text.front() == kQuote) return std::string(text);
    std::string field;
    field.reserve(text.size() + 2);
    field += kQuote;
    field += text;
    field += kQuote;
    // The character next to the closing quote stays: a text that ends in a quote keeps it.
    if (field.size() > 3) std::replace(field.begin() + 1, field.end() - 2, kQuote, '\'');
    if (carriageReturns == CarriageReturns::Strip) std::erase(field, '\r');
    return field;
}

}  // namespace lumo::script

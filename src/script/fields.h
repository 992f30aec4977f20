#pragma once

// Parameter strings: count "," field "," field "," ... field ","

#include <array>
#include <string>
#include <string_view>

namespace lumo::script {

/// The fields of one parameter string, at most 32; a field that is not there reads as empty.
class Fields {
  public:
    static constexpr int kSlots = 32;

    const std::string& Text(int index) const;
    /// Digits up to the first other character; 0 for none; limited to the range of int.
    int Integer(int index) const;
    /// ConvertStringToDouble of the field.
    double Real(int index) const;
    bool Is(int index, std::string_view text) const { return Text(index) == text; }
    bool IsEmpty(int index) const { return Text(index).empty(); }

    /// Nothing happens outside of the slots.
    void Set(int index, std::string text);

    /// False if the string ended before its first field; callers rarely ask.
    bool complete = false;
    /// What the string says is its number of fields.
    int count = 0;

  private:
    std::array<std::string, kSlots> slots_;
};

/// Reads a parameter string. The count obeyed is the one that the string states. Quotes switch the
/// quoted state and are dropped, so that commas inside are text; a quote that is never closed ends
/// before the last comma. Never fails: what is missing or malformed reads as empty.
Fields ParseParams(std::string_view text);

/// `i` counted from 0 at the first field behind the count.
inline const std::string& GetField(const Fields& fields, int i) {
    return fields.Text(i);
}

enum class CarriageReturns { Keep, Strip };

/// A text in the form of a field: quoted, inner quotes turned into apostrophes, but for the one
/// next to the closing quote. A text that begins with a quote is returned as it is.
std::string QuoteField(std::string_view text, CarriageReturns carriageReturns);

}  // namespace lumo::script

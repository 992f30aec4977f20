// Any bytes as a parameter string: they read without harm, and what was read and written again
// reads the same.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "script/fields.h"
#include "script/numbers.h"
#include "script/schema.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumo::script;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const Fields fields = ParseParams(text);

    std::vector<FieldSpec> specs;
    std::vector<std::string> texts;
    std::size_t characters = 0;
    for (int i = 0; i < Fields::kSlots; ++i) {
        specs.push_back(Path("field", ""));
        texts.push_back(fields.Text(i));
        characters += texts.back().size();
        if (texts.back().find('"') != std::string::npos) std::abort();
        const std::string number = GetFloatValue(texts.back());
        if (ConvertStringToDouble(number) != fields.Real(i)) std::abort();
        if (ParseInteger(IntegerToString(fields.Integer(i))) != fields.Integer(i)) std::abort();
    }
    if (characters > size) std::abort();

    const Fields again = ParseParams(BuildParams(specs, texts));
    for (int i = 0; i < Fields::kSlots; ++i)
        if (again.Text(i) != fields.Text(i)) std::abort();

    const std::string quoted = QuoteField(text, CarriageReturns::Strip);
    if (quoted.empty() || quoted.front() != '"') std::abort();
    return 0;
}

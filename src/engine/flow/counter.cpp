// Counter (reset or increment).

#include <array>

#include "engine/flow/flow_commands.h"
#include "script/names.h"

namespace lumo::engine::flow {
namespace {

using namespace script;

enum Field { kAction, kValue, kCounter };

constexpr std::string_view kActions[] = {"Reset to value", "Add value"};
constexpr std::string_view kCounterNames[] = {"Counter A", "Counter B", "Counter C", "Counter D",
                                              "Counter E", "Counter F", "Counter G", "Counter H",
                                              "Counter I", "Counter J"};
constexpr std::array kFields{Choice("Action", "0", kActions), script::Integer("Value", "0"),
                             Choice("Counter", "0", kCounterNames)};
constexpr std::string_view kActionLines[] = {"Reset counter to value", "Add value to counter"};
constexpr std::array kPanel{OneOf(kCounter, kCounterNames), OneOf(kAction, kActionLines),
                            script::Value(kValue, "Value: ")};
constexpr DialogSpec kDialog{.title = "Reset or increment Counter",
                             .helpTopic = "Counterresetorincrement"};

Outcome RunCounter(CLumoscriptView& view, const Fields& fields) {
    const std::string& code = fields.Text(kCounter);
    if (code.size() != 1 || code[0] < '0' || code[0] > '9') return Outcome::Succeeded;
    std::int32_t& counter = view.counters[static_cast<std::size_t>(code[0] - '0')];
    const auto value = static_cast<std::uint32_t>(fields.Integer(kValue));
    // Counters wrap; nothing tests for an overflow.
    const std::uint32_t base = fields.Is(kAction, "0") ? 0U : static_cast<std::uint32_t>(counter);
    counter = static_cast<std::int32_t>(base + value);
    return Outcome::Succeeded;
}

}  // namespace

const Command kCounterCommand{
    .spec = {.name = names::kCounter, .fields = kFields, .panel = kPanel, .dialog = &kDialog},
    .opening = openings::kNoImage,
    .run = RunCounter};

}  // namespace lumo::engine::flow

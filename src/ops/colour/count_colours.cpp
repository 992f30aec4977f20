#include "ops/colour/count_colours.h"

#include <algorithm>
#include <array>
#include <string>

#include "imaging/measures.h"
#include "ops/colour/colour_commands.h"
#include "ops/handler_steps.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;

enum Field { kDepthCounter, kCountCounter };  // order of the stored string

constexpr std::string_view kCounterNames[] = {"Counter A", "Counter B", "Counter C", "Counter D",
                                              "Counter E", "Counter F", "Counter G", "Counter H",
                                              "Counter I", "Counter J", "None"};
constexpr std::array kFields{Choice("Save image type in", "0", kCounterNames),
                             Choice("Save number of colors in", "1", kCounterNames)};
constexpr std::string_view kNotes[] = {
    "Black and white (1 bit) = 0", "Greyscale (255 shades of gray) = 1", "Color (1-256 total) = 2",
    "Color (more than 256 total) = 3"};
constexpr DialogSpec kDialog{.title = "Color count - check color depth and count colors",
                             .helpTopic = "Countcolors",
                             .notes = kNotes};

/// The counter, 0 to 9, that a field names; -1 for none.
int CounterIndex(const std::string& field) {
    return field.size() == 1 && field[0] >= '0' && field[0] <= '9' ? field[0] - '0' : -1;
}

std::string PanelText(const Fields& fields) {
    const auto name = [&](int field) {
        const int counter = CounterIndex(fields.Text(field));
        return std::string(counter < 0 ? "None" : kCounterNames[counter]);
    };
    return "Color depth code in: " + name(kDepthCounter) +
           "\nUnique colors in: " + name(kCountCounter) + "\n";
}

void Store(CLumoscriptView& view, const std::string& field, int value) {
    const int counter = CounterIndex(field);
    if (counter >= 0) view.counters[static_cast<std::size_t>(counter)] = value;
}

Outcome RunCountColours(CLumoscriptView& view, const Fields& fields) {
    const ConstImageView image = view.working.main.View();
    const int colours = imaging::CountImageColors(image);
    if (colours == 0) return FailWith(view, "Cmd_22 Count colors: memory failure");
    const DepthCode code = ColourDepthCode(image, colours);
    // Where both name one counter the code is what remains.
    Store(view, fields.Text(kCountCounter), colours);
    Store(view, fields.Text(kDepthCounter), static_cast<int>(code));
    return Outcome::Succeeded;
}

/// True if the test holds for every `step`-th pixel from the first on.
template <typename Test>
bool AllOfEvery(ConstImageView image, std::size_t step, const Test& test) {
    const std::size_t count = image.Extent().Area();
    const std::uint8_t* const pixels = image.Bytes().data();
    for (std::size_t i = 0; i < count; i += step)
        if (!test(pixels + i * 3)) return false;
    return true;
}

bool IsGrey(const std::uint8_t* p) {
    return p[0] == p[1] && p[0] == p[2];
}
bool IsExtreme(const std::uint8_t* p) {
    return std::all_of(p, p + 3, [](std::uint8_t c) { return c == 0 || c == 255; });
}

}  // namespace

DepthCode ColourDepthCode(ConstImageView image, int colours) {
    if (colours > 256) return DepthCode::FullColour;
    const auto step = static_cast<std::size_t>(std::max(image.Width() / 3, 1));
    if (!AllOfEvery(image, step, IsGrey)) return DepthCode::Colours256;
    return AllOfEvery(image, step, IsExtreme) ? DepthCode::BlackAndWhite : DepthCode::Grey;
}

// Quick and without a change to see: no wait cursor.
const Command kCountColoursCommand{.spec = {.name = names::kCountColours,
                                            .fields = kFields,
                                            .panelText = PanelText,
                                            .dialog = &kDialog},
                                   .opening = {.waitCursor = false},
                                   .run = RunCountColours};

}  // namespace lumo::ops::colour

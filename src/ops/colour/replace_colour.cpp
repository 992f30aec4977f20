#include "ops/colour/replace_colour.h"

#include <algorithm>
#include <string>

#include "imaging/pixel_runs.h"
#include "imaging/wrapping.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/pixel_kernels.h"
#include "ops/colour/support.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Size;

enum Field { kWanted = 0, kInserted = 3, kTolerance = 6 };  // colours are three fields each

constexpr std::array kFields{
    script::Red("Color to remove", "255"),
    script::Green("255"),
    script::Blue("255"),
    script::Red("Color to insert", "255"),
    script::Green("255"),
    script::Blue("255"),
    script::Integer("Tolerance %", "0").Clamp(0, 100),
};
constexpr DialogSpec kDialog{.title = "Replace one color   RGB (0 - 255)",
                             .windowState = "WS66",
                             .helpTopic = "Replace1color"};

std::string PanelText(const Fields& fields) {
    const auto colour = [&](int first) {
        return fields.Text(first) + ": " + fields.Text(first + 1) + ": " + fields.Text(first + 2);
    };
    return "Replace color: " + colour(kWanted) + "\nTolerance %: " + fields.Text(kTolerance) +
           "\nInsert color: " + colour(kInserted) + "\n";
}

ReplaceColourParams Read(const Fields& fields) {
    const auto low8 = [&](int field) { return static_cast<std::uint8_t>(fields.Integer(field)); };
    return {.wanted = {fields.Integer(kWanted), fields.Integer(kWanted + 1),
                       fields.Integer(kWanted + 2)},
            .inserted = {low8(kInserted), low8(kInserted + 1), low8(kInserted + 2)},
            .tolerance = ToleranceLevels(fields.Integer(kTolerance))};
}

Outcome RunReplaceColour(CLumoscriptView& view, const Fields& fields) {
    ReplaceColour(view.working.main.View(), Read(fields));
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewReplaceColour(ConstImageView before, Size, const Fields& fields) {
    return PreviewOf(before, [&](ImageView after) { ReplaceColour(after, Read(fields)); });
}

kernels::Range RangeAround(std::int64_t wanted, std::int64_t tolerance) {
    const std::int64_t low = std::max<std::int64_t>(wanted - tolerance, 0);
    const std::int64_t high = std::min<std::int64_t>(wanted + tolerance, 255);
    if (low > high) return {};
    return {static_cast<std::uint8_t>(low), static_cast<std::uint8_t>(high)};
}

}  // namespace

int ToleranceLevels(int percent) {
    return imaging::WrappingProduct(percent, 255) / 100;
}

void ReplaceColour(ImageView image, const ReplaceColourParams& params) {
    std::array<kernels::Range, 3> ranges;
    for (std::size_t c = 0; c < ranges.size(); ++c)
        ranges[c] = RangeAround(params.wanted[c], params.tolerance);
    ForPixelRuns(image, [&](std::uint8_t* pixels, std::size_t count) {
        kernels::Replace(pixels, count, ranges, params.inserted);
    });
}

const Command kReplaceColourCommand{.spec = {.name = names::kReplaceColour,
                                             .fields = kFields,
                                             .panelText = PanelText,
                                             .dialog = &kDialog},
                                    .opening = openings::kStandard,
                                    .run = RunReplaceColour,
                                    .preview = PreviewReplaceColour};

}  // namespace lumo::ops::colour

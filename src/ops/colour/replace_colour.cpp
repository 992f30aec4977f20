#include "ops/colour/replace_colour.h"

#include <algorithm>
#include <string>

#include "imaging/pixel_runs.h"
#include "imaging/wrapping.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/pixel_kernels.h"
#include "ops/colour_fields.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
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
    return PanelLines()
        .Line("Replace color: ", JoinColour(fields, kWanted, ": "))
        .Line("Tolerance %: ", fields.Text(kTolerance))
        .Line("Insert color: ", JoinColour(fields, kInserted, ": "))
        .Text();
}

ReplaceColourParams Read(const Fields& fields) {
    return {.wanted = {fields.Integer(kWanted), fields.Integer(kWanted + 1),
                       fields.Integer(kWanted + 2)},
            .inserted = ColourOf(fields, kInserted),
            .tolerance = ToleranceLevels(fields.Integer(kTolerance))};
}

Outcome RunReplaceColour(CLumoscriptView& view, const Fields& fields) {
    ReplaceColour(view.working.main.View(), Read(fields));
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewReplaceColour(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(before, [&](ImageView after) { ReplaceColour(after, Read(fields)); });
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

// Commands without parameters that invert, exchange or merge the channels.

#include "ops/colour/channels.h"

#include "imaging/colour.h"
#include "imaging/pixel_runs.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/pixel_kernels.h"
#include "ops/handler_steps.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using imaging::ImageView;
using script::Fields;

Outcome RunGreyscale(CLumoscriptView& view, const Fields&) {
    const bool ok = imaging::ImageToGrayScale(view.working.main.View());
    SetGreyDepth(view, 8);  // also after a failure
    return ReportIfFailed(view, ok, "Cmd_15 Gray24 L3177: ");
}

/// For the operations that cannot fail but on an empty picture, and say nothing then.
template <void (*kChange)(ImageView)>
Outcome RunInPlace(CLumoscriptView& view, const Fields&) {
    if (view.working.main.IsEmpty()) return Outcome::Failed;
    kChange(view.working.main.View());
    return Outcome::Succeeded;
}

Outcome RunSwapRedBlue(CLumoscriptView& view, const Fields&) {
    const bool ok = imaging::RGBToBGR(view.working.main.View());
    return ReportIfFailed(view, ok, "Cmd_81 SwapRB L3021: ");  // 81, though this is command 80
}

}  // namespace

void InvertImage(ImageView image) {
    ForPixelRuns(image, [](std::uint8_t* p, std::size_t count) {
        for (std::size_t i = 0; i < count * 3; ++i) p[i] = static_cast<std::uint8_t>(~p[i]);
    });
}

void SwapRedGreen(ImageView image) {
    imaging::ForPixelRuns(image, kernels::SwapRedGreen);
}

void SwapGreenBlue(ImageView image) {
    imaging::ForPixelRuns(image, kernels::SwapGreenBlue);
}

// The three swaps and the negative leave the colour-depth tag as it is.

const Command kConvertGreyscaleCommand{.spec = {.name = script::names::kConvertGreyscale},
                                       .opening = openings::kStandard,
                                       .run = RunGreyscale};
const Command kNegativeCommand{.spec = {.name = script::names::kNegative},
                               .opening = openings::kStandard,
                               .run = RunInPlace<InvertImage>};
const Command kSwapRedBlueCommand{.spec = {.name = script::names::kSwapRedBlue},
                                  .opening = openings::kStandard,
                                  .run = RunSwapRedBlue};
const Command kSwapRedGreenCommand{.spec = {.name = script::names::kSwapRedGreen},
                                   .opening = openings::kStandard,
                                   .run = RunInPlace<SwapRedGreen>};
const Command kSwapGreenBlueCommand{.spec = {.name = script::names::kSwapGreenBlue},
                                    .opening = openings::kStandard,
                                    .run = RunInPlace<SwapGreenBlue>};

}  // namespace lumo::ops::colour

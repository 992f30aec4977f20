// Median cut: in spite of its name no reduction of colours but a small median filter.

#include <array>

#include "imaging/median.h"
#include "ops/colour/colour_commands.h"
#include "ops/handler_steps.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using script::Fields, script::Fixed;

constexpr std::array kPanel{Fixed("Does a fast"), Fixed("9 pixel median"),
                            Fixed("filter of radius .6"), Fixed("No parameters")};

Outcome RunMedianCut(CLumoscriptView& view, const Fields&) {
    return RunOperationIntoNewImage(view, kMedianCutFailures, imaging::MedianFilterImage);
}

}  // namespace

const Command kMedianCutCommand{.spec = {.name = script::names::kMedianCut, .panel = kPanel},
                                .opening = openings::kStandard,
                                .run = RunMedianCut};

}  // namespace lumo::ops::colour

#include "ops/geometry/flip.h"

#include "imaging/flip.h"
#include "script/names.h"

namespace lumo::ops::geometry {
namespace {

using namespace engine;

// Mirroring in place needs no memory and cannot fail, so neither has a failure text.
Outcome RunFlipHorizontal(CLumoscriptView& view, const script::Fields&) {
    imaging::FlipHorizontal(view.working.main.View());
    return Outcome::Succeeded;
}

Outcome RunFlipVertical(CLumoscriptView& view, const script::Fields&) {
    imaging::FlipVertical(view.working.main.View());
    return Outcome::Succeeded;
}

}  // namespace

// The horizontal flip asks the skip test in a run too, unlike its twin; old Scripts rely on it.
constinit const Command kFlipHorizontalCommand{.spec = {.name = script::names::kFlipHorizontal},
                                               .opening = openings::kSkipAlways,
                                               .run = RunFlipHorizontal};
constinit const Command kFlipVerticalCommand{.spec = {.name = script::names::kFlipVertical},
                                             .opening = openings::kStandard,
                                             .run = RunFlipVertical};

}  // namespace lumo::ops::geometry

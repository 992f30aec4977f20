#include "ops/geometry/flip.h"

#include "imaging/flip.h"
#include "script/names.h"

namespace lumo::ops::geometry {
namespace {

using namespace engine;

Outcome RunFlipHorizontal(CLumoscriptView& view, const script::Fields&) {
    const bool ok = imaging::HorizontalFlipImage(view.working.main.View());
    if (!ok) OnCommandFailure(view, "Cmd_37 Flip Horz L2906: ", LibraryError::Append);
    return ToOutcome(ok);
}

Outcome RunFlipVertical(CLumoscriptView& view, const script::Fields&) {
    const bool ok = imaging::VerticalFlipImage(view.working.main.View());
    if (!ok) OnCommandFailure(view, "Cmd_38 Flip Vert L2924: ", LibraryError::Append);
    return ToOutcome(ok);
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

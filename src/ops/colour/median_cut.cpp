// Median cut: in spite of its name no reduction of colours but a small median filter.

#include <array>

#include "imaging/median.h"
#include "ops/colour/colour_commands.h"
#include "ops/colour/support.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using imaging::Image;
using script::Fields, script::Fixed;

constexpr std::array kPanel{Fixed("Does a fast"), Fixed("9 pixel median"),
                            Fixed("filter of radius .6"), Fixed("No parameters")};

Outcome RunMedianCut(CLumoscriptView& view, const Fields&) {
    const imaging::ConstImageView source = view.working.main.View();
    auto target = Image::TryCreate(source.Extent());
    if (!target) {
        OnCommandFailure(view, "Cmd_57 L3169 Median cut: memory failure", LibraryError::Append);
        return Outcome::Failed;
    }
    const bool ok = imaging::MedianFilterImage(source, target->View());
    if (!ok) OnCommandFailure(view, "Cmd_57 Median cut L3154: ", LibraryError::Append);
    ReplaceMainImage(view, std::move(*target));
    return ToOutcome(ok);
}

}  // namespace

const Command kMedianCutCommand{.spec = {.name = script::names::kMedianCut, .panel = kPanel},
                                .opening = openings::kStandard,
                                .run = RunMedianCut};

}  // namespace lumo::ops::colour

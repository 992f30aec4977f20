// Gamma adjust.

#include <array>

#include "imaging/tone.h"
#include "ops/colour/colour_commands.h"
#include "ops/handler_steps.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Size;

enum Field { kGamma };

// The dialog imposes no range.
constexpr std::array kFields{script::Real("Gamma:", "1.0")};
constexpr std::array kPanel{script::Value(kGamma, "Gamma adjust = ")};
constexpr std::string_view kNotes[] = {
    "< 1.0 will decrease brightness    =1.0 no change                        "
    ">1.0 will increase brightness"};
constexpr DialogSpec kDialog{
    .title = "Gamma adjust", .windowState = "WS40", .helpTopic = "Gammaadjust", .notes = kNotes};

Outcome RunGammaAdjust(CLumoscriptView& view, const Fields& fields) {
    return ReportIfFailed(view, imaging::AdjustGamma(view.working.main.View(), fields.Real(kGamma)),
                          "Cmd_40 Gamma L9436: ");
}

Image PreviewGammaAdjust(ConstImageView before, Size, const Fields& fields) {
    return PreviewOn(
        before, [&](ImageView after) { (void)imaging::AdjustGamma(after, fields.Real(kGamma)); });
}

}  // namespace

const Command kGammaAdjustCommand{
    .spec = {.name = names::kGammaAdjust, .fields = kFields, .panel = kPanel, .dialog = &kDialog},
    .opening = openings::kStandard,
    .run = RunGammaAdjust,
    .preview = PreviewGammaAdjust};

}  // namespace lumo::ops::colour

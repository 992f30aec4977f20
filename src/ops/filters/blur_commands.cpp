// "Blur", "Blur_more", "Blur (gaussian)" and "Blur (outward)".

#include <array>

#include "imaging/blur_gaussian.h"
#include "imaging/simple_filters.h"
#include "ops/filters/box_blurs.h"
#include "ops/filters/disc.h"
#include "ops/filters/filters_commands.h"
#include "ops/filters/support.h"
#include "ops/handler_steps.h"
#include "script/names.h"

namespace lumo::ops::filters {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::Size;

// The two plain blurs have no settings. They are stored with one number that nothing reads.
constexpr std::array kBlurFields{Reserved("25")};
constexpr std::array kBlurMoreFields{Reserved("75")};
constexpr DialogSpec kBlurDialog{.title = "Blur", .helpTopic = "Blur"};
constexpr DialogSpec kBlurMoreDialog{.title = "Blur_more", .helpTopic = "Blur_more"};

constexpr int kFullStrength = 100;

bool BlurInto(ConstImageView source, ImageView target) {
    return imaging::BlurImage(source, target, kFullStrength);
}

Outcome RunBlur(CLumoscriptView& view, const Fields&) {
    return RunOperationIntoNewImage(view, kBlurFailures, BlurInto);
}

Image PreviewBlur(ConstImageView before, Size, const Fields&) {
    return PreviewInto(before, BlurInto);
}

bool BlurMoreInto(ConstImageView source, ImageView target) {
    BlurMore(source, target);
    return true;
}

Outcome RunBlurMore(CLumoscriptView& view, const Fields&) {
    return RunIntoNewImage(view, "Cmd_09 Blur2: memory failure!", BlurMoreInto);
}

Image PreviewBlurMore(ConstImageView before, Size, const Fields&) {
    return PreviewInto(before, BlurMoreInto);
}

enum GaussianField { kGaussianRadius };

constexpr std::array kGaussianFields{
    Real("Blur radius", "1.0").Clamp(kLeastRadius, kLargestRadius)};
constexpr std::array kGaussianPanel{Value(kGaussianRadius, "Blur radius (0.1 - 100:")};
constexpr DialogSpec kGaussianDialog{
    .title = "Blur (gaussian)", .windowState = "WS08", .helpTopic = "Blurgaussian"};

// A blur that cannot have its scratch memory leaves the picture as it is, and is no failure.
Outcome RunBlurGaussian(CLumoscriptView& view, const Fields& fields) {
    auto target = NewImage(view, "Cmd_10 Blur Gaussian: memory failure!");
    if (!target) return Outcome::Failed;
    const ConstImageView source = std::as_const(view.working.main).View();
    if (imaging::BlurGaussian(source, target->View(), fields.Real(kGaussianRadius)))
        ReplaceMainImage(view, std::move(*target));
    return Outcome::Succeeded;
}

Image PreviewBlurGaussian(ConstImageView before, Size sample, const Fields& fields) {
    const double radius = ScaleRadius(fields.Real(kGaussianRadius), sample, before.Extent());
    return PreviewInto(before, [&](ConstImageView source, ImageView target) {
        return imaging::BlurGaussian(source, target, radius);
    });
}

enum OutwardField { kStart, kOutwardRadius };

constexpr std::array kOutwardFields{Integer("Radius % to begin blur", "40").Clamp(0, 100),
                                    Real("Blur radius", "5.0").Clamp(kLeastRadius, kLargestRadius)};
constexpr std::array kOutwardPanel{Fixed("Radius % to begin blur"), Value(kStart, "(0 - 100) ="),
                                   Value(kOutwardRadius, "Blur radius (0.1-10.0):")};
// The dialog is that of the median filter, its caption too.
constexpr DialogSpec kOutwardDialog{
    .title = "Median filter", .windowState = "WS11", .helpTopic = "Bluroutward"};

Outcome RunBlurOutward(CLumoscriptView& view, const Fields& fields) {
    return RunIntoNewImage(
        view, "Cmd_11 Blur Out: memory failure!", [&](ConstImageView source, ImageView target) {
            return BlurOutward(source, target, fields.Integer(kStart), fields.Real(kOutwardRadius));
        });
}

Image PreviewBlurOutward(ConstImageView before, Size sample, const Fields& fields) {
    const double radius =
        ScaleRadius(LimitRadius(fields.Real(kOutwardRadius)), sample, before.Extent());
    return PreviewInto(before, [&](ConstImageView source, ImageView target) {
        return BlurOutward(source, target, fields.Integer(kStart), radius);
    });
}

}  // namespace

const Command kBlurCommand{
    .spec = {.name = names::kBlur, .fields = kBlurFields, .dialog = &kBlurDialog},
    .opening = openings::kStandard,
    .run = RunBlur,
    .preview = PreviewBlur};

const Command kBlurMoreCommand{
    .spec = {.name = names::kBlurMore, .fields = kBlurMoreFields, .dialog = &kBlurMoreDialog},
    .opening = openings::kStandard,
    .run = RunBlurMore,
    .preview = PreviewBlurMore};

const Command kBlurGaussianCommand{.spec = {.name = names::kBlurGaussian,
                                            .fields = kGaussianFields,
                                            .panel = kGaussianPanel,
                                            .dialog = &kGaussianDialog},
                                   .opening = openings::kStandard,
                                   .run = RunBlurGaussian,
                                   .preview = PreviewBlurGaussian};

const Command kBlurOutwardCommand{.spec = {.name = names::kBlurOutward,
                                           .fields = kOutwardFields,
                                           .panel = kOutwardPanel,
                                           .dialog = &kOutwardDialog},
                                  .opening = openings::kStandard,
                                  .run = RunBlurOutward,
                                  .preview = PreviewBlurOutward};

}  // namespace lumo::ops::filters

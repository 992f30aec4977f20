// "Maximum filter", "Minimum filter", "Median filter", "Dust (remove)" and "Despeckle".

#include <array>

#include "imaging/simple_filters.h"
#include "ops/filters/disc.h"
#include "ops/filters/extremum.h"
#include "ops/filters/filters_commands.h"
#include "ops/filters/median.h"
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

constexpr FieldSpec Radius(std::string_view label) {
    return Real(label, "1.0").Clamp(kLeastRadius, kLargestRadius);
}

Disc DiscOf(const Fields& fields, int field) {
    return MakeDisc(fields.Real(field));
}
Disc PreviewDisc(const Fields& fields, int field, Size sample, Size preview) {
    return MakeDisc(ScaleRadius(LimitRadius(fields.Real(field)), sample, preview));
}

enum ExtremumField { kSearchRadius };

constexpr std::array kExtremumFields{Radius("Search radius")};
constexpr std::array kExtremumPanel{Value(kSearchRadius, "Search radius (0.1 - 10.0):")};
// Both share the dialog of the gaussian blur.
constexpr DialogSpec kMaximumDialog{
    .title = "Blur (gaussian)", .windowState = "WS08", .helpTopic = "Maximumfilter"};
constexpr DialogSpec kMinimumDialog{
    .title = "Blur (gaussian)", .windowState = "WS08", .helpTopic = "Minimumfilter"};

Outcome RunExtremum(CLumoscriptView& view, const Fields& fields, Extremum extremum,
                    std::string_view failure) {
    return RunIntoNewImage(view, failure, [&](ConstImageView source, ImageView target) {
        return FilterExtremum(source, target, DiscOf(fields, kSearchRadius), extremum);
    });
}
Outcome RunMaximum(CLumoscriptView& view, const Fields& fields) {
    return RunExtremum(view, fields, Extremum::Maximum, "Cmd_56 Max: memory failure");
}
Outcome RunMinimum(CLumoscriptView& view, const Fields& fields) {
    return RunExtremum(view, fields, Extremum::Minimum, "Cmd_59 Minimum: memory failure");
}

template <Extremum kExtremum>
Image PreviewExtremum(ConstImageView before, Size sample, const Fields& fields) {
    return PreviewInto(before, [&](ConstImageView source, ImageView target) {
        return FilterExtremum(
            source, target, PreviewDisc(fields, kSearchRadius, sample, before.Extent()), kExtremum);
    });
}

enum MedianField { kMedianRadius };

constexpr std::array kMedianFields{Radius("filter radius")};
constexpr std::array kMedianPanel{Value(kMedianRadius, "filter radius (0.1 - 10.0):")};
constexpr DialogSpec kMedianDialog{
    .title = "Median filter", .windowState = "WS11", .helpTopic = "medianfilter"};

Outcome RunMedian(CLumoscriptView& view, const Fields& fields) {
    return RunIntoNewImage(view, "Cmd_58 Median Filter: memory failure!",
                           [&](ConstImageView source, ImageView target) {
                               return FilterMedian(source, target, DiscOf(fields, kMedianRadius));
                           });
}

Image PreviewMedian(ConstImageView before, Size sample, const Fields& fields) {
    return PreviewInto(before, [&](ConstImageView source, ImageView target) {
        return FilterMedian(source, target,
                            PreviewDisc(fields, kMedianRadius, sample, before.Extent()));
    });
}

enum DustField { kThreshold, kDustRadius };

constexpr std::array kDustFields{Integer("Luminance variation threshold", "40").Clamp(1, 255),
                                 Radius("Radius")};
constexpr std::array kDustPanel{Fixed("Luminance variation"),
                                Value(kThreshold, "threshold(0 - 255) ="),
                                Value(kDustRadius, "Radius (0.1 - 10.0) =")};
constexpr DialogSpec kDustDialog{
    .title = "Median filter", .windowState = "WS11", .helpTopic = "Dustremove"};

Outcome RunDustRemove(CLumoscriptView& view, const Fields& fields) {
    return RunIntoNewImage(view, "Cmd_30 Dust: memory failure",
                           [&](ConstImageView source, ImageView target) {
                               return RemoveDust(source, target, DiscOf(fields, kDustRadius),
                                                 fields.Integer(kThreshold));
                           });
}

Image PreviewDustRemove(ConstImageView before, Size sample, const Fields& fields) {
    return PreviewInto(before, [&](ConstImageView source, ImageView target) {
        return RemoveDust(source, target, PreviewDisc(fields, kDustRadius, sample, before.Extent()),
                          fields.Integer(kThreshold));
    });
}

constexpr std::array kDespecklePanel{Fixed("No parameters"), Fixed("Does a block blur"),
                                     Fixed("on pixels with the"), Fixed("greatest color change.")};

Outcome RunDespeckle(CLumoscriptView& view, const Fields&) {
    return ReportIfFailed(view, imaging::DespeckleImage(view.working.main.View()),
                          "Cmd_26 Despeckle failure L3195: ");
}

}  // namespace

const Command kMaximumFilterCommand{.spec = {.name = names::kMaximumFilter,
                                             .fields = kExtremumFields,
                                             .panel = kExtremumPanel,
                                             .dialog = &kMaximumDialog},
                                    .opening = openings::kStandard,
                                    .run = RunMaximum,
                                    .preview = PreviewExtremum<Extremum::Maximum>};

const Command kMinimumFilterCommand{.spec = {.name = names::kMinimumFilter,
                                             .fields = kExtremumFields,
                                             .panel = kExtremumPanel,
                                             .dialog = &kMinimumDialog},
                                    .opening = openings::kStandard,
                                    .run = RunMinimum,
                                    .preview = PreviewExtremum<Extremum::Minimum>};

const Command kMedianFilterCommand{.spec = {.name = names::kMedianFilter,
                                            .fields = kMedianFields,
                                            .panel = kMedianPanel,
                                            .dialog = &kMedianDialog},
                                   .opening = openings::kStandard,
                                   .run = RunMedian,
                                   .preview = PreviewMedian};

const Command kDustRemoveCommand{.spec = {.name = names::kDustRemove,
                                          .fields = kDustFields,
                                          .panel = kDustPanel,
                                          .dialog = &kDustDialog},
                                 .opening = openings::kStandard,
                                 .run = RunDustRemove,
                                 .preview = PreviewDustRemove};

const Command kDespeckleCommand{.spec = {.name = names::kDespeckle, .panel = kDespecklePanel},
                                .opening = openings::kStandard,
                                .run = RunDespeckle};

}  // namespace lumo::ops::filters

// "Emboss filter" and "Custom filter".

#include <array>

#include "imaging/colour.h"
#include "ops/filters/convolution.h"
#include "ops/filters/filters_commands.h"
#include "ops/handler_steps.h"
#include "script/names.h"

namespace lumo::ops::filters {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::Size;

// The failure texts of the three allocations.
using MemoryTexts = std::array<std::string_view, 3>;
constexpr MemoryTexts kEmbossTexts{"Cmd_34 Emboss1: memory failure",
                                   "Cmd_34 Emboss2: memory failure",
                                   "Cmd_34 Emboss3: memory failure"};
constexpr MemoryTexts kCustomTexts{"Cmd_24 Custom1: memory failure",
                                   "Cmd_24 Custom2: memory failure",
                                   "Cmd_24 Custom3: memory failure"};

Outcome RunConvolution(CLumoscriptView& view, const Convolution& convolution,
                       const MemoryTexts& texts) {
    const auto failed = Convolve(view.working.main.View(), convolution);
    if (!failed) return Outcome::Succeeded;
    return FailWith(view, texts[static_cast<std::size_t>(*failed - 1)]);
}

Image PreviewConvolution(Image after, const Convolution& convolution) {
    if (after.IsEmpty() || Convolve(after.View(), convolution)) return {};
    return after;
}

Image CopyOf(ConstImageView view) {
    auto copy = Image::TryCopy(view);
    return copy ? std::move(*copy) : Image();
}

enum EmbossField { kBrightness, kApplyTo };

constexpr std::string_view kApplyNames[] = {"Convert color values", "Convert to grayscale"};

constexpr std::array kEmbossFields{Integer("Brighten (0-100)", "50").Clamp(0, 100),
                                   Choice("Apply to", "0", kApplyNames)};
constexpr DialogSpec kEmbossDialog{
    .title = "Emboss filter", .windowState = "WS34", .helpTopic = "Emboss"};
constexpr std::array kEmbossPanel{Value(kBrightness, "Brightness (0-100): ")};

std::string EmbossPanel(const Fields& fields) {
    std::string text = PanelText(kEmbossPanel, fields);
    text.append(kApplyNames[fields.Is(kApplyTo, "1") ? 1 : 0]) += '\n';
    return text;
}

Convolution EmbossOf(const Fields& fields) {
    // The brightness 50 makes flat areas the middle grey, 128.
    constexpr int kDarkest = 78;
    Convolution convolution;
    convolution.weights = {0, 0,  0, 0, 0,  //
                           0, -1, 0, 1, 0,  //
                           0, -1, 0, 1, 0,  //
                           0, -1, 0, 1, 0,  //
                           0, 0,  0, 0, 0};
    convolution.offset =
        static_cast<int>(static_cast<unsigned>(fields.Integer(kBrightness)) + kDarkest);
    return convolution;
}

Outcome RunEmboss(CLumoscriptView& view, const Fields& fields) {
    if (!view.working.grey && fields.Is(kApplyTo, "1")) {
        if (!imaging::ImageToGrayScale(view.working.main.View()))
            return FailWith(view, "Cmd_34 Emboss L18692: gray conversion failure: ");
        SetGreyDepth(view, 8);
    }
    return RunConvolution(view, EmbossOf(fields), kEmbossTexts);
}

Image PreviewEmboss(ConstImageView before, Size, const Fields& fields) {
    Image after = CopyOf(before);
    if (fields.Is(kApplyTo, "1") && after) imaging::ImageToGrayScale(after.View());
    return PreviewConvolution(std::move(after), EmbossOf(fields));
}

enum CustomField { kFirstWeight = 0, kScale = 25, kOffset, kName };

constexpr std::array<std::string_view, kScale> kSharpeningWeights{"0", "0",  "0", "0",  "0",  //
                                                                  "0", "-1", "0", "-1", "0",  //
                                                                  "0", "0",  "6", "0",  "0",  //
                                                                  "0", "-1", "0", "-1", "0",  //
                                                                  "0", "0",  "0", "0",  "0"};

constexpr std::array<FieldSpec, kName + 1> MakeCustomFields() {
    std::array<FieldSpec, kName + 1> fields{};
    for (std::size_t i = 0; i < kScale; ++i)
        fields[i] = Integer("", kSharpeningWeights[i]).MaxLength(4);
    fields[kScale] = Integer("Scale:", "2");
    fields[kOffset] = Integer("Offset:", "0");
    fields[kName] = Text("Name:", "Sharpen").Quoted(true);
    return fields;
}
constexpr auto kCustomFields = MakeCustomFields();
constexpr std::array kCustomPanel{Value(kName, "Custom filter: "), Value(kScale, "Scale: "),
                                  Value(kOffset, "Offset addjustment:")};
constexpr auto kWeights = FieldsFrom<25>(kFirstWeight);
constexpr FieldGroup kCustomGroups[] = {{.fields = kWeights, .columns = 5}};
constexpr DialogSpec kCustomDialog{.title = "Custom filter",
                                   .windowState = "WS24",
                                   .helpTopic = "Customfilter",
                                   .groups = kCustomGroups};

Convolution CustomOf(const Fields& fields) {
    Convolution convolution;
    for (int i = 0; i < kScale; ++i)
        convolution.weights[static_cast<std::size_t>(i)] = fields.Integer(kFirstWeight + i);
    convolution.scale = fields.Integer(kScale);
    convolution.offset = fields.Integer(kOffset);
    return convolution;
}

Outcome RunCustomFilter(CLumoscriptView& view, const Fields& fields) {
    return RunConvolution(view, CustomOf(fields), kCustomTexts);
}

Image PreviewCustomFilter(ConstImageView before, Size, const Fields& fields) {
    return PreviewConvolution(CopyOf(before), CustomOf(fields));
}

}  // namespace

const Command kEmbossCommand{.spec = {.name = names::kEmboss,
                                      .fields = kEmbossFields,
                                      .panelText = EmbossPanel,
                                      .dialog = &kEmbossDialog},
                             .opening = openings::kStandard,
                             .run = RunEmboss,
                             .preview = PreviewEmboss};

const Command kCustomFilterCommand{.spec = {.name = names::kCustomFilter,
                                            .fields = kCustomFields,
                                            .panel = kCustomPanel,
                                            .dialog = &kCustomDialog},
                                   .opening = openings::kStandard,
                                   .run = RunCustomFilter,
                                   .preview = PreviewCustomFilter};

}  // namespace lumo::ops::filters

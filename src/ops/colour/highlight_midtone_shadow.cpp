#include "ops/colour/highlight_midtone_shadow.h"

#include <algorithm>
#include <array>

#include "imaging/last_error.h"
#include "imaging/wrapping.h"
#include "ops/colour/colour_commands.h"
#include "ops/handler_steps.h"
#include "ops/preview_copy.h"
#include "script/names.h"

namespace lumo::ops::colour {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::ImageView, imaging::Lut, imaging::Size,
    imaging::WrappingProduct;

enum Field { kHighlight, kMidtone, kShadow };  // order of the stored string

constexpr FieldSpec Percent(std::string_view label, std::string_view factory) {
    return script::Integer(label, factory).Clamp(0, 100).Unit("%");
}
constexpr std::array kFields{Percent("Highlight", "100"), Percent("Midtone", "50"),
                             Percent("Shadow", "0")};
constexpr std::array kPanel{script::Value(kHighlight, "Highlight %: "),
                            script::Value(kMidtone, "Midtone %:  "),
                            script::Value(kShadow, "Shadow %:  ")};
// The window state is shared with "Adjust: Color(RGB)", whose dialog this is in another dress.
constexpr DialogSpec kDialog{.title = "Highlight - Midtone - Shadow",
                             .windowState = "WS04",
                             .helpTopic = "highlightmidtoneshadow"};

std::optional<Lut> LutOf(const Fields& fields) {
    const auto lut =
        HmsLut({fields.Integer(kHighlight), fields.Integer(kMidtone), fields.Integer(kShadow)});
    if (!lut) imaging::SetLastError("highlight, midtone or shadow is outside of the levels");
    return lut;
}

bool Apply(ImageView image, const Lut& lut) {
    return imaging::ApplyLUTsToImage(image, {&lut, &lut, &lut});
}

Outcome RunHms(CLumoscriptView& view, const Fields& fields) {
    constexpr std::string_view kFailure = "Cmd_42 HMS L7458: ";
    const auto lut = LutOf(fields);
    if (!lut) return FailWith(view, kFailure);
    const bool ok = Apply(view.working.main.View(), *lut);
    SetFullColour(view);  // also after a failure
    return ReportIfFailed(view, ok, kFailure);
}

Image PreviewHms(ConstImageView before, Size, const Fields& fields) {
    const auto lut = LutOf(fields);
    return PreviewOn(before, [&](ImageView after) {
        if (lut) (void)Apply(after, *lut);
    });
}

// Where the middle 64 levels may begin so that every index below stays inside of the table.
constexpr int kLowestMiddle = -63, kHighestMiddle = 127;

/// The lower and the upper 96 entries squeezed or stretched, the 64 between them moved.
Lut MidtoneLut(int k) {
    Lut lut{};
    const auto set = [&](int to, int from) {
        lut[static_cast<std::size_t>(to)] = static_cast<std::uint8_t>(from);
    };
    for (int i = 0; i < 96; ++i) set(i, (i * (k + 63)) / 95);
    for (int i = 0; i < 64; ++i) set(96 + i, k + 64 + i);
    for (int i = 0; i < 96; ++i) set(160 + i, (k + 128) + (i * (255 - (k + 128))) / 95);
    return lut;
}

}  // namespace

std::optional<Lut> HmsLut(const HmsParams& params) {
    const int k = WrappingProduct(params.midtone, 64) / 100;
    const int v = WrappingProduct(params.highlight, 255) / 100;
    const int w = WrappingProduct(params.shadow, 255) / 100;
    if (k < kLowestMiddle || k > kHighestMiddle) return std::nullopt;
    if (v < 0 || v > 255 || w < 0 || w > 255) return std::nullopt;
    const auto white = static_cast<std::size_t>(std::max(v, 1));
    const auto black = static_cast<std::size_t>(std::min(w, 254));

    const Lut midtones = MidtoneLut(k);
    Lut highlights{};
    for (std::size_t i = 0; i < 256; ++i)
        highlights[i] = i > white ? std::uint8_t{255} : midtones[i * 255 / white];
    Lut lut{};
    for (std::size_t i = 0; i < 256; ++i)
        lut[i] = i < black ? std::uint8_t{0} : highlights[(i - black) * 255 / (255 - black)];
    return lut;
}

const Command kHighlightMidtoneShadowCommand{.spec = {.name = names::kHighlightMidtoneShadow,
                                                      .fields = kFields,
                                                      .panel = kPanel,
                                                      .dialog = &kDialog},
                                             .opening = openings::kStandard,
                                             .run = RunHms,
                                             .preview = PreviewHms};

}  // namespace lumo::ops::colour

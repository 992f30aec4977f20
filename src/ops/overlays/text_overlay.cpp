#include "ops/overlays/text_overlay.h"

#include <algorithm>
#include <array>
#include <utility>

#include "io/output_path.h"
#include "io/parse_line.h"
#include "ops/colour_fields.h"
#include "ops/overlays/overlay_commands.h"
#include "ops/overlays/text_preview.h"
#include "ops/panel_lines.h"
#include "ops/preview_copy.h"
#include "script/characters.h"
#include "script/names.h"

namespace lumo::ops::overlays {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView;
using imaging::Image;
using imaging::ImageView;
using imaging::Rect;
using imaging::Size;
using imaging::Smoothing;

enum Field {
    kX,
    kY,
    kText,
    kNoBackground,
    kBackRed,
    kBackGreen,
    kBackBlue,
    kHeightPercent,
    kHeightMode,
    kFontHeight,
    kWeight,
    kItalic,
    kUnderline,
    kStrikeOut,
    kFace,
    kRed,
    kGreen,
    kBlue,
    kSmooth,
    kAnchor,
    kOpacity
};

constexpr std::string_view kHeightNames[] = {"Use font size", "Sized to pct"};
constexpr std::string_view kHeightWords[] = {", use font size", ", sized to pct"};
constexpr std::string_view kAnchorNames[] = {"start of text", "center of text", "end of text"};

constexpr std::array kFields{Integer("% right", "10").Clamp(0, 100),
                             Integer("% down", "10").Clamp(0, 100),
                             Text("Text:", "Put message here").Quoted().Macros(),
                             Flag("Text on a background", "0").Stored("1", "0"),
                             Red("Background color:", "30"),
                             Green("30"),
                             Blue("30"),
                             Integer("Text hgt(%):", "10").Clamp(0, 100),
                             Choice("Height", "1", kHeightNames),
                             Integer("Font height:", "-24"),
                             Integer("Weight:", "700").Clamp(0, 1000),
                             Flag("Italic", "F").Stored("F", "T"),
                             Flag("Underline", "F").Stored("F", "T"),
                             Flag("Strikeout", "F").Stored("F", "T"),
                             Text("Font:", "arial").MaxLength(31),
                             Red("Text color:", "255"),
                             Green("255"),
                             Blue("255"),
                             Flag("Anti-aliased", "0"),
                             Choice("Position is for:", "0", kAnchorNames),
                             Integer("Opacity", "100").Clamp(0, 100).Unit("%")};
constexpr DialogSpec kDialog{
    .title = "Text overlay (single line)", .windowState = "WS83", .helpTopic = "Textoverlay"};

constexpr BlockWords kAliasedWords{"Cmd_83 Text Overlay: memory fail", "Text Overlay L3758: ",
                                   "Text Overlay L3761: ", "Cmd_83 Text Overlay L3763: "};
constexpr BlockWords kSmoothWords{"Cmd_83 Text Overlay: memory fail", "Text Overlay L3798: ",
                                  "Text Overlay L3801: ", "Cmd_83 Text Overlay L3803: "};

TextAnchor AnchorOf(const Fields& fields) {
    if (fields.Is(kAnchor, "1")) return TextAnchor::Centre;
    return fields.Is(kAnchor, "2") ? TextAnchor::End : TextAnchor::Start;
}

TextLineParams ReadText(const Fields& fields) {
    return {.xPercent = fields.Integer(kX),
            .yPercent = fields.Integer(kY),
            .sizedByImage = !fields.Is(kHeightMode, "0"),
            .heightPercent = fields.Integer(kHeightPercent),
            .anchor = AnchorOf(fields),
            .style = {.font = ReadFont(fields, kFontHeight),
                      .colour = ColourOf(fields, kRed),
                      .onBackground = fields.Is(kNoBackground, "0"),
                      .background = ColourOf(fields, kBackRed),
                      .smoothing = fields.Is(kSmooth, "1") ? Smoothing::Smooth : Smoothing::Aliased,
                      .opacity = OpacityOf(fields, kOpacity)}};
}

std::string PanelOf(const Fields& fields) {
    const TextLineParams params = ReadText(fields);
    PanelLines lines;
    lines.Line("% right: ", fields.Text(kX))
        .Line("% down: ", fields.Text(kY))
        .Line("Position is for: ", kAnchorNames[static_cast<int>(params.anchor)])
        .Line("Text: ", fields.Text(kText))
        .Line("Font: " + params.style.font.face, kHeightWords[params.sizedByImage ? 1 : 0]);
    if (params.sizedByImage)
        lines.Line("Text hgt(%): ", fields.Text(kHeightPercent));
    else
        lines.Line("Font height: ", fields.Text(kFontHeight));
    lines.Line("Text color: ", JoinColour(fields, kRed, ": "));
    if (fields.Is(kNoBackground, "1"))
        lines.Line("No text background");
    else
        lines.Line("Background color: ", JoinColour(fields, kBackRed, ": "));
    if (params.style.smoothing == Smoothing::Smooth) lines.Line("Anti-aliased");
    return lines.Line("Opacity %: ", fields.IsEmpty(kOpacity) ? "100" : fields.Text(kOpacity))
        .Text();
}

Outcome RunText(CLumoscriptView& view, const Fields& fields) {
    io::RefreshInputMembers(view);
    const bool laid = OverlayTextLine(
        view.working.main.View(), io::ParseLine(fields.Text(kText), io::MacrosOf(view)),
        ReadText(fields),
        [&](std::string_view words) { OnCommandFailure(view, words, LibraryError::Append); });
    if (!laid) return Outcome::Failed;
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewText(ConstImageView before, Size sample, const Fields& fields) {
    TextLineParams params = ReadText(fields);
    ShrinkStyle(params.style, before.Width(), sample.width);
    return PreviewOn(before, [&](ImageView after) {
        OverlayTextLine(after, fields.Text(kText), params, [](std::string_view) {});
    });
}

}  // namespace

int FontHeightByPercent(int percent, int imageHeight) {
    return LimitPixels(std::int64_t{percent} * imageHeight / 100 * -4 / 3);
}

bool OverlayTextLine(ImageView image, std::string text, const TextLineParams& params,
                     const ReportFailure& report, const TextServices& services) {
    TextStyle style = params.style;
    if (params.sizedByImage)
        style.font.height = FontHeightByPercent(params.heightPercent, image.Height());
    std::int64_t x = std::int64_t{params.xPercent} * image.Width() / 100;
    const int y = LimitPixels(std::int64_t{params.yPercent} * image.Height() / 100);
    const auto measure = [&](std::string_view words) {
        const auto size = services.measure(text, style.font, style.smoothing);
        if (!size) report(words);
        return size.value_or(Size{});
    };

    Size size = measure("Cmd_83 Text Overlay L3708: ");
    if (size.width > image.Width()) {
        const std::size_t kept = script::CountCharacters(text) *
                                 static_cast<std::size_t>(image.Width()) /
                                 static_cast<std::size_t>(size.width);
        text = script::FirstCharacters(text, kept);
        size = measure("Cmd_83 Text Overlay L3717: ");
    }
    if (style.onBackground) {
        size.width = LimitPixels(std::int64_t{size.width} + 2 * style.margin);
        size.height = LimitPixels(std::int64_t{size.height} + 2 * style.margin);
    }
    if (params.anchor != TextAnchor::Start) {
        x -= params.anchor == TextAnchor::Centre ? size.width / 2 : size.width;
        x = std::max<std::int64_t>(x, 0);
    }

    const int left = LimitPixels(x);
    const bool smooth = style.smoothing == Smoothing::Smooth;
    const BlockWords& words = smooth ? kSmoothWords : kAliasedWords;
    if (style.onBackground)
        return LayBlock(image, left, y, size, style, words, report, services, [&](ImageView block) {
            const Rect rect{style.margin, style.margin, size.width, size.height};
            if (!DrawStyled(block, text, style, rect, 1.0, services)) report(words.draw);
        });
    const Rect rect{left, y, image.Width(), image.Height()};
    if (!DrawStyled(image, text, style, rect, style.opacity, services))
        report(smooth ? "Cmd_83 Text Overlay L3773: " : "Cmd_83 Text Overlay L3738: ");
    return true;
}

const Command kTextOverlayCommand{.spec = {.name = names::kTextOverlay,
                                           .fields = kFields,
                                           .panelText = PanelOf,
                                           .dialog = &kDialog},
                                  .opening = openings::kStandard,
                                  .run = RunText,
                                  .preview = PreviewText};

}  // namespace lumo::ops::overlays

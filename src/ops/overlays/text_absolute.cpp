#include "ops/overlays/text_absolute.h"

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
    kNoBackground,
    kBackRed,
    kBackGreen,
    kBackBlue,
    kFontHeight,
    kWeight,
    kItalic,
    kUnderline,
    kStrikeOut,
    kFace,
    kRed,
    kGreen,
    kBlue,
    kText,
    kSmooth,
    kOpacity
};

constexpr std::array kFields{
    Integer("X", "10").Clamp(0, 10000),
    Integer("Y", "10").Clamp(0, 10000),
    Flag("Text on a background", "0").Stored("1", "0"),
    Red("Background color:", "30"),
    Green("30"),
    Blue("30"),
    Integer("Font height:", "-24"),
    Integer("Weight:", "700").Clamp(0, 1000),
    Flag("Italic", "F").Stored("F", "T"),
    Flag("Underline", "F").Stored("F", "T"),
    Flag("Strikeout", "F").Stored("F", "T"),
    Text("Font:", "arial").MaxLength(31),
    Red("Text color:", "255"),
    Green("255"),
    Blue("255"),
    Text("Text:", "Sample $(size)\r\nFilename: $(filename)\r\nDate: $(date)")
        .Quoted(true)
        .MultiLine()
        .Macros(),
    Flag("Anti-aliased", "1"),
    Integer("Opacity", "100").Clamp(0, 100).Unit("%")};
constexpr DialogSpec kDialog{.title = "Text overlay (absolute) - multiple lines",
                             .windowState = "WS84",
                             .helpTopic = "Textoverlayabsolute"};

constexpr std::string_view kMemoryWords = "Cmd_84 Text Absolute: memory failure";
constexpr BlockWords kAliasedWords{kMemoryWords, "Cmd_84 Text Absolute L3998: ",
                                   "Cmd_84 Text Absolute L4001: ", "Cmd_84 Text Absolute L4003: "};
constexpr BlockWords kSmoothWords{kMemoryWords, "Cmd_84 Text Absolute L4457: ",
                                  "Cmd_84 Text Absolute L4474: ", "Cmd_84 Text Absolute L4482: "};

// Smooth text is measured at this multiple of its height, so that line steps and widths come out as
// they did where smoothing meant to draw that large.
constexpr int kSmoothingFactor = 4;

TextLinesParams ReadText(const Fields& fields) {
    return {.x = fields.Integer(kX),
            .y = fields.Integer(kY),
            .style = {.font = ReadFont(fields, kFontHeight),
                      .colour = ColourOf(fields, kRed),
                      .onBackground = fields.Is(kNoBackground, "0"),
                      .background = ColourOf(fields, kBackRed),
                      .smoothing = fields.Is(kSmooth, "1") ? Smoothing::Smooth : Smoothing::Aliased,
                      .opacity = OpacityOf(fields, kOpacity)}};
}

std::string PanelOf(const Fields& fields) {
    PanelLines lines;
    lines.Line("X = ", fields.Text(kX))
        .Line("Y = ", fields.Text(kY))
        .Line("Font: ", ReadFont(fields, kFontHeight).face)
        .Line("Font height: ", fields.Text(kFontHeight))
        .Line("Text color: ", JoinColour(fields, kRed, ": "));
    if (fields.Is(kNoBackground, "1"))
        lines.Line("No text background");
    else
        lines.Line("Background color: ", JoinColour(fields, kBackRed, ": "));
    if (fields.Is(kSmooth, "1")) lines.Line("Anti-aliased");
    lines.Line("Opacity %: ", fields.IsEmpty(kOpacity) ? "100" : fields.Text(kOpacity));
    for (const std::string& line : SplitAtReturns(WithLineBreaks(fields.Text(kText))))
        lines.Line(line);
    return lines.Text();
}

Outcome RunText(CLumoscriptView& view, const Fields& fields) {
    const std::string stored = WithLineBreaks(fields.Text(kText));
    io::RefreshInputMembers(view);
    const bool laid = OverlayTextLines(
        view.working.main.View(), io::ParseLine(stored, io::MacrosOf(view)), ReadText(fields),
        [&](std::string_view words) { OnCommandFailure(view, words, LibraryError::Append); });
    if (!laid) return Outcome::Failed;
    SetFullColour(view);
    return Outcome::Succeeded;
}

Image PreviewText(ConstImageView before, Size sample, const Fields& fields) {
    TextLinesParams params = ReadText(fields);
    params.x = PreviewLength(params.x, before.Width(), sample.width, 0);
    params.y = PreviewLength(params.y, before.Height(), sample.height, 0);
    ShrinkStyle(params.style, before.Width(), sample.width);
    return PreviewOn(before, [&](ImageView after) {
        OverlayTextLines(after, WithLineBreaks(fields.Text(kText)), params,
                         [](std::string_view) {});
    });
}

std::string Join(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        if (&line != &lines.front()) text += '\n';
        text += line;
    }
    return text;
}

/// What the lines need together.
struct LinesBox {
    std::int64_t width = 0, height = 0;
    int step = 0;  // from line to line, if they are drawn one by one
};

LinesBox Measure(const std::string& text, int lines, const TextStyle& style,
                 const ReportFailure& report, const TextServices& services) {
    const bool smooth = style.smoothing == Smoothing::Smooth;
    const int factor = smooth ? kSmoothingFactor : 1;
    const int height = style.font.height == 0 ? imaging::kDefaultTextHeight : style.font.height;
    // All lines at once: the widest, and the highest as often as there are lines.
    const auto size = services.measure(text, WithHeight(style.font, std::int64_t{height} * factor),
                                       style.smoothing);
    if (!size) {
        for (int line = 0; line < lines; ++line)
            report(smooth ? "Cmd_84 Text Absolute L4411: " : "Cmd_84 Text Absolute L3957: ");
        return {};
    }
    return {size->width / factor, size->height / factor, size->height / lines / factor};
}

}  // namespace

std::string WithLineBreaks(std::string_view stored) {
    std::string text;
    for (std::size_t i = 0; i < stored.size(); ++i) {
        if (stored.substr(i, 2) == "$x") {
            text += "\r\n";
            ++i;
            continue;
        }
        if (stored[i] == '\n' && !text.ends_with('\r')) text += '\r';
        text += stored[i];
    }
    return text;
}

std::vector<std::string> SplitAtReturns(std::string_view text) {
    constexpr unsigned char kReturn = 13;
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (static_cast<unsigned char>(text[i]) > kReturn) line += text[i];
        if (text[i] == '\r' || i + 1 == text.size()) {
            lines.push_back(std::move(line));
            line.clear();
        }
    }
    if (lines.empty()) lines.emplace_back();
    return lines;
}

bool OverlayTextLines(ImageView image, std::string_view text, const TextLinesParams& params,
                      const ReportFailure& report, const TextServices& services) {
    const TextStyle& style = params.style;
    const std::vector<std::string> lines = SplitAtReturns(text);
    const std::string whole = Join(lines);
    const Rect inImage{params.x, params.y, image.Width(), image.Height()};
    const bool smooth = style.smoothing == Smoothing::Smooth;
    if (!smooth && !style.onBackground) {
        if (!DrawStyled(image, whole, style, inImage, style.opacity, services))
            report("Cmd_84 Text Absolute L4287: ");
        return true;
    }
    const LinesBox box = Measure(whole, static_cast<int>(lines.size()), style, report, services);
    // Draws each line for itself, the first one at the top left of the rectangle.
    const auto drawLines = [&](ImageView target, Rect rect, double opacity,
                               std::string_view words) {
        std::int64_t y = rect.top;
        for (const std::string& line : lines) {
            if (y >= target.Height()) break;
            // A line far above has no ink on the picture.
            const bool reaches = y >= -kSmoothingFactor * std::int64_t{box.step};
            const Rect place{rect.left, static_cast<int>(y), rect.right, rect.bottom};
            if (reaches && !DrawStyled(target, line, style, place, opacity, services))
                report(words);
            y += box.step;
        }
    };
    if (!style.onBackground) {
        drawLines(image, inImage, style.opacity, "Cmd_84 Text Absolute L4505: ");
        return true;
    }
    const int margin = style.margin;
    const std::int64_t left = std::max<std::int64_t>(std::int64_t{params.x} - margin, 0);
    const std::int64_t top = std::max<std::int64_t>(std::int64_t{params.y} - margin, 0);
    const Size size{LimitPixels(std::min(box.width + 2 * margin, image.Width() - left)),
                    LimitPixels(std::min(box.height + 2 * margin, image.Height() - top))};
    const BlockWords& words = smooth ? kSmoothWords : kAliasedWords;
    return LayBlock(image, LimitPixels(left), LimitPixels(top), size, style, words, report,
                    services, [&](ImageView block) {
                        const Rect inBlock{margin, margin, size.width, size.height};
                        // Lines that are laid out together reach as far as the image does.
                        const Rect together{margin, margin, image.Width(), image.Height()};
                        if (smooth)
                            drawLines(block, inBlock, 1.0, words.draw);
                        else if (!DrawStyled(block, whole, style, together, 1.0, services))
                            report(words.draw);
                    });
}

const Command kTextOverlayAbsoluteCommand{.spec = {.name = names::kTextOverlayAbsolute,
                                                   .fields = kFields,
                                                   .panelText = PanelOf,
                                                   .dialog = &kDialog},
                                          .opening = openings::kStandard,
                                          .run = RunText,
                                          .preview = PreviewText};

}  // namespace lumo::ops::overlays

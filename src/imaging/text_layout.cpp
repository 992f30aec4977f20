#include "imaging/text_layout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "imaging/last_error.h"

namespace lumo::imaging {
namespace {

constexpr double kLargestFont = 1'000'000;  // pixels; Cairo's coordinates hold eight of it
constexpr double kLargestGlyph = 200;       // pixels; larger letters are drawn as outlines
// Larger letters are laid out at this size and scaled: fonts are not made for more.
constexpr double kLargestLayout = 2000;  // pixels

constexpr std::string_view kGenericFamilies = "Arial,Sans";

// Shapers take the square of the time for twice the letters of some texts, so that longer lines are
// shaped in pieces, cut at a blank if there is one.
constexpr std::size_t kLongestPiece = 2000;  // bytes

// Bytes of the first piece of the text.
std::size_t CutPiece(std::string_view text) {
    if (text.size() <= kLongestPiece) return text.size();
    const std::size_t blank = text.rfind(' ', kLongestPiece - 1);
    if (blank != std::string_view::npos && blank > 0) return blank;
    std::size_t end = kLongestPiece;
    while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
    return end;
}

// Scripts whose letters touch: smooth ones, moved to whole pixels one by one, would come apart.
bool JoinsLetters(const PangoLayoutRun& run) {
    switch (run.item->analysis.script) {
        case G_UNICODE_SCRIPT_ARABIC:
        case G_UNICODE_SCRIPT_SYRIAC:
        case G_UNICODE_SCRIPT_NKO:
        case G_UNICODE_SCRIPT_MONGOLIAN:
        case G_UNICODE_SCRIPT_MANDAIC:
        case G_UNICODE_SCRIPT_ADLAM:
        case G_UNICODE_SCRIPT_DEVANAGARI:
        case G_UNICODE_SCRIPT_BENGALI:
        case G_UNICODE_SCRIPT_GURMUKHI:
            return true;
        default:
            return false;
    }
}

bool Overlap(Rect visible, double left, double top, double right, double bottom) {
    return left < visible.right && right > visible.left && top < visible.bottom &&
           bottom > visible.top;
}

PangoLayoutRun* RunOf(GSList* item) {
    return static_cast<PangoLayoutRun*>(item->data);
}

double WidthOf(const PangoGlyphString* glyphs) {
    double width = 0;
    for (int i = 0; i < glyphs->num_glyphs; ++i)
        width += PangoPixels(glyphs->glyphs[i].geometry.width);
    return width;
}

PangoGlyphUnit WholePixels(double pixels) {
    return static_cast<PangoGlyphUnit>(pixels) * PANGO_SCALE;
}

double Nearest(double pixels) {
    return std::floor(pixels + 0.5);
}

// Places every cluster (a letter and its marks) of the run at the whole pixel next to where its
// advances lead, and its parts at whole pixels within it. `pen` is where the run begins.
void PlaceRun(PangoGlyphString* glyphs, double& pen) {
    const auto at = [&](int i) -> PangoGlyphGeometry& { return glyphs->glyphs[i].geometry; };
    for (int i = 0; i < glyphs->num_glyphs;) {
        const int cluster = glyphs->log_clusters[i];
        const double begin = pen;
        int last = i;
        for (; i < glyphs->num_glyphs && glyphs->log_clusters[i] == cluster; last = i++) {
            PangoGlyphGeometry& part = at(i);
            const double within = pen - begin + PangoPixels(part.x_offset);
            pen += PangoPixels(part.width);
            part = {0, WholePixels(Nearest(within)),
                    WholePixels(Nearest(PangoPixels(part.y_offset)))};
        }
        at(last).width = WholePixels(Nearest(pen) - Nearest(begin));
    }
}

}  // namespace

std::optional<TextLayout> TextLayout::Create(const TextFont& font, Smoothing smoothing) {
    TextLayout text;
    const auto description =
        DescribeFont(FontFamilies(font.face, kGenericFamilies), font.weight, font.italic);
    const auto fit = [&](LetterFit letters, double pixels, FontHeight of) {
        text.context_ = MakeTextContext(letters);
        return SetFontHeight(text.context_.get(), description.get(), pixels, of);
    };
    const int height = font.height == 0 ? kDefaultTextHeight : font.height;
    const double wanted = std::min(std::abs(double{1} * height), kLargestFont);
    const FontHeight of = height > 0 ? FontHeight::Cell : FontHeight::Letters;
    const double known = std::min(wanted, kLargestLayout);
    const LetterFit letters =
        smoothing == Smoothing::Aliased ? LetterFit::Whole : LetterFit::Upright;
    FontExtent extent = fit(letters, known, of);
    const double size = extent.size * (wanted / known);
    text.outlines_ = size > kLargestGlyph;
    if (text.outlines_) {
        text.scale_ = std::max(size / kLargestLayout, 1.0);
        extent = fit(LetterFit::Exact, size / text.scale_, FontHeight::Letters);
    }
    const PangoOwned<PangoFont> base(
        pango_context_load_font(text.context_.get(), description.get()));
    if (extent.size == 0 || !base) {
        SetLastError("there is no font to draw text with");
        return std::nullopt;
    }
    text.metrics_.reset(pango_font_get_metrics(base.get(), nullptr));
    text.layout_.reset(pango_layout_new(text.context_.get()));
    pango_layout_set_single_paragraph_mode(text.layout_.get(), TRUE);
    const CairoSurface pixel(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1));
    text.scratch_.reset(cairo_create(pixel.get()));
    text.size_ = size;
    text.ascent_ = extent.ascent * text.scale_;
    text.descent_ = extent.descent * text.scale_;
    text.smooth_ = smoothing == Smoothing::Smooth;
    text.underline_ = font.underline;
    text.strikeOut_ = font.strikeOut;
    return text;
}

TextLayout::Extent TextLayout::SetLine(const std::string& line) {
    line_ = line;
    pango_context_set_base_dir(context_.get(), PANGO_DIRECTION_LTR);
    pango_layout_set_auto_dir(layout_.get(), TRUE);
    pango_layout_context_changed(layout_.get());
    pieces_.clear();
    Extent whole{.ascent = ascent_, .descent = descent_};
    std::size_t at = 0;
    do {
        pieces_.push_back({at, CutPiece(std::string_view(line_).substr(at))});
        const Extent piece = Shape(pieces_.size() - 1);
        if (at == 0) FixDirection();
        pieces_.back().width = piece.width / scale_;
        whole = {whole.width + piece.width, std::max(whole.ascent, piece.ascent),
                 std::max(whole.descent, piece.descent), std::min(whole.inkTop, piece.inkTop),
                 std::max(whole.inkBottom, piece.inkBottom)};
        at += pieces_.back().bytes;
    } while (at < line_.size());
    width_ = whole.width;
    return whole;
}

// All pieces of a line run the way in which the first one does.
void TextLayout::FixDirection() {
    const auto direction =
        static_cast<PangoDirection>(pango_layout_get_line_readonly(layout_.get(), 0)->resolved_dir);
    rightToLeft_ = direction == PANGO_DIRECTION_RTL;
    if (pieces_.front().bytes == line_.size()) return;
    pango_context_set_base_dir(context_.get(), direction);
    pango_layout_set_auto_dir(layout_.get(), FALSE);
    pango_layout_context_changed(layout_.get());
}

TextLayout::Extent TextLayout::Shape(std::size_t piece) {
    shaped_ = piece;
    pango_layout_set_text(layout_.get(), line_.data() + pieces_[piece].from,
                          static_cast<int>(pieces_[piece].bytes));
    PangoLayoutLine* const line = pango_layout_get_line(layout_.get(), 0);
    // Pango's own widths leave 32 bits where a line is longer than two million pixels.
    double width = 0;
    for (GSList* item = line->runs; item != nullptr; item = item->next)
        width += WidthOf(RunOf(item)->glyphs);
    PangoRectangle ink, logical;
    pango_layout_line_get_extents(line, &ink, &logical);
    if (!outlines_) PlaceAtWholePixels(line);
    return {width * scale_, -PangoPixels(logical.y) * scale_,
            PangoPixels(logical.y + logical.height) * scale_, PangoPixels(ink.y) * scale_,
            PangoPixels(ink.y + ink.height) * scale_};
}

void TextLayout::PlaceAtWholePixels(PangoLayoutLine* line) {
    double pen = 0;
    for (GSList* item = line->runs; item != nullptr; item = item->next) {
        const PangoLayoutRun& run = *RunOf(item);
        if (run.glyphs->num_glyphs == 0) continue;
        if (!smooth_ || !JoinsLetters(run)) {
            PlaceRun(run.glyphs, pen);
            continue;
        }
        // The run as a whole, from one whole pixel to another.
        const double end = pen + WidthOf(run.glyphs);
        const double excess = end - pen - (Nearest(end) - Nearest(pen));
        run.glyphs->glyphs[run.glyphs->num_glyphs - 1].geometry.width -=
            static_cast<PangoGlyphUnit>(std::lround(excess * PANGO_SCALE));
        pen = end;
    }
}

void TextLayout::Draw(cairo_t* cr, std::int64_t x, std::int64_t baseline, Rect visible) {
    const auto y = static_cast<double>(baseline);
    double pen = rightToLeft_ ? width_ : 0;  // from the left of the line
    for (std::size_t piece = 0; piece < pieces_.size(); ++piece) {
        const double width = pieces_[piece].width * scale_;
        if (rightToLeft_) pen -= width;
        const double left = static_cast<double>(x) + Nearest(pen);
        // Letters lean out of their piece by less than a few times their size.
        const double reach = 4 * size_;
        if (left < visible.right + reach && left + width > visible.left - reach) {
            if (shaped_ != piece) Shape(piece);
            DrawPiece(cr, left, y, visible);
        }
        if (!rightToLeft_) pen += width;
    }
    if (underline_ || strikeOut_) DrawBars(cr, x, baseline, visible);
}

void TextLayout::DrawPiece(cairo_t* cr, double x, double y, Rect visible) {
    const PangoLayoutLine* line = pango_layout_get_line_readonly(layout_.get(), 0);
    for (GSList* item = line->runs; item != nullptr; item = item->next) {
        const PangoLayoutRun& run = *RunOf(item);
        // Smooth letters are outlines too: as glyphs Cairo would keep their pixels for hundreds of
        // sizes, and cut them off where fitting has made them higher than the font says.
        if (smooth_ || outlines_) {
            AddOutlines(cr, run, x, y, visible);
            cairo_fill(cr);
        } else {
            cairo_move_to(cr, x, y);
            pango_cairo_show_glyph_string(cr, run.item->analysis.font, run.glyphs);
            cairo_new_path(cr);
        }
        x += WidthOf(run.glyphs) * scale_;
    }
}

void TextLayout::AddOutlines(cairo_t* cr, const PangoLayoutRun& run, double x, double y,
                             Rect visible) {
    PangoFont* const font = run.item->analysis.font;
    const PangoOwned<PangoGlyphString> letter(pango_glyph_string_new());
    pango_glyph_string_set_size(letter.get(), 1);
    letter->log_clusters[0] = 0;
    for (int i = 0; i < run.glyphs->num_glyphs; ++i) {
        const PangoGlyphInfo& glyph = run.glyphs->glyphs[i];
        const double left = x + PangoPixels(glyph.geometry.x_offset) * scale_;
        const double base = y + PangoPixels(glyph.geometry.y_offset) * scale_;
        x += PangoPixels(glyph.geometry.width) * scale_;
        PangoRectangle ink;
        pango_font_get_glyph_extents(font, glyph.glyph, &ink, nullptr);
        const double inkLeft = left + PangoPixels(ink.x) * scale_ - 1;
        const double inkTop = base + PangoPixels(ink.y) * scale_ - 1;
        if (!Overlap(visible, inkLeft, inkTop, inkLeft + PangoPixels(ink.width) * scale_ + 2,
                     inkTop + PangoPixels(ink.height) * scale_ + 2))
            continue;
        letter->glyphs[0] = glyph;
        letter->glyphs[0].geometry.x_offset = letter->glyphs[0].geometry.y_offset = 0;
        cairo_move_to(scratch_.get(), 0, 0);
        pango_cairo_glyph_string_path(scratch_.get(), font, letter.get());
        const CairoPath outline(cairo_copy_path(scratch_.get()));
        cairo_new_path(scratch_.get());
        cairo_save(cr);
        cairo_translate(cr, left, base);
        cairo_scale(cr, scale_, scale_);
        cairo_append_path(cr, outline.get());
        cairo_restore(cr);
    }
}

void TextLayout::DrawBars(cairo_t* cr, std::int64_t x, std::int64_t baseline, Rect visible) const {
    const double left = std::max(static_cast<double>(x), double{1} * visible.left);
    const double right =
        std::min(static_cast<double>(x) + std::ceil(width_), double{1} * visible.right);
    if (left >= right) return;
    // `above` is the distance from the base line up to the top of the bar.
    const auto bar = [&](int above, int thickness) {
        const double top = static_cast<double>(baseline) - Nearest(PangoPixels(above) * scale_);
        const double height = std::max(Nearest(PangoPixels(thickness) * scale_), 1.0);
        if (!Overlap(visible, left, top, right, top + height)) return;
        cairo_rectangle(cr, left, top, right - left, height);
        cairo_fill(cr);
    };
    if (underline_)
        bar(pango_font_metrics_get_underline_position(metrics_.get()),
            pango_font_metrics_get_underline_thickness(metrics_.get()));
    if (strikeOut_)
        bar(pango_font_metrics_get_strikethrough_position(metrics_.get()),
            pango_font_metrics_get_strikethrough_thickness(metrics_.get()));
}

}  // namespace lumo::imaging

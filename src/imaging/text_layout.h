#pragma once

// One line of text, shaped and laid out.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "imaging/draw_text.h"
#include "imaging/pango_support.h"

namespace lumo::imaging {

/// Lays out one line after the other in one font.
class TextLayout {
  public:
    /// None, with LastError() set, if the machine has no font at all. A face that is not installed
    /// falls back to another.
    static std::optional<TextLayout> Create(const TextFont& font, Smoothing smoothing);

    /// A line in pixels, measured from its origin on the base line. It has at least the ascent and
    /// descent of the font that was asked for; letters of another font may need more.
    struct Extent {
        double width = 0;  // of all advances
        double ascent = 0;
        double descent = 0;
        double inkTop = 0;  // downwards
        double inkBottom = 0;
    };
    /// Lays out the line, which is UTF-8 without control characters. The layout holds it until the
    /// next call.
    Extent SetLine(const std::string& line);

    /// Draws the line that was set last in the colour of the context, its origin at (x, baseline).
    /// Letters that have no pixel in `visible` may be left out.
    void Draw(cairo_t* cr, std::int64_t x, std::int64_t baseline, Rect visible);

  private:
    /// A part of a line that is shaped by itself.
    struct Piece {
        std::size_t from = 0, bytes = 0;  // of the line
        double width = 0;                 // pixels of the layout
    };

    TextLayout() = default;

    /// Shapes a piece and gives its extent; the layout holds it until the next call.
    Extent Shape(std::size_t piece);
    void FixDirection();
    void PlaceAtWholePixels(PangoLayoutLine* line);
    void DrawPiece(cairo_t* cr, double x, double y, Rect visible);
    void AddOutlines(cairo_t* cr, const PangoLayoutRun& run, double x, double y, Rect visible);
    void DrawBars(cairo_t* cr, std::int64_t x, std::int64_t baseline, Rect visible) const;

    PangoOwned<PangoContext> context_;
    PangoOwned<PangoLayout> layout_;
    PangoOwned<PangoFontMetrics> metrics_;
    CairoContext scratch_;  // where outlines are made
    bool smooth_ = false;
    bool outlines_ = false;  // letters too large for the glyph cache
    double size_ = 0;        // of letters, in pixels
    double ascent_ = 0, descent_ = 0;
    double scale_ = 1;  // pixels per pixel of the layout
    bool underline_ = false, strikeOut_ = false;

    std::string line_;
    std::vector<Piece> pieces_;  // in the order of the text
    std::size_t shaped_ = 0;     // the piece in the layout
    bool rightToLeft_ = false;   // the first piece stands at the right
    double width_ = 0;           // pixels
};

}  // namespace lumo::imaging

#pragma once

// The picture that a metafile is drawn on, and the few ways of laying colour on it. Everything
// here is in pixels of the picture: pixel (x, y) covers x to x + 1 and y to y + 1.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "imaging/codecs/metafile/cairo_support.h"
#include "imaging/codecs/metafile/clip.h"
#include "imaging/codecs/metafile/dib.h"
#include "imaging/codecs/metafile/path.h"
#include "imaging/codecs/metafile/raster_ops.h"

namespace lumo::imaging::codecs::metafile {

/// What a fill or a stroke is made of.
struct Paint {
    Rgb colour;
    std::shared_ptr<const Bitmap> tile;  // if set, repeated from `origin`; AA 0 leaves the picture
    Point origin;
};

/// The colour of a paint at a pixel; AA 0 for none.
std::uint32_t ColourAt(const Paint& paint, int x, int y);

struct StrokeStyle {
    double width = 1;            // pixels, not below 1
    std::vector<double> dashes;  // pixels, on and off in turn; none: a whole line
    cairo_line_cap_t cap = CAIRO_LINE_CAP_ROUND;
    cairo_line_join_t join = CAIRO_LINE_JOIN_ROUND;
    double miterLimit = 10;
};

/// How a bitmap is laid on the canvas.
struct BlitMode {
    Rop3 rop = kSourceCopy;
    double opacity = 1;
    bool useAlpha = false;           // the pixels are premultiplied by their AA
    std::optional<Rgb> transparent;  // pixels of that colour are left out
};

class Canvas {
  public:
    /// A white picture; nothing if the memory budget is spent or a side exceeds kCairoMaxSide.
    static std::optional<Canvas> Create(Size size);
    /// No picture: only notes where ink would fall, within a wide square around the origin.
    static Canvas ForMeasuring();

    Rect Limits() const { return limits_; }
    /// The box of everything that was drawn.
    Box Ink() const { return ink_; }
    /// True once more drawing was asked for than one file may take; what follows is left out.
    bool IsExhausted() const { return work_ > kMostWork; }
    /// Counts work that is done elsewhere, in pixels touched once.
    void Spend(double work) { work_ += work; }

    void Fill(const Path& path, FillRule rule, const Paint& paint, const Clip& clip, Rop3 rop);
    void Stroke(const Path& path, const StrokeStyle& style, const Paint& paint, const Clip& clip,
                Rop3 rop);
    /// Lays the part of a bitmap (whole pixels, inside of it) so that `place` maps the unit square
    /// onto the canvas: (0, 0) is the upper left corner of the part, (1, 1) the lower right one.
    void Blit(const Bitmap& bitmap, Rect part, const Transform& place, const BlitMode& mode,
              const Paint& pattern, const Clip& clip);
    /// Draws with Cairo calls inside of `extents`; the context is restored behind it.
    void Draw(Box extents, double work, const Clip& clip, Rop3 rop,
              const std::function<void(cairo_t*)>& draw);

    /// A context for measuring text.
    cairo_t* Context() const { return cr_.get(); }
    /// The finished picture; the canvas is not used afterwards.
    std::optional<Image> TakeImage();
    /// Changes all pixels that hang together with (x, y): those of the colour there, or all up to
    /// the colour `border`.
    void FloodFill(int x, int y, std::optional<Rgb> border, const Paint& paint, const Clip& clip);

  private:
    static constexpr double kMostWork = 8e9;     // about as many nanoseconds
    static constexpr double kWorkPerCall = 200;  // pixels
    static constexpr double kWorkOfLayer = 8;    // times the direct way

    Canvas() = default;
    void Attach(Size size);
    /// The pixels that may change, counted and noted; empty if there is nothing to draw.
    Rect Admit(Box extents, double work, double workPerPixel, const Clip& clip);
    void DrawDirectly(Rect box, const std::function<void(cairo_t*)>& draw);
    void DrawLayer(Rect box, cairo_antialias_t edges, const std::function<void(cairo_t*)>& draw);
    /// Takes the layer as S of the operation, as far as it covers each pixel.
    void Combine(Rect box, const Clip& clip, Rop3 rop, bool soft, const Paint& pattern);
    std::uint32_t* Row(int y) const {
        return reinterpret_cast<std::uint32_t*>(pixels_.Data()) +
               static_cast<std::size_t>(y) * static_cast<std::size_t>(limits_.right);
    }

    PixelBuffer pixels_;  // 0xFFRRGGBB
    CairoSurface surface_;
    CairoContext cr_;
    Rect limits_;
    bool measuring_ = false;
    Box ink_;
    double work_ = 0;
    std::vector<std::uint32_t> layer_;  // what Draw combines with the picture, kept for the next
};

}  // namespace lumo::imaging::codecs::metafile

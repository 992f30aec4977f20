#pragma once

// What the records of both kinds of metafile act on: the drawing state, the way from logical units
// to pixels, and the drawing calls. It knows no file format.
//
// Three spaces: logical units, in which records speak; device units, to which the window and the
// viewport map them; and pixels of the canvas, to which `base` maps device units.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "imaging/codecs/metafile/canvas.h"
#include "imaging/codecs/metafile/objects.h"

namespace lumo::imaging::codecs::metafile {

enum class MapMode : std::uint8_t {
    Text = 1,
    LoMetric,
    HiMetric,
    LoEnglish,
    HiEnglish,
    Twips,
    Isotropic,
    Anisotropic,
};

struct Mapping {
    MapMode mode = MapMode::Text;
    Point windowOrigin;
    Point windowExtent{1, 1};
    Point viewportOrigin;
    Point viewportExtent{1, 1};
    Transform world;
};

/// Where text stands in relation to its point.
enum TextAlign : std::uint32_t {
    kUpdatePosition = 1,
    kRight = 2,
    kCentre = 6,
    kHorizontalMask = 6,
    kBottom = 8,
    kBaseline = 24,
    kVerticalMask = 24,
};

/// Everything that a save keeps and a restore brings back.
struct DrawingState {
    Mapping mapping;
    Pen pen;
    Brush brush;
    Font font;
    std::vector<Rgb> palette;
    ColourRef textColour = 0;
    ColourRef backColour = 0xFFFFFF;
    bool opaqueBack = true;
    unsigned drawMode = 13;
    FillRule fillRule = FillRule::EvenOdd;
    std::uint32_t textAlign = 0;
    double charExtra = 0;   // logical units behind each character
    double breakExtra = 0;  // and behind each blank
    Point position;         // logical units
    Point brushOrigin;      // device units
    bool arcsClockwise = false;
    double miterLimit = 10;
    Clip clip;
    std::optional<Clip> outerClip;  // what `clip` was when it was fixed; it never grows past it
};

struct TextCall {
    std::string text;              // UTF-8
    std::vector<double> advances;  // logical units for each code point; fewer or none: the font's
    Point at;
    std::optional<Box> box;  // filled or clipped to, as the next two say
    bool fillBox = false;
    bool clipToBox = false;
    bool turnsWithWorld = false;  // mirrored and sheared by the world transform too
    bool glyphIndices = false;    // the text is no text: nothing can be drawn for it
};

/// The part of a bitmap that a transfer takes. Some writers state the size of the target as that of
/// the source as well: one that ends far outside of the bitmap means the whole bitmap.
Box SourceBox(const Bitmap& bitmap, Point from, Point size);

struct Character;
/// Bytes in the character set of the font; codes as they are if the font has its own alphabet.
std::vector<Character> DecodeInFont(ByteView bytes, const Font& font);
/// Puts characters into a call: signs of symbol fonts as Unicode, and the sum of the advances of
/// the units of each. `advances` has one number for each unit, or none.
void SetCharacters(TextCall& call, const std::vector<Character>& characters, const Font& font,
                   std::span<const double> advances);

struct GradientVertex {
    Point at;
    Rgb colour;
};

enum class ArcKind : std::uint8_t { Open, Chord, Pie };

class DeviceContext {
  public:
    /// `unitsPerMillimetre` is the resolution of the device for the metric mapping modes.
    DeviceContext(Canvas& canvas, Transform base, Point unitsPerMillimetre,
                  const DecodeOptions& options);

    DrawingState& State() { return state_; }
    Canvas& Target() { return canvas_; }
    void SetBase(const Transform& base) { base_ = base; }

    void Save();
    /// A negative number counts back from the last save, a positive one from the first.
    void Restore(int which);

    void Select(const Object& object);
    Rgb ColourOf(ColourRef colour) const;

    // Mapping.
    Transform PageToDevice() const;
    Transform ToCanvas() const;
    /// Pixels for a logical unit, as a mean over both directions.
    double Scale() const;

    // Shapes, in logical units: filled with the brush, outlined with the pen, or added to the path
    // while one is being built.
    void LineTo(Point p);
    void Polyline(std::span<const Point> points);
    void Polygon(std::span<const Point> points);
    void PolyPolygon(const Path& figures);
    void Lines(const Path& figures);
    void Rectangle(Box box);
    void RoundRectangle(Box box, Point corner);
    void Ellipse(Box box);
    /// Draws on from the current position, which is where the path begins, and moves to its end.
    void Continue(Path path);
    /// Part of the ellipse in the box, between the rays from its centre through two points. With
    /// `join` it is led to from the current position, which then moves to its end.
    void Arc(Box box, Point from, Point to, ArcKind kind, bool join = false);
    /// A line to an arc and the arc: degrees, counter-clockwise from the right.
    void AngleArc(Point centre, double radius, double start, double sweep);
    void SetPixel(Point p, ColourRef colour);
    void FloodFill(Point p, std::optional<ColourRef> border);

    // The path that shapes collect in.
    void BeginPath();
    void EndPath() { buildingPath_ = false; }
    void AbortPath();
    bool IsBuildingPath() const { return buildingPath_; }
    Path& CurrentPath() { return path_; }
    void CloseFigure();
    /// Draws the path and empties it.
    void PaintPath(bool fill, bool stroke);
    void ClipToPath(ClipMode mode);

    // Clipping and regions.
    void ClipToBox(ClipMode mode, Box box);
    void ClipToRegion(ClipMode mode, const Region& region);
    /// The same for boxes in units of the device.
    void ClipToDeviceRegion(ClipMode mode, const Region& region);
    void ResetClip();
    void FixClip() { state_.outerClip = state_.clip; }
    void OffsetClip(Point distance);
    void FillRegion(const Region& region, const Brush& brush);
    void FrameRegion(const Region& region, const Brush& brush, Point size);
    void InvertRegion(const Region& region);

    void DrawText(const TextCall& call);

    // Bitmaps.
    /// Fills the box as the operation says, from brush and picture alone.
    void PatternBlit(Box box, Rop3 rop);
    /// Maps `source`, in pixels of the bitmap and mirrored where it runs backwards, onto `target`.
    void Blit(const Bitmap& bitmap, Box target, Box source, const BlitMode& mode);
    /// The same onto the parallelogram (0, 0), (1, 0), (0, 1) of `target`, in logical units.
    void BlitOnto(const Bitmap& bitmap, const Transform& target, Box source, const BlitMode& mode);

    /// Lays `scans` rows of a bitmap on the device without scaling; the bitmap holds those that
    /// count from `firstScan`, and all numbers count from its stored first row.
    void SetDibToDevice(const Bitmap& bitmap, Point at, Point from, Point size, double firstScan,
                        double scans);

    /// Boxes of two corners each, whose colours blend from one side to the other.
    void GradientBox(const GradientVertex& from, const GradientVertex& to, bool downwards);
    void GradientTriangle(const std::array<GradientVertex, 3>& corners);

    const DecodeOptions& Options() const { return options_; }
    Paint PaintOf(const Brush& brush) const;

  private:
    void Emit(Path fill, const Path* outline, bool filled);
    void FillPath(const Path& path);
    void StrokePath(const Path& path);
    Path OnCanvas(Path path) const { return OnCanvas(std::move(path), ToCanvas()); }
    static Path OnCanvas(Path path, const Transform& transform);
    Path RegionPath(const Region& region, const Transform& transform) const;
    void ChangeClip(ClipMode mode, const Path& path, FillRule rule);
    /// The box without the last unit of the device, which outlines leave out.
    Box OutlineBox(Box box) const;

    Canvas& canvas_;
    Transform base_;
    Point unitsPerMillimetre_;
    const DecodeOptions& options_;
    DrawingState state_;
    std::vector<DrawingState> saved_;
    Path path_;  // in pixels
    bool buildingPath_ = false;
};

}  // namespace lumo::imaging::codecs::metafile

#pragma once

// The part of a canvas that may be drawn on.

#include <cstdint>
#include <memory>
#include <optional>

#include "imaging/codecs/metafile/path.h"
#include "imaging/geometry.h"
#include "imaging/pixel_buffer.h"

namespace lumo::imaging::codecs::metafile {

enum class FillRule : std::uint8_t { EvenOdd, Winding };

constexpr bool IsEmpty(Rect r) {
    return r.left >= r.right || r.top >= r.bottom;
}
Rect Intersection(Rect a, Rect b);
Rect Union(Rect a, Rect b);
/// The whole pixels that a box touches, inside of `limits`.
Rect OuterPixels(Box box, Rect limits);
/// The box with its sides moved to the nearest pixel borders, but one pixel wide and high at least.
Box SnapToPixels(Box box);
/// The box that the path is, if it is one upright box and nothing else.
std::optional<Box> AsBox(const Path& path);

/// How a shape changes a clip; the numbers are those of the files.
enum class ClipMode : std::uint8_t { And = 1, Or = 2, Xor = 3, Diff = 4, Copy = 5 };

/// A rectangle of pixels, and inside of it an amount from 0 to 255 for each pixel where the shape
/// is not simply the rectangle. Copies share the amounts.
class Clip {
  public:
    Clip() = default;
    explicit Clip(Rect limits) : limits_(limits), box_(limits) {}

    /// Everything outside of it is 0.
    Rect Bounds() const { return box_; }
    bool IsRectangle() const { return mask_ == nullptr; }
    /// Amounts of the pixels of row y from Bounds().left on; only of a clip that is no rectangle.
    const std::uint8_t* Row(int y) const;

    void Reset() { *this = Clip(limits_); }
    /// Upright boxes are snapped to whole pixels, so that neighbours meet without a seam.
    /// Returns the pixels that were touched, as a measure of the work.
    std::size_t Change(ClipMode mode, const Path& shape, FillRule rule);
    /// Takes away what the other clip does not hold.
    void Intersect(const Clip& other);
    void Offset(int dx, int dy);

  private:
    struct Mask {
        PixelBuffer pixels;
        Rect bounds;
    };
    static std::shared_ptr<Mask> MakeMask(Rect bounds);
    static std::shared_ptr<Mask> Draw(const Path& shape, FillRule rule, Rect bounds);
    std::uint8_t At(int x, int y) const;
    void SetRectangle(Rect box);
    void Combine(ClipMode mode, const Clip& other, Rect bounds);

    Rect limits_;
    Rect box_;
    std::shared_ptr<const Mask> mask_;
};

}  // namespace lumo::imaging::codecs::metafile

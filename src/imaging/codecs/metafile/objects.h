#pragma once

// Pens, brushes, fonts, palettes and regions: what a metafile makes, selects and deletes.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "imaging/codecs/metafile/dib.h"
#include "imaging/codecs/metafile/path.h"
#include "imaging/codecs/metafile/record_reader.h"

namespace lumo::imaging::codecs::metafile {

/// A colour as files store it: red in the low byte, then green and blue; a high byte of 1 makes the
/// low 16 bits an index into the palette.
using ColourRef = std::uint32_t;

struct Pen {
    enum Line : std::uint8_t {
        Solid = 0,
        Dash = 1,
        Dot = 2,
        DashDot = 3,
        DashDotDot = 4,
        None = 5,
        InsideFrame = 6,
        Custom = 7,
        Alternate = 8,
    };
    enum class Cap : std::uint8_t { Round, Square, Flat };
    enum class Join : std::uint8_t { Round, Bevel, Miter };

    Line line = Solid;
    Cap cap = Cap::Round;
    Join join = Join::Round;
    bool geometric = true;  // the width is in logical units, else in pixels
    bool extended = false;  // gaps of dashes are never filled
    double width = 0;       // 0: one pixel
    ColourRef colour = 0;
    std::vector<double> dashes;  // of Custom
};

/// The pen that the low bits of a style word describe.
Pen PenOfStyle(std::uint32_t style, double width, ColourRef colour);

struct Brush {
    enum class Kind : std::uint8_t { None, Solid, Hatch, Pattern };
    Kind kind = Kind::Solid;
    ColourRef colour = 0xFFFFFF;
    unsigned hatch = 0;  // 0 level, 1 upright, 2 falling, 3 rising, 4 cross, 5 slanted cross
    std::shared_ptr<const Bitmap> pattern;
    bool inTextColours =
        false;  // black pixels of the pattern take the text colour, white the other
};

/// The brush with the kind that a style word says: none, hatched, or as it is.
Brush BrushOfStyle(std::uint32_t style, Brush brush);

/// A brush that repeats the bitmap. Without one, because it could not be read, areas stay as they
/// are.
Brush PatternBrush(std::optional<Bitmap> bitmap, bool inTextColours);

struct Font {
    double height = 0;   // logical units; negative: of the letters, positive: of the cell
    double width = 0;    // average of the letters; 0: as the face has it
    int escapement = 0;  // tenths of a degree, counter-clockwise
    int weight = 400;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    std::uint8_t charset = 0;
    std::uint8_t pitchAndFamily = 0;
    std::string face;  // UTF-8
};

struct Palette {
    std::vector<Rgb> colours;
};

/// The bytes behind the numbers of a font record, the same in both kinds of files.
void ReadFontStyle(RecordReader& record, Font& font);

/// So many colours of four bytes each: red, green, blue, flags.
std::vector<Rgb> ReadColours(RecordReader& record, std::size_t count);

/// Boxes in logical units.
struct Region {
    std::vector<Box> boxes;
};

using Object = std::variant<std::monostate, Pen, Brush, Font, Palette, Region>;
using ObjectHandle = std::shared_ptr<const Object>;

/// The numbered objects of a metafile. Those selected live on when their number is deleted.
class ObjectTable {
  public:
    /// Takes the lowest number that is free.
    void Add(Object object);
    /// Takes that number, whatever it held; far numbers are ignored.
    void Set(std::size_t index, Object object);
    void Delete(std::size_t index);
    /// Nothing if the number is free.
    ObjectHandle Get(std::size_t index) const;

  private:
    std::vector<ObjectHandle> slots_;
    std::size_t firstFree_ = 0;
};

}  // namespace lumo::imaging::codecs::metafile

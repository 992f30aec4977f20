#pragma once

// True colour to at most 256 colours: palettes, and pixels as indices into one.
// Everything here is exact: the same picture gives the same palette and the same indices.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/image.h"

namespace lumo::imaging::codecs {

inline constexpr int kMaxColours = 256;

/// 1 to 256 colours; more than that is never asked for.
using ColourTable = std::vector<Rgb>;

/// The standard palette: entry i is red i, green 4i, blue 16i, each modulo 256.
ColourTable UniformPalette();

/// The colours of a picture that has at most 256, in ascending order of red, green, blue;
/// empty for a picture of more.
ColourTable ExactPalette(ConstImageView image);

/// Median cut (Heckbert, "Color image quantization for frame buffer display", 1982): the box with
/// most to gain is cut at the median of its longest side until there are 256; each gives the mean
/// of its pixels. A picture of at most 256 colours gives exactly those.
ColourTable MedianCutPalette(ConstImageView image);

/// Octree (Gervautz and Purgathofer, "A simple method for color quantization", 1988): the deepest
/// nodes are merged first, among them those of fewest pixels, until at most 256 leaves are left.
/// A picture of at most 256 colours gives exactly those.
ColourTable OctreePalette(ConstImageView image);

/// Finds the entry with the smallest squared distance in RGB, the first of several.
class NearestColour {
  public:
    explicit NearestColour(ColourTable palette);

    /// Exact for every colour; cheap after the first one of a neighbourhood.
    std::uint8_t operator()(Rgb colour) {
        const Cell& cell = cells_[CellOf(colour)];
        if (cell.count == 1) return candidates_[cell.first];
        return cell.count == 0 ? Explore(colour) : Best(cell, colour);
    }
    Rgb ColourAt(std::uint8_t index) const { return palette_[index]; }

  private:
    struct Cell {
        std::uint32_t first = 0;  // into candidates_
        std::uint32_t count = 0;  // 0: not explored yet
    };
    static constexpr int kCellBits = 3;  // a cell is a cube of 8 x 8 x 8 colours
    static constexpr int kSideBits = 8 - kCellBits;

    static std::size_t CellOf(Rgb c) {
        return static_cast<std::size_t>(c.red >> kCellBits) << (2 * kSideBits) |
               static_cast<std::size_t>(c.green >> kCellBits) << kSideBits |
               static_cast<std::size_t>(c.blue >> kCellBits);
    }
    std::uint8_t Best(const Cell& cell, Rgb colour) const;
    std::uint8_t Explore(Rgb colour);

    ColourTable palette_;
    std::vector<Cell> cells_;
    std::vector<std::uint8_t> candidates_;
};

/// Each pixel as the nearest entry. `indices` holds width * height bytes, rows from the top.
void MapBestFit(ConstImageView image, const ColourTable& palette, std::span<std::uint8_t> indices);

enum class Diffusion : std::uint8_t {
    TwoNeighbours,   // half of the error to the right, half below
    FourNeighbours,  // 7/16 right, 3/16 below left, 5/16 below, 1/16 below right
};

/// As MapBestFit, but what a pixel misses its colour by is passed on to its neighbours (Floyd and
/// Steinberg, "An adaptive algorithm for spatial grey scale", 1976), left to right on every row.
/// Counted in sixteenths of a step: a pixel and what it was given are clamped to 0 ... 255 and
/// looked up rounded; shares are truncated, and the last neighbour named above gets the rest.
void MapDiffused(ConstImageView image, const ColourTable& palette, Diffusion diffusion,
                 std::span<std::uint8_t> indices);

}  // namespace lumo::imaging::codecs

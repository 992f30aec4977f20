#include "imaging/codecs/gif_palette.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace lumo::imaging::codecs {
namespace {

/// All pixels sorted into cubes of 4 x 4 x 4 colours, with sums for exact means.
constexpr int kBinBits = 6;
constexpr std::size_t kBins = std::size_t{1} << (3 * kBinBits);

struct Sum {
    std::uint64_t count = 0;
    std::uint64_t red = 0, green = 0, blue = 0;

    void Add(const Sum& other) {
        count += other.count;
        red += other.red;
        green += other.green;
        blue += other.blue;
    }
    Rgb Mean() const {
        const auto mean = [this](std::uint64_t sum) {
            return static_cast<std::uint8_t>((sum + count / 2) / count);
        };
        return {mean(red), mean(green), mean(blue)};
    }
};

struct Bin {
    std::array<std::uint8_t, 3> place{};  // 0 to 63 in red, green, blue
    Sum sum;
};

std::vector<Sum> Histogram(ConstImageView image) {
    constexpr int kShift = 8 - kBinBits;
    std::vector<Sum> bins(kBins);
    for (int y = 0; y < image.Height(); ++y) {
        const std::uint8_t* p = image.Row(y);
        for (int x = 0; x < image.Width(); ++x, p += kChannels) {
            Sum& bin = bins[static_cast<std::size_t>(p[0] >> kShift) << (2 * kBinBits) |
                            static_cast<std::size_t>(p[1] >> kShift) << kBinBits |
                            static_cast<std::size_t>(p[2] >> kShift)];
            ++bin.count;
            bin.red += p[0];
            bin.green += p[1];
            bin.blue += p[2];
        }
    }
    return bins;
}

// ---- Median cut ------------------------------------------------------------------------------

/// A run of the occupied bins and the box around them.
struct Box {
    std::size_t first = 0, last = 0;
    std::uint64_t pixels = 0;
    int longestAxis = 0;
    int longestSide = 0;  // in bins; 0: cannot be cut

    /// Many pixels spread wide make the largest errors.
    std::uint64_t Gain() const {
        return pixels * static_cast<std::uint64_t>(longestSide) *
               static_cast<std::uint64_t>(longestSide);
    }
};

Box BoxAround(std::span<const Bin> bins, std::size_t first, std::size_t last) {
    Box box{first, last};
    std::array<int, 3> low{255, 255, 255}, high{0, 0, 0};
    for (std::size_t i = first; i < last; ++i) {
        box.pixels += bins[i].sum.count;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min<int>(low[axis], bins[i].place[axis]);
            high[axis] = std::max<int>(high[axis], bins[i].place[axis]);
        }
    }
    for (int axis = 0; axis < 3; ++axis) {
        const int side = high[static_cast<std::size_t>(axis)] - low[static_cast<std::size_t>(axis)];
        if (side > box.longestSide) box.longestSide = side, box.longestAxis = axis;
    }
    return box;
}

/// Sorts the bins of the box along its longest side and gives the first one behind the median;
/// both parts hold something, and no place on the axis lies in both.
std::size_t CutAtMedian(std::span<Bin> bins, const Box& box) {
    const auto axis = static_cast<std::size_t>(box.longestAxis);
    const auto part = bins.subspan(box.first, box.last - box.first);
    std::ranges::sort(part, [axis](const Bin& a, const Bin& b) {
        // The whole place decides, so that the order never depends on the one before.
        return std::pair(a.place[axis], a.place) < std::pair(b.place[axis], b.place);
    });
    std::uint64_t pixels = 0;
    std::size_t cut = 0;
    while (pixels * 2 < box.pixels) pixels += part[cut++].sum.count;
    const auto place = [&](std::size_t i) { return part[i].place[axis]; };
    // Move to the border of a place: up if something is left above, else down.
    std::size_t above = std::max<std::size_t>(cut, 1);
    while (above < part.size() && place(above) == place(above - 1)) ++above;
    if (above == part.size())
        while (place(above - 1) == place(part.size() - 1)) --above;
    return box.first + above;
}

}  // namespace

ColourTable UniformPalette() {
    ColourTable palette(kMaxColours);
    for (unsigned i = 0; i < kMaxColours; ++i)
        palette[i] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(4 * i),
                      static_cast<std::uint8_t>(16 * i)};
    return palette;
}

ColourTable ExactPalette(ConstImageView image) {
    // Open addressing; at most 256 of the slots are ever taken.
    constexpr std::uint32_t kEmpty = 0xFFFFFFFF;
    std::array<std::uint32_t, 4096> slots;
    slots.fill(kEmpty);
    std::vector<std::uint32_t> colours;
    std::uint32_t previous = kEmpty;
    for (int y = 0; y < image.Height(); ++y) {
        const std::uint8_t* p = image.Row(y);
        for (int x = 0; x < image.Width(); ++x, p += kChannels) {
            const std::uint32_t colour =
                std::uint32_t{p[0]} << 16 | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]};
            if (colour == previous) continue;
            previous = colour;
            std::uint32_t slot = colour * 2654435761U >> 20;
            while (slots[slot] != kEmpty && slots[slot] != colour) slot = (slot + 1) % slots.size();
            if (slots[slot] == colour) continue;
            if (colours.size() == kMaxColours) return {};
            slots[slot] = colour;
            colours.push_back(colour);
        }
    }
    std::ranges::sort(colours);
    ColourTable palette;
    for (const std::uint32_t colour : colours)
        palette.push_back({static_cast<std::uint8_t>(colour >> 16),
                           static_cast<std::uint8_t>(colour >> 8),
                           static_cast<std::uint8_t>(colour)});
    return palette;
}

ColourTable MedianCutPalette(ConstImageView image) {
    if (ColourTable exact = ExactPalette(image); !exact.empty()) return exact;
    const std::vector<Sum> histogram = Histogram(image);
    std::vector<Bin> bins;
    for (std::size_t i = 0; i < kBins; ++i)
        if (histogram[i].count > 0)
            bins.push_back(
                {{static_cast<std::uint8_t>(i >> (2 * kBinBits)),
                  static_cast<std::uint8_t>(i >> kBinBits & 63), static_cast<std::uint8_t>(i & 63)},
                 histogram[i]});
    std::vector<Box> boxes{BoxAround(bins, 0, bins.size())};
    while (boxes.size() < kMaxColours) {
        const auto best = std::ranges::max_element(boxes, {}, &Box::Gain);
        if (best->longestSide == 0) break;
        const std::size_t cut = CutAtMedian(bins, *best);
        const Box upper = BoxAround(bins, cut, best->last);
        *best = BoxAround(bins, best->first, cut);
        boxes.push_back(upper);
    }
    ColourTable palette;
    for (const Box& box : boxes) {
        Sum sum;
        for (std::size_t i = box.first; i < box.last; ++i) sum.Add(bins[i].sum);
        palette.push_back(sum.Mean());
    }
    return palette;
}

// ---- Octree ----------------------------------------------------------------------------------

namespace {

/// The octree as one array of nodes per level; a child's index is its parent's times eight plus
/// the three bits of red, green and blue below it.
class Octree {
  public:
    explicit Octree(ConstImageView image);
    void ReduceTo(std::size_t leaves);
    ColourTable Leaves() const;

  private:
    struct Node {
        Sum sum;
        bool leaf = false;
    };
    bool MergeLevel(int level, std::size_t wanted);

    std::array<std::vector<Node>, kBinBits + 1> levels_;
    std::size_t leafCount_ = 0;
};

Octree::Octree(ConstImageView image) {
    for (int level = 0; level <= kBinBits; ++level)
        levels_[static_cast<std::size_t>(level)].resize(std::size_t{1} << (3 * level));
    const std::vector<Sum> histogram = Histogram(image);
    for (std::size_t i = 0; i < kBins; ++i) {
        if (histogram[i].count == 0) continue;
        std::size_t node = 0;
        for (int bit = kBinBits - 1; bit >= 0; --bit) {
            const auto bits = (i >> (2 * kBinBits + bit) & 1) << 2 |
                              (i >> (kBinBits + bit) & 1) << 1 | (i >> bit & 1);
            node = node << 3 | bits;
        }
        levels_[kBinBits][node] = {histogram[i], true};
        ++leafCount_;
    }
    for (int level = kBinBits; level > 0; --level)
        for (std::size_t i = 0; i < levels_[static_cast<std::size_t>(level)].size(); ++i)
            levels_[static_cast<std::size_t>(level - 1)][i >> 3].sum.Add(
                levels_[static_cast<std::size_t>(level)][i].sum);
}

/// Makes leaves of nodes of the level, those of fewest pixels first; true when that is enough.
bool Octree::MergeLevel(int level, std::size_t wanted) {
    auto& nodes = levels_[static_cast<std::size_t>(level)];
    auto& children = levels_[static_cast<std::size_t>(level + 1)];
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (nodes[i].sum.count > 0) order.push_back(i);
    std::ranges::sort(order, {}, [&](std::size_t i) { return std::pair(nodes[i].sum.count, i); });
    for (const std::size_t i : order) {
        if (leafCount_ <= wanted) return true;
        for (std::size_t child = i * 8; child < i * 8 + 8; ++child) {
            leafCount_ -= children[child].leaf ? 1 : 0;
            children[child].leaf = false;
        }
        nodes[i].leaf = true;
        ++leafCount_;
    }
    return leafCount_ <= wanted;
}

void Octree::ReduceTo(std::size_t leaves) {
    for (int level = kBinBits - 1; level >= 0; --level)
        if (MergeLevel(level, leaves)) return;
}

ColourTable Octree::Leaves() const {
    ColourTable palette;
    for (const auto& level : levels_)
        for (const Node& node : level)
            if (node.leaf) palette.push_back(node.sum.Mean());
    return palette;
}

}  // namespace

ColourTable OctreePalette(ConstImageView image) {
    if (ColourTable exact = ExactPalette(image); !exact.empty()) return exact;
    Octree tree(image);
    tree.ReduceTo(kMaxColours);
    return tree.Leaves();
}

}  // namespace lumo::imaging::codecs

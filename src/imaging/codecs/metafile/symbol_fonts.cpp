#include <algorithm>
#include <array>
#include <cctype>
#include <string>

#include "imaging/codecs/metafile/charsets.h"

namespace lumo::imaging::codecs::metafile {
namespace {

// Symbol from 0x20 on: the mathematical and Greek alphabet.
constexpr std::u32string_view kSymbolLow =
    U" !\u2200#\u2203%&\u220B()\u2217+,\u2212./0123456789:;<=>?"
    U"\u2245\u0391\u0392\u03A7\u0394\u0395\u03A6\u0393\u0397\u0399\u03D1\u039A\u039B\u039C\u039D"
    U"\u039F\u03A0\u0398\u03A1\u03A3\u03A4\u03A5\u03C2\u03A9\u039E\u03A8\u0396[\u2234]\u22A5_"
    U"\u203E\u03B1\u03B2\u03C7\u03B4\u03B5\u03C6\u03B3\u03B7\u03B9\u03D5\u03BA\u03BB\u03BC\u03BD"
    U"\u03BF\u03C0\u03B8\u03C1\u03C3\u03C4\u03C5\u03D6\u03C9\u03BE\u03C8\u03B6{|}\u223C";
// From 0xA0 on.
constexpr std::u32string_view kSymbolHigh =
    U"\u20AC\u03D2\u2032\u2264\u2044\u221E\u0192\u2663\u2666\u2665\u2660\u2194\u2190\u2191\u2192"
    U"\u2193\u00B0\u00B1\u2033\u2265\u00D7\u221D\u2202\u2022\u00F7\u2260\u2261\u2248\u2026\u23D0"
    U"\u23AF\u21B5\u2135\u2111\u211C\u2118\u2297\u2295\u2205\u2229\u222A\u2283\u2287\u2284\u2282"
    U"\u2286\u2208\u2209\u2220\u2207\u00AE\u00A9\u2122\u220F\u221A\u22C5\u00AC\u2227\u2228\u21D4"
    U"\u21D0\u21D1\u21D2\u21D3\u25CA\u27E8\u00AE\u00A9\u2122\u2211\u239B\u239C\u239D\u23A1\u23A2"
    U"\u23A3\u23A7\u23A8\u23A9\u23AA\uFFFD\u27E9\u222B\u2320\u23AE\u2321\u239E\u239F\u23A0\u23A4"
    U"\u23A5\u23A6\u23AB\u23AC\u23AD\uFFFD";

// Wingdings from 0x20 on: pictures and bullets. Where Unicode has the very sign only in a block
// that few fonts hold, its nearest relative stands here.
constexpr std::u32string_view kWingdingsLow =
    U" \u270F\u2702\u2701\U0001F453\U0001F514\U0001F4D6\U0001F56F\u260E\u2706\u2709\u2709"
    U"\U0001F4EA\U0001F4EB\U0001F4EC\U0001F4ED\U0001F4C1\U0001F4C2\U0001F4C4\U0001F5CF\U0001F5D0"
    U"\U0001F5C4\u231B\u2328\U0001F5B0\U0001F5B2\U0001F5B3\U0001F5B4\U0001F5AB\U0001F5AC\u2707"
    U"\u270D\u270D\u270C\U0001F44C\U0001F44D\U0001F44E\u261C\u261E\u261D\u261F\u270B\u263A"
    U"\U0001F610\u2639\U0001F4A3\u2620\u2690\u2691\u2708\u263C\U0001F4A7\u2744\u271D\u271E\u271F"
    U"\u2720\u2721\u262A\u262F\u0950\u2638\u2648\u2649\u264A\u264B\u264C\u264D\u264E\u264F\u2650"
    U"\u2651\u2652\u2653&&\u25CF\u274D\u25A0\u25A1\u25A1\u2751\u2752\u25C6\u25C6\u25C6\u2756"
    U"\u25C6\u2327\u2353\u2318\u2740\u273F\u275D\u275E\u25AF";
// From 0x80 on.
constexpr std::u32string_view kWingdingsHigh =
    U"\u24EA\u2460\u2461\u2462\u2463\u2464\u2465\u2466"
    U"\u2467\u2468\u2469\u24FF\u2776\u2777\u2778\u2779"
    U"\u277A\u277B\u277C\u277D\u277E\u277F\u2766\u2767"
    U"\u2766\u2767\u2767\u2766\u2767\u2766\u00B7\u2022"
    U"\u25AA\u25CB\u25CB\u25CB\u25C9\u25CE\u25CB\u25AA"
    U"\u25FB\u2726\u2726\u2605\u2736\u2734\u2739\u2735"
    U"\u2316\u2316\u27E1\u2311\u2370\u272A\u2730\U0001F550"
    U"\U0001F551\U0001F552\U0001F553\U0001F554\U0001F555\U0001F556\U0001F557\U0001F558"
    U"\U0001F559\U0001F55A\U0001F55B\u21B2\u21B3\u21B0\u21B1\u21B6"
    U"\u21B7\u21BA\u21BB\u2766\u2767\u2766\u2767\u2767"
    U"\u2766\u2767\u2766\u2766\u2767\u232B\u2326\u2B98"
    U"\u27A2\u2B99\u2B9B\u2B88\u27B2\u2B89\u2B8B\u2190"
    U"\u2192\u2191\u2193\u2196\u2197\u2199\u2198\u2190"
    U"\u2794\u2191\u2193\u2196\u2197\u2199\u2198\u21E6"
    U"\u21E8\u21E7\u21E9\u21D4\u21F3\u2B01\u2B00\u2B03"
    U"\u2B02\u25AB\u25AA\u2717\u2713\u2612\u2611\uFFFD";

static_assert(kSymbolLow.size() == 95 && kSymbolHigh.size() == 96);
static_assert(kWingdingsLow.size() == 96 && kWingdingsHigh.size() == 128);

// The signs of MT Extra, a companion of equation editors, that Unicode has; the others are spaces.
constexpr std::u32string_view kExtraLow =
    U"      \u02D9\u00A8                                   \u2026\u22EF\u22EE\u22F0\u22F1"
    U"                        \u210F   \u2113  \u2218";

struct SymbolFace {
    std::string_view name;  // lower case
    std::u32string_view low;
    std::u32string_view high;
    std::uint8_t highFirst;
};
constexpr std::array kFaces = {
    SymbolFace{"symbol", kSymbolLow, kSymbolHigh, 0xA0},
    SymbolFace{"wingdings", kWingdingsLow, kWingdingsHigh, 0x80},
    SymbolFace{"mt extra", kExtraLow, {}, 0x80},
};

const SymbolFace* Find(std::string_view face) {
    std::string name(face);
    std::ranges::transform(name, name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto found = std::ranges::find(kFaces, name, &SymbolFace::name);
    return found == kFaces.end() ? nullptr : &*found;
}

}  // namespace

bool IsSymbolFace(std::string_view face) {
    return Find(face) != nullptr;
}

char32_t SymbolToUnicode(std::string_view face, char32_t code) {
    const SymbolFace* symbols = Find(face);
    // Unicode text names the codes of such a font from 0xF000 on.
    const char32_t byte = code >= 0xF000 && code < 0xF100 ? code - 0xF000 : code;
    if (symbols == nullptr) return byte;
    if (byte >= 0x20 && byte - 0x20 < symbols->low.size()) return symbols->low[byte - 0x20];
    if (byte >= symbols->highFirst && byte - symbols->highFirst < symbols->high.size())
        return symbols->high[byte - symbols->highFirst];
    return byte;
}

}  // namespace lumo::imaging::codecs::metafile

// The drawing of text: Pango shapes it, the record's own advances and the font's box decide where
// each letter stands.

#include <hb-ot.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "imaging/codecs/metafile/charsets.h"
#include "imaging/codecs/metafile/device_context.h"
#include "imaging/pango_support.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr double kLargestGlyph = 200;         // pixels; larger letters are drawn as outlines
constexpr std::size_t kLongestText = 20'000;  // bytes of one record

// The face, its stand-in, and the family that its class names.
std::string Families(const Font& font) {
    constexpr std::string_view kSerif = "Times New Roman,Serif";
    if (IsSymbolFace(font.face)) return std::string(kSerif);
    const int family = font.pitchAndFamily >> 4, pitch = font.pitchAndFamily & 3;
    if (family == 1) return FontFamilies(font.face, kSerif);
    if (family == 3 || (family == 0 && pitch == 1))
        return FontFamilies(font.face, "Courier New,Monospace");
    return FontFamilies(font.face, "Arial,Sans");
}

// The mean width of letters that the font itself states, as a share of its size; 0 if it does not.
double StatedMeanWidth(PangoFont* font) {
    hb_font_t* shape = pango_font_get_hb_font(font);
    if (shape == nullptr) return 0;
    hb_face_t* face = hb_font_get_face(shape);
    hb_blob_t* table = hb_face_reference_table(face, HB_TAG('O', 'S', '/', '2'));
    unsigned length = 0;
    const char* data = hb_blob_get_data(table, &length);
    double width = 0;
    if (length >= 4) {
        const auto byte = [&](int i) { return static_cast<unsigned char>(data[i]); };
        width = static_cast<double>(byte(2) << 8 | byte(3)) / hb_face_get_upem(face);
    }
    hb_blob_destroy(table);
    return width < 4 ? width : 0;
}

// A line of text laid out at its final size, and what the drawing needs to know of it.
struct Line {
    PangoOwned<PangoContext> context;
    PangoOwned<PangoLayout> layout;
    double ascent = 0;  // pixels
    double descent = 0;
    double width = 0;    // of all advances
    double stretch = 1;  // of the letters along the line
};

Line MakeLine(const Font& font, double pixelsPerUnit, const std::string& text, bool tied) {
    Line line;
    line.context = MakeTextContext(LetterFit::Exact);
    const auto description = DescribeFont(Families(font), font.weight, font.italic);
    const double wanted = std::abs(font.height == 0 ? 16.0 : font.height * pixelsPerUnit);
    const FontExtent extent =
        SetFontHeight(line.context.get(), description.get(), wanted,
                      font.height > 0 ? FontHeight::Cell : FontHeight::Letters);
    line.ascent = extent.ascent;
    line.descent = extent.descent;
    if (font.width != 0) {
        const PangoOwned<PangoFont> face(
            pango_context_load_font(line.context.get(), description.get()));
        const double mean = face ? StatedMeanWidth(face.get()) * extent.size : 0;
        if (mean > 0)
            line.stretch = std::clamp(std::abs(font.width) * pixelsPerUnit / mean, 0.05, 20.0);
    }

    line.layout.reset(pango_layout_new(line.context.get()));
    pango_layout_set_single_paragraph_mode(line.layout.get(), TRUE);
    pango_layout_set_auto_dir(line.layout.get(), FALSE);
    const PangoOwned<PangoAttrList> attributes(pango_attr_list_new());
    if (font.underline)
        pango_attr_list_insert(attributes.get(), pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    if (font.strikeOut)
        pango_attr_list_insert(attributes.get(), pango_attr_strikethrough_new(TRUE));
    // Letters that have places of their own do not join.
    if (tied)
        pango_attr_list_insert(attributes.get(),
                               pango_attr_font_features_new("liga=0, clig=0, kern=0"));
    pango_layout_set_attributes(line.layout.get(), attributes.get());
    pango_layout_set_text(line.layout.get(), text.data(), static_cast<int>(text.size()));
    return line;
}

// Gives every cluster of glyphs the sum of the advances of its characters, and adds up the line.
// `advance` is called with the byte range of a cluster and the width that the font gives it.
template <class Advance>
void SetAdvances(Line& line, Advance advance) {
    double width = 0;
    PangoLayoutLine* first = pango_layout_get_line(line.layout.get(), 0);
    if (first == nullptr) return;
    for (GSList* item = first->runs; item != nullptr; item = item->next) {
        auto* run = static_cast<PangoLayoutRun*>(item->data);
        PangoGlyphString* glyphs = run->glyphs;
        const bool leftToRight = run->item->analysis.level % 2 == 0;
        const int count = glyphs->num_glyphs;
        for (int i = 0; i < count;) {
            int last = i, natural = glyphs->glyphs[i].geometry.width;
            while (last + 1 < count && glyphs->log_clusters[last + 1] == glyphs->log_clusters[i])
                natural += glyphs->glyphs[++last].geometry.width;
            const int start = glyphs->log_clusters[i];
            int end = run->item->length;
            if (leftToRight && last + 1 < count) end = glyphs->log_clusters[last + 1];
            if (!leftToRight && i > 0) end = glyphs->log_clusters[i - 1];
            const double wanted = advance(run->item->offset + start, run->item->offset + end,
                                          static_cast<double>(natural) / PANGO_SCALE);
            const double units = std::clamp(wanted * PANGO_SCALE, -1e8, 1e8);
            glyphs->glyphs[last].geometry.width +=
                static_cast<PangoGlyphUnit>(std::lround(units)) - natural;
            width += units / PANGO_SCALE;
            i = last + 1;
        }
    }
    line.width = width;
}

}  // namespace

void DeviceContext::DrawText(const TextCall& call) {
    Clip clip = state_.clip;
    if (call.box && (call.fillBox || call.clipToBox)) {
        Path path;
        path.AddBox(*call.box);
        path = OnCanvas(std::move(path));
        if (call.fillBox)
            canvas_.Fill(path, FillRule::Winding, {.colour = ColourOf(state_.backColour)},
                         state_.clip, kPatternCopy);
        if (call.clipToBox) clip.Change(ClipMode::And, path, FillRule::Winding);
    }
    if (call.text.empty() || call.text.size() > kLongestText || call.glyphIndices ||
        canvas_.IsExhausted())
        return;

    // Text keeps upright where the page is mirrored, and turns with the world where that turns.
    const Transform page = PageToDevice();
    Transform world = state_.mapping.world;
    const bool turned = world.xy != 0 || world.yx != 0 || call.turnsWithWorld;
    if (!turned) world = {std::abs(world.xx), 0, 0, std::abs(world.yy), 0, 0};
    const Transform upright{std::abs(page.xx), 0, 0, std::abs(page.yy), 0, 0};
    Transform letters = Compose(base_, Compose(upright, world));
    const double scale = std::hypot(letters.xy, letters.yy);
    const double across = std::hypot(letters.xx, letters.yx);
    if (!letters.IsFinite() || !(scale > 0) || !(across > 0) || !(scale < 1e6)) return;
    letters = {
        letters.xx / scale, letters.yx / scale, letters.xy / scale, letters.yy / scale, 0, 0};
    // The angle runs from the x axis towards the y axis of the logical units, where that is up.
    const double sense = !turned && ToCanvas().Determinant() < 0 ? 1 : -1;
    const double angle = sense * state_.font.escapement * std::numbers::pi / 1800;
    const Transform turn{std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), 0, 0};
    letters = turned ? Compose(letters, turn) : Compose(turn, letters);

    const bool tied = !call.advances.empty() || state_.charExtra != 0;
    canvas_.Spend(50'000 + 1000.0 * static_cast<double>(call.text.size()));
    Line line = MakeLine(state_.font, scale, call.text, tied);
    if (line.stretch != 1) letters = Compose(letters, {line.stretch, 0, 0, 1, 0, 0});
    // Logical units along the line, as pixels before the letters are stretched.
    const double unit = scale / line.stretch;

    // Byte offset of each character to its number.
    std::vector<std::size_t> numbers(call.text.size() + 1);
    std::size_t number = 0;
    for (std::size_t i = 0; i < call.text.size(); ++i) {
        if ((call.text[i] & 0xC0) == 0x80) {
            numbers[i] = number - 1;
        } else {
            numbers[i] = number++;
        }
    }
    numbers.back() = number;
    SetAdvances(line, [&](int from, int to, double natural) {
        const std::size_t last = std::min(static_cast<std::size_t>(to), call.text.size());
        double sum = 0;
        bool own = true;
        const std::size_t first = numbers[std::min(static_cast<std::size_t>(from), last)];
        for (std::size_t i = first; i < numbers[last]; ++i) {
            if (i < call.advances.size())
                sum += call.advances[i] * unit;
            else
                own = false;
        }
        if (!own) sum += natural + state_.charExtra * unit;
        if (!own && call.text[static_cast<std::size_t>(from)] == ' ')
            sum += state_.breakExtra * unit;
        return sum;
    });

    Path at;
    const std::uint32_t align = state_.textAlign;
    const bool updates = (align & kUpdatePosition) != 0;
    at.MoveTo(updates ? state_.position : call.at);
    const Point origin = OnCanvas(std::move(at)).Last();
    const std::uint32_t horizontal = align & kHorizontalMask, vertical = align & kVerticalMask;
    const double left = horizontal == kCentre  ? -line.width / 2
                        : horizontal == kRight ? -line.width
                                               : 0;
    const double baseline = vertical == kBaseline ? 0
                            : vertical == kBottom ? -line.descent
                                                  : line.ascent;
    Transform place = letters;
    place.x0 = origin.x;
    place.y0 = origin.y;

    const Box cell{left, baseline - line.ascent, left + line.width, baseline + line.descent};
    const auto onCanvas = [&](Box box) {
        Path path;
        path.AddBox(box);
        path.Map(place);
        return path;
    };
    if (state_.opaqueBack && !buildingPath_ && !(call.box && call.fillBox))
        canvas_.Fill(onCanvas(cell), FillRule::Winding, {.colour = ColourOf(state_.backColour)},
                     clip, kPatternCopy);
    const double pad = line.ascent + line.descent;
    const Box reach{cell.left - pad, cell.top - pad, cell.right + pad, cell.bottom + pad};
    const Box extents = onCanvas(reach).Bounds();
    const cairo_matrix_t matrix{place.xx, place.yx, place.xy, place.yy, place.x0, place.y0};
    cairo_matrix_t inverse = matrix;
    if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return;
    PangoLayoutLine* text = pango_layout_get_line_readonly(line.layout.get(), 0);
    const Rgb colour = ColourOf(state_.textColour);
    const double enlarged =
        std::max({1.0, std::hypot(place.xx, place.yx), std::hypot(place.xy, place.yy)});
    const bool asOutline = buildingPath_ || pad * enlarged > kLargestGlyph;
    if (asOutline) {
        // The outline is taken at the size of the line and stretched afterwards: a letter of a
        // size that FreeType refuses would spoil its face for every later text of the program.
        cairo_t* cr = canvas_.Context();
        cairo_new_path(cr);
        cairo_move_to(cr, left, baseline);
        pango_cairo_layout_line_path(cr, text);
        Path outline = TakePath(cr);
        outline.Map(place);
        if (buildingPath_)
            path_.Append(outline);
        else
            canvas_.Fill(outline, FillRule::Winding, {.colour = colour}, clip, kPatternCopy);
    } else {
        canvas_.Draw(extents, static_cast<double>(call.text.size()) * pad * pad, clip, kPatternCopy,
                     [&](cairo_t* cr) {
                         cairo_set_source_rgb(cr, colour.red / 255.0, colour.green / 255.0,
                                              colour.blue / 255.0);
                         cairo_transform(cr, &matrix);
                         cairo_move_to(cr, left, baseline);
                         pango_cairo_show_layout_line(cr, text);
                     });
    }
    if (updates && horizontal != kCentre) {
        const Point moved = letters.MapVector({horizontal == kRight ? -line.width : line.width, 0});
        const Transform t = ToCanvas();
        cairo_matrix_t back{t.xx, t.yx, t.xy, t.yy, 0, 0};
        if (cairo_matrix_invert(&back) != CAIRO_STATUS_SUCCESS) return;
        double dx = moved.x, dy = moved.y;
        cairo_matrix_transform_distance(&back, &dx, &dy);
        state_.position = state_.position + Point{dx, dy};
    }
}

}  // namespace lumo::imaging::codecs::metafile

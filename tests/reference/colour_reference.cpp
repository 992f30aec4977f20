#include "reference/colour_reference.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "support/test_images.h"

namespace lumo::test::reference {

using imaging::ConstImageView;

namespace {

std::uint8_t Byte(double v) {
    return static_cast<std::uint8_t>(static_cast<int>(v));
}
std::uint8_t Clamped(int v) {
    return static_cast<std::uint8_t>(v > 255 ? 255 : v < 0 ? 0 : v);
}

int Percent(int value, int percent) {
    const int sum = value + (percent * value) / 100;
    return sum > 100 ? 100 : sum < 0 ? 0 : sum;
}

/// 256 entries that know when they are asked for another one.
struct Table {
    std::array<int, 256> at{};
    bool left = false;
    int Get(long long i) {
        if (i >= 0 && i < 256) return at[static_cast<std::size_t>(i)];
        left = true;
        return 0;
    }
    void Set(long long i, int value) {
        if (i >= 0 && i < 256)
            at[static_cast<std::size_t>(i)] = value;
        else
            left = true;
    }
};

}  // namespace

int Luma(Rgb p) {
    return static_cast<int>(0.299 * p.red + 0.587 * p.green + 0.114 * p.blue + 0.5);
}
int MeanLuma(Rgb p) {
    return static_cast<int>(0.299 * p.red + 0.586 * p.green + 0.114 * p.blue + 0.5);
}

Hsl ToHsl(Rgb p) {
    const double r = p.red / 255.0;
    const double g = p.green / 255.0;
    const double b = p.blue / 255.0;
    double max = r, min = r;
    if (g > max) max = g;
    if (b > max) max = b;
    if (g < min) min = g;
    if (b < min) min = b;
    const double l = (max + min) / 2.0;
    Hsl out;
    out.lightness = static_cast<int>(l * 100.0);
    if (max == min) return out;
    double s = (max - min) / (max + min);
    if (!(l < 0.5)) s = (max - min) / (2.0 - max - min);
    double h = 0;
    if (r == max) h = (g - b) / (max - min);
    if (g == max) h = (b - r) / (max - min) + 2.0;
    if (b == max) h = (r - g) / (max - min) + 4.0;
    out.hue = static_cast<int>(h * 60.0);
    if (out.hue < 0) out.hue = out.hue + 360;
    out.saturation = static_cast<int>(s * 100.0);
    return out;
}

Hsl Adjusted(Hsl colour, int dh, int ds, int dl) {
    int hue = colour.hue + dh;
    if (hue < 0) hue += 360;
    if (hue > 360) hue -= 360;
    return {hue, Percent(colour.saturation, ds), Percent(colour.lightness, dl)};
}

Rgb ToRgb(Hsl colour) {
    const double l = colour.lightness / 100.0;
    const double s = colour.saturation / 100.0;
    const double h = colour.hue / 360.0;
    if (s == 0.0) return {Byte(l * 255.0), Byte(l * 255.0), Byte(l * 255.0)};
    double q = (l + s) - (l * s);
    if (l < 0.5) q = (1.0 + s) * l;
    const double p = 2.0 * l - q;
    double t[3] = {h + 0.3333333333333333, h, h - 0.3333333333333333};
    std::uint8_t out[3];
    for (int i = 0; i < 3; ++i) {
        if (t[i] < 0.0) t[i] += 1.0;
        if (t[i] > 1.0) t[i] -= 1.0;
        double c = p;
        if (6.0 * t[i] < 1.0)
            c = (q - p) * 6.0 * t[i] + p;
        else if (2.0 * t[i] < 1.0)
            c = q;
        else if (3.0 * t[i] < 2.0)
            c = (q - p) * (0.6666666666666666 - t[i]) * 6.0 + p;
        out[i] = Byte(c * 255.0);
    }
    return {out[0], out[1], out[2]};
}

Rgb Added(Rgb p, int red, int green, int blue) {
    return {Clamped(p.red + red), Clamped(p.green + green), Clamped(p.blue + blue)};
}

Rgb Replaced(Rgb p, const std::array<int, 3>& wanted, Rgb inserted, int tolerance) {
    const int dr = std::abs(p.red - wanted[0]);
    const int dg = std::abs(p.green - wanted[1]);
    const int db = std::abs(p.blue - wanted[2]);
    return dr <= tolerance && dg <= tolerance && db <= tolerance ? inserted : p;
}

Rgb Solarized(Rgb p, int threshold) {
    if (Luma(p) <= threshold) return p;
    return {Clamped(255 - p.red), Clamped(255 - p.green), Clamped(255 - p.blue)};
}

Rgb Thresholded(Rgb p, int threshold) {
    return Luma(p) < threshold ? Rgb{0, 0, 0} : Rgb{255, 255, 255};
}

Rgb CurvedBrightness(Rgb p, const Lut& curve) {
    const double y = 0.289 * p.red + 0.587 * p.green + 0.114 * p.blue;
    if (y == 0) return {0, 0, 0};
    const double n = curve[static_cast<std::size_t>(y)];
    const auto channel = [&](std::uint8_t c) {
        const double v = c * n / y;
        if (v <= 0) return std::uint8_t{0};
        if (v >= 255) return std::uint8_t{255};
        return Byte(v);
    };
    return {channel(p.red), channel(p.green), channel(p.blue)};
}

std::optional<Lut> HmsTable(int highlight, int midtone, int shadow) {
    Table t, a;
    for (int i = 0; i < 256; ++i) t.at[static_cast<std::size_t>(i)] = i;
    const long long k = (midtone * 64) / 100;
    for (int i = 0; i <= 95; ++i) a.Set(i, t.Get((i * (k + 63)) / 95));
    for (int i = 0; i <= 63; ++i) a.Set(96 + i, t.Get(k + 64 + i));
    for (int i = 0; i <= 95; ++i) a.Set(160 + i, t.Get((k + 128) + (i * (255 - (k + 128))) / 95));
    int v = (highlight * 255) / 100;
    if (v == 0) v = 1;
    for (int i = 255; i >= v + 1; --i) t.Set(i, 255);
    for (int i = 0; i <= v; ++i) t.Set(i, a.Get((i * 255) / v));
    int w = (shadow * 255) / 100;
    if (w == 255) w = 254;
    if (w == 0) {
        for (int i = 0; i < 256; ++i) a.Set(i, t.Get(i));
    } else {
        for (int i = 0; i < w; ++i) a.Set(i, 0);
        for (int i = w; i <= 255; ++i) a.Set(i, t.Get(((i - w) * 255LL) / (255 - w)));
    }
    if (t.left || a.left) return std::nullopt;
    Lut lut{};
    for (std::size_t i = 0; i < 256; ++i) lut[i] = static_cast<std::uint8_t>(a.at[i]);
    return lut;
}

Lut CurveTable(const std::array<int, 17>& p) {
    Lut lut{};
    for (std::size_t k = 0; k <= 14; ++k)
        for (int i = 0; i <= 15; ++i)
            lut[16 * k + static_cast<std::size_t>(i)] =
                static_cast<std::uint8_t>(p[k] + ((p[k + 1] - p[k]) * i) / 16);
    for (int i = 0; i <= 15; ++i)
        lut[240 + static_cast<std::size_t>(i)] =
            static_cast<std::uint8_t>(p[15] + ((p[16] - p[15]) * i) / 15);
    return lut;
}

Image Dithered(ConstImageView image) {
    Image out = Copy(image);
    const auto width = static_cast<std::size_t>(image.Width());
    std::vector<double> cur(width + 2, 0.0), next(width + 2, 0.0);
    for (int y = 0; y < image.Height(); ++y) {
        cur = next;
        next.assign(width + 2, 0.0);
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t i = x + 1;
            const Rgb p = image.Pixel(static_cast<int>(x), y);
            double v = 0.114 * p.blue + 0.587 * p.green + 0.299 * p.red + cur[i];
            std::uint8_t value = 0;
            if (v >= 255.0) {
                value = 255;
                v = v - 255.0;
            }
            cur[i + 1] += v * 7.0 / 16.0;
            next[i - 1] += v * 3.0 / 16.0;
            next[i] += v * 5.0 / 16.0;
            next[i + 1] += v / 16.0;
            out.View().SetPixel(static_cast<int>(x), y, {value, value, value});
        }
    }
    return out;
}

Image Median3x3(ConstImageView image) {
    Image out = Copy(image);
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x)
            for (int c = 0; c < 3; ++c) {
                std::array<std::uint8_t, 9> samples{};
                std::size_t n = 0;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        samples[n++] = image.At(std::clamp(x + dx, 0, image.Width() - 1),
                                                std::clamp(y + dy, 0, image.Height() - 1))[c];
                std::sort(samples.begin(), samples.end());
                out.View().At(x, y)[c] = samples[4];
            }
    return out;
}

int CountColours(ConstImageView image) {
    std::set<std::uint32_t> seen;
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x) {
            const Rgb p = image.Pixel(x, y);
            seen.insert(p.red | std::uint32_t{p.green} << 8 | std::uint32_t{p.blue} << 16);
        }
    return static_cast<int>(seen.size());
}

}  // namespace lumo::test::reference

// Clipping, and areas made of boxes.

#include <algorithm>
#include <cmath>

#include "imaging/codecs/metafile/device_context.h"

namespace lumo::imaging::codecs::metafile {

Path DeviceContext::RegionPath(const Region& region, const Transform& transform) const {
    Path path;
    for (const Box& box : region.boxes) {
        Path one;
        one.AddBox(box);
        one = OnCanvas(std::move(one), transform);
        // Boxes of a region touch each other; on whole pixels they leave no seam.
        if (const auto upright = AsBox(one)) {
            path.AddBox(SnapToPixels(*upright));
        } else {
            path.Append(one);
        }
    }
    return path;
}

void DeviceContext::ChangeClip(ClipMode mode, const Path& path, FillRule rule) {
    if (canvas_.IsExhausted()) return;
    const std::size_t touched = state_.clip.Change(mode, path, rule);
    canvas_.Spend(8.0 * static_cast<double>(touched) +
                  40.0 * static_cast<double>(path.Points().size()));
    if (!state_.outerClip || mode == ClipMode::And || mode == ClipMode::Diff) return;
    canvas_.Spend(8.0 * static_cast<double>(state_.clip.Bounds().Extent().Area()));
    state_.clip.Intersect(*state_.outerClip);
}

void DeviceContext::ClipToBox(ClipMode mode, Box box) {
    Path path;
    path.AddBox(box);
    ChangeClip(mode, OnCanvas(std::move(path)), FillRule::Winding);
}

void DeviceContext::ClipToRegion(ClipMode mode, const Region& region) {
    ChangeClip(mode, RegionPath(region, ToCanvas()), FillRule::Winding);
}

void DeviceContext::ClipToDeviceRegion(ClipMode mode, const Region& region) {
    ChangeClip(mode, RegionPath(region, base_), FillRule::Winding);
}

void DeviceContext::ClipToPath(ClipMode mode) {
    const Path path = std::move(path_);
    AbortPath();
    ChangeClip(mode, path, state_.fillRule);
}

void DeviceContext::ResetClip() {
    if (state_.outerClip)
        state_.clip = *state_.outerClip;
    else
        state_.clip.Reset();
}

void DeviceContext::OffsetClip(Point distance) {
    const Point d = ToCanvas().MapVector(distance);
    if (!(std::abs(d.x) < 1e6) || !(std::abs(d.y) < 1e6)) return;
    canvas_.Spend(static_cast<double>(state_.clip.Bounds().Extent().Area()));
    state_.clip.Offset(static_cast<int>(std::lround(d.x)), static_cast<int>(std::lround(d.y)));
}

void DeviceContext::FillRegion(const Region& region, const Brush& brush) {
    if (brush.kind == Brush::Kind::None) return;
    canvas_.Fill(RegionPath(region, ToCanvas()), FillRule::Winding, PaintOf(brush), state_.clip,
                 RopOfMode(state_.drawMode));
}

void DeviceContext::FrameRegion(const Region& region, const Brush& brush, Point size) {
    if (brush.kind == Brush::Kind::None) return;
    // What lies in the region, but in none of its boxes made smaller by the frame: right for the
    // regions of one box and of separate boxes that files hold.
    Region frame;
    for (const Box& box : region.boxes) {
        const double w = std::min(std::abs(size.x), std::abs(box.Width()) / 2);
        const double h = std::min(std::abs(size.y), std::abs(box.Height()) / 2);
        frame.boxes.push_back({box.left, box.top, box.right, box.top + h});
        frame.boxes.push_back({box.left, box.bottom - h, box.right, box.bottom});
        frame.boxes.push_back({box.left, box.top + h, box.left + w, box.bottom - h});
        frame.boxes.push_back({box.right - w, box.top + h, box.right, box.bottom - h});
    }
    FillRegion(frame, brush);
}

void DeviceContext::InvertRegion(const Region& region) {
    canvas_.Fill(RegionPath(region, ToCanvas()), FillRule::Winding, {}, state_.clip, RopOfMode(6));
}

}  // namespace lumo::imaging::codecs::metafile

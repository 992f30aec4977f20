#include "imaging/codecs/metafile/wmf_player_class.h"

namespace lumo::imaging::codecs::metafile {

WmfPlayer::WmfPlayer(const WmfFile& file, Canvas& canvas, Size target, const Transform& base,
                     const DecodeOptions& options)
    : file_(file),
      canvas_(canvas),
      target_(target),
      dc_(canvas, base, {kScreenDotsPerInch / 25.4, kScreenDotsPerInch / 25.4}, options) {
    if (!file.box && !file.window) return;
    Mapping& mapping = dc_.State().mapping;
    mapping.mode = MapMode::Anisotropic;
    mapping.viewportExtent = {static_cast<double>(target.width),
                              static_cast<double>(target.height)};
    if (file.box) {
        mapping.windowOrigin = {file.box->left, file.box->top};
        mapping.windowExtent = {file.box->Width(), file.box->Height()};
    } else {
        mapping.windowExtent = *file.window;
    }
}

bool WmfPlayer::Play() {
    return ForEachWmfRecord(file_.records, [&](WmfFunction function, ByteView parameters) {
        Handle(function, RecordReader(parameters));
        return !canvas_.IsExhausted();
    });
}

void WmfPlayer::Handle(WmfFunction function, RecordReader record) {
    if (HandleState(function, record) || HandleMapping(function, record) ||
        HandleObjects(function, record))
        return;
    drawn_ = true;
    if (HandleShapes(function, record) || HandleRegions(function, record)) return;
    HandleBitmaps(function, record);  // what is left is unknown, and skipped
}

bool WmfPlayer::HandleState(WmfFunction function, RecordReader& record) {
    DrawingState& state = dc_.State();
    switch (function) {
        case WmfFunction::SaveState:
            dc_.Save();
            return true;
        case WmfFunction::RestoreState:
            dc_.Restore(record.I16());
            return true;
        case WmfFunction::SetBackMode:
            state.opaqueBack = record.U16() != 1;
            return true;
        case WmfFunction::SetDrawMode:
            state.drawMode = record.U16();
            return true;
        case WmfFunction::SetFillMode:
            state.fillRule = record.U16() == 2 ? FillRule::Winding : FillRule::EvenOdd;
            return true;
        case WmfFunction::SetStretchMode:
            return true;
        case WmfFunction::SetCharExtra:
            state.charExtra = record.I16();
            return true;
        case WmfFunction::SetTextAlign:
            state.textAlign = record.U16();
            return true;
        case WmfFunction::SetTextJustification: {
            const double count = record.U16(), extra = record.I16();
            state.breakExtra = count > 0 ? extra / count : 0;
            return true;
        }
        case WmfFunction::SetBackColour:
            state.backColour = record.U32();
            return true;
        case WmfFunction::SetTextColour:
            state.textColour = record.U32();
            return true;
        case WmfFunction::MoveTo:
            state.position = ReadYX(record);
            return true;
        default:
            return false;
    }
}

void WmfPlayer::SetMapMode(int mode) {
    if (mode < 1 || mode > 8) return;
    // Files with a box or a window that say "pixels" mean the units of that box: they were
    // recorded for a device that the viewer chooses.
    const bool scales = file_.box || file_.window;
    if (mode == static_cast<int>(MapMode::Text) && scales)
        mode = static_cast<int>(MapMode::Anisotropic);
    dc_.State().mapping.mode = static_cast<MapMode>(mode);
}

// The first viewport of a file is the area of the device that its maker had; later ones are places
// in it.
void WmfPlayer::ViewportChanged() {
    if (drawn_ || !viewportSet_) return;
    const Mapping& m = dc_.State().mapping;
    const Point far = m.viewportOrigin + m.viewportExtent;
    dc_.SetBase(
        BoxToBox({std::min(m.viewportOrigin.x, far.x), std::min(m.viewportOrigin.y, far.y),
                  std::max(m.viewportOrigin.x, far.x), std::max(m.viewportOrigin.y, far.y)},
                 {0, 0, static_cast<double>(target_.width), static_cast<double>(target_.height)}));
}

bool WmfPlayer::HandleMapping(WmfFunction function, RecordReader& record) {
    Mapping& m = dc_.State().mapping;
    const auto scaled = [&](Point extent) {
        const Point divisor = ReadYX(record);  // y divisor, y factor, x divisor, x factor
        const double yDivisor = divisor.y, yFactor = divisor.x;
        const Point across = ReadYX(record);
        if (!record.IsGood() || yDivisor == 0 || across.y == 0) return extent;
        return Point{extent.x * across.x / across.y, extent.y * yFactor / yDivisor};
    };
    switch (function) {
        case WmfFunction::SetMapMode:
            SetMapMode(record.U16());
            return true;
        case WmfFunction::SetWindowOrigin:
            m.windowOrigin = ReadYX(record);
            return true;
        case WmfFunction::SetWindowExtent: {
            const Point extent = ReadYX(record);
            if (extent.x != 0 && extent.y != 0) m.windowExtent = extent;
            return true;
        }
        case WmfFunction::OffsetWindowOrigin:
            m.windowOrigin = m.windowOrigin + ReadYX(record);
            return true;
        case WmfFunction::ScaleWindowExtent: {
            const Point extent = scaled(m.windowExtent);
            if (extent.x != 0 && extent.y != 0) m.windowExtent = extent;
            return true;
        }
        case WmfFunction::SetViewportOrigin:
            m.viewportOrigin = ReadYX(record);
            ViewportChanged();
            return true;
        case WmfFunction::SetViewportExtent: {
            const Point extent = ReadYX(record);
            if (extent.x == 0 || extent.y == 0) return true;
            m.viewportExtent = extent;
            viewportSet_ = true;
            ViewportChanged();
            return true;
        }
        case WmfFunction::OffsetViewportOrigin:
            m.viewportOrigin = m.viewportOrigin + ReadYX(record);
            return true;
        case WmfFunction::ScaleViewportExtent: {
            const Point extent = scaled(m.viewportExtent);
            if (extent.x != 0 && extent.y != 0) m.viewportExtent = extent;
            return true;
        }
        default:
            return false;
    }
}

bool WmfPlayer::HandleObjects(WmfFunction function, RecordReader& record) {
    DrawingState& state = dc_.State();
    switch (function) {
        case WmfFunction::CreatePen:
            objects_.Add(ReadWmfPen(record));
            return true;
        case WmfFunction::CreateBrush:
            objects_.Add({});
            return true;
        case WmfFunction::CreateBrushIndirect:
            objects_.Add(ReadWmfBrush(record));
            return true;
        case WmfFunction::CreateFont:
            objects_.Add(ReadWmfFont(record));
            return true;
        case WmfFunction::CreatePalette:
            objects_.Add(ReadWmfPalette(record));
            return true;
        case WmfFunction::CreateRegion:
            objects_.Add(ReadWmfRegion(record));
            return true;
        case WmfFunction::CreatePatternBrush:
            objects_.Add(ReadWmfPatternBrush(record));
            return true;
        case WmfFunction::DibCreatePatternBrush:
            objects_.Add(ReadWmfDibBrush(record, state.palette, dc_.Options()));
            return true;
        case WmfFunction::SelectPalette:
        case WmfFunction::SelectObject:
            if (const ObjectHandle object = objects_.Get(record.U16())) dc_.Select(*object);
            return true;
        case WmfFunction::DeleteObject:
            objects_.Delete(record.U16());
            return true;
        case WmfFunction::SetPaletteEntries:
        case WmfFunction::AnimatePalette: {
            std::size_t first = 0;
            const std::vector<Rgb> colours = ReadWmfColours(record, first);
            for (std::size_t i = 0; i < colours.size() && first + i < state.palette.size(); ++i)
                state.palette[first + i] = colours[i];
            return true;
        }
        default:
            return false;
    }
}

bool PlayWmf(const WmfFile& file, Canvas& canvas, Size target, const Transform& base,
             const DecodeOptions& options) {
    return WmfPlayer(file, canvas, target, base, options).Play();
}

}  // namespace lumo::imaging::codecs::metafile

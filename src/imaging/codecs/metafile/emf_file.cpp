// The header of an enhanced metafile: which part of the plane it shows, and how large.

#include <cmath>

#include "imaging/codecs/metafile/emf_objects.h"
#include "imaging/codecs/metafile/emf_player.h"
#include "imaging/codecs/metafile/emf_records.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr double kScreenDotsPerInch = 96;
constexpr std::uint32_t kSignature = 0x464D4520;  // " EMF"

}  // namespace

void EmfFile::ChooseArea() {
    const Point unit = pixelsPerMillimetre * 0.01;
    area = {frame.left * unit.x, frame.top * unit.y, frame.right * unit.x, frame.bottom * unit.y};
    const auto size = [](Box box) { return box.IsEmpty() ? 0 : box.Width() * box.Height(); };
    // A frame that misses the drawing has the right size in the wrong place.
    if (area.IsEmpty() || size(Intersection(area, bounds)) < size(bounds) / 4) area = bounds;
}

Point EmfFile::StatedSize() const {
    const double inches = 1 / 25.4;
    if (area == bounds && frame.IsEmpty()) return {area.Width(), area.Height()};
    return {area.Width() / pixelsPerMillimetre.x * inches * kScreenDotsPerInch,
            area.Height() / pixelsPerMillimetre.y * inches * kScreenDotsPerInch};
}

Transform EmfFile::Base(Size size) const {
    const Box picture{0, 0, static_cast<double>(size.width), static_cast<double>(size.height)};
    const bool sameScale = std::abs(area.Width() - picture.right) < 0.5 &&
                           std::abs(area.Height() - picture.bottom) < 0.5;
    if (!sameScale) return BoxToBox(area, picture);
    // Hundredths of a millimetre are a little too coarse for pixels: one of the device is one of
    // the picture, or all lines would blur.
    return {1, 0, 0, 1, -std::round(area.left), -std::round(area.top)};
}

std::optional<EmfFile> OpenEmf(ByteView bytes) {
    RecordReader reader(bytes);
    if (reader.U32() != static_cast<std::uint32_t>(EmfType::Header)) return std::nullopt;
    const std::size_t headerSize = reader.U32();
    EmfFile file;
    file.bytes = bytes;
    file.bounds = ReadEmfBox(reader);
    file.bounds.right += 1;
    file.bounds.bottom += 1;
    file.frame = ReadEmfBox(reader);
    if (reader.U32() != kSignature) return std::nullopt;
    reader.Skip(28);
    const Point device = ReadPoint(reader), millimetres = ReadPoint(reader);
    if (!reader.IsGood()) return std::nullopt;
    Point extent = millimetres;
    if (headerSize >= 108) {
        reader.Skip(12);
        // The finer size is a later addition: some headers hold other things in its place.
        const Point finer = ReadPoint(reader) * 0.001;
        const auto agrees = [](double a, double b) { return std::abs(a - b) <= 1 + b / 20; };
        if (reader.IsGood() && agrees(finer.x, extent.x) && agrees(finer.y, extent.y))
            extent = finer;
    }
    const bool known = device.x > 0 && device.y > 0 && extent.x > 0 && extent.y > 0;
    file.pixelsPerMillimetre = known ? Point{device.x / extent.x, device.y / extent.y}
                                     : Point{kScreenDotsPerInch / 25.4, kScreenDotsPerInch / 25.4};
    file.ChooseArea();
    return file;
}

}  // namespace lumo::imaging::codecs::metafile

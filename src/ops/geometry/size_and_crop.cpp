#include "ops/geometry/size_and_crop.h"

#include <array>
#include <string>

#include "imaging/crop.h"
#include "imaging/resample.h"
#include "imaging/truncate.h"
#include "ops/geometry/preview.h"
#include "ops/geometry/sizing_algorithm.h"
#include "script/names.h"

namespace lumo::ops::geometry {
namespace {

using namespace engine;
using namespace script;
using imaging::ConstImageView, imaging::Image, imaging::Size, imaging::Truncate;

enum Field { kWidth, kHeight, kSizing };

const std::array kFields{Integer("Width", "128").Clamp(20, 12000),
                         Integer("Height", "96").Clamp(20, 12000),
                         Choice("Sizing algorithm", "3", SizingDialogNames(), SizingCodes())};
// The dialog shares its window state with "SUBROUTINE Execute".
constexpr DialogSpec kDialog{.title = "Size and crop (absolute size)",
                             .windowState = "WS77",
                             .helpTopic = "Sizeandcropabsolute"};

Size TargetOf(const Fields& fields) {
    return {fields.Integer(kWidth), fields.Integer(kHeight)};
}

/// Cuts the working image; false if the memory cannot be had. A refused copy is reported, and the
/// new picture is taken over all the same.
bool CutMainImage(CLumoscriptView& view, const ProportionalCut& cut) {
    auto part = Image::TryCreate(cut.keep.Extent());
    if (!part) {
        OnCommandFailure(view, "Cmd_73 Resize: memory failure", LibraryError::Append);
        return false;
    }
    if (!imaging::CropImage(view.working.main.View(), cut.keep, part->View()))
        OnCommandFailure(view, cut.cutSides ? "Cmd_73 Resize Ln13906: " : "Cmd_73 Resize L13973: ",
                         LibraryError::Append);
    ReplaceMainImage(view, std::move(*part));
    return true;
}

Outcome RunSizeAndCrop(CLumoscriptView& view, const Fields& fields) {
    const Size source = view.working.main.Extent();
    const Size target = TargetOf(fields);
    // The fallback of decimation looks at the picture as it came in, before the cut.
    const int code = SizingCode(SizingTable::SizeAndCrop, fields.Text(kSizing), source, target);
    if (target == source) return Outcome::Succeeded;
    const auto cut = CutToProportions(source, target);
    if (!cut || !CutMainImage(view, *cut)) return Outcome::Failed;
    if (view.working.main.Extent() == target) return Outcome::Succeeded;

    auto scaled = Image::TryCreate(target);
    if (!scaled) {
        OnCommandFailure(view,
                         cut->cutSides ? "Cmd_73 Resize: memory failure"
                                       : "Cmd_73 Resize L13997: memory failure",
                         LibraryError::Append);
        return Outcome::Failed;  // the picture stays cut
    }
    if (!imaging::ResizeImage(view.working.main.View(), scaled->View(),
                              imaging::FilterOfCode(code))) {
        OnCommandFailure(view, cut->cutSides ? "Cmd_73 Scale L13945: " : "Cmd_73 Scale L14010: ",
                         LibraryError::Append);
        return Outcome::Failed;
    }
    ReplaceMainImage(view, std::move(*scaled));
    return Outcome::Succeeded;
}

// The preview shows where the cut falls rather than the cut picture.
Image PreviewSizeAndCrop(ConstImageView before, Size sample, const Fields& fields) {
    const auto cut = CutToProportions(sample, TargetOf(fields));
    return cut ? MarkCut(before, sample, cut->keep) : OrUnchanged(std::nullopt, before);
}

std::string SizeAndCropPanel(const Fields& fields) {
    return "Converted size (pixels)\nWidth: " + fields.Text(kWidth) +
           "\nHeight: " + fields.Text(kHeight) +
           "\nSizing: " + std::string(SizingPanelName(fields.Text(kSizing))) + "\n";
}

}  // namespace

std::optional<ProportionalCut> CutToProportions(Size source, Size target) {
    if (source.IsEmpty() || target.IsEmpty()) return std::nullopt;
    const double aspect = static_cast<double>(source.width) / source.height;
    const double wanted = static_cast<double>(target.width) / target.height;
    ProportionalCut cut;
    cut.cutSides = aspect > wanted;
    Size part = source;
    if (cut.cutSides)
        part.width = Truncate(source.width * wanted / aspect);
    else
        part.height = Truncate(source.height * aspect / wanted);
    if (part.IsEmpty()) return std::nullopt;
    cut.keep.left = (source.width - part.width) >> 1;
    cut.keep.top = (source.height - part.height) >> 1;
    cut.keep.right = cut.keep.left + part.width;
    cut.keep.bottom = cut.keep.top + part.height;
    return cut;
}

const Command kSizeAndCropCommand{.spec = {.name = names::kSizeAndCrop,
                                           .fields = kFields,
                                           .panelText = SizeAndCropPanel,
                                           .dialog = &kDialog},
                                  .opening = openings::kStandard,
                                  .run = RunSizeAndCrop,
                                  .preview = PreviewSizeAndCrop};

}  // namespace lumo::ops::geometry

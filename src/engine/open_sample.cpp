#include "engine/open_sample.h"

#include <fmt/format.h>

#include <optional>

#include "engine/command.h"
#include "engine/sample.h"
#include "imaging/codecs/codec.h"
#include "imaging/last_error.h"
#include "io/input.h"
#include "platform/paths.h"

namespace lumo::engine {
namespace {

namespace codecs = imaging::codecs;

/// Boxes for metafiles that state no size of their own.
constexpr imaging::Size kUsualHint{400, 400}, kDropHint{100, 100};

/// The places in the words of a failure: the dimensions could not be read, or the picture.
constexpr int kNoDimensions = 1341, kNoPicture = 1342;

bool SetLeft(CLumoscriptView& view, imaging::ConstImageView picture) {
    if (picture.IsEmpty()) return false;
    auto copy = imaging::Image::TryCopy(picture);
    if (!copy) return false;
    view.sample.left = std::move(*copy);
    return true;
}

/// Tells why the file was not opened, by the last error.
void ShowOpenFailure(CLumoscriptView& view, const std::string& path, SampleFrom from) {
    const std::string reason = imaging::LastError();
    const bool stated = from == SampleFrom::Dialog && io::GetImageDims(path).has_value();
    imaging::SetLastError(reason);
    view.ui.ShowMessage(fmt::format("Open image failure {}: {}",
                                    stated ? kNoPicture : kNoDimensions,
                                    platform::Printable(reason)));
}

}  // namespace

bool OpenSample(CLumoscriptView& view, const std::string& path, SampleFrom from) {
    SampleImages& sample = view.sample;
    std::optional<codecs::Decoded> decoded;
    {
        const WaitCursor wait(view.ui);
        // First, so that two large pictures need not fit; but only if one can come back.
        if (!sample.held.IsEmpty()) sample.left.Reset();
        decoded = io::OpenImageFileAndMetadata(view, path,
                                               from == SampleFrom::Drop ? kDropHint : kUsualHint);
    }
    if (!decoded) {
        ShowOpenFailure(view, path, from);
        if (SetLeft(view, sample.held.View())) sample.path = sample.heldPath;
        view.ui.RebuildLeftDisplay();
        view.ui.Redraw();
        return false;
    }
    const WaitCursor wait(view.ui);
    view.metadata.jpgOutput = view.metadata.jpgInput;
    sample.left = std::move(decoded->image);
    sample.path = path;
    sample.leftDepthLabel = fmt::format("{} bit", decoded->bitsPerPixel);
    SetFullColour(view);
    CopyLeftToMain(view, Force::No);
    sample.held.Reset();
    if (auto held = imaging::Image::TryCopy(sample.left.View())) sample.held = std::move(*held);
    sample.heldPath = path;
    view.ui.RebuildLeftDisplay();
    view.ui.Redraw();
    if (!decoded->warning.empty())
        view.ui.Notice(platform::Printable(path + ": " + decoded->warning));
    return true;
}

bool ReloadLeft(CLumoscriptView& view) {
    if (!SetLeft(view, view.sample.held.View())) return false;
    view.sample.path = view.sample.heldPath;
    view.ui.RebuildLeftDisplay();
    view.ui.Redraw();
    return true;
}

bool CopyRightToLeft(CLumoscriptView& view) {
    if (!SetLeft(view, view.working.main.View())) return false;
    view.sample.leftDepthLabel = view.sample.rightDepthLabel;
    view.ui.RebuildLeftDisplay();
    view.ui.Redraw();
    return true;
}

}  // namespace lumo::engine

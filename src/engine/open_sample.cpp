#include "engine/open_sample.h"

#include <fmt/format.h>

#include <optional>

#include "engine/command.h"
#include "engine/sample.h"
#include "imaging/codecs/codec.h"
#include "imaging/last_error.h"
#include "io/input.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace lumo::engine {
namespace {

namespace codecs = imaging::codecs;

/// Shows the hour-glass while it lives.
class WaitCursor {
  public:
    explicit WaitCursor(UserInterface& ui) : ui_(ui) { ui_.ShowWaitCursor(true); }
    ~WaitCursor() { ui_.ShowWaitCursor(false); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

  private:
    UserInterface& ui_;
};

/// True if the file can be read and its first bytes are those of a picture.
bool IsPictureFile(const std::string& path) {
    const auto bytes = platform::ReadFile(path);
    return bytes && codecs::FormatOfContent(*bytes) != codecs::Format::Unknown;
}

bool SetLeft(CLumoscriptView& view, imaging::ConstImageView picture) {
    if (picture.IsEmpty()) return false;
    auto copy = imaging::Image::TryCopy(picture);
    if (!copy) return false;
    view.sample.left = std::move(*copy);
    return true;
}

void ShowOpenFailure(CLumoscriptView& view, int place) {
    view.ui.ShowMessage(
        fmt::format("Open image failure {}: {}", place, platform::Printable(imaging::LastError())));
}

}  // namespace

bool OpenSample(CLumoscriptView& view, const std::string& path) {
    SampleImages& sample = view.sample;
    std::optional<codecs::Decoded> decoded;
    {
        const WaitCursor wait(view.ui);
        sample.left.Reset();
        decoded = io::OpenImageFileAndMetadata(view, path);
    }
    if (!decoded) {
        const std::string reason = imaging::LastError();
        const int place = IsPictureFile(path) ? 1342 : 1341;
        imaging::SetLastError(reason);
        ShowOpenFailure(view, place);
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

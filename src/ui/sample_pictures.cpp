#include "ui/sample_pictures.h"

#include <fmt/format.h>

#include <numeric>

#include "imaging/last_error.h"
#include "io/output.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "settings/recent.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr std::string_view kOpenTitle = "Get sample photo - open image file";
constexpr std::string_view kOpenFilter =
    "Image files|*.bmp;*.jpg;*.jpeg;*.jpe;*.jif;*.gif;*.pcx;*.png;*.psd;*.tif;*.tiff;*.tga;*.wmf;"
    "*.emf|All files|*.*||";
constexpr std::string_view kSaveFilter =
    "JPG|*.jpg;*.jpeg;*.jpe;*.jif|TIF|*.tif;*.tiff|BMP|*.bmp|PNG|*.png|GIF|*.gif|PCX|*.pcx|"
    "TGA|*.tga|PSD|*.psd|WMF|*.wmf|EMF|*.emf||";
constexpr int kLastWrittenType = 10;  // of GetExtType: formats that have a writer come first

imaging::ConstImageView PictureOf(const engine::CLumoscriptView& view, Side side) {
    return side == Side::Left ? view.sample.left.View() : view.working.main.View();
}

std::string Thousands(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, 1, ' ');
    return digits;
}

}  // namespace

void OpenSampleImage(const Desk& desk) {
    const std::string& path = desk.view.sample.path;
    const auto picked =
        AskOpenPath(desk, {.title = kOpenTitle,
                           .filter = kOpenFilter,
                           .folder = path.empty() ? desk.view.settings.folders.photos
                                                  : platform::GetFolderPath(path)});
    if (picked) OpenSamplePath(desk, *picked);
}

bool OpenSamplePath(const Desk& desk, const std::string& path, engine::SampleFrom from) {
    if (!engine::OpenSample(desk.view, path, from)) return false;
    settings::AddRecentPicture(desk.view.settings, path);
    return true;
}

void OpenRecentPicture(const Desk& desk, int n) {
    settings::RecentFiles& recent = desk.view.settings.recentPictures;
    const std::string path = recent[static_cast<std::size_t>(n - 1)];
    if (!path.empty() && !OpenSamplePath(desk, path)) settings::RemoveRecent(recent, n);
}

void SaveSampleImage(const Desk& desk, Side side) {
    const imaging::ConstImageView picture = PictureOf(desk.view, side);
    if (picture.IsEmpty()) {
        desk.view.ui.ShowMessage("You must have an image...?");
        return;
    }
    const std::string& sample = desk.view.sample.path;
    const auto path = AskSavePath(desk, {.title = "SaveAs",
                                         .filter = kSaveFilter,
                                         .folder = platform::GetFolderPath(sample),
                                         .name = platform::GetFileTitle(sample),
                                         .extension = "jpg"});
    if (!path) return;
    const std::size_t dot = path->rfind('.');
    const int type = dot == std::string::npos ? 0 : platform::GetExtType(path->substr(dot));
    if (type < 1 || type > kLastWrittenType) {
        desk.view.ui.ShowMessage("Unsupported file type!");
        return;
    }
    imaging::ClearLastError();
    if (io::WriteSampleImage(desk.view, picture, *path) == 0)
        desk.view.ui.ShowMessage("Save file failure: " + imaging::LastError());
}

void SetDefaultSample(const Desk& desk) {
    if (!desk.view.sample.path.empty()) desk.view.settings.files.sample = desk.view.sample.path;
}

std::string ImageInfoText(const engine::CLumoscriptView& view, Side side) {
    const imaging::ConstImageView picture = PictureOf(view, side);
    if (picture.IsEmpty()) return "No image.\n";
    const int width = picture.Width(), height = picture.Height();
    const int divisor = std::gcd(width, height);
    const std::string& depth =
        side == Side::Left ? view.sample.leftDepthLabel : view.sample.rightDepthLabel;
    return fmt::format(
        "{} frame: {}\n\nWidth: {} pixels\nHeight: {} pixels\nMegapixels: {:.2f}\n"
        "Width to height: {:.3f} ({}:{})\nColors of the file: {}\nIn memory: {} bytes\n",
        side == Side::Left ? "Left" : "Right", platform::Printable(view.sample.path), width, height,
        width * 1e-6 * height, double(width) / height, width / divisor, height / divisor, depth,
        Thousands(picture.Bytes().size()));
}

std::string FilePropertiesText(const engine::CLumoscriptView& view) {
    const std::string& path = view.sample.path;
    const auto status = platform::GetFileStatus(path);
    if (!status) return platform::Printable(path) + "\n\nThe file is not there.\n";
    constexpr std::string_view kMoment = "%Y-%m-%d %H:%M:%S";
    return fmt::format("Name: {}\nFolder: {}\nSize: {} bytes\nCreated: {}\nModified: {}\n",
                       platform::Printable(path.substr(path.rfind('/') + 1)),
                       platform::Printable(platform::GetFolderPath(path)), Thousands(status->size),
                       platform::FormatTime(kMoment, status->created),
                       platform::FormatTime(kMoment, status->modified));
}

}  // namespace lumo::ui

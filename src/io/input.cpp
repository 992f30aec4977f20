#include "io/input.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "engine/command.h"
#include "engine/sample.h"
#include "imaging/codecs/stored_metadata.h"
#include "imaging/last_error.h"
#include "io/image_list.h"
#include "io/input_filters.h"
#include "io/run_logs.h"
#include "io/start_setup.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "script/names.h"

namespace lumo::io {
namespace {

namespace codecs = imaging::codecs;
using FolderKey = std::pair<std::uint64_t, std::uint64_t>;

void Enumerate(CLumoscriptView& view) {
    const script::Fields& fields = view.inputSettings;
    if (fields.Is(start::kLocation, start::kFromList))
        ReadListFile(view, NativePath(view, fields.Text(start::kListPath)));
    else
        ScanFolder(view, NativePath(view, fields.Text(start::kFolderPath)),
                   fields.Is(start::kSubfolders, "1"));
}

void Scan(CLumoscriptView& view, const std::string& path, bool recursive,
          std::set<FolderKey>& visited) {
    const auto key = platform::FolderIdentity(path);
    if (!key || !visited.insert(*key).second) return;
    const std::string folder = platform::AddBackSlash(path);
    for (const platform::FolderEntry& entry : platform::ListFolder(path)) {
        if (entry.isFolder) {
            if (recursive) Scan(view, folder + entry.name, recursive, visited);
            continue;
        }
        const std::size_t length = entry.name.size();
        const std::string_view lastFour =
            std::string_view(entry.name).substr(length < 4 ? 0 : length - 4);
        if (ExtensionAccepted(view, lastFour)) view.run.inputList.push_back(folder + entry.name);
    }
}

/// Decodes the bytes of a file under the limits of the settings.
platform::Result<codecs::Decoded> DecodeBytes(const settings::Settings& settings,
                                              codecs::ByteView bytes, int type,
                                              const codecs::DecodeOptions& usual = {}) {
    codecs::DecodeOptions options = usual;
    if (settings.maxPictureSide > 0)
        options.limits.maxSide = static_cast<int>(settings.maxPictureSide);
    if (settings.maxPictureMegapixels > 0)
        options.limits.maxPixels =
            static_cast<std::size_t>(settings.maxPictureMegapixels) * 1'000'000;
    return codecs::Decode(bytes, static_cast<codecs::Format>(type), options);
}

std::optional<codecs::Bytes> ReadBytes(const std::string& path) {
    imaging::ClearLastError();
    auto bytes = platform::ReadFile(path);
    if (!bytes) {
        imaging::SetLastError(bytes.Message());
        return std::nullopt;
    }
    return std::move(*bytes);
}

/// A line of both logs for the image in hand, in an unattended run also for whoever started it.
void ReportImage(CLumoscriptView& view, std::string_view text) {
    LogLine(view, view.run.imageIndex + 1, text);
    if (view.run.noPrompts)
        view.ui.Notice(fmt::format("{}: {}", platform::Printable(view.input.path),
                                   text.substr(text.find_first_not_of(' '))));
}

NextImage RefuseImage(CLumoscriptView& view) {
    const std::string reason = platform::Printable(imaging::LastError());
    std::string text = "Error:1073 - Unable to open image file: " + reason;
    if (reason.starts_with('0')) text += " (unsupported file flavor TIFF?)";
    ReportImage(view, text);
    return kImageNotOpened;
}

void ReadMetadata(CLumoscriptView& view, codecs::ByteView bytes) {
    view.metadata.jpgInput = codecs::ReadJpegMarkers(bytes);
    view.metadata.pngInput = codecs::ReadPngTexts(bytes);
}

/// Decodes the file into the working image and reads its metadata; false with the last error set.
bool LoadWorkingImage(CLumoscriptView& view, const std::string& path) {
    view.metadata.Clear();
    view.working.main.Reset();
    const auto bytes = ReadBytes(path);
    if (!bytes) return false;
    auto decoded = DecodeBytes(view.settings, *bytes, view.input.type);
    if (!decoded) return false;
    view.working.main = std::move(decoded->image);
    engine::SetFullColour(view);
    ReadMetadata(view, *bytes);
    if (!decoded->warning.empty()) {
        ++view.run.warningCount;
        ReportImage(view,
                    " Warning - image file is damaged: " + platform::Printable(decoded->warning));
    }
    return true;
}

/// GetExtType of the extension of a path.
int TypeOf(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    return dot == std::string_view::npos ? 0 : platform::GetExtType(path.substr(dot));
}

bool IsThere(const std::string& path) {
    // A path that holds a zero byte would be looked up by its beginning.
    return path.find('\0') == std::string::npos && platform::GetFileStatus(path).has_value();
}

}  // namespace

bool PrepareInput(CLumoscriptView& view) {
    const script::Script& script = view.script.commands;
    const int at = script.Find(script::names::kStartImageLoop);
    if (at < 0) return false;
    view.inputSettings = ParseStartParams(script.ParamsAt(at));
    BuildInputList(view);
    view.run.firstScanCount = view.run.imageCount;
    view.run.inputList.clear();
    view.run.imageCount = view.run.statFiles = 0;
    return true;
}

void BuildInputList(CLumoscriptView& view) {
    engine::RunState& run = view.run;
    run.inputList.clear();
    if (run.onLeftImage)
        run.inputList.push_back(view.sample.path);
    else
        Enumerate(view);
    run.imageCount = static_cast<int>(run.inputList.size());
    run.statFiles = run.imageCount;
}

void ScanFolder(CLumoscriptView& view, const std::string& path, bool recursive) {
    std::set<FolderKey> visited;
    Scan(view, path, recursive, visited);
}

bool ExtensionAccepted(const CLumoscriptView& view, std::string_view extension) {
    const int type = platform::GetExtType(extension);
    return std::ranges::any_of(kFileTypeFlags, [&](const FileTypeFlag& flag) {
        return type >= flag.firstType && type <= flag.lastType &&
               view.inputSettings.Is(flag.field, "1");
    });
}

void SplitInputPath(CLumoscriptView& view, std::string_view path) {
    engine::InputFile& input = view.input;
    input.path = path;
    const std::size_t slash = path.rfind('/');
    const std::size_t nameAt = slash == std::string_view::npos ? 0 : slash + 1;
    input.folder = path.substr(0, nameAt);
    input.name = path.substr(nameAt);
    if (IsThere(input.path))
        if (auto name = platform::TrueName(input.path)) input.name = std::move(*name);
    const std::size_t dot = input.name.rfind('.');
    input.title = input.name.substr(0, dot);
    input.extension = dot == std::string::npos ? std::string() : input.name.substr(dot);
    input.type = platform::GetExtType(input.extension);
}

std::string NativePath(const CLumoscriptView& view, std::string_view stated) {
    std::string path(stated);
    if (IsThere(path)) return path;
    return platform::ParsePath(stated, view.settings.installFolder, view.settings.folders.temp);
}

int OpenNextImage(CLumoscriptView& view) {
    engine::RunState& run = view.run;
    run.prevPc = run.pc;
    if (run.onLeftImage) {
        engine::CopyLeftToMain(view, engine::Force::Yes);
        return kImageOpened;
    }
    const int number = run.imageIndex + 1;
    ++run.statInputs;
    UpdateProgress(view);
    ShowCounts(view);
    SplitInputPath(view, run.inputList[static_cast<std::size_t>(run.imageIndex)]);
    const bool logged = BatchLogOn(view);
    if (logged && view.settings.logs.inputName) LogInput(view, number, view.input.path);
    if (!IsThere(view.input.path)) {
        ReportImage(view, " Error:1093 - File not found?");
        return kFileMissing;
    }
    if (!FilterByFile(view)) return kFileFiltered;
    LogDebugStart(view, view.input.path);

    if (!LoadWorkingImage(view, view.input.path)) return RefuseImage(view);
    if (logged && view.settings.logs.inputSize)
        LogInputSize(view, number, view.working.main.Extent());
    if (!FilterByImage(view)) return kImageFiltered;
    ++view.openedImages;
    if (run.showEachImage || view.settings.showEachImage) view.ui.RebuildRightDisplay();
    return kImageOpened;
}

std::optional<codecs::Decoded> OpenImageFile(const CLumoscriptView& view, const std::string& path) {
    const auto bytes = ReadBytes(path);
    if (!bytes) return std::nullopt;
    auto decoded = DecodeBytes(view.settings, *bytes, TypeOf(path));
    if (!decoded) return std::nullopt;
    return std::move(*decoded);
}

std::optional<codecs::Decoded> OpenImageFileAndMetadata(CLumoscriptView& view,
                                                        const std::string& path,
                                                        imaging::Size metafileHint) {
    const auto bytes = ReadBytes(path);
    if (!bytes) return std::nullopt;
    auto decoded = DecodeBytes(view.settings, *bytes, TypeOf(path), {.metafileHint = metafileHint});
    if (!decoded) return std::nullopt;
    view.metadata.Clear();
    ReadMetadata(view, *bytes);
    return std::move(*decoded);
}

std::optional<imaging::Size> GetImageDims(const std::string& path) {
    const auto bytes = ReadBytes(path);
    if (!bytes) return std::nullopt;
    const auto size = codecs::GetImageDims(*bytes, static_cast<codecs::Format>(TypeOf(path)));
    if (!size) return std::nullopt;
    return *size;
}

void UpdateProgress(CLumoscriptView& view) {
    const engine::RunState& run = view.run;
    const auto percent =
        run.imageCount > 0 ? std::int64_t{run.imageIndex} * 100 / run.imageCount : 0;
    view.ui.SetTitle(fmt::format("{}% Done", percent));
}

void ShowCounts(CLumoscriptView& view) {
    const engine::RunState& run = view.run;
    view.ui.ShowCounts({run.statFiles, run.statInputs, run.statOutputs, run.errorCount});
}

}  // namespace lumo::io

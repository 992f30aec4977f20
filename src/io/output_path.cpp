#include "io/output_path.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "io/input.h"
#include "io/parse_line.h"
#include "io/run_logs.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace lumo::io {
namespace {

constexpr std::string_view kOriginalFolder = "<original folder path>";
constexpr std::string_view kFolderAbove = "<..original folder path>";
constexpr int kIncrementalDigits = 4;
constexpr int kMaxPad = 9;

/// What follows a folder form, without the separator that it begins with, made native.
std::string Below(const CLumoscriptView& view, std::string_view rest) {
    if (rest.starts_with('\\') || rest.starts_with('/')) rest.remove_prefix(1);
    return platform::ParsePath(rest, view.settings.installFolder, view.settings.folders.temp);
}

std::string FolderAbove(const std::string& folder) {
    // As a text: a link on the way is not followed.
    const auto above = (std::filesystem::path(folder) / "..").lexically_normal();
    return platform::AddBackSlash(above.native());
}

bool BeginsWithDrive(std::string_view path) {
    const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return path.size() >= 2 && letter(path[0]) && path[1] == ':' &&
           (path.size() == 2 || path[2] == '/');
}

int DigitsOf(int total) {
    int digits = 1;
    for (int limit = 10; digits < 5 && total >= limit; limit *= 10) ++digits;
    return digits;
}

}  // namespace

std::string ExpandOutputFolder(const CLumoscriptView& view, std::string_view text) {
    const bool original = text.starts_with(kOriginalFolder);
    if (!original && !text.starts_with(kFolderAbove))
        return text.empty() ? std::string() : NativePath(view, text);
    // The input folder came from the file system: what looks like a separator of another system
    // in it is part of a name.
    const std::string& folder = view.input.folder;
    if (folder.empty()) return {};
    if (original) return folder + Below(view, text.substr(kOriginalFolder.size()));
    return FolderAbove(folder) + Below(view, text.substr(kFolderAbove.size()));
}

std::string AutoNumericText(std::string_view autoPad, int count, int total) {
    const int pad = static_cast<int>(std::min<std::size_t>(autoPad.size(), kMaxPad));
    const auto width = static_cast<std::size_t>(std::max(pad, DigitsOf(total)));
    const std::string text = "000000000" + std::to_string(count);
    return text.substr(text.size() - width);
}

std::string AutoNumericText(const CLumoscriptView& view) {
    return AutoNumericText(view.settings.autoPad, view.openedImages, view.run.imageCount);
}

std::string IncrementalText(CLumoscriptView& view) {
    return fmt::format("{:0{}}", view.incrementalCount++, kIncrementalDigits);
}

std::optional<std::string> ExpandNamePart(const CLumoscriptView& view, std::string_view text) {
    MacroValues values = MacrosOf(view);
    values.filePath.clear();  // a whole path makes no part of a name
    return ParseNamePart(text, values);
}

int CreateFolderPath(CLumoscriptView& view, std::string_view stated) {
    if (stated.empty()) {
        view.ui.ShowMessage("no output folder path specified");
        return 0;
    }
    std::string path(stated);
    if (path.size() > 1 && path.ends_with('/')) path.pop_back();
    if (platform::FolderExists(path)) return 1;
    // Whether it worked shows in what is there afterwards.
    std::string reason = platform::Printable(path) + ": there are no drives here";
    if (!BeginsWithDrive(path))
        if (const auto made = platform::MakeFolders(path); !made) reason = made.Message();
    const auto status = platform::GetFileStatus(path);
    if (!status) {
        view.ui.ShowMessage(" failed to create folder, invalid_handle2");
        // The words alone say neither which folder nor why.
        if (view.run.noPrompts) view.ui.Notice(reason);
        return 0;
    }
    if (!status->isFolder) {
        view.ui.ShowMessage("error 9755 in creating directory");
        return 0;
    }
    return 1;
}

bool PrepareOutputFolder(CLumoscriptView& view, const std::string& folder) {
    if (view.settings.warnBeforeMakingFolder && !platform::FolderExists(folder)) {
        const std::string question = platform::Printable(folder) + " :does not exist. Create now?";
        bool create = false;
        if (view.run.noPrompts) {
            LogBlock(view, {}, folder, question);
            view.run.refused = true;
        } else {
            create = view.ui.Ask(question);
        }
        if (!create) {
            view.run.keepRunning = 0;
            return false;
        }
    }
    CreateFolderPath(view, folder);
    return true;
}

void RefreshInputMembers(CLumoscriptView& view) {
    if (!view.run.batchRunning && !view.sample.path.empty()) SplitInputPath(view, view.sample.path);
}

}  // namespace lumo::io

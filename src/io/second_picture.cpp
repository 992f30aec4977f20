#include "io/second_picture.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "imaging/pixel_buffer.h"
#include "io/input.h"

namespace lumo::io {
namespace {

using engine::CLumoscriptView;
using engine::SecondPictures;
using imaging::Image;
using Entries = std::vector<SecondPictures::Entry>;

constexpr std::size_t kBudgetShare = 8;

// File systems stamp times in steps: a file written this lately may be written again within the
// same step, and look the same.
constexpr std::chrono::milliseconds kUnsettled{100};

bool IsSettled(const platform::FileVersion& version) {
    const std::chrono::system_clock::time_point modified{
        std::chrono::duration_cast<std::chrono::system_clock::duration>(
            std::chrono::nanoseconds(version.modified))};
    return modified + kUnsettled < std::chrono::system_clock::now();
}

std::size_t BytesOf(const Image& image) {
    return image.View().Bytes().size();
}

/// Moves the entry of that path to the end; false if there is none.
bool MoveToEnd(Entries& entries, const std::string& path) {
    const auto at = std::find_if(entries.begin(), entries.end(),
                                 [&](const auto& entry) { return entry.path == path; });
    if (at == entries.end()) return false;
    std::rotate(at, at + 1, entries.end());
    return true;
}

/// Appends an entry and gives up those that were not used for longest.
void Keep(Entries& entries, SecondPictures::Entry entry) {
    const std::size_t most = imaging::MemoryBudget() / kBudgetShare;
    std::size_t bytes = BytesOf(*entry.picture);
    if (bytes > most) return;
    std::size_t kept = entries.size();
    while (kept > 0 && bytes + BytesOf(*entries[kept - 1].picture) <= most)
        bytes += BytesOf(*entries[--kept].picture);
    entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(kept));
    entries.push_back(std::move(entry));
}

}  // namespace

std::shared_ptr<const Image> OpenSecondPicture(CLumoscriptView& view, const std::string& path) {
    Entries& entries = view.secondPictures.entries;
    const auto version = platform::GetFileVersion(path);
    if (MoveToEnd(entries, path)) {
        if (version && entries.back().version == *version) return entries.back().picture;
        entries.pop_back();
    }
    auto decoded = OpenImageFile(view, path);
    if (!decoded) return nullptr;
    auto picture = std::make_shared<const Image>(std::move(decoded->image));
    // A file that was written meanwhile may not be what was decoded.
    if (view.run.batchRunning && version && IsSettled(*version) &&
        platform::GetFileVersion(path) == version)
        Keep(entries, {path, *version, picture});
    return picture;
}

void ForgetSecondPictures(CLumoscriptView& view) {
    view.secondPictures.entries.clear();
}

}  // namespace lumo::io

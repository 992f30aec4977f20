// Real files of many cameras through "JPG file header" with everything kept: the picture data stays
// byte for byte, and an independent reader finds all tags again, and those that were added.
// LUMO_JPG_FOLDER names a folder with more files for a wider look.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <vector>

#include "imaging/codecs/stored_metadata.h"
#include "io/jpg_header.h"
#include "io/output.h"
#include "support/jpeg_files.h"
#include "support/program.h"
#include "support/run_bench.h"
#include "support/test_files.h"

namespace lumo::io {
namespace {

namespace fs = std::filesystem;
using test::FileText;
using testing::Contains;
using testing::HasSubstr;

/// Keep all; path, comment, mark and the five properties.
std::string KeepAll(const std::string& mode) {
    const std::string noIptc(15, ',');  // the flag and the fourteen texts
    return "29," + mode + ",0,0,0,1,1,1,\"Remark, K\xC3\xB6ln$xsecond line\"" + noIptc +
           ",1,The title,\"The subject, too\",The author,one;two,The comments,";
}

std::vector<fs::path> Files() {
    std::vector<fs::path> files = test::TestFilesIn("jpg");
    std::ranges::copy(test::TestFilesIn("jpg/headers"), std::back_inserter(files));
    const char* folder = std::getenv("LUMO_JPG_FOLDER");
    if (folder != nullptr)
        for (const auto& entry : fs::directory_iterator(folder))
            if (entry.is_regular_file() && entry.path().extension() != ".md")
                files.push_back(entry.path());
    return files;
}

/// Runs the command over a copy of the file.
struct Trial {
    Trial(const fs::path& file, const std::string& mode) : path(bench.In("picture.jpg")) {
        fs::copy_file(file, path);
        bench.TakeInput(path);
        bench.view.metadata.jpgInput = imaging::codecs::ReadJpegMarkers(test::ReadWholeFile(file));
        bench.Execute(kJpgHeaderCommand, KeepAll(mode));
    }
    test::RunBench bench;
    std::string path;
};

TEST(JpgHeaderFiles, ScanDataStaysByteForByte) {
    for (const fs::path& file : Files()) {
        const std::string before = FileText(file);
        for (const char* mode : {"0", "1", "2"}) {
            Trial trial(file, mode);
            const std::string after = FileText(trial.path);
            EXPECT_THAT(trial.bench.ErrorLines(), testing::IsEmpty()) << file;
            EXPECT_EQ(test::ScanDataOf(after), test::ScanDataOf(before)) << file;
            EXPECT_EQ(after == before, mode == std::string("1")) << file;
            EXPECT_EQ(trial.bench.view.metadata.jpgOutput.empty(), mode == std::string("0"));

            // Every old marker is there in its order, but for the EXIF that took the properties.
            const auto segments = test::SegmentsOf(after);
            auto at = segments.begin();
            bool exifSeen = false;
            for (const auto& segment : test::SegmentsOf(before)) {
                const bool isExif = segment.first == 0xE1 && segment.second.starts_with("Exif");
                const bool changed = isExif && !exifSeen && mode != std::string("1");
                exifSeen = exifSeen || isExif;
                at = std::find_if(at, segments.end(), [&](const auto& other) {
                    return changed ? other.first == 0xE1 && other.second.starts_with("Exif")
                                   : other == segment;
                });
                ASSERT_NE(at, segments.end()) << file << " lost a marker " << segment.first;
                ++at;
            }
        }
    }
}

TEST(JpgHeaderFiles, BrokenOnesAreAnsweredAndStayOrKeepTheirPicture) {
    int stayed = 0;
    for (const fs::path& file : test::TestFilesIn("jpg/invalid")) {
        const std::string before = FileText(file);
        for (const char* mode : {"0", "2"}) {
            Trial trial(file, mode);
            const std::string after = FileText(trial.path);
            const bool answered =
                std::ranges::any_of(trial.bench.ErrorLines(), [](const std::string& line) {
                    return line.starts_with("Cmd_52 JPGheader New Markers L17563:   IS_error ");
                });
            EXPECT_EQ(after == before, answered) << file;
            EXPECT_THAT(test::NamesIn(trial.bench.In()), testing::ElementsAre("picture.jpg"));
            if (answered) {
                ++stayed;
                continue;
            }
            EXPECT_EQ(test::ScanDataOf(after), test::ScanDataOf(before)) << file;
            EXPECT_NE(test::ScanDataOf(after), "") << file;
        }
    }
    EXPECT_GT(stayed, 0);
}

// ---- The independent reader -------------------------------------------------------------------

using Lines = std::vector<std::string>;

/// What exiftool says of each file, by path; tags that tell of the file itself left out.
std::map<std::string, Lines> TagsOf(const std::vector<std::string>& paths) {
    std::vector<std::string> arguments{"/usr/bin/env", "exiftool", "-a", "-u", "-G0:1", "-S"};
    arguments.insert(arguments.end(), paths.begin(), paths.end());
    std::map<std::string, Lines> tags;
    std::istringstream out(test::RunProgram(arguments).out);
    std::string path;
    for (std::string line; std::getline(out, line);) {
        if (line.starts_with("======== ")) {
            path = line.substr(9);
            continue;
        }
        if (line.starts_with("[File:System]") || line.starts_with("[Composite]")) continue;
        // Places in the file move with what stands before them.
        const std::string tag = line.substr(0, line.find(": "));
        const bool place =
            tag.ends_with("Offset") || tag.ends_with("Offsets") || tag.ends_with("ImageStart");
        tags[path].push_back(place ? tag : line);
    }
    return tags;
}

/// A machine without it has not tested what these tests are for, so that is no pass. packages.txt
/// installs it.
bool HasExiftool() {
    return test::RunProgram({"/usr/bin/env", "exiftool", "-ver"}).exitStatus == 0;
}

bool Holds(const Lines& lines, const std::string& tag, const std::string& value) {
    return std::ranges::any_of(
        lines, [&](const std::string& line) { return line.ends_with("] " + tag + ": " + value); });
}

/// Lines of `all` that are not in `others`, or not as often.
Lines Without(Lines all, Lines others) {
    std::ranges::sort(all);
    std::ranges::sort(others);
    Lines left;
    std::ranges::set_difference(all, others, std::back_inserter(left));
    return left;
}

/// Each line of `before` is in `after`, as often as it was.
void ExpectKept(Lines before, const Lines& after, const fs::path& file) {
    std::erase_if(before, [](const std::string& line) {  // replaced by the new ones
        return line.starts_with("[EXIF:IFD0] XP");
    });
    EXPECT_THAT(Without(before, after), testing::IsEmpty()) << file;
}

/// Nothing is in `after` but what was there before and what the command adds.
void ExpectNoMore(const Lines& before, const Lines& after, const fs::path& file) {
    Lines more = Without(after, before);
    std::erase_if(more, [](const std::string& line) {
        return line.find("] XP") != std::string::npos || line.starts_with("[File] Comment: ") ||
               line.starts_with("[File] ExifByteOrder: ") ||
               line == "[Photoshop] CopyrightFlag: True";
    });
    EXPECT_THAT(more, testing::IsEmpty()) << file;
}

void ExpectAdded(const Lines& after, const std::string& path, const fs::path& file) {
    EXPECT_TRUE(Holds(after, "Comment", "LINK=" + path)) << file;
    EXPECT_TRUE(Holds(after, "Comment", "Remark, K\xC3\xB6ln..second line")) << file;
    EXPECT_TRUE(Holds(after, "XPTitle", "The title")) << file;
    EXPECT_TRUE(Holds(after, "XPSubject", "The subject, too")) << file;
    EXPECT_TRUE(Holds(after, "XPAuthor", "The author")) << file;
    EXPECT_TRUE(Holds(after, "XPKeywords", "one;two")) << file;
    EXPECT_TRUE(Holds(after, "XPComment", "The comments")) << file;
}

bool HasResources(const std::string& file) {
    return std::ranges::any_of(test::SegmentsOf(file),
                               [](const auto& segment) { return segment.first == 0xED; });
}

TEST(JpgHeaderFiles, AnotherReaderFindsAllTagsInTheOriginal) {
    ASSERT_TRUE(HasExiftool()) << "exiftool is not installed";
    const std::vector<fs::path> files = Files();
    for (const char* mode : {"0", "2"}) {
        std::vector<std::unique_ptr<Trial>> trials;
        std::vector<std::string> before, after;
        for (const fs::path& file : files) {
            trials.push_back(std::make_unique<Trial>(file, mode));
            before.push_back(file);
            after.push_back(trials.back()->path);
        }
        auto tagsBefore = TagsOf(before), tagsAfter = TagsOf(after);
        ASSERT_EQ(tagsBefore.size(), files.size());
        for (std::size_t i = 0; i < files.size(); ++i) {
            ExpectKept(tagsBefore[before[i]], tagsAfter[after[i]], files[i]);
            ExpectAdded(tagsAfter[after[i]], after[i], files[i]);
            ExpectNoMore(tagsBefore[before[i]], tagsAfter[after[i]], files[i]);
            EXPECT_EQ(Holds(tagsAfter[after[i]], "CopyrightFlag", "True"),
                      Holds(tagsBefore[before[i]], "CopyrightFlag", "True") ||
                          !HasResources(FileText(files[i])));
        }
    }
}

TEST(JpgHeaderFiles, AnotherReaderFindsThemInJpgsThatAreSaved) {
    ASSERT_TRUE(HasExiftool()) << "exiftool is not installed";
    const std::vector<fs::path> files = Files();
    std::vector<std::unique_ptr<Trial>> trials;
    std::vector<std::string> before, after;
    for (const fs::path& file : files) {
        trials.push_back(std::make_unique<Trial>(file, "1"));
        before.push_back(file);
        after.push_back(trials.back()->bench.Out("saved.jpg"));
        ASSERT_NE(WriteMainImage(trials.back()->bench.view, after.back()), 0);
    }
    auto tagsBefore = TagsOf(before), tagsAfter = TagsOf(after);
    for (std::size_t i = 0; i < files.size(); ++i) {
        // What the store takes along: EXIF with the makers' notes, XMP, IPTC, resources, comments.
        Lines kept;
        for (const std::string& line : tagsBefore[before[i]])
            for (const char* group : {"[EXIF", "[MakerNotes", "[XMP", "[IPTC", "[Photoshop"})
                if (line.starts_with(group)) kept.push_back(line);
        std::erase_if(kept, [&](const std::string& line) {
            // Two makers' notes stand in APP0 and APP7. And the second EXIF block of one file, in a
            // resource, has a table at the very place of one of the first: taken for a loop.
            return line.starts_with("[MakerNotes:CIFF]") ||
                   line.starts_with("[MakerNotes:Qualcomm]") ||
                   (files[i].filename() == "mnet_8Bim.jpg" && line.starts_with("[EXIF:IFD1]"));
        });
        ExpectKept(kept, tagsAfter[after[i]], files[i]);
        ExpectAdded(tagsAfter[after[i]], trials[i]->path, files[i]);
    }
}

}  // namespace
}  // namespace lumo::io

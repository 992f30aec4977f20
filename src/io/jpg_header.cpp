#include "io/jpg_header.h"

#include <fmt/format.h>

#include <array>
#include <optional>

#include "imaging/codecs/exif_properties.h"
#include "imaging/codecs/image_resources.h"
#include "imaging/codecs/iptc.h"
#include "imaging/codecs/stored_metadata.h"
#include "imaging/last_error.h"
#include "imaging/pixel_buffer.h"
#include "io/input.h"
#include "io/jpg_rewrite.h"
#include "io/parse_line.h"
#include "platform/paths.h"
#include "script/names.h"

namespace lumo::io {
namespace {

namespace codecs = imaging::codecs;
using namespace script;
using codecs::Bytes;
using codecs::ByteView;
using codecs::JpegMarkers;
using engine::CLumoscriptView;
using engine::Outcome;

enum Field {
    kMode,
    kRetainComments,
    kRetainExif,
    kRetainIptc,
    kRetainAll,
    kAddPath,
    kAddComment,
    kComment,
    kAddIptc,
    kObjectName,
    kDate,
    kCity,
    kState,
    kCountry,
    kCopyrightNotice,
    kHeadline,
    kCaptionWriter,
    kCaption,
    kInstructions,
    kByline,
    kBylineTitle,
    kCredit,
    kSource,
    kMarkCopyrighted,
    kTitle,
    kSubject,
    kAuthor,
    kKeywords,
    kComments,
    kFieldCount
};

constexpr std::string_view kOriginalOnly = "0", kWhenSaving = "1";
constexpr int kTypeJpg = 1;

// ---- What the dialog and the panel show -------------------------------------------------------

constexpr std::string_view kModes[] = {"Apply to original file only (no change to image data)",
                                       "Apply when saving any JPG (cleared with next Input)",
                                       "Apply both to original file and when saving any JPG"};
constexpr std::string_view kModeLines[] = {"Original file only", "When saving any JPG",
                                           "Original file and when saving any JPG"};

constexpr FieldSpec Line(std::string_view label, int most) {
    return Text(label, "").Quoted().MaxLength(most);
}

constexpr std::array kFields{
    Choice("Apply", "1", kModes),
    Flag("Retain JPG_COM info", "0"),
    Flag("Retain EXIF (camera info)", "0"),
    Flag("Retain IPTC (image file info)", "0"),
    Flag("Retain all file header information (JPG_COM, EXIF, IPTC, etc.)", "0"),
    Flag("Add a JPG_COM path to original image file", "0"),
    Flag("Add JPG_COM comments", "0"),
    Text("JPG_COM comments",
         "Place your comments here (1,000 characters maximum).\r\nIn IPTC date tag, "
         "$(date%Y%m%d) will be replaced by the current date in form yyyymmdd when executed\r\n"
         "Press help for details of this command.")
        .Quoted(true)
        .MultiLine("$x")
        .ClearedBy("Clear text")
        .MaxLength(1000),
    Flag("Add IPTC (International Press Telecommunications Council tags  -  PhotoShop file "
         "information)",
         "0"),
    Line("Object name", 100),
    Text("Date (yyyymmdd)", "$(date%Y%m%d)").Quoted(true).MaxLength(40),
    Line("City", 100),
    Line("State", 100),
    Line("Country", 100),
    Line("Copyright notice", 200),
    Line("Caption headline", 400).MultiLine("$x"),
    Line("Caption writer", 2000),
    Line("Caption", 2000).MultiLine("$x"),
    Line("Special instructions", 200).MultiLine("$x"),
    Line("Byline", 100),
    Line("Byline title", 100),
    Line("Credit", 200),
    Line("Source", 200),
    Flag("Mark as copyrighted", "0"),
    Line("Title", 1000),
    Line("Subject", 1000),
    Line("Author", 1000),
    Line("Keywords", 1000),
    Line("Comments", 1000),
};
static_assert(kFields.size() == kFieldCount);

constexpr std::array kPanel{OneOf(kMode, kModeLines),
                            WhenOn(kRetainComments, "Retain JPG_COM info"),
                            WhenOn(kRetainExif, "Retain EXIF (camera info)"),
                            WhenOn(kRetainIptc, "Retain IPTC (image file info)"),
                            WhenOn(kRetainAll, "Retain all file header information"),
                            WhenOn(kAddPath, "Add a JPG_COM path"),
                            WhenOn(kAddComment, "Add JPG_COM comments"),
                            WhenOn(kAddIptc, "Add IPTC"),
                            WhenOn(kMarkCopyrighted, "Mark as copyrighted")};

constexpr DialogSpec kDialog{.title = "JPG header comments/info", .helpTopic = "JPGHeaderinfo"};

// ---- IPTC -------------------------------------------------------------------------------------

enum class Holds : std::uint8_t { Text, Lines, Macros };

struct IptcField {
    Field field;
    int dataset;  // of record 2
    Holds holds;
    std::string_view failure;
};

constexpr IptcField kIptcFields[] = {
    {kObjectName, 5, Holds::Text, "Cmd_52 JPGheader IPTC L17415: "},
    {kDate, 55, Holds::Macros, "Cmd_52 JPGheader IPTC L17422: "},
    {kCity, 90, Holds::Text, "Cmd_52 JPGheader IPTC L17429: "},
    {kState, 95, Holds::Text, "Cmd_52 JPGheader IPTC L17436: "},
    {kCountry, 101, Holds::Text, "Cmd_52 JPGheader IPTC L17443: "},
    {kCopyrightNotice, 116, Holds::Text, "Cmd_52 JPGheader IPTC L17450: "},
    {kHeadline, 105, Holds::Lines, "Cmd_52 JPGheader IPTC L17457: "},
    {kCaptionWriter, 122, Holds::Text, "Cmd_52 JPGheader IPTC L17464: "},
    {kCaption, 120, Holds::Lines, "Cmd_52 JPGheader IPTC L17471: "},
    {kInstructions, 40, Holds::Lines, "Cmd_52 JPGheader IPTC L17478: "},
    {kByline, 80, Holds::Text, "cmd_52 JPGheader IPTC L17485: "},  // readers of logs know it so
    {kBylineTitle, 85, Holds::Text, "Cmd_52 JPGheader IPTC L17492: "},
    {kCredit, 110, Holds::Text, "Cmd_52 JPGheader IPTC L17499: "},
    {kSource, 115, Holds::Text, "Cmd_52 JPGheader IPTC L17506: "},
};

/// A line break is stored as "$x", since a parameter string is one line.
std::string WithLineBreaks(std::string text) {
    for (std::size_t at = 0; (at = text.find("$x", at)) != std::string::npos; at += 2)
        text.replace(at, 2, "\r\n");
    return text;
}

// ---- The command ------------------------------------------------------------------------------

/// The markers that the fields ask for, made of those of the input and of new ones. Every step that
/// fails is reported, and the next one goes on.
class Header {
  public:
    Header(CLumoscriptView& view, const Fields& fields) : view_(view), fields_(fields) {
        MakeComments();
        MakeExif();
        MakeResources();
    }

    /// All of them, EXIF first, where readers look for it.
    JpegMarkers All() const;
    /// What a rewrite of the original changes in it.
    codecs::JpegChanges ChangesOf(const codecs::JpegHead& head) const;

  private:
    bool On(int field) const { return fields_.Is(field, "1"); }
    bool Retains(int field) const { return On(field) || On(kRetainAll); }
    bool KeepsAll() const { return On(kRetainAll); }

    void MakeComments();
    void MakeExif();
    void MakeResources();
    Bytes NewIptc();
    Bytes NewResources();
    bool Reserve(std::size_t bytes, std::string_view failure);
    bool Put(JpegMarkers& list, int code, ByteView payload, std::string_view failure);
    void Report(std::string_view failure) {
        OnCommandFailure(view_, failure, engine::LibraryError::Append);
    }

    CLumoscriptView& view_;
    const Fields& fields_;
    codecs::PropertyTexts properties_;
    JpegMarkers keptComments_, newComments_, exif_, keptResources_, newResources_;
};

/// The budget of memory counts for markers as well: some files hold megabytes of them.
bool Header::Reserve(std::size_t bytes, std::string_view failure) {
    if (bytes <= imaging::MemoryBudget() &&
        imaging::MemoryInUse() <= imaging::MemoryBudget() - bytes)
        return true;
    imaging::SetLastError("not enough memory");
    Report(failure);
    return false;
}

bool Header::Put(JpegMarkers& list, int code, ByteView payload, std::string_view failure) {
    if (payload.size() > codecs::kMaxMarkerBytes) {
        imaging::SetLastError(fmt::format("JPG: a marker of {} bytes is too long, {} is the most",
                                          payload.size(), codecs::kMaxMarkerBytes));
        Report(failure);
        return false;
    }
    if (!Reserve(payload.size(), failure)) return false;
    list.emplace_back(code, Bytes(payload.begin(), payload.end()));
    return true;
}

void Header::MakeComments() {
    constexpr std::string_view kFailure = "Cmd_52 JPGheader L17339: ";
    if (Retains(kRetainComments))
        for (const auto& [code, payload] : view_.metadata.jpgInput)
            if (code == codecs::kComment) Put(keptComments_, code, payload, kFailure);
    const auto add = [&](std::string_view text) {
        for (const Bytes& payload : codecs::CommentPayloads(text))
            Put(newComments_, codecs::kComment, payload, kFailure);
    };
    if (On(kAddPath)) add("LINK=" + view_.input.path);
    if (On(kAddComment)) add(WithLineBreaks(fields_.Text(kComment)));
}

void Header::MakeExif() {
    constexpr std::string_view kNotRead = "Cmd_52 JPGheader EXIF L17371: ";
    constexpr std::string_view kNotAdded = "Cmd_52 JPGheader EXIF L17375: ";
    Bytes* old = nullptr;
    if (Retains(kRetainExif)) {
        for (const auto& [code, payload] : view_.metadata.jpgInput)
            if (code == codecs::kApp1) Put(exif_, code, payload, kNotAdded);
        for (auto& [code, payload] : exif_)
            if (old == nullptr && codecs::IsExifPayload(payload)) old = &payload;
    }
    properties_ = {.title = fields_.Text(kTitle),
                   .subject = fields_.Text(kSubject),
                   .author = fields_.Text(kAuthor),
                   .keywords = fields_.Text(kKeywords),
                   .comments = fields_.Text(kComments)};
    if (properties_.IsEmpty()) return;
    // Without room for them the properties are left out; what was kept stays as it is.
    auto merged = codecs::AddProperties(old != nullptr ? ByteView(*old) : ByteView(), properties_);
    JpegMarkers placed;
    if (!merged) {
        imaging::SetLastError(merged.Message());
        Report(kNotRead);
    } else if (Put(placed, codecs::kApp1, *merged, kNotAdded)) {
        if (old != nullptr)
            *old = std::move(placed.front().second);
        else
            exif_.insert(exif_.begin(), std::move(placed.front()));
    }
}

Bytes Header::NewIptc() {
    codecs::IptcBlock block;
    for (const auto& [field, dataset, holds, failure] : kIptcFields) {
        std::string text = fields_.Text(field);
        if (holds == Holds::Macros) text = ParseLine(text, MacrosOf(view_));
        if (holds == Holds::Lines) text = WithLineBreaks(std::move(text));
        if (!Reserve(text.size(), failure)) continue;
        if (const auto added = block.Add(dataset, text); !added) {
            imaging::SetLastError(added.Message());
            Report(failure);
        }
    }
    return block.Export();
}

Bytes Header::NewResources() {
    Bytes block;
    if (On(kAddIptc) && !Retains(kRetainIptc)) {
        const Bytes iptc = NewIptc();
        if (!iptc.empty() && Reserve(iptc.size(), "Cmd_52 JPGheader IPTC L17514: "))
            codecs::AppendResource(block, codecs::kIptcResource, "", iptc);
    }
    constexpr std::string_view kName = "Mark Copyrighted";
    constexpr std::uint8_t kProtected = 1;
    if (On(kMarkCopyrighted) &&
        Reserve(block.size() + kName.size(), "Cmd_52 JPGheader PSD L17523: "))
        codecs::AppendResource(block, codecs::kCopyrightResource, kName, {&kProtected, 1});
    return block;
}

void Header::MakeResources() {
    constexpr std::string_view kFailure = "Cmd_52 JPGheader PSD L17528: ";
    if (Retains(kRetainIptc)) {
        for (const auto& [code, payload] : view_.metadata.jpgInput)
            if (code == codecs::kApp13) Put(keptResources_, code, payload, kFailure);
        if (!keptResources_.empty()) return;
    }
    for (const Bytes& payload : codecs::ResourcePayloads(NewResources()))
        Put(newResources_, codecs::kApp13, payload, kFailure);
}

JpegMarkers Header::All() const {
    JpegMarkers all;
    for (const auto* list :
         {&exif_, &keptResources_, &newResources_, &keptComments_, &newComments_})
        all.insert(all.end(), list->begin(), list->end());
    return all;
}

codecs::JpegChanges Header::ChangesOf(const codecs::JpegHead& head) const {
    if (!KeepsAll()) return {.added = All()};
    codecs::JpegChanges changes{.keepAll = true, .added = newResources_};
    changes.added.insert(changes.added.end(), newComments_.begin(), newComments_.end());
    if (properties_.IsEmpty()) return changes;
    // The file may have changed since it was opened, by this command for one.
    ByteView old;
    for (const codecs::JpegSegment& segment : head.segments)
        if (old.empty() && segment.code == codecs::kApp1 && codecs::IsExifPayload(segment.payload))
            old = segment.payload;
    auto merged = codecs::AddProperties(old, properties_);
    if (merged && merged->size() <= codecs::kMaxMarkerBytes) changes.exif = std::move(*merged);
    return changes;
}

void RewriteOriginal(CLumoscriptView& view, const Header& header) {
    const auto report = [&](std::string_view text) {
        OnCommandFailure(view, text, engine::LibraryError::Append);
    };
    const auto [outcome, systemError] = RewriteJpegHeader(
        view.input.path, [&](const codecs::JpegHead& head) { return header.ChangesOf(head); });
    switch (outcome) {
        case Rewrite::Done:
            break;
        case Rewrite::NotFound:
            report("Cmd_52 Original file not found (Deleted/Moved?) L17549: ");
            break;
        case Rewrite::NotCopied:
            report("Cmd_52 JPGheader New Markers L17563: ");
            break;
        case Rewrite::NotReplaceable:
            report("Cmd_52 JPGheader DeleteFile L17567: ");
            break;
        case Rewrite::NotRenamed:
            report(fmt::format("Cmd_52 Rename L17608: shell error {}", systemError));
            break;
    }
}

/// Trying a Script on the sample leaves the user's files alone, whatever was the last input.
bool IsOriginalInHand(const CLumoscriptView& view) {
    return view.run.batchRunning && !view.run.onLeftImage && view.input.type == kTypeJpg;
}

Outcome RunJpgHeader(CLumoscriptView& view, const Fields& fields) {
    view.metadata.jpgOutput.clear();
    view.metadata.jpgOutput = [&] {
        const Header header(view, fields);
        if (!fields.Is(kMode, kWhenSaving) && IsOriginalInHand(view)) RewriteOriginal(view, header);
        return fields.Is(kMode, kOriginalOnly) ? JpegMarkers() : header.All();
    }();
    ShowCounts(view);
    return Outcome::Succeeded;
}

}  // namespace

const engine::Command kJpgHeaderCommand{
    .spec = {.name = names::kJpgFileHeader, .fields = kFields, .panel = kPanel, .dialog = &kDialog},
    .opening = engine::openings::kNoSkip,
    .run = RunJpgHeader};

}  // namespace lumo::io

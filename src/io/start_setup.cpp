#include "io/start_setup.h"

#include <array>
#include <string>
#include <vector>

#include "io/panel_text.h"
#include "script/names.h"

namespace lumo::io {
namespace {

using namespace script;
using engine::Command;

constexpr int kOlderFields = start::kFieldCount - 3;  // without metafiles, PSD and subfolders
constexpr std::string_view kLocations[] = {"Determine at runtime", "Get from Image list",
                                           "Get from folder (directory)"};
constexpr std::string_view kListFilter = "Batch list (*.lst)|*.lst|All files (*.*)|*.*||";

constexpr FieldSpec Day(std::string_view factory) {
    return Integer("DD", factory).Clamp(1, 31).MaxLength(2);
}
constexpr FieldSpec Month(std::string_view factory) {
    return Integer("MM", factory).Clamp(1, 12).MaxLength(2);
}
constexpr FieldSpec Year(std::string_view factory) {
    return Integer("YYYY", factory).Clamp(1980, 2026).MaxLength(4);
}
constexpr FieldSpec Pixels(std::string_view label, std::string_view factory) {
    return Integer(label, factory).MaxLength(10);
}

constexpr std::array kFields{
    Choice("Images location", "0", kLocations),
    Path("Read images from Image list", "").Filter(kListFilter).MaxLength(255),
    Folder("Read images from folder", "").MaxLength(255),
    Flag("CAMERA", "0"),
    Flag("BMP", "1"),
    Flag("JPG", "1"),
    Flag("TGA", "1"),
    Flag("TIF", "1"),
    Flag("GIF", "1"),
    Flag("WMF", "1"),
    Flag("PSD", "1"),
    Flag("PCX", "1"),
    Flag("PNG", "1"),
    Day("1"),
    Month("12"),
    Year("2024"),
    Day("1"),
    Month("12"),
    Year("1980"),
    Pixels("Width", "64"),
    Pixels("Height", "48"),
    Pixels("Width", "1280"),
    Pixels("Height", "960"),
    Flag("Process only images created before this date:", "0"),
    Flag("Process only images created after this date:", "0"),
    Flag("Process only images larger than:", "0"),
    Flag("Process only images smaller than:", "0"),
    Flag("Process only images with aspect ratio larger than:", "0"),
    Flag("Process only images with aspect ratio less than:", "0"),
    Real("Aspect ratio (width/height)", "0.0").MaxLength(5),
    Real("Aspect ratio (width/height)", "4.0").MaxLength(5),
    Flag("Include all subfolders (recursive search)", "0"),
};
static_assert(kFields.size() == start::kFieldCount);

constexpr int kTypes[] = {start::kUseBmp, start::kUseTga, start::kUsePng, start::kUseGif,
                          start::kUsePsd, start::kUseJpg, start::kUsePcx, start::kUseTif,
                          start::kUseWmf, start::kUseRaw};
constexpr int kBefore[] = {start::kBeforeOn, start::kBeforeMonth, start::kBeforeDay,
                           start::kBeforeYear};
constexpr int kAfter[] = {start::kAfterOn, start::kAfterMonth, start::kAfterDay, start::kAfterYear};
constexpr int kLarger[] = {start::kMinSizeOn, start::kMinWidth, start::kMinHeight};
constexpr int kSmaller[] = {start::kMaxSizeOn, start::kMaxWidth, start::kMaxHeight};
constexpr int kWider[] = {start::kMinAspectOn, start::kMinAspect};
constexpr int kNarrower[] = {start::kMaxAspectOn, start::kMaxAspect};
constexpr FieldGroup kGroups[] = {
    {.title = "Processes only checked image formats", .fields = kTypes, .columns = 5},
    {.fields = kBefore, .columns = 3, .switched = true},
    {.fields = kAfter, .columns = 3, .switched = true},
    {.fields = kLarger, .columns = 2, .switched = true},
    {.fields = kSmaller, .columns = 2, .switched = true},
    {.fields = kWider, .switched = true},
    {.fields = kNarrower, .switched = true},
};
// The controls of one source at a time.
constexpr ShownWhen kShown[] = {{start::kListPath, start::kLocation, start::kFromList},
                                {start::kFolderPath, start::kLocation, start::kFromFolder},
                                {start::kSubfolders, start::kLocation, start::kFromFolder}};
constexpr DialogSpec kDialog{.title = "Start: input setup",
                             .windowState = "WS76",
                             .helpTopic = "StartInputsetup",
                             .groups = kGroups,
                             .shownWhen = kShown};

std::string Panel(const Fields& fields) {
    const bool atRunTime = fields.Is(start::kLocation, "0");
    const bool list = fields.Is(start::kLocation, start::kFromList);
    std::string text = "Images location: ";
    text += atRunTime ? "Set at run time" : list ? "From Image list" : "From folder";
    text += '\n';
    if (!atRunTime)
        text += ShortenPath(fields.Text(list ? start::kListPath : start::kFolderPath), 25, 23);
    text += FiltersActive(fields) ? "\nFilters Set: Yes\n" : "\nFilters Set: No\n";
    return text;
}

}  // namespace

Fields ParseStartParams(std::string_view params) {
    const std::string_view count = params.substr(0, params.find(','));
    const bool current = count == "32";
    const bool hasTypes = current || count == "31";
    const int stored = current    ? start::kFieldCount
                       : hasTypes ? start::kFieldCount - 1
                                  : kOlderFields;

    // The count says which layout it is; the fields are read whatever the number itself would be.
    std::string text = std::to_string(stored);
    text.append(params.substr(count.size()));
    const Fields read = ParseParams(text);

    Fields fields;
    fields.complete = read.complete;
    fields.count = start::kFieldCount;
    for (int from = 0, to = 0; from < stored; ++from, ++to) {
        if (to == start::kUseWmf && !hasTypes) to = start::kUsePcx;
        fields.Set(to, read.Text(from));
    }
    if (!current) fields.Set(start::kSubfolders, "0");
    return fields;
}

std::string BuildStartParams(std::span<const std::string> texts) {
    std::vector<std::string> fields(texts.begin(), texts.end());
    fields.resize(start::kFieldCount);
    std::string& folder = fields[start::kFolderPath];
    if (folder.size() > 1 && (folder.ends_with('\\') || folder.ends_with('/'))) folder.pop_back();
    if (fields[start::kSubfolders].empty()) fields[start::kSubfolders] = "0";
    return BuildParams(kFields, fields);
}

bool FiltersActive(const Fields& fields) {
    for (int i = start::kUseRaw; i <= start::kUsePng; ++i)
        if (fields.Is(i, "0")) return true;
    for (int i = start::kBeforeOn; i <= start::kMaxAspectOn; ++i)
        if (fields.Is(i, "1")) return true;
    return false;
}

const Command kStartCommand{.spec = {.name = names::kStartImageLoop,
                                     .fields = kFields,
                                     .panelText = Panel,
                                     .dialog = &kDialog,
                                     .parse = ParseStartParams,
                                     .build = BuildStartParams},
                            .opening = engine::openings::kOwnFlow};

}  // namespace lumo::io

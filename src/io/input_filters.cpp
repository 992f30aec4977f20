#include "io/input_filters.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "io/run_logs.h"
#include "io/start_setup.h"
#include "platform/files.h"
#include "script/decimal_text.h"

namespace lumo::io {
namespace {

using engine::CLumoscriptView;
using script::Fields;

/// Collects the outcome of several tests, all of which run.
class Verdict {
  public:
    explicit Verdict(CLumoscriptView& view) : view_(view) {}

    void Reject(std::string_view reason) {
        passed_ = false;
        if (BatchLogOn(view_))
            LogBatchLine(view_, view_.run.imageIndex + 1, std::string("Filtered: ").append(reason));
    }
    bool Passed() const { return passed_; }

  private:
    CLumoscriptView& view_;
    bool passed_ = true;
};

std::time_t StartOfDay(const Fields& fields, int day, int month, int year) {
    return io::StartOfDay(fields.Integer(year), fields.Integer(month), fields.Integer(day));
}

}  // namespace

std::time_t StartOfDay(int year, int month, int day) {
    // Hand-written numbers may be of any size; what the calendar cannot hold counts as its end.
    constexpr int kFar = 1'000'000'000;
    std::tm moment{};
    moment.tm_year = std::clamp(year, -kFar, kFar) - 1900;
    moment.tm_mon = std::clamp(month, -kFar, kFar) - 1;
    moment.tm_mday = day;
    moment.tm_isdst = -1;  // daylight time as the place has it on that day
    return std::mktime(&moment);
}

bool FilterByFile(CLumoscriptView& view) {
    const Fields& fields = view.inputSettings;
    Verdict verdict(view);
    if (!FiltersActive(fields)) return true;

    const int type = view.input.type;
    for (const FileTypeFlag& test : kFileTypeFlags)
        if (fields.Is(test.field, "0") && type >= test.firstType && type <= test.lastType)
            verdict.Reject(std::string("input ext ").append(test.name));

    const auto status = platform::GetFileStatus(view.input.path);
    if (!status) return verdict.Passed();
    if (fields.Is(start::kBeforeOn, "1") &&
        status->created >
            StartOfDay(fields, start::kBeforeDay, start::kBeforeMonth, start::kBeforeYear))
        verdict.Reject("file creation date too young");
    if (fields.Is(start::kAfterOn, "1") && StartOfDay(fields, start::kAfterDay, start::kAfterMonth,
                                                      start::kAfterYear) > status->created)
        verdict.Reject("file creation date too old");
    return verdict.Passed();
}

bool FilterByImage(CLumoscriptView& view) {
    const Fields& fields = view.inputSettings;
    Verdict verdict(view);
    if (!FiltersActive(fields)) return true;

    const int width = view.working.main.Width();
    const int height = view.working.main.Height();
    const auto on = [&](int field) { return fields.Is(field, "1"); };

    if (on(start::kMinSizeOn) &&
        (width < fields.Integer(start::kMinWidth) || height < fields.Integer(start::kMinHeight)))
        verdict.Reject("image size too small");
    if (on(start::kMaxSizeOn) &&
        (width > fields.Integer(start::kMaxWidth) || height > fields.Integer(start::kMaxHeight)))
        verdict.Reject("image size too large");

    const double aspect = height > 0 ? static_cast<double>(width) / height : 0;
    if (on(start::kMinAspectOn) &&
        aspect < script::ParseDecimalText(fields.Text(start::kMinAspect)))
        verdict.Reject("image aspect ratio too small");
    if (on(start::kMaxAspectOn) &&
        aspect > script::ParseDecimalText(fields.Text(start::kMaxAspect)))
        verdict.Reject("image aspect ratio too large");
    return verdict.Passed();
}

}  // namespace lumo::io

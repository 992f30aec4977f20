#include "engine/flow/condition.h"

#include <array>
#include <limits>

#include "imaging/measures.h"
#include "imaging/truncate.h"

namespace lumo::engine::flow {
namespace {

using namespace script;
using imaging::Truncate;

constexpr std::string_view kItemNames[] = {"Aspect ratio (width/height)",
                                           "Width (pixels)",
                                           "Height (pixels)",
                                           "Total pixels",
                                           "Counter A",
                                           "Counter B",
                                           "Counter C",
                                           "Counter D",
                                           "Counter E",
                                           "Image brightness (0-255)",
                                           "Border brightness",
                                           "Colors used",
                                           "Counter F",
                                           "Counter G",
                                           "Counter H",
                                           "Counter I",
                                           "Counter J"};
constexpr std::string_view kTestNames[] = {"> (greater than)", "<  (less than)", "=  (equal to)",
                                           ">= (greater than or equal to)",
                                           "<=  (less than or equal to)"};
constexpr std::array kFields{Choice("Item", "0", kItemNames), Choice("Test", "0", kTestNames),
                             Real("Value", "1.0"), Real("Upper value", "2.0"),
                             Flag("Range check only", "0")};

template <class T>
std::optional<bool> Compare(int test, T x, T value) {
    switch (test) {
        case 0:
            return x > value;
        case 1:
            return x < value;
        case 2:
            return x == value;
        case 3:
            return x >= value;
        case 4:
            return x <= value;
        default:
            return std::nullopt;
    }
}

std::optional<std::size_t> CounterOf(int item) {
    if (item >= kFirstCounterAToE && item < kFirstCounterAToE + 5)
        return static_cast<std::size_t>(item - kFirstCounterAToE);
    if (item >= kFirstCounterFToJ && item < kFirstCounterFToJ + 5)
        return static_cast<std::size_t>(item - kFirstCounterFToJ + 5);
    return std::nullopt;
}

/// Measures that are compared as doubles. Without a picture the aspect ratio is infinite.
std::optional<double> Measure(const CLumoscriptView& view, int item) {
    const imaging::ConstImageView image = view.working.main.View();
    const double width = image.Width(), height = image.Height();
    switch (item) {
        case kAspectRatio:
            return image.IsEmpty() ? std::numeric_limits<double>::infinity() : width / height;
        case kWidth:
            return width;
        case kHeight:
            return height;
        case kTotalPixels:
            return height * width;
        case kImageBrightnessItem:
            return imaging::ImageBrightness(image);
        case kBorderBrightnessItem:
            return imaging::BorderBrightness(image);
        default:
            return std::nullopt;
    }
}

}  // namespace

std::span<const FieldSpec> ConditionFields() {
    return kFields;
}

std::string ConditionPanel(const Fields& fields) {
    const auto nameOf = [](std::span<const std::string_view> names, int code) {
        return code >= 0 && code < static_cast<int>(names.size())
                   ? std::string(names[static_cast<std::size_t>(code)])
                   : std::string("unknown");
    };
    std::string text = nameOf(kItemNames, fields.Integer(kItem)) + "\n";
    if (fields.Is(kRangeForm, "0"))
        return text + nameOf(kTestNames, fields.Integer(kTest)) + "\n" + fields.Text(kLowerValue) +
               "\n";
    return text + "Range: above " + fields.Text(kLowerValue) + "\nup to " +
           fields.Text(kUpperValue) + "\n";
}

bool IsMeasuredItem(int item) {
    return item == kImageBrightnessItem || item == kBorderBrightnessItem || item == kColoursUsed;
}

std::optional<bool> EvaluateCondition(const CLumoscriptView& view, const Fields& fields) {
    const int item = fields.Integer(kItem);
    const int test = fields.Integer(kTest);
    const double lower = fields.Real(kLowerValue), upper = fields.Real(kUpperValue);
    const bool range = !fields.Is(kRangeForm, "0");

    if (const auto counter = CounterOf(item)) {
        const std::int32_t x = view.counters[*counter];
        if (range) return Truncate(lower) < x && x <= Truncate(upper);
        return Compare(test, x, Truncate(lower));
    }
    if (item == kColoursUsed) {
        const std::int32_t colours = imaging::CountImageColors(view.working.main.View());
        if (range) return lower < colours && colours <= upper;
        return Compare(test, colours, Truncate(lower));
    }
    const auto x = Measure(view, item);
    if (!x) return std::nullopt;
    if (range) return lower < *x && *x <= upper;
    return Compare(test, *x, lower);
}

}  // namespace lumo::engine::flow

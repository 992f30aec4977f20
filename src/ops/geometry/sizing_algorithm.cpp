#include "ops/geometry/sizing_algorithm.h"

#include <array>

namespace lumo::ops::geometry {
namespace {

struct Row {
    std::string_view text, panelName;
    int scale, sizeAndCrop;
};

// "Auto select" chooses nothing by itself: it survives in old Scripts and means bilinear.
constexpr std::array kRows{
    Row{"0", "Bilinear resample", 16, 0}, Row{"1", "Nearest neighbor", 18, 1},
    Row{"2", "Auto select", 16, 0},       Row{"3", "Bicubic resample", 17, 3},
    Row{"4", "Decimate", 14, 4},          Row{"13", "Lanczos3", 8, 8},
    Row{"16", "Hermite", 11, 11},         Row{"18", "Catrom", 13, 13}};
constexpr std::size_t kDecimate = 4;

constexpr std::string_view kCodes[] = {"3", "0", "1", "4", "13", "16", "18"};
constexpr std::string_view kDialogNames[] = {
    "Bicubic resample", "Bilinear resample", "Nearest neighbor", "Decimate",
    "Lanczos3 filter",  "Hermite filter",    "Catrona filter"};

const Row& RowOf(std::string_view text) {
    for (const Row& row : kRows)
        if (row.text == text) return row;
    return kRows[0];
}

}  // namespace

std::span<const std::string_view> SizingCodes() {
    return kCodes;
}
std::span<const std::string_view> SizingDialogNames() {
    return kDialogNames;
}
std::string_view SizingPanelName(std::string_view code) {
    return RowOf(code).panelName;
}

int SizingCode(SizingTable table, std::string_view text, imaging::Size from, imaging::Size to) {
    const Row* row = &RowOf(text);
    if (row == &kRows[kDecimate] && (to.width > from.width || to.height > from.height))
        row = &kRows[0];
    return table == SizingTable::Scale ? row->scale : row->sizeAndCrop;
}

}  // namespace lumo::ops::geometry

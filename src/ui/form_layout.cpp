#include "ui/form_layout.h"

namespace lumo::ui {
namespace {

constexpr int kMiddleFrom = 650, kLargestFrom = 810;  // pixels of screen width

using Places = std::array<PlaceInUnits, static_cast<std::size_t>(Place::Count)>;

constexpr Places kSmallestPlaces{{
    {3, 3, 92, 11},       // Filter
    {3, 16, 92, 179},     // Tree
    {97, 84, 18, 14},     // Add
    {117, 3, 92, 11},     // ScriptTitle
    {117, 16, 92, 151},   // ScriptList
    {117, 170, 45, 11},   // SwapUp
    {117, 184, 45, 11},   // SwapDown
    {164, 170, 45, 11},   // Edit
    {164, 184, 45, 11},   // Delete
    {213, 2, 195, 111},   // ImageGroup
    {217, 11, 92, 8},     // LeftCaption
    {312, 11, 92, 8},     // RightCaption
    {217, 20, 92, 62},    // LeftFrame
    {312, 20, 92, 62},    // RightFrame
    {217, 85, 45, 11},    // Open
    {264, 85, 45, 11},    // Reload
    {312, 85, 45, 11},    // CopyToRight
    {359, 85, 45, 11},    // CopyToLeft
    {217, 98, 45, 11},    // TestOne
    {264, 98, 45, 11},    // TestAll
    {312, 98, 45, 11},    // SaveAs
    {359, 98, 45, 11},    // RunOnSample
    {213, 115, 80, 80},   // Panel
    {296, 115, 112, 64},  // Progress
    {296, 182, 112, 13},  // Run
}};

constexpr Places kMiddlePlaces{{
    {4, 4, 107, 13},       // Filter
    {4, 20, 107, 236},     // Tree
    {114, 122, 20, 15},    // Add
    {137, 4, 107, 13},     // ScriptTitle
    {137, 20, 107, 203},   // ScriptList
    {137, 227, 52, 13},    // SwapUp
    {137, 243, 52, 13},    // SwapDown
    {192, 227, 52, 13},    // Edit
    {192, 243, 52, 13},    // Delete
    {249, 3, 227, 149},    // ImageGroup
    {254, 13, 107, 9},     // LeftCaption
    {364, 13, 107, 9},     // RightCaption
    {254, 24, 107, 92},    // LeftFrame
    {364, 24, 107, 92},    // RightFrame
    {254, 119, 52, 13},    // Open
    {309, 119, 52, 13},    // Reload
    {364, 119, 52, 13},    // CopyToRight
    {419, 119, 52, 13},    // CopyToLeft
    {254, 135, 52, 13},    // TestOne
    {309, 135, 52, 13},    // TestAll
    {364, 135, 52, 13},    // SaveAs
    {419, 135, 52, 13},    // RunOnSample
    {249, 155, 112, 101},  // Panel
    {364, 155, 112, 80},   // Progress
    {364, 239, 112, 17},   // Run
}};

constexpr Places kLargestPlaces{{
    {4, 4, 124, 14},       // Filter
    {4, 21, 124, 300},     // Tree
    {131, 150, 22, 16},    // Add
    {156, 4, 124, 14},     // ScriptTitle
    {156, 21, 124, 266},   // ScriptList
    {156, 291, 61, 14},    // SwapUp
    {156, 307, 61, 14},    // SwapDown
    {219, 291, 61, 14},    // Edit
    {219, 307, 61, 14},    // Delete
    {286, 3, 300, 199},    // ImageGroup
    {291, 15, 143, 11},    // LeftCaption
    {438, 15, 143, 11},    // RightCaption
    {291, 27, 143, 137},   // LeftFrame
    {438, 27, 143, 137},   // RightFrame
    {291, 167, 70, 14},    // Open
    {364, 167, 70, 14},    // Reload
    {438, 167, 70, 14},    // CopyToRight
    {511, 167, 70, 14},    // CopyToLeft
    {291, 184, 70, 14},    // TestOne
    {364, 184, 70, 14},    // TestAll
    {438, 184, 70, 14},    // SaveAs
    {511, 184, 70, 14},    // RunOnSample
    {286, 205, 147, 116},  // Panel
    {438, 205, 148, 96},   // Progress
    {438, 304, 148, 17},   // Run
}};

constexpr FormLayout kSmallest{.basisWidth = 411, .basisHeight = 198, .places = kSmallestPlaces};
constexpr FormLayout kMiddle{.basisWidth = 480, .basisHeight = 260, .places = kMiddlePlaces};
constexpr FormLayout kLargest{.basisWidth = 590, .basisHeight = 325, .places = kLargestPlaces};

}  // namespace

const FormLayout& LayoutForScreen(int screenWidth) {
    if (screenWidth < kMiddleFrom) return kSmallest;
    return screenWidth < kLargestFrom ? kMiddle : kLargest;
}

QRect PlaceOf(const FormLayout& layout, Place place, QSize client) {
    const PlaceInUnits& at = layout.places[static_cast<std::size_t>(place)];
    const auto x = [&](int units) { return client.width() * units / layout.basisWidth; };
    const auto y = [&](int units) { return client.height() * units / layout.basisHeight; };
    return {x(at.left), y(at.top), x(at.width), y(at.height)};
}

}  // namespace lumo::ui

#pragma once

// Where each control of the main form stands. The form has three layouts, chosen by the width of
// the screen; in each of them everything scales with the window, and nothing is docked.

#include <QRect>
#include <QSize>
#include <array>

namespace lumo::ui {

/// The controls that have a place of their own.
enum class Place {
    Filter,
    Tree,
    Add,
    ScriptTitle,
    ScriptList,
    SwapUp,
    SwapDown,
    Edit,
    Delete,
    ImageGroup,
    LeftCaption,
    RightCaption,
    LeftFrame,
    RightFrame,
    Open,
    Reload,
    CopyToRight,
    CopyToLeft,
    TestOne,
    TestAll,
    SaveAs,
    RunOnSample,
    Panel,
    Progress,
    Run,
    Count
};

/// Left, top, width and height in units of the layout.
struct PlaceInUnits {
    int left = 0, top = 0, width = 0, height = 0;
};

struct FormLayout {
    int basisWidth = 0, basisHeight = 0;  // the client area in units
    std::array<PlaceInUnits, static_cast<std::size_t>(Place::Count)> places;
};

/// Below 650 pixels of screen the smallest, below 810 the middle, else the largest.
const FormLayout& LayoutForScreen(int screenWidth);

/// Client width times unit value by basis width, and the same with heights, in whole numbers.
QRect PlaceOf(const FormLayout& layout, Place place, QSize client);

}  // namespace lumo::ui

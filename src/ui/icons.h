#pragma once

#include <QIcon>

namespace lumo::ui {

enum class Glyph {
    New,
    Open,
    Save,
    Undo,
    Cut,
    Copy,
    Paste,
    Picture,
    Reload,
    TestOne,
    TestAll,
    RunOnSample,
    Run,
    Stop
};

/// A line drawing in the colour of texts: crisp in any size, and right in any theme.
QIcon GlyphIcon(Glyph glyph);

}  // namespace lumo::ui
